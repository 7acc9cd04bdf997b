#include "matrix/charpoly.h"

#include "matrix/berkowitz.h"
#include "matrix/coefficients.h"
#include "matrix/determinant.h"
#include "matrix/int_entries.h"
#include "matrix/interpolated.h"
#include "matrix/word_charpoly.h"
#include "numbers/num_compare.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <cmath>
namespace tolvex {
namespace {
/// A diagonal block as a full matrix, row by row; nil: 0.
struct DiagonalBlock {
    const quolynode** entry;
    int32_t n;
};
enum class Entries { words, integers, rationals, functions };
bool ring_is_composite() { return modularmode && !finf && !mod_is_prime; }
}  // namespace

// ---- blocks of residues --------------------------------------------------------------------------------

static poly charpoly_of_words(const DiagonalBlock& b, int32_t level) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{b.n} * b.n;
    auto* words = scratch_array<uint32_t>(count);
    auto* c = scratch_array<uint32_t>(int64_t{b.n} + 1);
    for (int64_t k = 0; k < count; k++)
        words[k] = b.entry[k] == nullptr ? 0 : static_cast<uint32_t>(b.entry[k]->ncoef->lint);
    word_charpoly(word_field_ring(), words, b.n, c);
    poly p = poly_of_words(c, b.n, level);
    scratch_release(mark);
    return p;
}

// ---- blocks of integers --------------------------------------------------------------------------------

/// log2 of 1 + the length of a line of entries `step` apart, rounded up a little.
static double line_bits(const IntEntry* line, int64_t step, int32_t n) {
    constexpr int64_t k_too_small = 400;  // bits below the longest entry: nothing in floating point
    int64_t longest = 0;
    for (int32_t k = 0; k < n; k++) longest = std::max(longest, entry_bits(line[k * step]));
    if (longest == 0) return 0;
    double squares = 0, one = std::ldexp(1.0, -static_cast<int>(std::min(longest, k_too_small)));
    for (int32_t k = 0; k < n; k++) {
        const IntEntry& e = line[k * step];
        if (longest - entry_bits(e) > k_too_small || e.n == 0) continue;
        double top = static_cast<double>(e.at[e.n - 1]) + 1;
        double scaled = std::ldexp(top, static_cast<int>(64 * (e.n - 1) - longest));
        squares += scaled * scaled;
    }
    return static_cast<double>(longest) + std::log2(std::sqrt(squares) + one) + 1e-9;
}

/// All coefficients stay below 2 to this power in absolute value: they are sums of principal minors, each
/// bounded by the product of the lengths of its lines (Hadamard), and those sums are terms of the product of
/// all 1 + length.
static int64_t coefficient_bits(const IntEntry* entries, int32_t n) {
    double rows = 0, columns = 0;
    for (int64_t k = 0; k < n; k++) {
        rows += line_bits(entries + k * n, 1, n);
        columns += line_bits(entries + k, n, n);
    }
    return static_cast<int64_t>(std::min(rows, columns)) + 2;
}

/// The coefficients modulo enough primes; what they take of scratch memory stays.
static CrtTerms integer_images(const IntEntry* entries, int32_t n) {
    int64_t count = int64_t{n} * n, bits = coefficient_bits(entries, n) + 1;
    CrtTerms t = crt_open(static_cast<int32_t>(bits / 22) + 1);
    auto* words = scratch_array<uint32_t>(count);
    auto* c = scratch_array<uint32_t>(int64_t{n} + 1);
    for (uint32_t p = k_first_image_prime; crt_product_bits(t) <= bits; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        for (int64_t k = 0; k < count; k++) words[k] = entry_residue(f, entries[k]);
        word_charpoly(f, words, n, c);
        bool grown;
        crt_add(&t, image_terms(c, n), f, &grown);
        poll_interrupt();
    }
    return t;
}

