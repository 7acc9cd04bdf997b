// A transform of length n takes a polynomial modulo x^n - 1 to its values at the n-th roots of unity by
// splitting x^n - s^2 into x^(n/2) - s and x^(n/2) + s, down to length 1. Block j of every level belongs to
// the same s = root[j] whatever the length (roots in bit-reversed order), so that one table serves all
// lengths, and the constants do not change in the inner loop. Lengths are 2^k and 3 2^k: the latter uses
// x^h - 1 and x^(h/2) - i only. Residues in floating point: J. van der Hoeven, G. Lecerf, G. Quintin,
// "Modular SIMD arithmetic in Mathemagix" (2016); transforms with them: D. Schultz, "Fast multiplication by
// multi-modular transforms in floating point" (2022).
#include "numbers/float_transform.h"

#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/wide_vectors.h"

#include <bit>
#include <cstddef>
namespace tolvex {
namespace {
/// Roots of unity of order 2^36 modulo the primes, each of which is k 2^36 + 1.
constexpr int64_t k_root[k_float_primes] = {908222283634805, 499587751685934, 513118595113829, 4835284684938};
constexpr int k_root_bits = 36;
constexpr int64_t k_stretch = int64_t{1} << 16;  // entries between safe points in a long array
/// Up to this length a transform runs level by level: it stays in the first cache.
constexpr int64_t k_level_by_level = 2048;

/// root[0] = 1, root[1] = i, root[j]^2 = root[j / 2] for even j, -root[j / 2] for odd j. The fields of a
/// FloatFactor in arrays of their own, for loops over neighbouring roots.
struct RootTable {
    double* w = nullptr;
    double* quotient = nullptr;
    int64_t size = 0;  // entries that are there
    int64_t room = 0;  // entries that have room: a power of two
};
RootTable roots[k_float_primes];
inline FloatFactor root_at(const RootTable& t, int64_t j) { return {t.w[j], t.quotient[j]}; }
}  // namespace

static int64_t power_mod(int64_t a, int64_t e, int64_t p) {
    int64_t r = 1;
    for (; e != 0; e >>= 1) {
        if (e & 1) r = static_cast<int64_t>(static_cast<__int128>(r) * a % p);
        a = static_cast<int64_t>(static_cast<__int128>(a) * a % p);
    }
    return r;
}

static int64_t balanced(int64_t a, int64_t p) { return a > p / 2 ? a - p : a; }

// Makes the table at least n long. At a poll the table is whole up to its size; a command level may make it
// longer, and moves it then.
static void grow_roots(int32_t prime, int64_t n) {
    RootTable& t = roots[prime];
    int64_t p = k_float_prime[prime];
    FloatModulus f = float_modulus(p);
    while (t.size < n) {
        if (t.size == t.room) {
            int64_t room = t.room == 0 ? 1024 : 2 * t.room;
            t.w = static_cast<double*>(checked_realloc(t.w, static_cast<size_t>(room) * sizeof(double)));
            t.quotient =
                static_cast<double*>(checked_realloc(t.quotient, static_cast<size_t>(room) * sizeof(double)));
            t.room = room;
        }
        if (t.size == 0) t.w[0] = 1, t.quotient[0] = 1 / f.m, t.size = 1;
        // Entry m + i follows from entry i, for a power of two m.
        const auto m = static_cast<int64_t>(std::bit_floor(static_cast<uint64_t>(t.size)));
        const int64_t stop = t.size + k_stretch < 2 * m ? t.size + k_stretch : 2 * m;
        int64_t w = power_mod(k_root[prime],
                              int64_t{1} << (k_root_bits - std::bit_width(static_cast<uint64_t>(m)) - 1), p);
        FloatFactor step = float_factor(balanced(w, p), f);
        for (int64_t k = t.size; k < stop; k++) {
            t.w[k] = float_rest(float_times(t.w[k - m], step, f.m), f);
            t.quotient[k] = t.w[k] / f.m;
        }
        t.size = stop;
        poll_interrupt();
    }
}

namespace {
/// A stretch of two levels at once: `turns` entries of each quarter of `blocks` neighbouring blocks, the
/// first of which is block `node` of its level.
struct Pass {
    double* a;
    int64_t quarter, turns, blocks, node;
};
}  // namespace

// Entries up to 9/4 p before and after.
WIDE_VECTORS static void split_pass(Pass pass, RootTable t, FloatModulus f) {
    for (int64_t j = 0; j < pass.blocks; j++) {
        int64_t node = pass.node + j;
        FloatFactor r = root_at(t, node), s = root_at(t, 2 * node), u = root_at(t, 2 * node + 1);
        double* a0 = pass.a + 4 * pass.quarter * j;
        double *a1 = a0 + pass.quarter, *a2 = a1 + pass.quarter, *a3 = a2 + pass.quarter;
#pragma GCC ivdep
        for (int64_t k = 0; k < pass.turns; k++) {
            double x0 = float_rest(a0[k], f), x1 = a1[k];
            double x2 = float_times(a2[k], r, f.m), x3 = float_times(a3[k], r, f.m);
            double y0 = x0 + x2, y2 = x0 - x2;
            double y1 = float_times(x1 + x3, s, f.m), y3 = float_times(x1 - x3, u, f.m);
            a0[k] = y0 + y1;
            a1[k] = y0 - y1;
            a2[k] = y2 + y3;
            a3[k] = y2 - y3;
        }
    }
}

// The last two levels: quarters of one entry; the values are reduced.
WIDE_VECTORS static void split_last(double* __restrict a, int64_t blocks, const double* __restrict w,
                                    const double* __restrict quotient, const double* __restrict w2,
                                    const double* __restrict quotient2, FloatModulus f) {
    for (int64_t j = 0; j < blocks; j++) {
        FloatFactor r = {w[j], quotient[j]}, s = {w2[2 * j], quotient2[2 * j]},
                    u = {w2[2 * j + 1], quotient2[2 * j + 1]};
        double x0 = float_rest(a[4 * j], f), x1 = a[4 * j + 1];
        double x2 = float_times(a[4 * j + 2], r, f.m), x3 = float_times(a[4 * j + 3], r, f.m);
        double y0 = x0 + x2, y2 = x0 - x2;
        double y1 = float_times(x1 + x3, s, f.m), y3 = float_times(x1 - x3, u, f.m);
        a[4 * j] = float_rest(y0 + y1, f);
        a[4 * j + 1] = float_rest(y0 - y1, f);
        a[4 * j + 2] = float_rest(y2 + y3, f);
        a[4 * j + 3] = float_rest(y2 - y3, f);
    }
}

// One level alone, for an odd number of them.
WIDE_VECTORS static void split_once_pass(double* a, int64_t half, int64_t turns, FloatFactor r,
                                         FloatModulus f) {
#pragma GCC ivdep
    for (int64_t k = 0; k < turns; k++) {
        double x = float_rest(a[k], f), y = float_times(a[half + k], r, f.m);
        a[k] = x + y;
        a[half + k] = x - y;
    }
}

/// The inverse of a root of the table, negated: the root of the mirrored block of its level.
static inline int64_t mirror(int64_t j) {
    return 3 * (int64_t{1} << (std::bit_width(static_cast<uint64_t>(j)) - 1)) - 1 - j;
}
static inline FloatFactor inverse_root(const RootTable& t, int64_t node, FloatModulus f) {
    if (node == 0) return {-1, -1 / f.m};
    return root_at(t, mirror(node));
}

// Entries up to p before and after, 4 times the inverse of split_pass.
WIDE_VECTORS static void join_pass(Pass pass, RootTable t, FloatModulus f) {
    for (int64_t j = 0; j < pass.blocks; j++) {
        int64_t node = pass.node + j;
        FloatFactor r = inverse_root(t, node, f), s = inverse_root(t, 2 * node, f),
                    u = inverse_root(t, 2 * node + 1, f);
        double* a0 = pass.a + 4 * pass.quarter * j;
        double *a1 = a0 + pass.quarter, *a2 = a1 + pass.quarter, *a3 = a2 + pass.quarter;
#pragma GCC ivdep
        for (int64_t k = 0; k < pass.turns; k++) {
            double x0 = a0[k], x1 = a1[k], x2 = a2[k], x3 = a3[k];
            double y0 = x0 + x1, y1 = float_times(x1 - x0, s, f.m);
            double y2 = x2 + x3, y3 = float_times(x3 - x2, u, f.m);
            a0[k] = float_rest(y0 + y2, f);
            a1[k] = float_rest(y1 + y3, f);
            a2[k] = float_times(y2 - y0, r, f.m);
            a3[k] = float_times(y3 - y1, r, f.m);
        }
    }
}

// The first two levels of the way back for blocks whose mirrored roots stand in falling order before w,
// w2 ...
WIDE_VECTORS static void join_first(double* __restrict a, int64_t blocks, const double* __restrict w,
                                    const double* __restrict quotient, const double* __restrict w2,
                                    const double* __restrict quotient2, FloatModulus f) {
    for (int64_t j = 0; j < blocks; j++) {
        FloatFactor r = {w[-j], quotient[-j]}, s = {w2[-2 * j + 1], quotient2[-2 * j + 1]},
                    u = {w2[-2 * j], quotient2[-2 * j]};
        double x0 = a[4 * j], x1 = a[4 * j + 1], x2 = a[4 * j + 2], x3 = a[4 * j + 3];
        double y0 = x0 + x1, y1 = float_times(x1 - x0, s, f.m);
        double y2 = x2 + x3, y3 = float_times(x3 - x2, u, f.m);
        a[4 * j] = float_rest(y0 + y2, f);
        a[4 * j + 1] = float_rest(y1 + y3, f);
        a[4 * j + 2] = float_times(y2 - y0, r, f.m);
        a[4 * j + 3] = float_times(y3 - y1, r, f.m);
    }
}

WIDE_VECTORS static void join_once_pass(double* a, int64_t half, int64_t turns, FloatFactor r,
                                        FloatModulus f) {
#pragma GCC ivdep
    for (int64_t k = 0; k < turns; k++) {
        double x = a[k], y = a[half + k];
        a[k] = float_rest(x + y, f);
        a[half + k] = float_times(y - x, r, f.m);
    }
}

// A pass over one long block, with safe points. The table may be moved meanwhile; it is read anew each time.
static void long_pass(void (*pass_over)(Pass, RootTable, FloatModulus), double* a, int64_t quarter,
                      int64_t node, int32_t prime, FloatModulus f) {
    for (int64_t from = 0; from < quarter; from += k_stretch) {
        int64_t turns = quarter - from < k_stretch ? quarter - from : k_stretch;
        pass_over({a + from, quarter, turns, 1, node}, roots[prime], f);
        poll_interrupt();
    }
}

static void forward(double* a, int64_t n, int64_t node, int32_t prime, FloatModulus f) {
    const RootTable& t = roots[prime];
    if ((std::bit_width(static_cast<uint64_t>(n)) & 1) == 0) {  // an odd number of levels: one alone
        for (int64_t from = 0; from < n / 2; from += k_stretch) {
            split_once_pass(a + from, n / 2, n / 2 - from < k_stretch ? n / 2 - from : k_stretch,
                            root_at(t, node), f);
            poll_interrupt();
        }
        forward(a, n / 2, 2 * node, prime, f);
        forward(a + n / 2, n / 2, 2 * node + 1, prime, f);
        return;
    }
    if (n > k_level_by_level) {
        long_pass(split_pass, a, n / 4, node, prime, f);
        for (int64_t j = 0; j < 4; j++) forward(a + n / 4 * j, n / 4, 4 * node + j, prime, f);
        return;
    }
    int64_t blocks = 1;
    for (int64_t quarter = n / 4; quarter > 1; quarter /= 4, blocks *= 4)
        split_pass({a, quarter, quarter, blocks, node * blocks}, t, f);
    int64_t first = node * blocks;
    split_last(a, blocks, t.w + first, t.quotient + first, t.w + 2 * first, t.quotient + 2 * first, f);
}

// The first two levels of the way back, by runs of blocks whose mirrored roots are neighbours.
static void join_first_levels(double* a, int64_t blocks, int64_t node, const RootTable& t, FloatModulus f) {
    int64_t j = node * blocks, end = j + blocks;
    while (j < end) {
        int64_t run = 1;
        if (j == 0) {
            join_pass({a, 1, 1, 1, 0}, t, f);
        } else {
            int64_t level_end = int64_t{1} << std::bit_width(static_cast<uint64_t>(j)), m = mirror(j);
            run = (end < level_end ? end : level_end) - j;
            join_first(a, run, t.w + m, t.quotient + m, t.w + 2 * m, t.quotient + 2 * m, f);
        }
        a += 4 * run;
        j += run;
    }
}

static void backward(double* a, int64_t n, int64_t node, int32_t prime, FloatModulus f) {
    const RootTable& t = roots[prime];
    if ((std::bit_width(static_cast<uint64_t>(n)) & 1) == 0) {
        backward(a, n / 2, 2 * node, prime, f);
        backward(a + n / 2, n / 2, 2 * node + 1, prime, f);
        for (int64_t from = 0; from < n / 2; from += k_stretch) {
            join_once_pass(a + from, n / 2, n / 2 - from < k_stretch ? n / 2 - from : k_stretch,
                           inverse_root(t, node, f), f);
            poll_interrupt();
        }
        return;
    }
    if (n > k_level_by_level) {
        for (int64_t j = 0; j < 4; j++) backward(a + n / 4 * j, n / 4, 4 * node + j, prime, f);
        long_pass(join_pass, a, n / 4, node, prime, f);
        return;
    }
    int64_t blocks = n / 4;
    join_first_levels(a, blocks, node, t, f);
    for (int64_t quarter = 4; quarter < n; quarter *= 4) {
        blocks /= 4;
        join_pass({a, quarter, quarter, blocks, node * blocks}, t, f);
    }
}

FloatLength float_length(int64_t entries) {
    auto h = static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(entries < 16 ? 16 : entries)));
    bool three_halves = h > 16 && entries <= h / 4 * 3;
    return {three_halves ? h / 2 : h, three_halves};
}

