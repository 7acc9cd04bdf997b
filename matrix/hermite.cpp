#include "matrix/hermite.h"

#include "matrix/cyclic_lattice.h"
#include "matrix/hermite_modular.h"
#include "matrix/int_determinant.h"
#include "matrix/int_solve.h"
#include "matrix/rank_profile.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "quoly/quoly_basic.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <algorithm>
namespace tolvex {
// ---- elements ------------------------------------------------------------------------------------------

bool integers_alone(Reduction& r) {
    const LineMatrix& m = r.m;
    bool good = true;
    if (m.at != nullptr) {
        for (int64_t k = 0; good && k < int64_t{m.rows} * m.cols; k++) good = m.at[k]->numb;
    } else {
        SparseWalk w = walk_sparse(m.spar, m.flipped ? m.cols : m.rows);
        while (colm_ptrptr t = next_row(w))
            for (const colnode* e = *t; e != nullptr; e = e->next) good = good && e->val->numb;
    }
    if (good) return true;
    r.failed = true;
    error(Err::integers_needed);
    return false;
}

// ---- small matrices: the steps by pivots ---------------------------------------------------------------

namespace {
/// A place of the open block; row -1: none.
struct Pivot {
    int32_t row, column;
};
}  // namespace

static const number* number_at(const Reduction& r, int32_t row, int32_t column) {
    return matrix_element(r.m, row, column)->ncoef;
}

static bool is_unit(const number* x) { return x->size == 1 && (x->head->value == 1 || x->head->value == -1); }

/// The entry of least absolute value, 1 at once, the first one at a tie, of the rows from `from` on in
/// columns first..last.
static Pivot least_entry(const Reduction& r, int32_t from, int32_t first, int32_t last) {
    Pivot best = {-1, -1};
    const number* least = nullptr;
    for (int32_t c = first; c <= last; c++)
        for (int32_t row = from; row < r.m.rows; row++) {
            const number* x = number_at(r, row, c);
            if (iszero(x) || (least != nullptr && !abs_larger(least, x))) continue;
            best = {row, c};
            least = x;
            if (is_unit(x)) return best;
        }
    return best;
}

/// Column c loses trunc(entry / pivot) times the pivot column.
static void reduce_column(Reduction& r, const Pivot& p, int32_t c) {
    number q = {};
    quoly factor = nullptr;
    trunc_divide(number_at(r, p.row, c), number_at(r, p.row, p.column), &q, nullptr);
    if (!iszero(&q)) {
        scalar_to_quoly(&q, &factor);
        quoly_inplace(factor);
        reduction_add_column(r, c, factor, p.column);
        free_quoly(&factor);
    }
    free_num(&q);
}

/// One round over the open columns; a smaller entry that appears becomes the pivot at once. True: the row of
/// the pivot is clear.
static bool clear_pivot_row(Reduction& r, int32_t i, Pivot* p) {
    for (int32_t c = i; c < r.m.cols; c++) {
        if (c == p->column || iszero(number_at(r, p->row, c))) continue;
        poll_interrupt();
        reduce_column(r, *p, c);
        Pivot least = least_entry(r, i, c, c);
        if (least.row < 0 || !abs_larger(number_at(r, p->row, p->column), number_at(r, least.row, c)))
            continue;
        *p = least;
        return false;
    }
    return true;
}

/// Entries to the left of pivot i go to 0..pivot - 1.
static void reduce_row_left(Reduction& r, int32_t i) {
    for (int32_t c = 0; c < i; c++) {
        reduce_column(r, {i, i}, c);
        if (number_at(r, i, c)->head->value < 0) reduction_add_column(r, c, quol_num_1, i);
    }
}

static void hermite_by_steps(Reduction& r) {
    int32_t most = std::min(r.m.rows, r.m.cols);
    for (r.rank = 0; r.rank < most; r.rank++) {
        int32_t i = r.rank;
        Pivot p = least_entry(r, i, i, r.m.cols - 1);
        if (p.row < 0) break;
        while (!clear_pivot_row(r, i, &p)) {
        }
        reduction_exchange_rows(r, i, p.row);
        reduction_exchange_columns(r, i, p.column);
        if (number_at(r, i, i)->head->value < 0) reduction_negate_column(r, i);
    }
    for (int32_t i = 1; i < r.rank; i++) reduce_row_left(r, i);
}

// ---- the engine ----------------------------------------------------------------------------------------

/// The rows that depend on the first ones, by the rational combinations of independent columns.
static void add_dependent_rows(const IntGrid& ordered, const RankProfile& p, const IntGrid& top,
                               const IntEntry& d, IntGrid& h) {
    int32_t left = ordered.rows - p.rank;
    if (left == 0) return;
    IntGrid minor = grid_part(ordered, nullptr, p.rank, p.column, p.rank);
    IntGrid scaled = zero_grid(p.rank, p.rank);
    for (int64_t k = 0; k < int64_t{p.rank} * p.rank; k++) scaled.at[k] = entry_product(top.at[k], d);
    IntGrid x = solve_integers(minor, scaled, d);
    auto* rows = scratch_array<int32_t>(left);
    for (int32_t k = 0; k < left; k++) rows[k] = p.rank + k;
    IntGrid product = grid_product(grid_part(ordered, rows, left, p.column, p.rank), x);
    for (int32_t r = 0; r < left; r++)
        for (int32_t c = 0; c < p.rank; c++) h(p.rank + r, c) = exact_entry_quotient(product(r, c), d);
}

/// The independent rows, and below them unit rows for the columns that carry no rank: square, of the same
/// determinant up to the sign.
static IntGrid completed(const IntGrid& ordered, const RankProfile& p) {
    IntGrid square = zero_grid(ordered.cols, ordered.cols);
    for (int32_t r = 0; r < p.rank; r++)
        for (int32_t c = 0; c < ordered.cols; c++) square(r, c) = ordered(r, c);
    for (int32_t r = p.rank; r < ordered.cols; r++) square(r, p.column[r]) = k_entry_one;
    return square;
}

static void copy_corner(const IntGrid& from, int32_t rows, int32_t cols, IntGrid& to) {
    for (int32_t r = 0; r < rows; r++)
        for (int32_t c = 0; c < cols; c++) to(r, c) = from(r, c);
}

/// True if all entries above the diagonal are 0, or all below it; *det: the absolute value of the determinant
/// then.
static bool is_triangular(const IntGrid& a, IntEntry* det) {
    bool lower = true, upper = true;
    for (int32_t r = 0; r < a.rows; r++)
        for (int32_t c = 0; c < a.cols; c++) {
            if (a(r, c).n == 0) continue;
            lower = lower && c <= r;
            upper = upper && c >= r;
        }
    if (!lower && !upper) return false;
    *det = k_entry_one;
    for (int32_t k = 0; k < a.rows; k++) *det = entry_product(*det, a(k, k));
    det->negative = false;
    return true;
}

/// The form of a square matrix that is not singular; *det: the absolute value of its determinant.
static IntGrid square_form(const IntGrid& a, IntEntry* det) {
    if (is_triangular(a, det)) return modular_hermite(a, *det);
    CyclicLattice l = cyclic_lattice(a);
    *det = l.index;
    if (entry_bits(l.index) == 1) return identity_grid(a.rows);
    return l.cyclic ? cyclic_hermite(l, a.rows) : modular_hermite(a, l.index);
}

/// The form of the independent rows; *det: a minor of theirs.
static IntGrid form_of_top(const IntGrid& ordered, const RankProfile& p, IntEntry* det) {
    IntGrid top = grid_part(ordered, nullptr, p.rank, nullptr, ordered.cols);
    if (p.rank == ordered.cols) return square_form(top, det);
    *det = entry_determinant(grid_part(ordered, nullptr, p.rank, p.column, p.rank).at, p.rank);
    det->negative = false;
    return modular_hermite(top, *det);
}

HermiteForm hermite_form(const IntGrid& a, bool with_beta) {
    RankProfile p = rank_profile(a);
    HermiteForm f = {p.rank, p.row, zero_grid(a.rows, a.cols), {}, {}};
    IntGrid ordered = grid_part(a, p.row, a.rows, nullptr, a.cols);
    if (p.rank == 0) {
        f.beta = f.betinv = identity_grid(with_beta ? a.cols : 0);
        return f;
    }
    IntEntry det;
    if (!with_beta) {
        IntGrid top = form_of_top(ordered, p, &det);
        copy_corner(top, p.rank, p.rank, f.h);
        add_dependent_rows(ordered, p, top, det, f.h);
        return f;
    }
    IntGrid square = completed(ordered, p), form = square_form(square, &det);
    f.beta = solve_integers(square, form, det);
    f.betinv = solve_lower(form, square);
    copy_corner(form, p.rank, p.rank, f.h);
    if (p.rank < a.rows) {
        IntGrid product = grid_product(ordered, f.beta);
        for (int32_t r = p.rank; r < a.rows; r++)
            for (int32_t c = 0; c < p.rank; c++) f.h(r, c) = product(r, c);
    }
    return f;
}

static void hermite_by_engine(Reduction& r) {
    ScratchMark mark = scratch_mark();
    bool with_beta = is_present(r.aux[k_beta]) || is_present(r.aux[k_betinv]);
    HermiteForm f = hermite_form(grid_of(r.m), with_beta);
    r.rank = f.rank;
    store_grid(f.h, r.m);
    IntGrid order = permutation_grid(f.order, r.m.rows);
    if (is_present(r.aux[k_alpha])) store_grid(order, r.aux[k_alpha]);
    if (is_present(r.aux[k_alphinv])) store_grid(transposed(order), r.aux[k_alphinv]);
    if (is_present(r.aux[k_beta])) store_grid(f.beta, r.aux[k_beta]);
    if (is_present(r.aux[k_betinv])) store_grid(f.betinv, r.aux[k_betinv]);
    scratch_release(mark);
}

void intcolred(Reduction* r, const ReductionOptions*) {
    constexpr int32_t k_small = 12;
    if (!integers_alone(*r)) return;
    if (verbose) {
        dumpitt("Hermite Normal Form, side ", std::min(r->m.rows, r->m.cols), 1, 1, 0);
        decr_dumpitt(1, 1, verbose);
    }
    if (r->m.rows <= k_small && r->m.cols <= k_small)
        hermite_by_steps(*r);
    else
        hermite_by_engine(*r);
}
}  // namespace tolvex
