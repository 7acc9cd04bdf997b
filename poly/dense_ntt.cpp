// The transform: x^n - 1 with n = B 2^k is split k times, x^(2h) - s^2 into x^h - s and x^h + s, down to 2^k
// factors x^B - z with 8 <= B <= 14, modulo which the products are taken by the schoolbook. Every inner loop
// then runs over at least B neighbouring entries with one fixed factor (Shoup's precomputed quotient, entries
// reduced lazily: D. Harvey, "Faster arithmetic for number-theoretic transforms", 2014), which the compiler
// vectorises, and the choice of B keeps n within 1/4 above what is needed.
#include "poly/dense_ntt.h"

#include "poly/dense_basic.h"
#include "poly/dense_kernels.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/scratch.h"

#include <cstdlib>
#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_primes = 3;
constexpr int32_t k_max_splits = 22;
// 2^22 divides p - 1; 2^31 < 4 p < 2^32, so any residue below 2^31 is a lazy entry as it stands. With B <= 14
// sums of B products of reduced entries, divided by 2^32, stay below 2^32 - p.
constexpr uint32_t k_prime[k_primes] = {998244353, 985661441, 943718401};
constexpr uint32_t k_generator[k_primes] = {3, 3, 7};

/// The fixed factors of one prime: entry b belongs to block b of every splitting. They stay for good.
struct NttPrime {
    uint32_t p;
    uint32_t minus_inverse;  // -1/p mod 2^32 (Montgomery)
    FixedFactor* root;       // s of block b
    FixedFactor* inverse;    // 1/s
    int32_t splits;  // the tables serve up to this many splittings: 2^(splits - 1) entries; 0: none yet
};
NttPrime primes[k_primes] = {};

struct Length {
    int32_t splits, base;
    int32_t n() const { return base << splits; }
};
}  // namespace

static uint32_t power_mod(uint32_t a, uint64_t e, uint32_t p) { return wf_power(word_field_prime(p), a, e); }

// Blocks b + 2^j have the factor of block b times a root of unity of order 2^(j+2): block numbers are the
// exponents of the factors with the bits reversed.
static void fill_factors(FixedFactor* table, int32_t splits, uint32_t generator, uint32_t p) {
    WordField f = word_field_prime(p);
    table[0] = fixed_factor(1, p);
    for (int32_t j = 0; j + 1 < splits; j++) {
        uint32_t w = power_mod(generator, (p - 1) >> (j + 2), p);
        for (int32_t b = 0; b < 1 << j; b++) table[b + (1 << j)] = fixed_factor(wf_mul(f, table[b].w, w), p);
    }
}

static const NttPrime& prepared_prime(int32_t i, int32_t splits) {
    NttPrime& t = primes[i];
    if (t.splits > 0 && t.splits >= splits) return t;
    constexpr int32_t first = 10;  // tables of 4 KiB to begin with
    int32_t size = splits < first ? first : splits;
    t.splits = 0;
    free(t.root);
    free(t.inverse);
    t.root = t.inverse = nullptr;
    size_t bytes = sizeof(FixedFactor) << (size - 1);
    t.root = static_cast<FixedFactor*>(checked_malloc(bytes));
    t.inverse = static_cast<FixedFactor*>(checked_malloc(bytes));
    t.p = k_prime[i];
    uint32_t inverse = 1;  // Newton: each step doubles the number of right bits
    for (int32_t step = 0; step < 5; step++) inverse *= 2 - t.p * inverse;
    t.minus_inverse = 0 - inverse;
    fill_factors(t.root, size, k_generator[i], t.p);
    fill_factors(t.inverse, size, power_mod(k_generator[i], t.p - 2, t.p), t.p);
    t.splits = size;
    return t;
}

// (u, v) := (u + s v, u - s v), entries below 4 p.
WIDE_VECTORS static void split_block(uint32_t* __restrict u, uint32_t* __restrict v, int32_t n, FixedFactor s,
                                     uint32_t p) {
    for (int32_t i = 0; i < n; i++) {
        uint32_t x = reduce_once(u[i], 2 * p), y = fixed_mult_lazy(v[i], s, p);
        u[i] = x + y;
        v[i] = x - y + 2 * p;
    }
}

// (u, v) := (u + v, (u - v) s), entries below 2 p.
WIDE_VECTORS static void join_block(uint32_t* __restrict u, uint32_t* __restrict v, int32_t n, FixedFactor s,
                                    uint32_t p) {
    for (int32_t i = 0; i < n; i++) {
        uint32_t x = u[i], y = v[i];
        u[i] = reduce_once(x + y, 2 * p);
        v[i] = fixed_mult_lazy(x - y + 2 * p, s, p);
    }
}

// Once a level of a long transform. The tables may be made anew while another command level is open, with the
// same entries as far as they went; they are read through the record of the prime.
static void poll_if_long(Length length) {
    if (length.n() > 4 * k_dense_entries) poll_interrupt();
}