// c0, c1, c2 of q entries modulo x^2q - 1 (in place of c0 and c1) and x^q - i (of c2).
WIDE_VECTORS static void fold(double* __restrict c0, const double* __restrict c1, double* __restrict c2,
                              int64_t q, FloatFactor i, FloatModulus f) {
    for (int64_t k = 0; k < q; k++) {
        double x = c0[k], z = c2[k];
        c0[k] = x + z;
        c2[k] = x - z + float_times(c1[k], i, f.m);
    }
}

void float_values(double* a, FloatLength length, int32_t prime) {
    FloatModulus f = float_modulus(k_float_prime[prime]);
    grow_roots(prime, length.three_halves ? length.h : length.h / 2);
    if (length.three_halves) {
        int64_t q = length.h / 2;
        for (int64_t from = 0; from < q; from += k_stretch) {
            double* c = a + from;
            fold(c, c + q, c + 2 * q, q - from < k_stretch ? q - from : k_stretch, root_at(roots[prime], 1),
                 f);
            poll_interrupt();
        }
        forward(a + 2 * q, q, 2, prime, f);
    }
    forward(a, length.h, 0, prime, f);
}

WIDE_VECTORS static void products(double* a, const double* b, int64_t n, FloatModulus f) {
#pragma GCC ivdep
    for (int64_t k = 0; k < n; k++) a[k] = float_mult(a[k], b[k], f);
}

