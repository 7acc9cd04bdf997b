#include "matrix/row_reduce.h"

#include "matrix/elimination_steps.h"
#include "matrix/fraction_free.h"
#include "matrix/matrix_modes.h"
#include "matrix/word_reduce.h"
#include "numbers/num_assign.h"
#include "numbers/residue.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/failure.h"
#include "storage/scratch.h"
namespace tolvex {
namespace {
/// The record itself as a frame of values.
struct ValueFrame {
    Reduction& r;

    int32_t rows() const { return r.m.rows; }
    int32_t cols() const { return r.m.cols; }
    PivotSearch block_pivot(int32_t i, int32_t* row, int32_t* column) const {
        return findbest(r.m, {i, i, rows(), cols()}, row, column);
    }
    PivotSearch column_pivot(int32_t i, int32_t c, int32_t* row) const {
        int32_t column = 0;
        return findbest(r.m, {i, c, rows(), c + 1}, row, &column);
    }
    void exchange_rows(int32_t i, int32_t j) { reduction_exchange_rows(r, i, j); }
    void exchange_columns(int32_t i, int32_t j) { reduction_exchange_columns(r, i, j); }

    void clear_rows(int32_t k, int32_t c, int32_t from) {
        quoly pivot = matrix_element(r.m, k, c);
        for (int32_t q = from; q < rows(); q++) {
            quoly e = matrix_element(r.m, q, c);
            if (q == k || quoly_iszero(e)) continue;
            quoly f = nullptr;
            quoly_quot(e, pivot, &f, 0);
            quoly_inplace(f);
            reduction_add_row(r, q, f, k);
            free_quoly(&f);
        }
    }
    void make_monic(int32_t k, int32_t c) {
        quoly pivot = matrix_element(r.m, k, c);
        if (quoly_equal(pivot, quol_num_1)) return;
        quoly over = nullptr;
        quoly_assign(pivot, &over);
        quoly_reciprocal(&over);
        reduction_scale_row(r, k, over);
        free_quoly(&over);
    }
    void clear_columns(int32_t k) {
        for (int32_t c = k + 1; c < cols(); c++) {
            quoly e = matrix_element(r.m, k, c);
            if (quoly_iszero(e)) continue;
            quoly f = nullptr;
            quoly_makeneg(e, &f);
            reduction_add_column(r, c, f, k);
            free_quoly(&f);
        }
    }
};
}  // namespace

/// The steps, on words where the entries are residues.
static void run_steps(Reduction* r, WordSteps steps, int32_t cut) {
    if (r->m.at == nullptr && std::max(r->m.rows, r->m.cols) > k_most_pivot_rows)
        return fail_reduction(r, Err::sparse_rows);
    int32_t rank;
    if (fits_words(*r)) {
        rank = reduce_words(r, steps, cut);
    } else if (steps == WordSteps::echelon && fits_exact_echelon(*r)) {
        rank = exact_echelon(r);
    } else {
        ValueFrame f = {*r};
        rank = steps == WordSteps::rows      ? row_steps(f, cut)
               : steps == WordSteps::echelon ? echelon_steps(f)
                                             : normal_steps(f);
    }
    r->rank = std::max(rank, 0);
    if (rank < 0) fail_reduction(r, Err::not_invertible);
}

void rowreduce(Reduction* r, const ReductionOptions* options) {
    run_steps(r, WordSteps::rows, std::max(0, options->count));
}

void colreduce(Reduction* r, const ReductionOptions* options) {
    transpose_reduction(r);
    rowreduce(r, options);
    transpose_reduction(r);
}

void red_row_ech(Reduction* r, const ReductionOptions*) { run_steps(r, WordSteps::echelon, 0); }

void normalize(Reduction* r, const ReductionOptions*) { run_steps(r, WordSteps::normal, 0); }

// ---- the pseudo-determinant ----------------------------------------------------------------------------

static int32_t* first_numbers(int32_t n) {
    auto* numbers = scratch_array<int32_t>(n);
    for (int32_t k = 0; k < n; k++) numbers[k] = k;
    return numbers;
}

/// The first `rank` numbers in rising order, as a column of at least one element.
static LineMatrix column_of_numbers(int32_t* numbers, int32_t rank) {
    LineMatrix m = new_sparse_matrix(std::max(rank, 1), 1);
    std::sort(numbers, numbers + rank);
    for (int32_t k = 0; k < rank; k++) {
        quoly q = nullptr;
        int64_t value = user_number(numbers[k]);
        quoly_set(0, &q);
        setvalue_any(modularmode ? residue_of_int(value) : value, q->ncoef);
        set_matrix_element(m, k, 0, q);
    }
    return m;
}

void pseudo_determinant(Reduction* r, const ReductionOptions*) {
    if (r->m.at != nullptr) return fail_reduction(r, Err::sparse_matrix_needed);
    ScratchMark mark = scratch_mark();
    int32_t *rows = first_numbers(r->m.rows), *columns = first_numbers(r->m.cols);
    r->row_number = rows;
    r->column_number = columns;
    run_steps(r, WordSteps::rows, INT32_MAX);
    r->row_number = r->column_number = nullptr;
    if (!r->failed) {
        quoly_set(1, &r->value);
        for (int32_t k = 0; k < r->rank; k++) fast_quoly_mult(&r->value, matrix_element(r->m, k, k));
        if (!modularmode) quoly_abs(r->value);
        r->extra[0] = column_of_numbers(rows, r->rank);
        r->extra[1] = column_of_numbers(columns, r->rank);
    }
    scratch_release(mark);
}
}  // namespace tolvex
