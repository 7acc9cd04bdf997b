#include "matrix/fraction_free.h"

#include "gcd/word_gcd.h"
#include "matrix/denominators.h"
#include "matrix/int_echelon.h"
#include "matrix/pivots.h"
#include "poly/poly_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
struct FractionFree {
    Reduction& r;
    LineMatrix& lower;
    bool all_columns;
    quoly previous;  // the pivot before, nil: 1; it belongs to m
};
bool has_denominator(const quolynode* q) { return !q->numb && q->denom != nullptr; }
}  // namespace

static bool any_denominator(const LineMatrix& m) {
    if (m.at != nullptr) return std::any_of(m.at, m.at + int64_t{m.rows} * m.cols, has_denominator);
    bool numbers = false;
    return !sparse_allpolys(m.spar, m.rows, &numbers);
}

/// In alphinv: column k += e / p column i, then column i times previous / p.
static void change_inverse(FractionFree& x, int32_t k, int32_t i, quoly e, quoly pivot) {
    LineMatrix& inverse = x.r.aux[k_alphinv];
    if (!is_present(inverse)) return;
    quoly factor = nullptr;
    quoly_quot(e, pivot, &factor, 0);
    add_line(inverse, false, k, factor, i);
    quoly_quot(x.previous == nullptr ? quol_num_1 : x.previous, pivot, &factor, 0);
    scale_line(inverse, false, i, factor);
    free_quoly(&factor);
}

/// Row i := (pivot row i + minus_e row k) / previous, exact; previous nil: 1.
static void change_row(LineMatrix& m, int32_t k, int32_t i, quoly minus_e, quoly pivot, quoly previous) {
    if (!is_present(m)) return;
    scale_line(m, true, i, pivot);
    if (!quoly_iszero(minus_e)) add_line(m, true, i, minus_e, k);
    if (previous != nullptr) divide_line(m, true, i, previous);
}

/// Step k: the rows below its pivot, at (k, k).
static void step(FractionFree& x, int32_t k) {
    Reduction& r = x.r;
    quoly pivot = matrix_element(r.m, k, k);
    for (int32_t i = k; i < r.m.rows; i++) {
        quoly e = nullptr;
        quoly_assign(matrix_element(r.m, i, k), &e);
        if (i > k) {
            quoly minus_e = nullptr;
            quoly_makeneg(e, &minus_e);
            change_row(r.m, k, i, minus_e, pivot, x.previous);
            change_row(r.aux[k_alpha], k, i, minus_e, pivot, x.previous);
            free_quoly(&minus_e);
            change_inverse(x, k, i, e, pivot);
        }
        set_matrix_element(x.lower, i, k, e);
    }
    x.previous = pivot;
}

/// The pivots, a column of at least one element.
static void take_pivots(Reduction* r) {
    r->extra[0] = new_matrix(r->m, std::max(r->rank, 1), 1);
    for (int32_t k = 0; k < r->rank; k++) {
        quoly copy = nullptr;
        quoly_assign(matrix_element(r->m, k, k), &copy);
        set_matrix_element(r->extra[0], k, 0, copy);
    }
}

/// Pivots until none is left; -1: no unit.
static int32_t steps(FractionFree& x) {
    Reduction& r = x.r;
    int32_t last = std::min(r.m.rows, r.m.cols), k = 0;
    for (; k < last; k++) {
        int32_t row = 0, column = 0;
        PivotSearch found = findbest(r.m, {k, k, r.m.rows, x.all_columns ? r.m.cols : k + 1}, &row, &column);
        if (found == PivotSearch::none) break;
        if (found == PivotSearch::no_unit) return -1;
        reduction_exchange_rows(r, k, row);
        exchange_lines(x.lower, true, k, row);
        reduction_exchange_columns(r, k, column);
        step(x, k);
        poll_interrupt();
    }
    return k;
}