WIDE_VECTORS static void products_2(double* c, const double* a0, const double* b0, const double* a1,
                                    const double* b1, int64_t n, FloatModulus f) {
#pragma GCC ivdep
    for (int64_t k = 0; k < n; k++)
        c[k] = float_rest(float_mult(a0[k], b0[k], f) + float_mult(a1[k], b1[k], f), f);
}

void float_products(double* a, const double* b, FloatLength length, int32_t prime) {
    FloatModulus f = float_modulus(k_float_prime[prime]);
    for (int64_t n = length.n(), from = 0; from < n; from += k_stretch) {
        products(a + from, b + from, n - from < k_stretch ? n - from : k_stretch, f);
        poll_interrupt();
    }
}

void float_products_2(double* c, const double* a0, const double* b0, const double* a1, const double* b1,
                      FloatLength length, int32_t prime) {
    FloatModulus f = float_modulus(k_float_prime[prime]);
    for (int64_t n = length.n(), from = 0; from < n; from += k_stretch) {
        products_2(c + from, a0 + from, b0 + from, a1 + from, b1 + from,
                   n - from < k_stretch ? n - from : k_stretch, f);
        poll_interrupt();
    }
}

WIDE_VECTORS static void scale(double* a, int64_t n, FloatFactor s, FloatModulus f) {
    for (int64_t k = 0; k < n; k++) a[k] = float_times(a[k], s, f.m);
}

