// Step k brings a unit to (k, k), or an entry that divides all others of the open block modulo m; what is
// common to the block is divided out of it and of m, so that units are there again.
#include "matrix/smith_modular.h"

#include "matrix/big_ring.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
namespace {
struct ModularSmith {
    int32_t rows, cols;
    int64_t n;  // limbs of an entry
    limb* at;   // row by row
    BigRing ring;
    limb* g;  // gcd of the pivot and m, gn limbs
    int64_t gn;
    limb *factor, *inverse, *other;
    IntEntry common;  // what has been divided out so far
    limb* entry(int32_t r, int32_t c) const { return at + (int64_t{r} * cols + c) * n; }
};
}  // namespace

/// g := gcd of entry (k, k) and m.
static void gcd_of_pivot(ModularSmith& e, int32_t k) {
    e.gn = gcd_of_limbs(e.g, e.entry(k, k), e.ring.n, e.ring.m, e.ring.n);
}

static bool divisible_by_g(const ModularSmith& e, const limb* x) {
    int64_t xn = limbs_trim(x, e.ring.n);
    if (xn == 0 || is_one(e.g, e.gn)) return true;
    if (e.gn == 1) return limbs_mod_1(x, xn, e.g[0]) == 0;
    if (xn < e.gn) return false;
    copy_limbs(e.other, x, xn);
    limbs_divrem(nullptr, e.other, xn, e.g, e.gn);
    return limbs_trim(e.other, e.gn) == 0;
}

// ---- lines ---------------------------------------------------------------------------------------------

/// Row `to` += f row `from`, from column c on.
static void add_row(ModularSmith& e, int32_t to, const limb* f, int32_t from, int32_t c) {
    for (; c < e.cols; c++) {
        const limb* x = e.entry(from, c);
        if (!ring_iszero(e.ring, x)) ring_addmul(e.ring, e.entry(to, c), f, x);
    }
    poll_interrupt();
}

static void add_column(ModularSmith& e, int32_t to, int32_t from, int32_t r) {
    for (; r < e.rows; r++) ring_add(e.ring, e.entry(r, to), e.entry(r, from));
    poll_interrupt();
}

static void bring_to_corner(ModularSmith& e, int32_t k, int32_t r, int32_t c) {
    if (r != k) std::swap_ranges(e.entry(r, 0), e.entry(r, 0) + e.cols * e.n, e.entry(k, 0));
    for (int32_t i = k; c != k && i < e.rows; i++)
        std::swap_ranges(e.entry(i, c), e.entry(i, c) + e.n, e.entry(i, k));
}

// ---- pivots --------------------------------------------------------------------------------------------

/// Calls f(row, column) for the entries of the open block that are not 0 until it returns true; that is
/// returned.
template <class Visit> static bool find_entry(const ModularSmith& e, int32_t k, Visit f) {
    for (int32_t r = k; r < e.rows; r++) {
        poll_interrupt();
        for (int32_t c = k; c < e.cols; c++)
            if (!ring_iszero(e.ring, e.entry(r, c)) && f(r, c)) return true;
    }
    return false;
}

/// A unit among the first few entries goes to (k, k), else some entry that is not 0. True: a unit.
static bool bring_pivot(ModularSmith& e, int32_t k) {
    constexpr int32_t k_tries = 8;
    int32_t tried = 0, row = -1, column = -1;
    bool unit = false;
    find_entry(e, k, [&](int32_t r, int32_t c) {
        if (row < 0) row = r, column = c;
        e.gn = gcd_of_limbs(e.g, e.entry(r, c), e.ring.n, e.ring.m, e.ring.n);
        unit = is_one(e.g, e.gn);
        if (unit) row = r, column = c;
        return unit || ++tried == k_tries;
    });
    if (row >= 0) bring_to_corner(e, k, row, column);
    return unit;
}

/// Column k is cleared by the pivot, whose gcd with m, g, divides its entries.
static void clear_column(ModularSmith& e, int32_t k) {
    cofactor_of_gcd(e.ring, e.inverse, e.entry(k, k), e.g, e.gn);
    for (int32_t r = k + 1; r < e.rows; r++) {
        limb* x = e.entry(r, k);
        int64_t xn = limbs_trim(x, e.ring.n);
        if (xn == 0) continue;
        std::fill_n(e.factor, e.n, 0);
        copy_limbs(e.other, x, e.ring.n);
        limbs_divrem(e.factor, e.other, xn, e.g, e.gn);
        ring_mul(e.ring, e.factor, e.factor, e.inverse);
        ring_negate(e.ring, e.factor);
        std::fill_n(x, e.n, 0);
        add_row(e, r, e.factor, k, k + 1);
    }
}