static void forward(uint32_t* x, Length length, const NttPrime& t) {
    int32_t n = length.n(), h = n;
    for (int32_t level = 0; level < length.splits; level++) {
        poll_if_long(length);
        h /= 2;
        for (int32_t b = 0; b < 1 << level; b++) {
            uint32_t* u = x + static_cast<ptrdiff_t>(b) * 2 * h;
            split_block(u, u + h, h, t.root[b], t.p);
        }
    }
}

static void backward(uint32_t* x, Length length, const NttPrime& t) {
    int32_t h = length.base;
    for (int32_t level = length.splits - 1; level >= 0; level--) {
        poll_if_long(length);
        for (int32_t b = 0; b < 1 << level; b++) {
            uint32_t* u = x + static_cast<ptrdiff_t>(b) * 2 * h;
            join_block(u, u + h, h, t.inverse[b], t.p);
        }
        h *= 2;
    }
}

WIDE_VECTORS static void reduce_entries(uint32_t* x, int32_t n, uint32_t p) {
    for (int32_t i = 0; i < n; i++) x[i] = reduce_once(reduce_once(x[i], 2 * p), p);
}

// a := a b / 2^32 modulo x^base - z, entries of a and b reduced; those of the result below 2^32 and congruent
// to what is said. `wrapped` holds z b and then b, so that each coefficient is one sum.
WIDE_VECTORS static void block_product(uint32_t* __restrict a, const uint32_t* __restrict b, int32_t base,
                                       FixedFactor z, uint32_t p, uint32_t minus_inverse) {
    uint64_t sum[16] = {};
    uint32_t wrapped[32];
    for (int32_t i = 0; i < base; i++) {
        wrapped[i] = fixed_mult(b[i], z, p);
        wrapped[base + i] = b[i];
    }
    for (int32_t i = 0; i < base; i++) {
        uint64_t factor = a[i];
        const uint32_t* row = wrapped + base - i;
        for (int32_t k = 0; k < base; k++) sum[k] += factor * row[k];
    }
    for (int32_t k = 0; k < base; k++) {
        uint32_t m = static_cast<uint32_t>(sum[k]) * minus_inverse;
        // the low halves add up to 2^32 or, if both are 0, to 0
        uint32_t high = static_cast<uint32_t>((static_cast<uint64_t>(m) * p) >> 32);
        a[k] = static_cast<uint32_t>(sum[k] >> 32) + high + (m != 0);
    }
}

static void multiply_blocks(uint32_t* a, const uint32_t* b, Length length, const NttPrime& t) {
    for (int32_t i = 0; i < 1 << length.splits; i++) {
        FixedFactor z = t.root[i / 2];
        if (i & 1) z = fixed_factor(t.p - z.w, t.p);
        ptrdiff_t at = static_cast<ptrdiff_t>(i) * length.base;
        block_product(a + at, b + at, length.base, z, t.p, t.minus_inverse);
    }
}

WIDE_VECTORS static void scale_entries(uint32_t* x, int32_t n, FixedFactor s, uint32_t p) {
    for (int32_t i = 0; i < n; i++) x[i] = fixed_mult_lazy(x[i], s, p);
}

static void load(uint32_t* x, int32_t n, const uint32_t* a, int32_t an) {
    scratch_copy(x, a, static_cast<size_t>(an) * sizeof(uint32_t));
    scratch_clear(x + an, static_cast<size_t>(n - an) * sizeof(uint32_t));
}

// x := a b modulo prime i, reduced; y is room.
static void product_image(int32_t i, Length length, const uint32_t* a, int32_t an, const uint32_t* b,
                          int32_t bn, uint32_t* x, uint32_t* y) {
    const NttPrime& t = prepared_prime(i, length.splits);
    int32_t n = length.n();
    load(x, n, a, an);
    forward(x, length, t);
    reduce_entries(x, n, t.p);
    if (a == b && an == bn) {
        scratch_copy(y, x, static_cast<size_t>(n) * sizeof(uint32_t));
    } else {
        load(y, n, b, bn);
        forward(y, length, t);
        reduce_entries(y, n, t.p);
    }
    multiply_blocks(x, y, length, t);
    // undoes Montgomery's 2^-32 and the factor 2^splits of the joins at once
    uint32_t two32 = wf_reduce(word_field_prime(t.p), uint64_t{1} << 32);
    uint32_t undo = wf_mul(word_field_prime(t.p), two32,
                           power_mod((t.p + 1) / 2, static_cast<uint64_t>(length.splits), t.p));
    scale_entries(x, n, fixed_factor(undo, t.p), t.p);
    backward(x, length, t);
    reduce_entries(x, n, t.p);
}

