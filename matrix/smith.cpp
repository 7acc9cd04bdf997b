#include "matrix/smith.h"

#include "matrix/big_ring.h"
#include "matrix/cyclic_lattice.h"
#include "matrix/hermite.h"
#include "matrix/int_determinant.h"
#include "matrix/rank_profile.h"
#include "matrix/smith_modular.h"
#include "quoly/quoly_basic.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <algorithm>
#include <cstdio>
namespace tolvex {
// ---- the diagonal alone --------------------------------------------------------------------------------

static IntEntry magnitude(const IntEntry& e) { return {e.at, e.n, false}; }

static IntEntry doubled(const IntEntry& e) {
    limb* r = scratch_array<limb>(e.n + 1);
    r[e.n] = limbs_shift_left(r, e.at, e.n, 1);
    return {r, limbs_trim(r, e.n + 1), false};
}

/// A minor that carries the rank; of a square matrix that is not singular the determinant. *cyclic: that is
/// the last entry of the diagonal, and the others are 1.
static IntEntry carrying_minor(const IntGrid& a, const RankProfile& p, bool* cyclic) {
    if (p.rank < a.rows || p.rank < a.cols)
        return magnitude(entry_determinant(grid_part(a, p.row, p.rank, p.column, p.rank).at, p.rank));
    CyclicLattice l = cyclic_lattice(a);
    *cyclic = l.cyclic;
    return l.index;
}

/// multiple: of d1 ... dr, nil: a minor that carries the rank is taken.
static void diagonal_alone(Reduction& r, const IntEntry* multiple, bool shown) {
    IntGrid a = occupied_grid(r.m);
    RankProfile p = rank_profile(a);
    r.rank = p.rank;
    auto* diagonal = scratch_array<IntEntry>(p.rank);
    if (p.rank > 0) {
        bool cyclic = false;
        IntEntry d = multiple != nullptr ? *multiple : carrying_minor(a, p, &cyclic), m = doubled(d);
        if (verbose && shown)
            printf(" pseudo-determinant size: %3d\n",
                   static_cast<int>((entry_bits(m) + k_digit_bits - 1) / k_digit_bits));
        std::fill_n(diagonal, p.rank, k_entry_one);
        if (cyclic)
            diagonal[p.rank - 1] = d;
        else
            smith_diagonal(a, p.rank, m, diagonal);
    }
    store_diagonal(diagonal, r.rank, r.m);
}

// ---- transformations -----------------------------------------------------------------------------------

namespace {
/// core is r by r; the transformations act on its rows and columns, and leave the lines behind them alone.
struct SmithForm {
    IntGrid core;
    IntGrid alpha, beta, alphinv, betinv;  // of the whole matrix
    bool want_rows, want_columns;
};
}  // namespace

/// The square matrix m in the corner of the identity of side n.
static IntGrid cornered(const IntGrid& m, int32_t n) {
    if (m.rows == n) return m;
    IntGrid g = identity_grid(n);
    for (int32_t r = 0; r < m.rows; r++)
        for (int32_t c = 0; c < m.cols; c++) g(r, c) = m(r, c);
    return g;
}

static IntGrid corner(const IntGrid& g, int32_t rows, int32_t cols) {
    return grid_part(g, nullptr, rows, nullptr, cols);
}

/// core := its Hermite form by columns.
static void column_step(SmithForm& s) {
    HermiteForm f = hermite_form(s.core, s.want_columns);
    s.core = f.h;
    if (!s.want_columns) return;
    s.beta = grid_product(s.beta, cornered(f.beta, s.beta.rows));
    s.betinv = grid_product(cornered(f.betinv, s.betinv.rows), s.betinv);
}

/// core := its Hermite form by rows; its rows are independent columns of the transpose, in their order.
static void row_step(SmithForm& s) {
    HermiteForm f = hermite_form(transposed(s.core), s.want_rows);
    s.core = transposed(f.h);
    if (!s.want_rows) return;
    s.alpha = grid_product(cornered(transposed(f.beta), s.alpha.rows), s.alpha);
    s.alphinv = grid_product(s.alphinv, cornered(transposed(f.betinv), s.alphinv.rows));
}

static bool is_diagonal(const IntGrid& g) {
    for (int32_t r = 0; r < g.rows; r++)
        for (int32_t c = 0; c < g.cols; c++)
            if (r != c && g(r, c).n != 0) return false;
    return true;
}

/// Lines i and j of g become x line i + y line j and z line i + w line j.
static void combine(IntGrid& g, bool rows, int32_t i, int32_t j, const IntEntry (&t)[4]) {
    int64_t bits = 1;
    for (const IntEntry& e : t) bits = std::max(bits, entry_bits(e));
    IntSum sum = new_sum(bits, std::max<int64_t>(grid_bits(g), 1), 2);
    for (int32_t k = 0; k < (rows ? g.cols : g.rows); k++) {
        IntEntry &x = rows ? g(i, k) : g(k, i), &y = rows ? g(j, k) : g(k, j), out[2];
        for (int32_t h = 0; h < 2; h++) {
            clear_sum(sum);
            add_to_sum(sum, t[2 * h], x, false);
            add_to_sum(sum, t[2 * h + 1], y, false);
            out[h] = value_of_sum(sum);
        }
        x = out[0];
        y = out[1];
    }
    poll_interrupt();
}

static IntEntry negative(const IntEntry& e) { return {e.at, e.n, !e.negative}; }

/// u a + v b = g for positive a, b with the gcd g.
static void bezout(const IntEntry& a, const IntEntry& b, const IntEntry& g, IntEntry* u, IntEntry* v) {
    IntEntry m = entry_quotient(b, g), x = entry_quotient(a, g);
    if (m.n == 1 && m.at[0] == 1) {
        *u = k_entry_zero;
        *v = k_entry_one;
        return;
    }
    BigRing ring = big_ring(m.at, m.n);
    limb* reduced = scratch_array<limb>(m.n);
    ring_reduce(ring, reduced, x.at, x.n, false);
    limb* inverse = scratch_array<limb>(m.n);
    inverse_of_limbs(inverse, reduced, m.at, m.n);
    *u = {inverse, limbs_trim(inverse, m.n), false};
    IntSum sum = new_sum(entry_bits(*u), entry_bits(a), 2);
    clear_sum(sum);
    add_to_sum(sum, *u, x, true);
    add_to_sum(sum, k_entry_one, k_entry_one, false);
    *v = exact_entry_quotient(value_of_sum(sum), m);
}

/// diag(a, b) becomes diag(g, a b / g), g their gcd: rows by (u v / -b/g a/g), columns by (1 1 / -v b/g u
/// a/g).
static void repair(SmithForm& s, int32_t i, int32_t j) {
    IntEntry a = s.core(i, i), b = s.core(j, j), u, v;
    limb* common = scratch_array<limb>(b.n);
    int64_t n = gcd_of_limbs(common, a.at, a.n, b.at, b.n);
    IntEntry g = {common, n, false};
    bezout(a, b, g, &u, &v);
    IntEntry ag = entry_quotient(a, g), bg = entry_quotient(b, g), ua = entry_product(u, ag),
             vb = entry_product(v, bg);
    s.core(i, i) = g;
    s.core(j, j) = entry_product(a, bg);
    if (s.want_rows) {
        combine(s.alpha, true, i, j, {u, v, negative(bg), ag});
        combine(s.alphinv, false, i, j, {ag, bg, negative(v), u});
    }
    if (s.want_columns) {
        combine(s.beta, false, i, j, {k_entry_one, k_entry_one, negative(vb), ua});
        combine(s.betinv, true, i, j, {ua, vb, {k_entry_one.at, 1, true}, k_entry_one});
    }
}

static bool divides(const IntEntry& a, const IntEntry& b) {
    ScratchMark mark = scratch_mark();
    limb* g = scratch_array<limb>(a.n);
    int64_t n = gcd_of_limbs(g, b.at, b.n, a.at, a.n);
    bool whole = limbs_compare(g, n, a.at, a.n) == 0;
    scratch_release(mark);
    return whole;
}

static void with_transformations(Reduction& r) {
    IntGrid a = grid_of(r.m);
    SmithForm s = {{}, identity_grid(a.rows), {}, identity_grid(a.rows), {}, false, false};
    s.want_rows = is_present(r.aux[k_alpha]) || is_present(r.aux[k_alphinv]);
    s.want_columns = is_present(r.aux[k_beta]) || is_present(r.aux[k_betinv]);
    HermiteForm f = hermite_form(a, s.want_columns);
    r.rank = f.rank;
    s.alpha = permutation_grid(f.order, a.rows);
    s.alphinv = transposed(s.alpha);
    s.beta = f.beta;
    s.betinv = f.betinv;
    s.core = corner(f.h, a.rows, f.rank);
    if (f.rank > 0) row_step(s);
    s.core = corner(s.core, f.rank, f.rank);
    while (!is_diagonal(s.core)) {
        column_step(s);
        if (!is_diagonal(s.core)) row_step(s);
    }
    for (int32_t i = 0; i < f.rank; i++)
        for (int32_t j = i + 1; j < f.rank; j++)
            if (!divides(s.core(i, i), s.core(j, j))) repair(s, i, j);
    auto* diagonal = scratch_array<IntEntry>(f.rank);
    for (int32_t k = 0; k < f.rank; k++) diagonal[k] = s.core(k, k);
    store_diagonal(diagonal, r.rank, r.m);
    const IntGrid* results[k_aux_matrices] = {&s.alpha, &s.beta, &s.alphinv, &s.betinv};
    for (int32_t k = 0; k < k_aux_matrices; k++)
        if (is_present(r.aux[k])) store_grid(*results[k], r.aux[k]);
}

// ---- the reductions ------------------------------------------------------------------------------------

static void show_head(const Reduction& r) {
    if (!verbose) return;
    dumpitt("Smith Normal Form, side ", std::min(r.m.rows, r.m.cols), 1, 1, 0);
    decr_dumpitt(1, 1, verbose);
}

void intnormal(Reduction* r, const ReductionOptions* options) {
    if (!integers_alone(*r)) return;
    show_head(*r);
    ScratchMark mark = scratch_mark();
    bool wanted = false;
    for (const LineMatrix& m : r->aux) wanted = wanted || is_present(m);
    if (wanted)
        with_transformations(*r);
    else
        diagonal_alone(*r, nullptr, options->consume);
    scratch_release(mark);
}

void modular_smith(Reduction* r, const ReductionOptions* options) {
    if (!integers_alone(*r)) return;
    const quolynode* given = options->number;
    if (given != nullptr && !given->numb) {
        r->failed = true;
        error(Err::number_expected);
        return;
    }
    show_head(*r);
    ScratchMark mark = scratch_mark();
    IntEntry multiple = given == nullptr ? k_entry_zero : magnitude(int_entry(given->ncoef));
    diagonal_alone(*r, multiple.n == 0 ? nullptr : &multiple, options->consume);
    scratch_release(mark);
}
}  // namespace tolvex
