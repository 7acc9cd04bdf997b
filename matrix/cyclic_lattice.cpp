#include "matrix/cyclic_lattice.h"

#include "matrix/big_ring.h"
#include "matrix/word_rows.h"
#include "poly/packed_crt.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <bit>
namespace tolvex {
namespace {
constexpr uint32_t k_first_prime = 2147483629;  // the largest below 2^31 - 1
constexpr int32_t k_random_bits = 16;           // of the entries of u
constexpr int32_t k_sides = 4;  // rows u: each meets a prime factor q of the index in vain once in q times

/// The transpose of the matrix with the rows u as columns at its side, row by row, modulo a prime.
struct Augmented {
    const WordField& f;
    uint32_t* words;
    int32_t n;
    int32_t width() const { return n + k_sides; }
    uint32_t* row(int32_t r) const { return words + int64_t{r} * width(); }
};
}  // namespace

// ---- modulo one prime ----------------------------------------------------------------------------------

/// The rows become upper triangular with pivots 1; the determinant of what they were. 0: no form has been
/// found.
static uint32_t eliminate(const Augmented& m) {
    uint32_t det = 1;
    for (int32_t k = 0; k < m.n; k++) {
        int32_t r = k, count = m.width() - k;
        while (r < m.n && m.row(r)[k] == 0) r++;
        if (r == m.n) return 0;
        if (r != k) {
            std::swap_ranges(m.row(r) + k, m.row(r) + m.width(), m.row(k) + k);
            det = wf_neg(m.f, det);
        }
        uint32_t* pivot = m.row(k) + k;
        det = wf_mul(m.f, det, *pivot);
        scale_row_by(m.f, pivot, wf_inverse(m.f, *pivot), count);
        for (r = k + 1; r < m.n; r++)
            if (uint32_t entry = m.row(r)[k]; entry != 0)
                add_row_multiple(m.f, m.row(r) + k, pivot, wf_neg(m.f, entry), count);
        poll_interrupt();
    }
    return det;
}

/// The columns at the side become the solutions of the triangular system.
static void substitute_back(const Augmented& m) {
    for (int32_t k = m.n - 1; k > 0; k--)
        for (int32_t r = 0; r < k; r++) {
            uint32_t entry = m.row(r)[k];
            if (entry == 0) continue;
            for (int32_t j = m.n; j < m.width(); j++)
                m.row(r)[j] = wf_sub(m.f, m.row(r)[j], wf_mul(m.f, entry, m.row(k)[j]));
        }
}

/// Entry k of row j of u adj(A) as index k_sides n - (j n + k), the determinant as index 0. False: the prime
/// divides the determinant.
static bool image(const Augmented& m, PackTerms* t) {
    uint32_t det = eliminate(m);
    if (det == 0) return false;
    substitute_back(m);
    int64_t count = int64_t{m.n} * k_sides + 1;
    *t = {0, scratch_array<int64_t>(count), {scratch_array<uint32_t>(count)}};
    auto take = [t](int64_t index, uint32_t value) {
        if (value == 0) return;
        t->index[t->count] = index;
        t->residue[t->count++] = value;
    };
    for (int64_t i = 0; i + 1 < count; i++)
        take(count - 1 - i, wf_mul(m.f, det, m.row(static_cast<int32_t>(i % m.n))[m.n + i / m.n]));
    take(0, det);
    return true;
}

// ---- the description -----------------------------------------------------------------------------------

/// The product of the lengths of the columns, each with one entry of u among its own, is below 2 to this
/// power.
static int64_t column_bits(const IntGrid& a) {
    int64_t twice = 0;
    for (int32_t c = 0; c < a.cols; c++) {
        int64_t most = k_random_bits;
        uint32_t count = 1;
        for (int32_t r = 0; r < a.rows; r++) {
            most = std::max(most, entry_bits(a(r, c)));
            count += a(r, c).n != 0;
        }
        twice += 2 * most + std::bit_width(count);
    }
    return twice / 2 + 1;
}

/// det A and u adj(A) as symmetric values: by Cramer's rule determinants of A with one row replaced by u.
static CrtTerms adjugate_images(const IntGrid& a) {
    int64_t by_rows =
        std::max(row_length_bits(a, a.rows), row_length_bits(a, a.rows - 1) + k_random_bits + a.rows / 2);
    int64_t bits = std::min(by_rows, column_bits(a)) + 2;
    CrtTerms t = crt_open(static_cast<int32_t>(bits / 30) + 2);
    auto* u = scratch_array<uint32_t>(int64_t{a.rows} * k_sides);
    for (int64_t k = 0; k < int64_t{a.rows} * k_sides; k++) u[k] = wf_random_below(1u << k_random_bits);
    auto* words = scratch_array<uint32_t>(int64_t{a.rows} * (a.rows + k_sides));
    for (uint32_t p = k_first_prime; crt_product_bits(t) <= bits; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        Augmented m = {f, words, a.rows};
        for (int32_t r = 0; r < a.rows; r++) {
            for (int32_t c = 0; c < a.rows; c++) m.row(r)[c] = entry_residue(f, a(c, r));
            for (int32_t j = 0; j < k_sides; j++) m.row(r)[a.rows + j] = u[r * k_sides + j];
        }
        PackTerms terms;
        bool grown;
        if (image(m, &terms)) crt_add(&t, terms, f, &grown);
    }
    return t;
}

static IntEntry entry_of_crt(CrtTerms& t, int64_t i) {
    number value = {};
    leaf_of_crt(&t, i, &value);
    IntEntry e = int_entry(&value);
    special_free(&value);
    return e;
}

/// The sums of the rows, the j-th taken times[j] times, go to z; true if they have no factor in common with
/// the index.
static bool combine(const BigRing& ring, const limb* rows, const uint32_t (&times)[k_sides], int32_t n,
                    IntEntry* z) {
    limb* g = scratch_array<limb>(ring.n);
    int64_t gn = ring.n;
    copy_limbs(g, ring.m, gn);
    for (int32_t k = 0; k < n; k++) {
        limb* sum = scratch_array<limb>(ring.n);
        std::fill_n(sum, ring.n, 0);
        for (int32_t j = 0; j < k_sides; j++)
            for (uint32_t i = 0; i < times[j]; i++) ring_add(ring, sum, rows + (int64_t{j} * n + k) * ring.n);
        z[k] = {sum, limbs_trim(sum, ring.n), false};
        if (!is_one(g, gn)) gn = gcd_of_limbs(g, sum, ring.n, g, gn);
        poll_interrupt();
    }
    return is_one(g, gn);
}

CyclicLattice cyclic_lattice(const IntGrid& a) {
    constexpr int32_t k_tries = 12;
    constexpr uint32_t k_most_times = 4;
    int32_t n = a.rows;
    int64_t count = int64_t{n} * k_sides;
    CrtTerms t = adjugate_images(a);
    CyclicLattice l = {entry_of_crt(t, t.count - 1), scratch_array<IntEntry>(n), false};
    l.index.negative = false;
    BigRing ring = big_ring(l.index.at, l.index.n);
    limb* rows = scratch_array<limb>(count * ring.n);
    std::fill_n(rows, count * ring.n, 0);
    for (int64_t i = 0; i + 1 < t.count; i++) {
        IntEntry e = entry_of_crt(t, i);
        ring_reduce(ring, rows + (count - t.index[i]) * ring.n, e.at, e.n, e.negative);
    }
    uint32_t times[k_sides] = {1};
    for (int32_t k = 0; k < k_tries && !l.cyclic; k++) {
        l.cyclic = combine(ring, rows, times, n, l.z);
        for (uint32_t& x : times) x = wf_random_below(k_most_times);
    }
    return l;
}

// ---- the form ------------------------------------------------------------------------------------------

namespace {
/// A row with a pivot above 1: p = g' / g for the gcds g' of the entries of z behind the row with the index,
/// g of those from the row on.
struct WideRow {
    int32_t row;
    IntEntry pivot, g;
    limb* inverse;  // of z / g modulo the pivot
};
}  // namespace

static IntEntry gcd_of_entries(const IntEntry& a, const IntEntry& b) {
    limb* g = scratch_array<limb>(b.n);
    int64_t n = gcd_of_limbs(g, a.at, a.n, b.at, b.n);
    return {g, n, false};
}

/// The remainder of a positive number.
static IntEntry remainder_of(const IntEntry& a, const IntEntry& m) {
    if (limbs_compare(a.at, a.n, m.at, m.n) < 0) return a;
    limb* rest = scratch_array<limb>(a.n);
    copy_limbs(rest, a.at, a.n);
    limbs_divrem(nullptr, rest, a.n, m.at, m.n);
    return {rest, limbs_trim(rest, m.n), false};
}

static WideRow wide_row(int32_t row, const IntEntry& z, const IntEntry& g, const IntEntry& behind) {
    WideRow w = {row, entry_quotient(behind, g), g, nullptr};
    int64_t n = w.pivot.n;
    w.inverse = scratch_array<limb>(n);
    IntEntry over = remainder_of(z.n == 0 ? z : entry_quotient(z, g), w.pivot);
    limb* padded = scratch_array<limb>(n);
    std::fill_n(padded, n, 0);
    copy_limbs(padded, over.at, over.n);
    inverse_of_limbs(w.inverse, padded, w.pivot.at, n);
    return w;
}

/// The entries of column c below its pivot: in wide rows alone, each the one that leaves a rest z can make up
/// behind it.
static void fill_column(const CyclicLattice& l, const WideRow* wide, int32_t count, int32_t c, IntGrid& h) {
    IntSum sum = new_sum(entry_bits(l.index) + 1, entry_bits(l.index) + 1, 2);
    clear_sum(sum);
    add_to_sum(sum, l.z[c], h(c, c), true);
    IntEntry t = value_of_sum(sum);  // what the entries behind have to make up, modulo the index
    BigRing ring = big_ring(l.index.at, l.index.n);
    for (int32_t k = 0; k < count; k++) {
        limb* residue = scratch_array<limb>(ring.n);
        ring_reduce(ring, residue, t.at, t.n, t.negative);
        t = {residue, limbs_trim(residue, ring.n), false};
        if (t.n == 0) break;
        IntEntry inverse = {wide[k].inverse, limbs_trim(wide[k].inverse, wide[k].pivot.n), false};
        IntEntry share = remainder_of(entry_quotient(t, wide[k].g), wide[k].pivot);
        IntEntry x = share.n == 0 ? share : remainder_of(entry_product(share, inverse), wide[k].pivot);
        h(wide[k].row, c) = x;
        clear_sum(sum);
        add_to_sum(sum, t, k_entry_one, false);
        add_to_sum(sum, x, l.z[wide[k].row], true);
        t = value_of_sum(sum);
    }
}

IntGrid cyclic_hermite(const CyclicLattice& l, int32_t n) {
    IntGrid h = identity_grid(n);
    auto* wide = scratch_array<WideRow>(n);
    int32_t first = n;  // wide rows stand at first..n-1, rising
    IntEntry behind = l.index;
    auto* below = scratch_array<int32_t>(n);  // wide rows below each row
    for (int32_t r = n - 1; r >= 0; r--) {
        below[r] = n - first;
        if (is_one(behind.at, behind.n)) continue;
        IntEntry g = gcd_of_entries(l.z[r], behind);
        if (limbs_compare(g.at, g.n, behind.at, behind.n) == 0) continue;
        wide[--first] = wide_row(r, l.z[r], g, behind);
        h(r, r) = wide[first].pivot;
        behind = g;
        poll_interrupt();
    }
    for (int32_t c = 0; c < n; c++) {
        fill_column(l, wide + n - below[c], below[c], c, h);
        poll_interrupt();
    }
    return h;
}
}  // namespace tolvex
