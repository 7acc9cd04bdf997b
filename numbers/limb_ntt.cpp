// Number-theoretic transforms modulo two primes.
//
// A transform of length n takes a polynomial modulo x^n - 1 to its values at the n-th roots of unity by
// splitting x^n - s^2 into x^(n/2) - s and x^(n/2) + s, down to length 1. Block j of every level belongs to
// the same s = root[j] whatever the length (roots in bit-reversed order), so that one table serves all
// lengths, and the constants do not change in the inner loop. Butterflies are those of Harvey, "Faster
// arithmetic for number-theoretic transforms" (2014): values stay below 4 p between levels, products with a
// constant need no division (Shoup). Lengths are 2^k and 3 2^k: the latter uses x^h - 1 and x^(h/2) - i only.
#include "numbers/limb_ntt.h"

#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/memory.h"

#include <bit>
namespace tolvex {
namespace {
using wide = unsigned __int128;

// Primes k 2^40 + 1 a little below 2^62, and a root of unity of order 2^40 of each.
constexpr limb k_prime_a = 4611615649683210241u, k_root_a = 611971507056309289u;
constexpr limb k_prime_b = 4611613450659954689u, k_root_b = 291604889638457747u;
constexpr int k_product_bits = 123;  // k_prime_a * k_prime_b is above 2^123

/// Up to this length a transform runs level by level: it stays in the first cache.
constexpr int64_t k_level_by_level = 2048;

constexpr limb high(wide v) { return static_cast<limb>(v >> 64); }

/// Arithmetic modulo the prime P < 2^62.
template <limb P> struct Field {
    static constexpr limb mul(limb x, limb y) { return static_cast<limb>(static_cast<wide>(x) * y % P); }
    static constexpr limb power(limb x, limb k) {
        limb r = 1;
        for (; k != 0; k >>= 1, x = mul(x, x))
            if (k & 1) r = mul(r, x);
        return r;
    }
    static constexpr limb inverse(limb x) { return power(x, P - 2); }
    /// -1 / P modulo 2^64, by Newton's iteration.
    static constexpr limb negated_inverse() {
        limb v = P;
        for (int i = 0; i < 6; i++) v *= 2 - P * v;
        return 0 - v;
    }
    /// x y / 2^64 below 2 P for x y < 2^64 P (Montgomery).
    static limb montgomery(limb x, limb y) {
        wide t = static_cast<wide>(x) * y;
        limb m = static_cast<limb>(t) * negated_inverse();
        return high(t + static_cast<wide>(m) * P);
    }
    static limb below_p(limb x) { return x >= P ? x - P : x; }
    static limb below_2p(limb x) { return x >= 2 * P ? x - 2 * P : x; }
};

/// A constant factor w < P with floor(2^64 w / P).
struct Factor {
    limb w, quotient;
};
template <limb P> Factor factor_of(limb w) {
    return {w, static_cast<limb>((static_cast<wide>(w) << 64) / P)};
}
/// y w modulo P, below 2 P, for any word y.
template <limb P> inline limb times(limb y, Factor f) {
    return y * f.w - high(static_cast<wide>(y) * f.quotient) * P;
}

/// root[0] = 1, root[1] = i, root[j]^2 = root[j / 2] for even j, -root[j / 2] for odd j.
struct RootTable {
    Factor* root = nullptr;
    int64_t size = 0;  // entries that are there: a power of two
    int64_t room = 0;
};
template <limb P> RootTable roots;

template <limb P> void reserve_roots(int64_t n) {
    RootTable& t = roots<P>;
    if (t.room >= n) return;
    t.root = static_cast<Factor*>(checked_realloc(t.root, static_cast<size_t>(n) * sizeof(Factor)));
    t.room = n;
    if (t.size > 0) return;
    t.root[0] = factor_of<P>(1);
    t.size = 1;
}

/// Makes the table at least n long, n a power of two. At a poll the table is whole up to its size; a command
/// level may make it longer, and moves it then.
template <limb P, limb Root> void grow_roots(int64_t n) {
    constexpr int64_t k_piece = int64_t{1} << 16;
    RootTable& t = roots<P>;
    reserve_roots<P>(n < 1024 ? 1024 : n);
    while (t.size < n) {
        int64_t m = t.size;
        limb w = Field<P>::power(Root, limb{1} << (38 - (std::bit_width(static_cast<limb>(m)) - 1)));
        Factor step = factor_of<P>(w);
        for (int64_t from = 0; from < m && t.size == m; from += k_piece) {
            int64_t to = from + k_piece < m ? from + k_piece : m;
            for (int64_t i = from; i < to; i++)
                t.root[m + i] = factor_of<P>(Field<P>::below_p(times<P>(t.root[i].w, step)));
            poll_interrupt();
        }
        if (t.size == m) t.size = 2 * m;
    }
}

/// x, y below 4 P become x + f y, x - f y below 4 P.
template <limb P> inline void split(limb& x, limb& y, Factor f) {
    limb u = Field<P>::below_2p(x), v = times<P>(y, f);
    x = u + v;
    y = u - v + 2 * P;
}

constexpr int64_t k_stretch = int64_t{1} << 16;  // turns of a loop over a long array between safe points

/// Two levels at once on the four quarters of one block.
template <limb P, int64_t rhythm> void forward_4(limb* a, int64_t quarter, int64_t node) {
    const Factor* root = roots<P>.root;
    Factor f = root[node], g = root[2 * node], h = root[2 * node + 1];
    for_polled<rhythm>(quarter, [=](int64_t k) {
        limb x0 = a[k], x1 = a[k + quarter], x2 = a[k + 2 * quarter], x3 = a[k + 3 * quarter];
        split<P>(x0, x2, f);
        split<P>(x1, x3, f);
        split<P>(x0, x1, g);
        split<P>(x2, x3, h);
        a[k] = x0;
        a[k + quarter] = x1;
        a[k + 2 * quarter] = x2;
        a[k + 3 * quarter] = x3;
    });
}

/// Values of a[0..n) modulo x^n - root[node]^2, in place, below 4 P before and after.
template <limb P> void forward(limb* a, int64_t n, int64_t node) {
    if (n >= 4 && (std::bit_width(static_cast<limb>(n)) & 1) == 0) {  // an odd number of levels: one alone
        Factor f = roots<P>.root[node];
        for_polled<k_stretch>(n / 2, [=](int64_t k) { split<P>(a[k], a[k + n / 2], f); });
        forward<P>(a, n / 2, 2 * node);
        forward<P>(a + n / 2, n / 2, 2 * node + 1);
        return;
    }
    if (n == 2) {
        split<P>(a[0], a[1], roots<P>.root[node]);
        return;
    }
    if (n <= k_level_by_level) {
        for (int64_t quarter = n / 4, m = 1; quarter >= 1; quarter /= 4, m *= 4)
            for (int64_t j = 0; j < m; j++)
                forward_4<P, k_no_safe_point>(a + 4 * quarter * j, quarter, node * m + j);
        return;
    }
    poll_interrupt();
    forward_4<P, k_stretch>(a, n / 4, node);
    for (int64_t j = 0; j < 4; j++) forward<P>(a + n / 4 * j, n / 4, 4 * node + j);
}

/// The inverse of a root of the table: minus the root of the mirrored block of its level.
inline int64_t mirror(int64_t j) {
    return j == 0 ? 0 : 3 * (int64_t{1} << (std::bit_width(static_cast<limb>(j)) - 1)) - 1 - j;
}

/// x, y below 2 P become x + y and (x - y) / s below 2 P. f is -1/s, or 1 for s = 1 (`first`).
template <limb P> inline void join(limb& x, limb& y, Factor f) {
    limb u = x, v = y;
    x = Field<P>::below_2p(u + v);
    y = times<P>(v - u + 2 * P, f);
}

template <limb P> inline Factor inverse_root(int64_t node) {
    if (node == 0) return factor_of<P>(P - 1);
    return roots<P>.root[mirror(node)];
}

template <limb P, int64_t rhythm> void inverse_4(limb* a, int64_t quarter, int64_t node) {
    Factor f = inverse_root<P>(node), g = inverse_root<P>(2 * node), h = inverse_root<P>(2 * node + 1);
    for_polled<rhythm>(quarter, [=](int64_t k) {
        limb x0 = a[k], x1 = a[k + quarter], x2 = a[k + 2 * quarter], x3 = a[k + 3 * quarter];
        join<P>(x0, x1, g);
        join<P>(x2, x3, h);
        join<P>(x0, x2, f);
        join<P>(x1, x3, f);
        a[k] = x0;
        a[k + quarter] = x1;
        a[k + 2 * quarter] = x2;
        a[k + 3 * quarter] = x3;
    });
}

/// n times the inverse of `forward`; values below 2 P before and after.
template <limb P> void inverse(limb* a, int64_t n, int64_t node) {
    if (n >= 4 && (std::bit_width(static_cast<limb>(n)) & 1) == 0) {
        inverse<P>(a, n / 2, 2 * node);
        inverse<P>(a + n / 2, n / 2, 2 * node + 1);
        Factor f = inverse_root<P>(node);
        for_polled<k_stretch>(n / 2, [=](int64_t k) { join<P>(a[k], a[k + n / 2], f); });
        return;
    }
    if (n == 2) {
        join<P>(a[0], a[1], inverse_root<P>(node));
        return;
    }
    if (n <= k_level_by_level) {
        int64_t m = n / 4;
        for (int64_t quarter = 1; m >= 1; quarter *= 4, m /= 4)
            for (int64_t j = 0; j < m; j++)
                inverse_4<P, k_no_safe_point>(a + 4 * quarter * j, quarter, node * m + j);
        return;
    }
    poll_interrupt();
    for (int64_t j = 0; j < 4; j++) inverse<P>(a + n / 4 * j, n / 4, 4 * node + j);
    inverse_4<P, k_stretch>(a, n / 4, node);
}

/// What one product needs to know: digits of `bits` bits, transforms of length h, or h and h / 2.
struct Plan {
    int bits;
    int64_t h;
    bool three_halves;
    int64_t length() const { return three_halves ? h + h / 2 : h; }
};

int64_t digits_needed(int64_t limbs, int bits) { return (64 * limbs + bits - 1) / bits; }

Plan plan_for(int64_t an, int64_t bn) {
    Plan p;
    int64_t shorter = an < bn ? an : bn;
    // A coefficient is a sum of at most digits(shorter) products of 2 `bits` bits. 40 bits a digit at the
    // least, so that twice the limbs is a bound for the digits.
    p.bits = (k_product_bits - static_cast<int>(std::bit_width(static_cast<limb>(2 * shorter)))) / 2;
    CHECK(p.bits >= 40);
    int64_t n = digits_needed(an, p.bits) + digits_needed(bn, p.bits);
    p.h = static_cast<int64_t>(std::bit_ceil(static_cast<limb>(n < 8 ? 8 : n)));
    p.three_halves = n <= p.h / 4 * 3;
    if (p.three_halves) p.h /= 2;
    return p;
}

/// to[0..length) := the digits of a[0..n), then zeros.
void cut_digits(limb* to, const limb* a, int64_t n, const Plan& plan) {
    const limb mask = (limb{1} << plan.bits) - 1;
    limb rest = 0;
    int have = 0;  // bits in `rest`
    int64_t count = 0;
    for (int64_t i = 0; i < n; i++) {
        limb w = a[i];
        to[count++] = (rest | w << have) & mask;
        int taken = plan.bits - have;
        rest = w >> taken;  // taken is 1..62: `have` stays below `bits`
        have = 64 - taken;
        if (have >= plan.bits) {
            to[count++] = rest & mask;
            rest >>= plan.bits;
            have -= plan.bits;
        }
        poll_every<k_stretch>(i);
    }
    if (have > 0) to[count++] = rest;
    scratch_clear(to + count, static_cast<size_t>(plan.length() - count) * sizeof(limb));
}

template <limb P> Factor factor_i() { return roots<P>.root[1]; }

/// All values of the polynomial a, below 4 P.
template <limb P> void to_values(limb* a, const Plan& plan) {
    if (!plan.three_halves) {
        forward<P>(a, plan.h, 0);
        return;
    }
    int64_t q = plan.h / 2;
    limb *c0 = a, *c1 = a + q, *c2 = a + 2 * q;
    Factor i = factor_i<P>();
    for_polled<k_stretch>(q, [=](int64_t k) {
        limb x = c0[k], z = c2[k];  // all below P
        c2[k] = x + times<P>(c1[k], i) + (P - z);
        c0[k] = x + z;
    });
    forward<P>(a, plan.h, 0);
    forward<P>(c2, q, 2);
}

/// The polynomial of the values a (below 2 P, each divided by 2^64), coefficients below P.
template <limb P> void from_values(limb* a, const Plan& plan) {
    constexpr limb two64 = static_cast<limb>((static_cast<wide>(1) << 64) % P);
    auto scale = [](limb* p, int64_t n) {
        Factor f = factor_of<P>(Field<P>::mul(two64, Field<P>::inverse(static_cast<limb>(n))));
        for_polled<k_stretch>(n, [=](int64_t k) { p[k] = Field<P>::below_p(times<P>(p[k], f)); });
    };
    inverse<P>(a, plan.h, 0);
    scale(a, plan.h);
    if (!plan.three_halves) return;
    int64_t q = plan.h / 2;
    limb *c0 = a, *c1 = a + q, *c2 = a + 2 * q;
    inverse<P>(c2, q, 2);
    scale(c2, q);
    Factor i = factor_i<P>(), half = factor_of<P>((P + 1) / 2);
    for_polled<k_stretch>(q, [=](int64_t k) {
        limb sum = c0[k];                                      // c0 + c2
        limb difference = c2[k] + 2 * P - times<P>(c1[k], i);  // c0 - c2, below 3 P
        limb x = Field<P>::below_p(times<P>(sum + difference, half));
        c0[k] = x;
        c2[k] = sum >= x ? sum - x : sum + P - x;
    });
}

/// u := the product of the polynomials of a and b modulo P; v is room. a may be b.
template <limb P, limb Root>
void product_mod(limb* u, limb* v, const limb* a, int64_t an, const limb* b, int64_t bn, const Plan& plan) {
    grow_roots<P, Root>(plan.h);
    cut_digits(u, a, an, plan);
    to_values<P>(u, plan);
    bool square = a == b && an == bn;
    if (!square) {
        cut_digits(v, b, bn, plan);
        to_values<P>(v, plan);
    }
    const limb* w = square ? u : v;
    for_polled<k_stretch>(plan.length(), [=](int64_t k) {
        u[k] = Field<P>::montgomery(Field<P>::below_2p(u[k]), Field<P>::below_2p(w[k]));
    });
    from_values<P>(u, plan);
}

/// r[0..n) := sum of c_k 2^(bits k), where c_k has the residues u[k], v[k].
void put_together(limb* r, int64_t n, const limb* u, const limb* v, const Plan& plan) {
    const Factor inverse_a = factor_of<k_prime_b>(Field<k_prime_b>::inverse(k_prime_a % k_prime_b));
    const limb mask = (limb{1} << plan.bits) - 1;
    wide carry = 0;
    limb word = 0;
    int have = 0;
    int64_t at = 0;
    for (int64_t k = 0; at < n; k++) {
        wide c = carry;
        if (k < plan.length()) {
            // u < k_prime_a < 2 k_prime_b, so that the difference below is positive.
            limb d = times<k_prime_b>(v[k] + 2 * k_prime_b - u[k], inverse_a);
            c += static_cast<wide>(Field<k_prime_b>::below_p(d)) * k_prime_a + u[k];
        }
        poll_every<k_stretch>(k);
        limb digit = static_cast<limb>(c) & mask;
        carry = c >> plan.bits;
        word |= digit << have;
        have += plan.bits;
        if (have >= 64) {
            r[at++] = word;
            have -= 64;
            word = have > 0 ? digit >> (plan.bits - have) : 0;
        }
    }
}
}  // namespace

void limbs_mul_transform(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    ScratchMark mark = scratch_mark();
    Plan plan = plan_for(an, bn);
    int64_t n = plan.length();
    auto *u = scratch_array<limb>(n), *v = scratch_array<limb>(n), *room = scratch_array<limb>(n);
    product_mod<k_prime_a, k_root_a>(u, room, a, an, b, bn, plan);
    product_mod<k_prime_b, k_root_b>(v, room, a, an, b, bn, plan);
    put_together(r, an + bn, u, v, plan);
    scratch_release(mark);
}
}  // namespace tolvex
