#include "matrix/row_reduce.h"

#include "matrix/elimination_steps.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/failure.h"
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

static void end_steps(Reduction* r, int32_t rank) {
    r->rank = std::max(rank, 0);
    if (rank >= 0) return;
    r->failed = true;
    error(Err::not_invertible);
}

void rowreduce(Reduction* r, const ReductionOptions* options) {
    ValueFrame f = {*r};
    end_steps(r, row_steps(f, std::max(0, options->count)));
}

void colreduce(Reduction* r, const ReductionOptions* options) {
    transpose_reduction(r);
    rowreduce(r, options);
    transpose_reduction(r);
}

void red_row_ech(Reduction* r, const ReductionOptions*) {
    ValueFrame f = {*r};
    end_steps(r, echelon_steps(f));
}

void normalize(Reduction* r, const ReductionOptions*) {
    ValueFrame f = {*r};
    end_steps(r, normal_steps(f));
}
}  // namespace tolvex
