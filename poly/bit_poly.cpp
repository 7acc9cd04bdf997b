#include "poly/bit_poly.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_karatsuba_words = 2;
#else
constexpr int64_t k_karatsuba_words = 20;  // measured
#endif
constexpr int64_t k_long_words = 1 << 12;  // products with safe points
}  // namespace

static size_t bytes_of(int64_t words) { return static_cast<size_t>(words) * sizeof(uint64_t); }

int32_t bit_degree(const uint64_t* a, int64_t words) {
    while (words > 0 && a[words - 1] == 0) words--;
    return words == 0 ? -1 : static_cast<int32_t>(64 * words - 1 - __builtin_clzll(a[words - 1]));
}

// ---- products ------------------------------------------------------------------------------------------

#if defined(__x86_64__) && defined(__GNUC__)
typedef long long WordPair __attribute__((vector_size(16)));

bool bit_products_by_instruction = __builtin_cpu_supports("pclmul");

__attribute__((target("pclmul"))) static void
school_by_instruction(const uint64_t* a, int64_t an, const uint64_t* b, int64_t bn, uint64_t* c) {
    for (int64_t i = 0; i < an; i++) {
        const WordPair x = {static_cast<long long>(a[i]), 0};
        uint64_t carry = 0;
        for (int64_t j = 0; j < bn; j++) {
            const WordPair y = {static_cast<long long>(b[j]), 0};
            const WordPair z = __builtin_ia32_pclmulqdq128(x, y, 0);
            c[i + j] ^= static_cast<uint64_t>(z[0]) ^ carry;
            carry = static_cast<uint64_t>(z[1]);
        }
        c[i + bn] ^= carry;
    }
}
#else
bool bit_products_by_instruction = false;
static void school_by_instruction(const uint64_t*, int64_t, const uint64_t*, int64_t, uint64_t*) {}
#endif

// Four bits of a at a time: c := c x^4 + a few multiples of b, from the top down (the comb method; Lopez and
// Dahab, "High-speed software multiplication in F_2^m", 2000).
static void school_portable(const uint64_t* a, int64_t an, const uint64_t* b, int64_t bn, uint64_t* c) {
    constexpr int k_comb = 4;
    ScratchMark mark = scratch_mark();
    auto* multiple = scratch_array<uint64_t>((bn + 1) << k_comb);
    memset(multiple, 0, bytes_of((bn + 1) << k_comb));
    for (int64_t v = 1; v < 1 << k_comb; v++) {
        uint64_t* row = multiple + v * (bn + 1);
        const uint64_t *half = multiple + (v >> 1) * (bn + 1), *one = v & 1 ? b : multiple;
        for (int64_t j = 0; j <= bn; j++)
            row[j] = half[j] << 1 ^ (j > 0 ? half[j - 1] >> 63 : 0) ^ (j < bn ? one[j] : 0);
    }
    for (int shift = 64 - k_comb; shift >= 0; shift -= k_comb) {
        if (shift < 64 - k_comb)
            for (int64_t j = an + bn - 1; j >= 0; j--)
                c[j] = c[j] << k_comb ^ (j > 0 ? c[j - 1] >> (64 - k_comb) : 0);
        for (int64_t i = 0; i < an; i++) {
            const uint64_t* row =
                multiple + static_cast<int64_t>(a[i] >> shift & ((1 << k_comb) - 1)) * (bn + 1);
            for (int64_t j = 0; j <= bn; j++) c[i + j] ^= row[j];
        }
    }
    scratch_release(mark);
}

static void add_words(uint64_t* c, const uint64_t* a, int64_t n) {
    for (int64_t i = 0; i < n; i++) c[i] ^= a[i];
}

/// c := a b for operands of n words.
static void karatsuba(const uint64_t* a, const uint64_t* b, int64_t n, uint64_t* c) {
    const int64_t half = n / 2, high = n - half;
    bit_product(a, half, b, half, c);
    bit_product(a + half, high, b + half, high, c + 2 * half);
    ScratchMark mark = scratch_mark();
    auto *x = scratch_array<uint64_t>(high), *y = scratch_array<uint64_t>(high),
         *middle = scratch_array<uint64_t>(2 * high);
    memcpy(x, a + half, bytes_of(high));
    memcpy(y, b + half, bytes_of(high));
    add_words(x, a, half);
    add_words(y, b, half);
    bit_product(x, high, y, high, middle);
    add_words(middle, c, 2 * half);
    add_words(middle, c + 2 * half, 2 * high);
    add_words(c + half, middle, 2 * high);
    scratch_release(mark);
}

void bit_product(const uint64_t* a, int64_t an, const uint64_t* b, int64_t bn, uint64_t* c) {
    if (an < bn) std::swap(a, b), std::swap(an, bn);
    if (an > k_long_words) poll_interrupt();
    if (bn < k_karatsuba_words) {
        memset(c, 0, bytes_of(an + bn));
        if (bit_products_by_instruction)
            school_by_instruction(a, an, b, bn, c);
        else
            school_portable(a, an, b, bn, c);
        return;
    }
    if (an == bn) {
        karatsuba(a, b, an, c);
        return;
    }
    memset(c, 0, bytes_of(an + bn));
    ScratchMark mark = scratch_mark();
    auto* piece = scratch_array<uint64_t>(2 * bn);
    for (int64_t at = 0; at < an; at += bn) {
        const int64_t n = std::min(bn, an - at);
        bit_product(b, bn, a + at, n, piece);
        add_words(c + at, piece, n + bn);
    }
    scratch_release(mark);
}