static void decompose(Reduction* r, bool all_columns) {
    if (any_denominator(r->m)) return fail_reduction(r, Err::rational_function_argument);
    r->extra[1] = new_matrix(r->m, r->m.rows, std::min(r->m.rows, r->m.cols));
    FractionFree x = {*r, r->extra[1], all_columns, nullptr};
    int32_t rank = steps(x);
    r->rank = std::max(rank, 0);
    if (rank < 0) return fail_reduction(r, Err::not_invertible);
    take_pivots(r);
    cut_columns(&r->extra[1], std::max(rank, 1));
}

void fract_free_lu(Reduction* r, const ReductionOptions*) { decompose(r, false); }
void fract_free_lu_columns(Reduction* r, const ReductionOptions*) { decompose(r, true); }

// ---- echelon forms -------------------------------------------------------------------------------------

bool fits_exact_echelon(const Reduction& r) {
    return r.m.at != nullptr && !is_present(r.aux[k_alphinv]) && !ring_is_composite() && !laurent &&
           field_depth == 0 && pseudo_polynames == nullptr;
}

/// Rows are multiplied by what makes them free of denominators.
static void clear_rows_of_denominators(Reduction* r) {
    int32_t rows = r->m.rows, cols = r->m.cols;
    ScratchMark mark = scratch_mark();
    auto* line = scratch_array<quoly>(cols);
    for (int32_t i = 0; i < rows; i++) {
        for (int32_t c = 0; c < cols; c++) line[c] = r->m.at[i + int64_t{c} * rows];
        if (std::none_of(line, line + cols, has_denominator)) continue;
        quoly multiple = nullptr;
        quoly_set(1, &multiple);
        for (int32_t c = 0; c < cols; c++) r->m.at[i + int64_t{c} * rows] = nullptr;
        clear_line(line, cols, &multiple);
        for (int32_t c = 0; c < cols; c++) r->m.at[i + int64_t{c} * rows] = line[c];
        if (is_present(r->aux[k_alpha])) scale_line(r->aux[k_alpha], true, i, multiple);
        free_quoly(&multiple);
        poll_interrupt();
    }
    scratch_release(mark);
}

/// All rows but k lose their elements in the column; the pivots before, all equal to `previous`, become that
/// of row k.
static void clear_all_rows(Reduction* r, int32_t k, int32_t column, quoly pivot, quoly previous) {
    for (int32_t i = 0; i < r->m.rows; i++) {
        if (i == k) continue;
        quoly minus_e = nullptr;
        quoly_makeneg(matrix_element(r->m, i, column), &minus_e);
        change_row(r->m, k, i, minus_e, pivot, previous);
        change_row(r->aux[k_alpha], k, i, minus_e, pivot, previous);
        free_quoly(&minus_e);
    }
}

int32_t exact_echelon(Reduction* r) {
    clear_rows_of_denominators(r);
    quoly previous = nullptr;
    int32_t rank = 0;
    if (fits_int_echelon(*r) && int_echelon(r, &rank)) return rank;
    for (int32_t c = 0; c < r->m.cols && rank < r->m.rows; c++) {
        int32_t row = 0, column = 0;
        poll_interrupt();
        if (findbest(r->m, {rank, c, r->m.rows, c + 1}, &row, &column) != PivotSearch::found) continue;
        reduction_exchange_rows(*r, rank, row);
        quoly pivot = nullptr;
        quoly_assign(matrix_element(r->m, rank, c), &pivot);
        clear_all_rows(r, rank++, c, pivot, previous);
        free_quoly(&previous);
        previous = pivot;
    }
    for (int32_t k = 0; k < rank && !quoly_equal(previous, quol_num_1); k++) {
        quotient_line(r->m, true, k, previous);
        if (is_present(r->aux[k_alpha])) quotient_line(r->aux[k_alpha], true, k, previous);
    }
    free_quoly(&previous);
    return rank;
}
}  // namespace tolvex