/// The same for the entries entry_of(leaf) of a block, nil standing for 0.
template <class EntryOf> static CrtTerms images_of_block(const DiagonalBlock& b, EntryOf entry_of) {
    int64_t count = int64_t{b.n} * b.n;
    auto* entries = scratch_array<IntEntry>(count);
    for (int64_t k = 0; k < count; k++)
        entries[k] = entry_of(b.entry[k] == nullptr ? nullptr : b.entry[k]->ncoef);
    return integer_images(entries, b.n);
}

/// The polynomial whose coefficients make_leaf(k, c) makes of those that the images tell; nil for 0.
template <class MakeLeaf>
static poly poly_of_images(CrtTerms& t, int32_t n, int32_t level, MakeLeaf make_leaf) {
    int64_t i = 0;
    return poly_of_coefficients(n, level, [&](int32_t k) -> imptr {
        if (i == t.count || t.index[i] != k) return nullptr;
        number value = {};
        leaf_of_crt(&t, i++, &value);
        imptr leaf = make_leaf(k, int_entry(&value));
        special_free(&value);
        return leaf;
    });
}

static poly charpoly_of_integers(const DiagonalBlock& b, int32_t level) {
    ScratchMark mark = scratch_mark();
    CrtTerms t = images_of_block(b, [](const number* n) { return int_entry(n); });
    poly p = poly_of_crt(t, b.n, level);
    scratch_release(mark);
    return p;
}

/// Modulo a composite number a division may fail: the coefficients over the integers are reduced.
static poly charpoly_of_lifted(const DiagonalBlock& b, int32_t level) {
    ScratchMark mark = scratch_mark();
    CrtTerms t = images_of_block(
        b, [](const number* n) { return word_entry(n == nullptr ? 0 : static_cast<uint32_t>(n->lint)); });
    WordField ring = word_field_prime(static_cast<uint32_t>(modulus));
    poly p = poly_of_images(t, b.n, level, [&](int32_t, const IntEntry& value) -> imptr {
        auto residue = static_cast<int32_t>(entry_residue(ring, value));
        if (residue == 0) return nullptr;
        imptr c;
        newimag(&c);
        c->lint = residue;
        return c;
    });
    scratch_release(mark);
    return p;
}

// ---- blocks of rational numbers ------------------------------------------------------------------------

/// The coefficients c of d A belong to A as c[k] d^k / d^n.
static void charpoly_of_rationals(const DiagonalBlock& b, int32_t level, quolyptr result) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{b.n} * b.n;
    auto* entries = scratch_array<IntEntry>(count);
    IntEntry multiple = k_entry_one;
    for (int64_t k = 0; k < count; k++)
        if (b.entry[k] != nullptr) multiple = entry_common_multiple(multiple, entry_denominator(b.entry[k]));
    for (int64_t k = 0; k < count; k++) {
        poll_every<64>(k);
        entries[k] = {nullptr, 0, false};
        if (b.entry[k] != nullptr)
            entries[k] = entry_product(entry_numerator(b.entry[k]),
                                       entry_quotient(multiple, entry_denominator(b.entry[k])));
    }
    CrtTerms t = integer_images(entries, b.n);
    auto* power = scratch_array<IntEntry>(int64_t{b.n} + 1);  // of the common denominator
    power[0] = k_entry_one;
    for (int32_t k = 0; k < b.n; k++) power[k + 1] = entry_product(power[k], multiple);
    poly p = poly_of_images(t, b.n, level, [&](int32_t k, const IntEntry& value) -> imptr {
        IntEntry c = entry_product(value, power[k]);
        if (c.n == 0) return nullptr;
        imptr leaf;
        newimag(&leaf);
        number_of_entry(c, leaf);
        return leaf;
    });
    number divisor = {};
    number_of_entry(power[b.n], &divisor);
    scratch_release(mark);
    quoly below = nullptr;
    scalar_to_quoly(&divisor, &below);
    free_num(&divisor);
    poly_to_quoly(&p, result);
    fast_quoly_quot(result, below, false);
    free_quoly(&below);
}

// ---- blocks of functions -------------------------------------------------------------------------------