namespace {
/// Mixed radix: the value is r0 + p0 t1 + p0 p1 t2 with t1 < p1, t2 < p2 (Garner).
struct Garner {
    uint32_t m;
    FixedFactor one;  // modulo m, as the factors that follow
    FixedFactor p0, p0p1;
    FixedFactor inverse_p0_1;  // 1/p0 mod p1
    FixedFactor inverse_p0_2;  // 1/p0 mod p2
    FixedFactor inverse_p1_2;  // 1/p1 mod p2
};
}  // namespace

static Garner garner_factors(uint32_t m) {
    auto inverse = [](uint32_t a, uint32_t p) { return fixed_factor(power_mod(a % p, p - 2, p), p); };
    uint32_t p0 = k_prime[0] % m, p1 = k_prime[1] % m;
    return {m,
            fixed_factor(1 % m, m),
            fixed_factor(p0, m),
            fixed_factor(static_cast<uint32_t>(static_cast<uint64_t>(p0) * p1 % m), m),
            inverse(k_prime[0], k_prime[1]),
            inverse(k_prime[0], k_prime[2]),
            inverse(k_prime[1], k_prime[2])};
}

WIDE_VECTORS static void combine_1(const uint32_t* __restrict r0, uint32_t* __restrict c, int32_t n,
                                   Garner g) {
    for (int32_t i = 0; i < n; i++) c[i] = fixed_mult(r0[i], g.one, g.m);
}

// a - b mod p for a < 2 p, b < p, as a number below 3 p.
static inline uint32_t lazy_difference(uint32_t a, uint32_t b, uint32_t p) { return a + p - b; }

WIDE_VECTORS static void combine_2(const uint32_t* __restrict r0, const uint32_t* __restrict r1,
                                   uint32_t* __restrict c, int32_t n, Garner g) {
    constexpr uint32_t p1 = k_prime[1];
    for (int32_t i = 0; i < n; i++) {
        uint32_t t1 = fixed_mult(lazy_difference(r1[i] + p1, r0[i], p1), g.inverse_p0_1, p1);
        c[i] = reduce_once(fixed_mult(r0[i], g.one, g.m) + fixed_mult(t1, g.p0, g.m), g.m);
    }
}

WIDE_VECTORS static void combine_3(const uint32_t* __restrict r0, const uint32_t* __restrict r1,
                                   const uint32_t* __restrict r2, uint32_t* __restrict c, int32_t n,
                                   Garner g) {
    constexpr uint32_t p1 = k_prime[1], p2 = k_prime[2];
    for (int32_t i = 0; i < n; i++) {
        uint32_t t1 = fixed_mult(lazy_difference(r1[i] + p1, r0[i], p1), g.inverse_p0_1, p1);
        uint32_t u = fixed_mult(lazy_difference(r2[i] + p2, r0[i], p2), g.inverse_p0_2, p2);
        uint32_t t2 = fixed_mult(lazy_difference(u + p2, t1, p2), g.inverse_p1_2, p2);
        uint32_t s = reduce_once(fixed_mult(r0[i], g.one, g.m) + fixed_mult(t1, g.p0, g.m), g.m);
        c[i] = reduce_once(s + fixed_mult(t2, g.p0p1, g.m), g.m);
    }
}

// The least base 2^k that is enough, 8 <= base <= 14.
static Length length_for(int64_t entries) {
    Length length = {0, 0};
    while ((int64_t{14} << length.splits) < entries) length.splits++;
    int64_t blocks = int64_t{1} << length.splits;
    length.base = static_cast<int32_t>((entries + blocks - 1) / blocks);
    if (length.base < 8) length.base = 8;
    length.base = (length.base + 1) & ~1;
    return length;
}

bool ntt_fits(int32_t an, int32_t bn) { return int64_t{an} + bn - 1 <= int64_t{14} << k_max_splits; }

void ntt_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn, uint32_t* c) {
    Length length = length_for(int64_t{an} + bn - 1);
    int32_t count = 1, n = an + bn - 1;
    unsigned __int128 bound =
        static_cast<unsigned __int128>(f.p - 1) * (f.p - 1) * static_cast<uint32_t>(an < bn ? an : bn);
    unsigned __int128 reach = k_prime[0];
    while (reach <= bound) reach *= k_prime[count++];
    ScratchMark mark = scratch_mark();
    auto* room = scratch_array<uint32_t>(length.n());
    uint32_t* image[k_primes] = {};
    for (int32_t i = 0; i < count; i++) {
        image[i] = scratch_array<uint32_t>(length.n());
        product_image(i, length, a, an, b, bn, image[i], room);
    }
    Garner g = garner_factors(f.p);
    if (count == 1)
        combine_1(image[0], c, n, g);
    else if (count == 2)
        combine_2(image[0], image[1], c, n, g);
    else
        combine_3(image[0], image[1], image[2], c, n, g);
    scratch_release(mark);
}
}  // namespace tolvex
