// With rows 0..i-1 done, the columns from i on generate the part of the lattice whose vectors begin with i
// zeros, along with rest times all vectors of that part of the space: rest is d divided by the pivots so far.
// So they are reduced modulo rest, a column is led by the gcd of its row and rest, and the others are cleared
// by it.
#include "matrix/hermite_modular.h"

#include "matrix/big_ring.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
namespace {
struct ModularHermite {
    int32_t rows, cols;
    int64_t n;     // limbs of an entry
    limb* at;      // column by column
    BigRing ring;  // modulo what is left of d
    limb *g, *factor, *quotient;
    int64_t gn;    // limbs of g
    limb* pivots;  // n limbs a row
    limb* rests;   // what was left of d when the row was reached
    limb* entry(int32_t r, int32_t c) const { return at + (int64_t{c} * rows + r) * n; }
    limb* pivot(int32_t r) const { return pivots + r * n; }
    limb* rest(int32_t r) const { return rests + r * n; }
};
}  // namespace

static void load(ModularHermite& e, const IntGrid& a) {
    for (int32_t c = 0; c < e.cols; c++) {
        for (int32_t r = 0; r < e.rows; r++)
            ring_reduce(e.ring, e.entry(r, c), a(r, c).at, a(r, c).n, a(r, c).negative);
        poll_interrupt();
    }
}

/// x := x modulo the number b of bn limbs.
static void reduce_by(limb* x, int64_t n, const limb* b, int64_t bn) {
    int64_t xn = limbs_trim(x, n);
    if (limbs_compare(x, xn, b, bn) < 0) return;
    limbs_divrem(nullptr, x, xn, b, bn);
    std::fill(x + bn, x + n, 0);
}

/// to := to + f from in the rows from i on.
static void add_column(ModularHermite& e, int32_t to, const limb* f, int32_t from, int32_t i) {
    for (int32_t r = i; r < e.rows; r++) {
        const limb* x = e.entry(r, from);
        if (!ring_iszero(e.ring, x)) ring_addmul(e.ring, e.entry(r, to), f, x);
    }
    poll_interrupt();
}

static void exchange_columns(ModularHermite& e, int32_t a, int32_t b) {
    if (a != b) std::swap_ranges(e.entry(0, a), e.entry(0, a) + e.rows * e.n, e.entry(0, b));
}

/// g := gcd of entry (i, c) and the rest.
static void gcd_with_rest(ModularHermite& e, int32_t i, int32_t c) {
    e.gn = gcd_of_limbs(e.g, e.entry(i, c), e.ring.n, e.ring.m, e.ring.n);
}

/// A unit of row i goes to column i, if one of the first few columns that are tried has one.
static bool bring_unit(ModularHermite& e, int32_t i) {
    constexpr int32_t k_tries = 6;
    int32_t tried = 0;
    for (int32_t c = i; c < e.cols && tried < k_tries; c++) {
        if (ring_iszero(e.ring, e.entry(i, c))) continue;
        tried++;
        gcd_with_rest(e, i, c);
        if (!is_one(e.g, e.gn)) continue;
        exchange_columns(e, i, c);
        return true;
    }
    return false;
}

/// g becomes the gcd of row i and the rest, and that of entry (i, i) and the rest: to column i small
/// multiples of others are added. (A. Storjohann, "Algorithms for matrix canonical forms", 2000, on
/// stabilisers.)
static void gather_row(ModularHermite& e, int32_t i) {
    limb* next = scratch_array<limb>(e.n);
    gcd_with_rest(e, i, i);
    for (int32_t c = i + 1; c < e.cols && !is_one(e.g, e.gn); c++) {
        int64_t wanted = gcd_of_limbs(next, e.entry(i, c), e.ring.n, e.g, e.gn);
        if (wanted == e.gn && limbs_compare(next, wanted, e.g, e.gn) == 0) continue;
        std::fill_n(e.factor, e.n, 0);
        e.factor[0] = 1;
        do {
            add_column(e, i, e.factor, c, i);
            gcd_with_rest(e, i, i);
        } while (e.gn != wanted || limbs_compare(e.g, e.gn, next, wanted) != 0);
    }
}

/// Column i becomes u times itself, with the pivot g in row i.
static void scale_pivot(ModularHermite& e, int32_t i) {
    if (!is_one(e.factor, limbs_trim(e.factor, e.n)))
        for (int32_t r = i; r < e.rows; r++) {
            limb* x = e.entry(r, i);
            if (!ring_iszero(e.ring, x)) ring_mul(e.ring, x, e.factor, x);
        }
    std::fill_n(e.entry(i, i), e.n, 0);
    copy_limbs(e.entry(i, i), e.g, e.gn);
    std::fill_n(e.pivot(i), e.n, 0);
    copy_limbs(e.pivot(i), e.g, e.gn);
    poll_interrupt();
}

/// The other columns lose their entries in row i, multiples of g.
static void clear_row(ModularHermite& e, int32_t i) {
    for (int32_t c = i + 1; c < e.cols; c++) {
        limb* x = e.entry(i, c);
        int64_t xn = limbs_trim(x, e.ring.n);
        if (xn == 0) continue;
        std::fill_n(e.quotient, e.n, 0);
        if (is_one(e.g, e.gn))
            copy_limbs(e.quotient, x, e.ring.n);
        else if (xn >= e.gn)
            limbs_divrem(e.quotient, x, xn, e.g, e.gn);
        std::fill_n(x, e.n, 0);
        ring_negate(e.ring, e.quotient);
        add_column(e, c, e.quotient, i, i + 1);
    }
}