/// True if all entries are polynomials in which the variable does not occur.
static bool without_divisions(const DiagonalBlock& b, int32_t level) {
    for (int64_t k = 0; k < int64_t{b.n} * b.n; k++) {
        const quolynode* q = b.entry[k];
        if (q == nullptr || q->numb) continue;
        if (q->denom != nullptr || poly_contains_level(q->numer, level)) return false;
    }
    return true;
}

/// *result := the sum of c[k] x^k, which are used up.
static void sum_of_powers(poly* c, int32_t n, int32_t level, quolyptr result) {
    poly sum = c[0], x = nullptr;
    base_poly(&x, level);
    for (int32_t k = 1; k <= n; k++) {
        poly power = nullptr;
        poly_assign(x, &power);
        compute_power(&power, k, polynames);
        poly_mult(c[k], power, &c[k], polynames);
        best_poly_add(sum, c[k], &sum);
        free_poly(&power);
        poll_interrupt();
    }
    free_poly(&x);
    poly_to_quoly(&sum, result);
}

static void charpoly_without_divisions(const DiagonalBlock& b, int32_t level, quolyptr result) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{b.n} * b.n;
    auto* entries = scratch_array<poly>(count);
    auto* leaf = scratch_array<polynode>(count);  // shells of the numbers among the entries
    auto* c = scratch_array<poly>(int64_t{b.n} + 1);
    for (int64_t k = 0; k < count; k++) {
        entries[k] = nullptr;
        const quolynode* q = b.entry[k];
        if (q == nullptr) continue;
        leaf[k] = {0, 1, nullptr, {q->ncoef}};
        entries[k] = q->numb ? &leaf[k] : q->numer;
    }
    berkowitz_charpoly(entries, b.n, c);
    sum_of_powers(c, b.n, level, result);
    scratch_release(mark);
}

/// The entries of x I - A in scratch memory.
static quoly* shifted_matrix(const DiagonalBlock& b, int32_t level) {
    int64_t count = int64_t{b.n} * b.n;
    auto* shifted = scratch_array<quoly>(count);
    poly x = nullptr;
    quoly variable = nullptr;
    base_poly(&x, level);
    poly_to_quoly(&x, &variable);
    for (int64_t k = 0; k < count; k++) {
        shifted[k] = nullptr;
        if (b.entry[k] == nullptr)
            quoly_set(0, &shifted[k]);
        else
            quoly_makeneg(b.entry[k], &shifted[k]);
        if (k % (b.n + 1) == 0) fast_quoly_add(&shifted[k], variable);
        poll_every<64>(k);
    }
    free_quoly(&variable);
    return shifted;
}

static void free_matrix(quoly* a, int32_t n) {
    for (int64_t k = 0; k < int64_t{n} * n; k++) free_quoly(&a[k]);
}

static bool has_field_element(const DiagonalBlock& b) {
    for (int64_t k = 0; k < int64_t{b.n} * b.n; k++) {
        const quolynode* q = b.entry[k];
        if (q != nullptr && !q->numb && exists_field_element(q->numer, 1)) return true;
    }
    return false;
}

/// The determinant of x I - A through its values. False, and nothing has been done: another way is less work,
/// or what is modded out must be reduced between the steps.
static bool charpoly_by_images(const DiagonalBlock& b, int32_t level, quolyptr result) {
    static const InterpolationPlan k_plain = {nullptr, -1, -1, 1, 0, false, false, nullptr};
    constexpr int32_t k_least_rows = 5;  // below it the estimates cost more than they save
    if (b.n < k_least_rows || modout_above_field || has_field_element(b)) return false;
    EntryMeasure e;
    measure_entries(b.entry, int64_t{b.n} * b.n, &e);
    double least = berkowitz_work(e, b.n);
    ScratchMark mark = scratch_mark();
    quoly* shifted = shifted_matrix(b, level);
    double work = interpolation_work(shifted, b.n, false);
    bool done = work >= 0 && work < least &&
                interpolate_determinant(shifted, b.n, k_plain, result) == Interpolated::done;
    free_matrix(shifted, b.n);
    scratch_release(mark);
    return done;
}