namespace {
/// 1/h, 1/(2 h) and i/2.
struct Unfolding {
    FloatFactor inverse_h, inverse_2h, half_i;
};
}  // namespace

// The inverse of fold: c0 and c1 hold h times, c2 h/2 times the residues. The halves of c0 + c2 and c0 - c2
// are formed first.
WIDE_VECTORS static void unfold(double* __restrict c0, double* __restrict c1, double* __restrict c2,
                                int64_t q, Unfolding u, FloatModulus f) {
    for (int64_t k = 0; k < q; k++) {
        double y = float_times(c1[k], u.inverse_h, f.m), sum = float_times(c0[k], u.inverse_2h, f.m);
        double difference = float_times(c2[k], u.inverse_h, f.m) - float_times(y, u.half_i, f.m);
        c0[k] = float_rest(sum + difference, f);
        c1[k] = y;
        c2[k] = float_rest(sum - difference, f);
    }
}

// The inverse of a power of two, for p - 1 is a multiple of it.
static FloatFactor inverse_power(int64_t two_to_k, int64_t p, FloatModulus f) {
    return float_factor(-((p - 1) / two_to_k), f);
}

void float_coefficients(double* a, FloatLength length, int32_t prime) {
    int64_t p = k_float_prime[prime], h = length.h, q = h / 2;
    FloatModulus f = float_modulus(p);
    backward(a, h, 0, prime, f);
    FloatFactor inverse_h = inverse_power(h, p, f);
    if (!length.three_halves) {
        for (int64_t from = 0; from < h; from += k_stretch) {
            scale(a + from, h - from < k_stretch ? h - from : k_stretch, inverse_h, f);
            poll_interrupt();
        }
        return;
    }
    backward(a + h, q, 2, prime, f);
    int64_t i = static_cast<int64_t>(roots[prime].w[1]);
    Unfolding u = {inverse_h, inverse_power(2 * h, p, f),
                   float_factor((i & 1) == 0 ? i / 2 : (i + (i > 0 ? -p : p)) / 2, f)};
    for (int64_t from = 0; from < q; from += k_stretch) {
        double* c = a + from;
        unfold(c, c + q, c + 2 * q, q - from < k_stretch ? q - from : k_stretch, u, f);
        poll_interrupt();
    }
}

int64_t float_inverse(int64_t a, int64_t p) {
    int64_t r0 = p, r1 = a % p, s0 = 0, s1 = 1;
    while (r1 != 0) {
        int64_t q = r0 / r1, r = r0 - q * r1, s = s0 - q * s1;
        r0 = r1, r1 = r;
        s0 = s1, s1 = s;
    }
    return s0;
}
}  // namespace tolvex