/// The pivot takes multiples of row r, or of column c, until its gcd with m is that of both entries.
static void gather_row(ModularSmith& e, int32_t k, int32_t r) {
    std::fill_n(e.factor, e.n, 0);
    e.factor[0] = 1;
    limb* wanted = scratch_array<limb>(e.n);
    int64_t n = gcd_of_limbs(wanted, e.entry(r, k), e.ring.n, e.g, e.gn);
    do {
        add_row(e, k, e.factor, r, k);
        gcd_of_pivot(e, k);
    } while (limbs_compare(e.g, e.gn, wanted, n) != 0);
}

static void gather_column(ModularSmith& e, int32_t k, int32_t c) {
    limb* wanted = scratch_array<limb>(e.n);
    int64_t n = gcd_of_limbs(wanted, e.entry(k, c), e.ring.n, e.g, e.gn);
    do {
        add_column(e, k, c, k);
        gcd_of_pivot(e, k);
    } while (limbs_compare(e.g, e.gn, wanted, n) != 0);
}

/// The gcd of the pivot becomes smaller where it does not divide an entry of its column or row, or of another
/// row, which is added to its own. False: it divides all; the column is clear.
static bool improve_pivot(ModularSmith& e, int32_t k) {
    gcd_of_pivot(e, k);
    for (int32_t r = k + 1; r < e.rows; r++)
        if (!divisible_by_g(e, e.entry(r, k))) {
            gather_row(e, k, r);
            return true;
        }
    clear_column(e, k);
    for (int32_t c = k + 1; c < e.cols; c++)
        if (!divisible_by_g(e, e.entry(k, c))) {
            gather_column(e, k, c);
            return true;
        }
    int32_t row = -1;
    find_entry(e, k, [&](int32_t r, int32_t c) {
        row = divisible_by_g(e, e.entry(r, c)) ? -1 : r;
        return row >= 0;
    });
    if (row < 0) return false;
    std::fill_n(e.factor, e.n, 0);
    e.factor[0] = 1;
    add_row(e, k, e.factor, row, k);
    return true;
}

// ---- steps ---------------------------------------------------------------------------------------------

/// The open block behind row k and m are divided by g.
static void divide_block(ModularSmith& e, int32_t k) {
    if (is_one(e.g, e.gn)) return;
    limb* g = scratch_array<limb>(e.gn);  // the product may share it
    copy_limbs(g, e.g, e.gn);
    e.common = entry_product(e.common, {g, e.gn, false});
    int64_t n = e.ring.n;
    limb *left = scratch_array<limb>(n), *q = scratch_array<limb>(n + 1);
    copy_limbs(left, e.ring.m, n);
    limbs_divrem(q, left, n, e.g, e.gn);
    e.ring = big_ring(q, limbs_trim(q, n - e.gn + 1));
    for (int32_t r = k + 1; r < e.rows; r++) {
        poll_interrupt();
        for (int32_t c = k + 1; c < e.cols; c++) {
            limb* x = e.entry(r, c);
            int64_t xn = limbs_trim(x, n);
            if (xn == 0) continue;
            copy_limbs(e.other, x, xn);
            std::fill_n(x, n, 0);
            limbs_divrem(x, e.other, xn, e.g, e.gn);
        }
    }
}

void smith_diagonal(const IntGrid& a, int32_t rank, const IntEntry& m, IntEntry* diagonal) {
    int64_t n = m.n;
    auto array = [n](int64_t count) { return scratch_array<limb>(count * n + 1); };
    ModularSmith e = {a.rows,
                      a.cols,
                      n,
                      array(int64_t{a.rows} * a.cols),
                      big_ring(m.at, n),
                      array(2),
                      0,
                      array(2),
                      array(2),
                      array(2),
                      k_entry_one};
    for (int32_t r = 0; r < a.rows; r++) {
        for (int32_t c = 0; c < a.cols; c++)
            ring_reduce(e.ring, e.entry(r, c), a(r, c).at, a(r, c).n, a(r, c).negative);
        poll_interrupt();
    }
    for (int32_t k = 0; k < rank; k++) {
        if (bring_pivot(e, k))
            clear_column(e, k);
        else
            while (improve_pivot(e, k)) {
            }
        divide_block(e, k);
        diagonal[k] = e.common;
    }
}
}  // namespace tolvex