/// The 32 bits of a at even places.
static uint64_t spread_bits(uint64_t a) {
    a &= 0xffffffff;
    a = (a | a << 16) & 0x0000ffff0000ffff;
    a = (a | a << 8) & 0x00ff00ff00ff00ff;
    a = (a | a << 4) & 0x0f0f0f0f0f0f0f0f;
    a = (a | a << 2) & 0x3333333333333333;
    return (a | a << 1) & 0x5555555555555555;
}

void bit_square(const uint64_t* a, int64_t n, uint64_t* c) {
    for (int64_t i = 0; i < n; i++) {
        c[2 * i] = spread_bits(a[i]);
        c[2 * i + 1] = spread_bits(a[i] >> 32);
    }
}

// ---- division ------------------------------------------------------------------------------------------

/// a := a + b x^shift.
static void add_shifted(uint64_t* a, const uint64_t* b, int64_t words, int32_t shift) {
    uint64_t* to = a + shift / 64;
    const int s = shift % 64;
    if (s == 0) {
        add_words(to, b, words);
        return;
    }
    uint64_t carry = 0;
    for (int64_t i = 0; i < words; i++) {
        to[i] ^= b[i] << s ^ carry;
        carry = b[i] >> (64 - s);
    }
    if (carry != 0) to[words] ^= carry;
}

int32_t bit_divide(uint64_t* a, int32_t da, const uint64_t* b, int32_t db, uint64_t* q) {
    if (q != nullptr && da >= db) memset(q, 0, bytes_of(bit_words(da - db)));
    const int64_t words = bit_words(db);
    for (int32_t e = da; e >= db; e--) {
        poll_every<64>(e);
        if (!bit_at(a, e)) continue;
        add_shifted(a, b, words, e - db);
        if (q != nullptr) q[(e - db) / 64] |= uint64_t{1} << ((e - db) % 64);
    }
    return bit_degree(a, bit_words(std::min(da, db)));
}

int32_t bit_gcd(uint64_t* a, int32_t da, uint64_t* b, int32_t db, uint64_t** g) {
    while (db >= 0) {
        poll_interrupt();
        const int32_t rest = da < db ? da : bit_divide(a, da, b, db, nullptr);
        std::swap(a, b);
        da = db;
        db = rest;
    }
    *g = a;
    return da;
}

// ---- modulo a polynomial -------------------------------------------------------------------------------

/// out[0..words) := the bits of a[0..an) from `from` on.
static void take_bits(const uint64_t* a, int64_t an, int32_t from, uint64_t* out, int64_t words) {
    const int64_t at = from / 64;
    const int s = from % 64;
    for (int64_t i = 0; i < words; i++) {
        const uint64_t low = at + i < an ? a[at + i] : 0, high = at + i + 1 < an ? a[at + i + 1] : 0;
        out[i] = s == 0 ? low : low >> s | high << (64 - s);
    }
}

void open_bit_modulus(BitModulus* m, const uint64_t* f, int32_t n) {
    *m = {n, bit_words(n - 1), f, scratch_array<uint64_t>(bit_words(n))};
    ScratchMark mark = scratch_mark();
    const int64_t words = bit_words(2 * n) + 1;
    auto* power = scratch_array<uint64_t>(words);
    memset(power, 0, bytes_of(words));
    power[2 * n / 64] = uint64_t{1} << (2 * n % 64);
    bit_divide(power, 2 * n, f, n, m->quotient);
    scratch_release(mark);
}

/// out := a[0..2 m.words) modulo the polynomial.
static void reduce_bits(const BitModulus& m, const uint64_t* a, uint64_t* out) {
    const int64_t w = m.words, qw = bit_words(m.n), double_words = 2 * w;
    ScratchMark mark = scratch_mark();
    auto *high = scratch_array<uint64_t>(w), *product = scratch_array<uint64_t>(w + qw);
    take_bits(a, double_words, m.n, high, w);
    bit_product(high, w, m.quotient, qw, product);
    take_bits(product, w + qw, m.n, high, w);
    bit_product(high, w, m.f, qw, product);
    for (int64_t i = 0; i < w; i++) out[i] = a[i] ^ product[i];
    if (m.n % 64 != 0) out[w - 1] &= (uint64_t{1} << (m.n % 64)) - 1;
    scratch_release(mark);
}

void bit_product_modulo(const BitModulus& m, const uint64_t* a, const uint64_t* b, uint64_t* out) {
    poll_interrupt();
    ScratchMark mark = scratch_mark();
    auto* product = scratch_array<uint64_t>(2 * m.words);
    bit_product(a, m.words, b, m.words, product);
    reduce_bits(m, product, out);
    scratch_release(mark);
}

void bit_square_modulo(const BitModulus& m, const uint64_t* a, uint64_t* out) {
    poll_interrupt();
    ScratchMark mark = scratch_mark();
    auto* square = scratch_array<uint64_t>(2 * m.words);
    bit_square(a, m.words, square);
    reduce_bits(m, square, out);
    scratch_release(mark);
}
}  // namespace tolvex
