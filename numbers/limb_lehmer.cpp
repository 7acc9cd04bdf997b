// The word step of Lehmer's algorithm.
//
// The two top words of both operands tell about 60 bits worth of quotients (Knuth, The Art of Computer
// Programming 2, 4.5.2, algorithm L). They are found in two stages of 32 bits with word arithmetic only; the
// second stage looks at the image of the first. A quotient is used only if it is the same for every pair of
// values that the truncated words can stand for (Collins, "Lecture notes on arithmetic algorithms", 1980).
#include "numbers/limb_lehmer.h"

#include <bit>
#include <cstring>
namespace tolvex {
namespace {
using wide = unsigned __int128;

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

/// The 128 bits of a[0..n), n >= 2, that begin `skip` bits below its top, 0 <= skip < 64.
wide top_bits(const limb* a, int64_t n, int skip) {
    limb x = a[n - 1], y = a[n - 2];
    if (skip == 0) return (static_cast<wide>(x) << 64) | y;
    limb z = n > 2 ? a[n - 3] : 0;
    return (static_cast<wide>(x << skip | y >> (64 - skip)) << 64) | (y << skip | z >> (64 - skip));
}

}  // namespace

Cofactors lehmer_cofactors(const limb* a, const limb* b, int64_t n) {
    int skip = std::countl_zero(a[n - 1]);
    return sure_quotients_wide(top_bits(a, n, skip), top_bits(b, n, skip));
}

void apply_cofactors(const Cofactors& m, limb* a, limb* b, int64_t n, limb* tmp) {
    limb u0 = m.u0, v0 = m.v0, u1 = m.u1, v1 = m.v1;
    memcpy(tmp, a, static_cast<size_t>(n) * sizeof(limb));
    // The signs alternate: with an odd number of steps r is v0 b - u0 a. Carries above n limbs cancel.
    if ((m.steps & 1) == 0) {
        limbs_mul_1(a, a, n, u0);
        limbs_submul_1(a, b, n, v0);
        limbs_mul_1(b, b, n, v1);
        limbs_submul_1(b, tmp, n, u1);
    } else {
        limbs_mul_1(a, b, n, v0);
        limbs_submul_1(a, tmp, n, u0);
        limbs_mul_1(tmp, tmp, n, u1);
        limbs_submul_1(tmp, b, n, v1);
        memcpy(b, tmp, static_cast<size_t>(n) * sizeof(limb));
    }
}
}  // namespace tolvex
