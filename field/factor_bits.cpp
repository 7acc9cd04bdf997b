// The steps of factorisation over the field of two elements, polynomials as bits: squarings take no products,
// so one power of x after the other is taken, and residues are split by their traces.
#include "field/factor_words.h"
#include "poly/bit_poly.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr int32_t k_block = 32;  // powers to one gcd, at most
constexpr int32_t k_shrink = 8;  // the ring is made anew when the degree has fallen by this part of it

/// What is left to do.
struct BitSearch {
    uint64_t* f;  // what is left
    int32_t n;    // its degree
    int32_t multiplicity;
    FactorList* list;  // nil: only the least degree is wanted
    int32_t least;     // 0: none yet
    bool done() const { return n == 0 || (list == nullptr && least != 0); }
};
struct BitRing {
    BitModulus m;
    uint64_t* f;
};
}  // namespace

static uint64_t* new_bits(int32_t degree) { return scratch_array<uint64_t>(bit_words(degree) + 1); }

static uint64_t* bits_copy(const uint64_t* a, int32_t degree) {
    uint64_t* b = new_bits(degree);
    memcpy(b, a, static_cast<size_t>(bit_words(degree)) * sizeof(uint64_t));
    b[bit_words(degree)] = 0;
    return b;
}

static uint64_t* bits_of_words(const uint32_t* a, int32_t degree) {
    uint64_t* b = new_bits(degree);
    memset(b, 0, static_cast<size_t>(bit_words(degree) + 1) * sizeof(uint64_t));
    for (int32_t e = 0; e <= degree; e++) b[e / 64] |= static_cast<uint64_t>(a[e] & 1) << (e % 64);
    return b;
}

static void append_bits(FactorList* list, const uint64_t* a, int32_t degree, int32_t d,
                        int32_t multiplicity) {
    for (int32_t e = 0; e <= degree; e++) list->room[e] = bit_at(a, e);
    list->part[list->count++] = {list->room, degree, d, multiplicity};
    list->room += degree + 1;
}

// ---- products of factors of one degree -----------------------------------------------------------------

static void take_factors(BitSearch& s, const uint64_t* g, int32_t degree, int32_t d) {
    if (s.least == 0) s.least = d;
    if (s.list == nullptr) return;
    append_bits(s.list, g, degree, d, s.multiplicity);
    ScratchMark mark = scratch_mark();
    uint64_t* q = new_bits(s.n - degree);
    bit_divide(s.f, s.n, g, degree, q);
    s.n -= degree;
    memcpy(s.f, q, static_cast<size_t>(bit_words(s.n)) * sizeof(uint64_t));
    scratch_release(mark);
}

/// *g := the gcd of the residue a of `words` words and b, both kept. Returns its degree.
static int32_t common_divisor(const uint64_t* a, int64_t words, const uint64_t* b, int32_t db, uint64_t** g) {
    const int32_t da = bit_degree(a, words);
    return bit_gcd(bits_copy(a, da), da, bits_copy(b, db), db, g);
}

/// The block of powers row[0..count) of degrees d + 1, ...; g, of degree dg, is what they have in common.
static void take_each_degree(BitSearch& s, uint64_t* g, int32_t dg, const uint64_t* row, int64_t words,
                             int32_t d, int32_t count) {
    for (int32_t i = 0; i < count && dg > 0 && !s.done(); i++) {
        if (dg < 2 * (d + i + 1)) {  // one factor
            take_factors(s, g, dg, dg);
            return;
        }
        uint64_t* common = nullptr;
        const int32_t found = common_divisor(row + i * words, words, g, dg, &common);
        if (found <= 0) continue;
        take_factors(s, common, found, d + i + 1);
        uint64_t* q = new_bits(dg - found);
        bit_divide(g, dg, common, found, q);
        dg -= found;
        g = q;
    }
}

/// row[0..count) := x^(2^(d + i + 1)) - x, h the last power; product := their product.
static void take_block(const BitModulus& m, uint64_t* h, uint64_t* row, uint64_t* product, int32_t count) {
    for (int32_t i = 0; i < count; i++) {
        uint64_t* e = row + i * m.words;
        bit_square_modulo(m, h, h);
        memcpy(e, h, static_cast<size_t>(m.words) * sizeof(uint64_t));
        e[0] ^= 2;
        if (i == 0)
            memcpy(product, e, static_cast<size_t>(m.words) * sizeof(uint64_t));
        else
            bit_product_modulo(m, product, e, product);
    }
}