/// rest := rest / g, and the columns behind column i are reduced modulo it. False: it is 1.
static bool divide_rest(ModularHermite& e, int32_t i) {
    int64_t n = e.ring.n;
    if (!is_one(e.g, e.gn)) {
        limb *left = scratch_array<limb>(n), *q = scratch_array<limb>(n + 1);
        copy_limbs(left, e.ring.m, n);
        limbs_divrem(q, left, n, e.g, e.gn);
        int64_t qn = limbs_trim(q, n - e.gn + 1);
        if (is_one(q, qn)) return false;
        e.ring = big_ring(q, qn);  // entries keep their places, with zeros above
        for (int32_t c = i + 1; c < e.cols; c++) {
            for (int32_t r = i + 1; r < e.rows; r++) reduce_by(e.entry(r, c), e.n, e.ring.m, e.ring.n);
            poll_interrupt();
        }
    }
    return true;
}

/// The rows from i on, where the lattice is the whole space, are those of the identity.
static void fill_identity(ModularHermite& e, int32_t i) {
    for (int32_t k = i; k < e.rows; k++) {
        std::fill_n(e.entry(0, k), e.rows * e.n, 0);
        e.entry(k, k)[0] = 1;
        std::fill_n(e.pivot(k), e.n, 0);
        e.pivot(k)[0] = 1;
        std::fill_n(e.rest(k), e.n, 0);
        e.rest(k)[0] = 1;
    }
}

static void triangularise(ModularHermite& e) {
    for (int32_t i = 0; i < e.rows; i++) {
        std::fill_n(e.rest(i), e.n, 0);
        copy_limbs(e.rest(i), e.ring.m, e.ring.n);
        if (!bring_unit(e, i)) gather_row(e, i);
        std::fill_n(e.factor, e.n, 0);
        cofactor_of_gcd(e.ring, e.factor, e.entry(i, i), e.g, e.gn);
        scale_pivot(e, i);
        clear_row(e, i);
        if (!divide_rest(e, i)) return fill_identity(e, i + 1);
    }
}

/// Column c loses the multiple of column i, which is reduced already, that takes its entry in row i below the
/// pivot.
static void reduce_by_column(ModularHermite& e, const BigRing* ring, int32_t c, int32_t i) {
    limb* x = e.entry(i, c);
    int64_t xn = limbs_trim(x, e.n), pn = limbs_trim(e.pivot(i), e.n);
    if (limbs_compare(x, xn, e.pivot(i), pn) < 0) return;
    std::fill_n(e.quotient, e.n, 0);
    limbs_divrem(e.quotient, x, xn, e.pivot(i), pn);
    std::fill(x + pn, x + e.n, 0);
    int64_t qn = limbs_trim(e.quotient, e.n);
    for (int32_t r = i + 1; r < e.rows; r++) {
        const limb* y = e.entry(r, i);
        if (ring[r].n == 0 || limbs_trim(y, e.n) == 0) continue;
        ring_reduce(ring[r], e.factor, e.quotient, qn, true);
        ring_addmul(ring[r], e.entry(r, c), e.factor, y);
    }
}

/// Entries to the left of the pivots go below them, in the columns from the last one on; what was left of d
/// when a row was reached may be taken off the entries of that row.
static void reduce_left(ModularHermite& e) {
    auto* ring = scratch_array<BigRing>(e.rows);
    for (int32_t r = 0; r < e.rows; r++) {
        int64_t n = limbs_trim(e.rest(r), e.n);
        ring[r] =
            is_one(e.rest(r), n) ? BigRing{e.rest(r), 0, nullptr, nullptr, nullptr} : big_ring(e.rest(r), n);
    }
    for (int32_t c = e.rows - 2; c >= 0; c--) {
        for (int32_t r = c + 1; r < e.rows; r++)
            reduce_by(e.entry(r, c), e.n, e.rest(r), limbs_trim(e.rest(r), e.n));
        for (int32_t i = c + 1; i < e.rows; i++) {
            reduce_by_column(e, ring, c, i);
            poll_interrupt();
        }
    }
}

IntGrid modular_hermite(const IntGrid& a, const IntEntry& d) {
    if (is_one(d.at, d.n)) return identity_grid(a.rows);
    IntGrid h = zero_grid(a.rows, a.rows);
    int64_t n = d.n;
    auto array = [n](int64_t count) { return scratch_array<limb>(count * n); };
    ModularHermite e = {a.rows,
                        a.cols,
                        n,
                        array(int64_t{a.rows} * a.cols),
                        big_ring(d.at, d.n),
                        array(2),
                        array(2),
                        array(2),
                        0,
                        array(a.rows),
                        array(a.rows)};
    load(e, a);
    triangularise(e);
    reduce_left(e);
    for (int32_t c = 0; c < a.rows; c++)
        for (int32_t r = c; r < a.rows; r++) h(r, c) = {e.entry(r, c), limbs_trim(e.entry(r, c), n), false};
    return h;
}
}  // namespace tolvex