static void charpoly_of_polynomials(const DiagonalBlock& b, int32_t level, quolyptr result) {
    if (!charpoly_by_images(b, level, result)) charpoly_without_divisions(b, level, result);
}

/// The determinant of x I - A.
static void charpoly_by_determinant(const DiagonalBlock& b, int32_t level, quolyptr p) {
    ScratchMark mark = scratch_mark();
    quoly* shifted = shifted_matrix(b, level);
    dense_determinant(shifted, b.n, p);
    free_matrix(shifted, b.n);
    scratch_release(mark);
}

// ---- blocks --------------------------------------------------------------------------------------------

static Entries kind_of(const DiagonalBlock& b) {
    Entries kind = modularmode ? Entries::words : Entries::integers;
    for (int64_t k = 0; k < int64_t{b.n} * b.n; k++) {
        const quolynode* q = b.entry[k];
        if (q == nullptr || q->numb) continue;
        if (!q->rat) return Entries::functions;
        kind = Entries::rationals;
    }
    return kind;
}

static void charpoly_of_block(const DiagonalBlock& b, int32_t level, quolyptr result) {
    poly p = nullptr;
    switch (kind_of(b)) {
    case Entries::words:
        p = ring_is_composite() ? charpoly_of_lifted(b, level) : charpoly_of_words(b, level);
        break;
    case Entries::integers:
        p = charpoly_of_integers(b, level);
        break;
    case Entries::rationals:
        return charpoly_of_rationals(b, level, result);
    case Entries::functions:
        return (without_divisions(b, level) ? charpoly_of_polynomials : charpoly_by_determinant)(b, level,
                                                                                                 result);
    }
    poly_to_quoly(&p, result);
}

/// The rows and columns of one component as a full matrix; place[r]: the place of row r among them, -1: not
/// there.
static DiagonalBlock cut_out(const MatrixEntries& m, const int32_t* rows, int32_t count,
                             const int32_t* place) {
    DiagonalBlock b = {scratch_array<const quolynode*>(int64_t{count} * count), count};
    std::fill_n(b.entry, int64_t{count} * count, nullptr);
    for (int64_t i = 0; i < count; i++) {
        for (int64_t k = m.places.start[rows[i]]; k < m.places.start[rows[i] + 1]; k++) {
            int32_t column = place[m.places.column[k]];
            if (column >= 0) b.entry[i * count + column] = m.value[k];
        }
        poll_every<64>(i);
    }
    return b;
}

/// The product of the characteristic polynomials of the diagonal blocks: of neighbours first, so that factors
/// stay of like degrees.
void characteristic_polynomial(const MatrixEntries& m, int32_t level, quolyptr result) {
    ScratchMark mark_all = scratch_mark();
    Components c = strong_components(m.places);
    auto* place = scratch_array<int32_t>(m.places.n);
    std::fill_n(place, m.places.n, -1);
    auto* factor = scratch_array<quoly>(c.count);
    for (int32_t k = 0; k < c.count; k++) {
        const int32_t *rows = c.row + c.first[k], count = c.first[k + 1] - c.first[k];
        for (int32_t i = 0; i < count; i++) place[rows[i]] = i;
        ScratchMark mark = scratch_mark();
        factor[k] = nullptr;
        charpoly_of_block(cut_out(m, rows, count, place), level, &factor[k]);
        scratch_release(mark);
        for (int32_t i = 0; i < count; i++) place[rows[i]] = -1;
        poll_interrupt();
    }
    for (int32_t left = c.count; left > 1; left = (left + 1) / 2) {
        for (int32_t k = 0; k < left / 2; k++) {
            quoly product = nullptr;
            quoly_mult(factor[2 * k], factor[2 * k + 1], &product);
            free_quoly(&factor[2 * k]);
            free_quoly(&factor[2 * k + 1]);
            factor[k] = product;
            poll_interrupt();
        }
        if (left % 2 != 0) factor[left / 2] = factor[left - 1];
    }
    free_quoly(result);
    *result = factor[0];
    scratch_release(mark_all);
}
}  // namespace tolvex