static void open_bit_ring(const BitSearch& s, BitRing* ring) {
    ring->f = bits_copy(s.f, s.n);
    open_bit_modulus(&ring->m, ring->f, s.n);
}

static void search_bits(BitSearch& s) {
    ScratchMark mark = scratch_mark();
    BitRing ring;
    open_bit_ring(s, &ring);
    uint64_t *h = new_bits(s.n), *product = new_bits(s.n),
             *row = scratch_array<uint64_t>(k_block * ring.m.words);
    memset(h, 0, static_cast<size_t>(ring.m.words) * sizeof(uint64_t));
    h[0] = 2;
    int32_t block = 1;
    for (int32_t d = 0; !s.done() && 2 * (d + 1) <= s.n;) {
        const int32_t count = std::min(block, s.n / 2 - d);
        take_block(ring.m, h, row, product, count);
        ScratchMark round = scratch_mark();
        uint64_t* g = nullptr;
        const int32_t dg = common_divisor(product, ring.m.words, s.f, s.n, &g);
        if (dg > 0) take_each_degree(s, g, dg, row, ring.m.words, d, count);
        scratch_release(round);
        d += count;
        block = std::min(2 * block, k_block);
        if (s.done() || s.n >= ring.m.n - ring.m.n / k_shrink) continue;
        bit_divide(h, bit_degree(h, ring.m.words), s.f, s.n, nullptr);
        open_bit_ring(s, &ring);
    }
    if (!s.done()) take_factors(s, bits_copy(s.f, s.n), s.n, s.n);
    scratch_release(mark);
}

void distinct_degrees_bits(const uint32_t* f, int32_t n, int32_t multiplicity, FactorList* list) {
    ScratchMark mark = scratch_mark();
    BitSearch s = {bits_of_words(f, n), n, multiplicity, list, 0};
    search_bits(s);
    scratch_release(mark);
}

int32_t least_degree_bits(const uint32_t* f, int32_t n) {
    ScratchMark mark = scratch_mark();
    BitSearch s = {bits_of_words(f, n), n, 1, nullptr, 0};
    search_bits(s);
    scratch_release(mark);
    return s.least;
}

// ---- splitting -----------------------------------------------------------------------------------------

/// *g := a proper divisor of c, a product of factors of degree d. Returns its degree.
static int32_t proper_divisor(const uint64_t* c, int32_t n, int32_t d, FactorRandom* random, uint64_t** g) {
    BitModulus m;
    open_bit_modulus(&m, c, n);
    uint64_t *power = new_bits(n), *trace = new_bits(n);
    for (;;) {
        for (int64_t i = 0; i < m.words; i++) power[i] = random_bits(random);
        if (n % 64 != 0) power[m.words - 1] &= (uint64_t{1} << (n % 64)) - 1;
        memcpy(trace, power, static_cast<size_t>(m.words) * sizeof(uint64_t));
        for (int32_t i = 1; i < d; i++) {
            bit_square_modulo(m, power, power);
            for (int64_t j = 0; j < m.words; j++) trace[j] ^= power[j];
        }
        ScratchMark mark = scratch_mark();
        const int32_t degree = common_divisor(trace, m.words, c, n, g);
        if (degree > 0 && degree < n) return degree;
        scratch_release(mark);
    }
}

static void split_bits(const FactorPart& part, const uint64_t* c, int32_t n, FactorRandom* random,
                       FactorList* list) {
    if (n == part.d) {
        append_bits(list, c, n, n, part.multiplicity);
        return;
    }
    ScratchMark mark = scratch_mark();
    uint64_t* g = nullptr;
    const int32_t degree = proper_divisor(c, n, part.d, random, &g);
    uint64_t *rest = bits_copy(c, n), *q = new_bits(n - degree);
    bit_divide(rest, n, g, degree, q);
    split_bits(part, g, degree, random, list);
    split_bits(part, q, n - degree, random, list);
    scratch_release(mark);
}

void equal_degrees_bits(const FactorPart& part, FactorRandom* random, FactorList* list) {
    ScratchMark mark = scratch_mark();
    split_bits(part, bits_of_words(part.c, part.degree), part.degree, random, list);
    scratch_release(mark);
}
}  // namespace tolvex
