// Greatest common divisors of limb arrays: Lehmer's algorithm with cofactors of a whole word.
//
// The two top words of both operands tell about 60 bits worth of quotients (Knuth, The Art of Computer
// Programming 2, 4.5.2, algorithm L). They are found in two stages of 32 bits with word arithmetic only; the
// second stage looks at the image of the first. A quotient is used only if it is the same for every pair of
// values that the truncated words can stand for (Collins, "Lecture notes on arithmetic algorithms", 1980).
#include "numbers/limbs.h"
#include "storage/interrupt.h"

#include <bit>
#include <cstring>
#include <utility>
namespace tolvex {
namespace {
using wide = unsigned __int128;

/// After `steps` quotients: remainder(i) = +-(u0 a - v0 b), remainder(i + 1) = -+(u1 a - v1 b), the upper
/// sign when i = steps is even.
struct Cofactors {
    limb u0 = 1, v0 = 0, u1 = 0, v1 = 1;
    int steps = 0;
};

/// The sure quotients of (a + x, b + y) for all |x|, |y| < error. a >= b, the top bit of a is set. All
/// cofactors stay below 2^32.
Cofactors sure_quotients(limb a, limb b, limb error) {
    Cofactors m;
    limb sum1 = 1;  // u1 + v1
    while (b >> 31 != 0) {
        limb q = 1, r = a - b;
        if (r >= b) {  // 1 is the quotient in two of five cases
            q = a / b;
            r = a - q * b;
        }
        limb u2 = m.u0 + q * m.u1, v2 = m.v0 + q * m.v1, sum2 = u2 + v2;
        // The true remainder is within error * sum2 of r: it must stay in [0, b).
        if (r < error * sum2 || b - r < error * (sum1 + sum2)) break;
        a = b;
        b = r;
        m.u0 = m.u1;
        m.v0 = m.v1;
        m.u1 = u2;
        m.v1 = v2;
        sum1 = sum2;
        m.steps++;
    }
    return m;
}

/// r0 and r1 for two-word values.
void apply_wide(const Cofactors& m, wide& a, wide& b) {
    wide r0 = m.u0 * a - m.v0 * b, r1 = m.v1 * b - m.u1 * a;
    if (m.steps & 1) {
        r0 = 0 - r0;
        r1 = 0 - r1;
    }
    a = r0;
    b = r1;
}

int bit_width_wide(wide v) {
    auto h = static_cast<limb>(v >> 64);
    return static_cast<int>(h != 0 ? 64 + std::bit_width(h) : std::bit_width(static_cast<limb>(v)));
}

/// The sure quotients of numbers with the 128 top bits a, b (aligned; the top bit of a is set, a >= b).
Cofactors sure_quotients_wide(wide a, wide b) {
    Cofactors first = sure_quotients(static_cast<limb>(a >> 64), static_cast<limb>(b >> 64), 1);
    if (first.steps == 0) return first;
    apply_wide(first, a, b);
    int shift = bit_width_wide(a) - 64;
    // The image is off by less than the greatest cofactor, v1, that is by less than one unit of the second
    // window, and by one more for its own truncation.
    if (shift < 0 || (shift < 64 && first.v1 >> shift != 0)) return first;
    Cofactors next = sure_quotients(static_cast<limb>(a >> shift), static_cast<limb>(b >> shift), 2);
    if (next.steps == 0) return first;
    // |next| * |first|: (u + v) of next is at most 2^32 and v1 of first below it, so that words suffice.
    Cofactors m;
    m.u0 = next.u0 * first.u0 + next.v0 * first.u1;
    m.v0 = next.u0 * first.v0 + next.v0 * first.v1;
    m.u1 = next.u1 * first.u0 + next.v1 * first.u1;
    m.v1 = next.u1 * first.v0 + next.v1 * first.v1;
    m.steps = first.steps + next.steps;
    return m;
}

/// (a, b) := remainders `steps` and `steps + 1` of a[0..n), b[0..n). They are not negative and fit.
void apply_cofactors(const Cofactors& m, limb* a, limb* b, int64_t n) {
    limb u0 = m.u0, v0 = m.v0, u1 = m.u1, v1 = m.v1;
    if (m.steps & 1) {  // exchange the roles, so that the first difference is v0 b - u0 a
        std::swap(a, b);
        std::swap(u0, v0);
        std::swap(u1, v1);
    }
    limb p0 = 0, q0 = 0, p1 = 0, q1 = 0, borrow0 = 0, borrow1 = 0;
    bool swapped = m.steps & 1;
    for (int64_t i = 0; i < n; i++) {
        limb x = a[i], y = b[i];
        wide p = static_cast<wide>(u0) * x + p0, q = static_cast<wide>(v0) * y + q0;
        wide d = static_cast<wide>(static_cast<limb>(p)) - static_cast<limb>(q) - borrow0;
        auto r0 = static_cast<limb>(d);
        borrow0 = static_cast<limb>(d >> 64) & 1;
        p0 = static_cast<limb>(p >> 64);
        q0 = static_cast<limb>(q >> 64);
        p = static_cast<wide>(v1) * y + p1;
        q = static_cast<wide>(u1) * x + q1;
        d = static_cast<wide>(static_cast<limb>(p)) - static_cast<limb>(q) - borrow1;
        auto r1 = static_cast<limb>(d);
        borrow1 = static_cast<limb>(d >> 64) & 1;
        p1 = static_cast<limb>(p >> 64);
        q1 = static_cast<limb>(q >> 64);
        a[i] = swapped ? r1 : r0;
        b[i] = swapped ? r0 : r1;
    }
}

/// The 128 bits of a[0..n), n >= 2, that begin `skip` bits below its top, 0 <= skip < 64.
wide top_bits(const limb* a, int64_t n, int skip) {
    limb x = a[n - 1], y = a[n - 2];
    if (skip == 0) return (static_cast<wide>(x) << 64) | y;
    limb z = n > 2 ? a[n - 3] : 0;
    return (static_cast<wide>(x << skip | y >> (64 - skip)) << 64) | (y << skip | z >> (64 - skip));
}

wide wide_gcd(wide u, wide v) {
    if (u == 0) return v;
    if (v == 0) return u;
    auto zeros = [](wide x) {
        auto low = static_cast<limb>(x);
        return low != 0 ? std::countr_zero(low) : 64 + std::countr_zero(static_cast<limb>(x >> 64));
    };
    int ku = zeros(u), kv = zeros(v);
    u >>= ku;
    v >>= kv;
    while (u != v) {
        if ((u >> 64) == 0 && (v >> 64) == 0)
            return static_cast<wide>(word_gcd(static_cast<limb>(u), static_cast<limb>(v)))
                   << (ku < kv ? ku : kv);
        if (u > v) {
            u -= v;
            u >>= zeros(u);
        } else {
            v -= u;
            v >>= zeros(v);
        }
    }
    return u << (ku < kv ? ku : kv);
}

wide two_limbs(const limb* a, int64_t n) {
    wide v = n > 0 ? a[0] : 0;
    return n > 1 ? v | static_cast<wide>(a[1]) << 64 : v;
}

int64_t store_wide(limb* r, wide v) {
    r[0] = static_cast<limb>(v);
    if (v >> 64 == 0) return 1;
    r[1] = static_cast<limb>(v >> 64);
    return 2;
}
}  // namespace

limb word_gcd(limb u, limb v) {
    if (u == 0) return v;
    if (v == 0) return u;
    int k = std::countr_zero(u | v);
    u >>= std::countr_zero(u);
    for (;;) {
        v >>= std::countr_zero(v);
        limb low = u < v ? u : v;
        v = u < v ? v - u : u - v;
        u = low;
        if (v == 0) return u << k;
    }
}

int64_t limbs_gcd(limb* r, limb* a, int64_t an, limb* b, int64_t bn) {
    for (;;) {
        poll_interrupt();
        if (limbs_compare(a, an, b, bn) < 0) {
            std::swap(a, b);
            std::swap(an, bn);
        }
        if (bn == 0) {
            memcpy(r, a, static_cast<size_t>(an) * sizeof(limb));
            return an;
        }
        if (an <= 2) return store_wide(r, wide_gcd(two_limbs(a, an), two_limbs(b, bn)));
        if (bn == 1) {
            r[0] = word_gcd(limbs_mod_1(a, an, b[0]), b[0]);
            return 1;
        }
        Cofactors m;
        if (an == bn) {
            int skip = std::countl_zero(a[an - 1]);
            m = sure_quotients_wide(top_bits(a, an, skip), top_bits(b, an, skip));
        }
        if (m.steps > 0) {
            apply_cofactors(m, a, b, an);
            an = limbs_trim(a, an);
            bn = limbs_trim(b, bn);
        } else {
            limbs_divrem(nullptr, a, an, b, bn);
            an = limbs_trim(a, bn);
        }
    }
}
}  // namespace tolvex
