#pragma once
/// matrix/reduction.h: a matrix under reduction, with the matrices of the row and column operations so far.
///
/// Purpose    the common record of all reductions: echelon forms, normal forms, fraction-free elimination. A
///            reduction works on a private copy by elementary steps; each step keeps the invariant.
/// Invariant  alpha A beta = m, alpha alphinv = 1, beta betinv = 1, where A is the matrix as it came and m as
///            it stands now. A matrix of operations that is not wanted is absent. All are dense, or all are
///            sparse.
/// Ownership  the record owns all elements; drop_reduction() gives them back, at any moment between two
///            steps.
/// Raises     poll_interrupt within steps; the record is whole then.
#include "matrix/sparse.h"
#include "storage/failure.h"

#include <cstdint>
namespace tolvex {
/// A matrix whose lines are added and exchanged. Rows and columns count from 0.
struct LineMatrix {
    quoly* at;       // dense: column by column, no element nil; else nil
    sparseptr spar;  // sparse: its chain; nil as well: the matrix is absent
    int32_t rows, cols;
    bool flipped;  // sparse: the chain is that of the transpose, so that steps on columns are merges of rows
};
inline bool is_present(const LineMatrix& m) { return m.at != nullptr || m.spar != nullptr; }

/// The matrices of operations, in the order in which the user names them.
enum AuxMatrix : int32_t { k_alpha, k_beta, k_alphinv, k_betinv, k_aux_matrices };
inline constexpr int32_t k_extra_matrices = 2;
inline constexpr int32_t k_most_pivot_rows = 50000;  // rows and columns of a sparse matrix that is eliminated

struct Reduction {
    LineMatrix m;
    LineMatrix aux[k_aux_matrices];
    LineMatrix extra[k_extra_matrices];  // further results of some reductions: pivots, lists of rows
    int32_t rank;
    quoly value;                          // the value of the function; nil: the rank
    bool failed;                          // an error has come back: nothing is to be stored
    int32_t *row_number, *column_number;  // which rows and columns of A stand there now; nil: nobody asks
};
/// What stands behind the matrices, and the sign in front.
struct ReductionOptions {
    int32_t count;  // a number of pivots; the greatest word: not given
    quoly number;   // a value; nil: not given. It belongs to the caller.
    bool consume;   // "*"
};

// ---- matrices ------------------------------------------------------------------------------------------

/// A dense matrix of zeros; a sparse one without entries.
LineMatrix new_dense_matrix(int32_t rows, int32_t cols);
LineMatrix new_sparse_matrix(int32_t rows, int32_t cols);
/// One of the kind of `like`.
inline LineMatrix new_matrix(const LineMatrix& like, int32_t rows, int32_t cols) {
    return like.at != nullptr ? new_dense_matrix(rows, cols) : new_sparse_matrix(rows, cols);
}
/// Gives back the elements; absent afterwards.
void drop_matrix(LineMatrix* m);
/// Element (r, c), to be read only.
quoly matrix_element(const LineMatrix& m, int32_t r, int32_t c);
/// Element (r, c) becomes the value, which is used up.
void set_matrix_element(LineMatrix& m, int32_t r, int32_t c, quoly value);
/// m := its transpose.
void transpose_matrix(LineMatrix* m);
/// The first columns alone stay; those behind them hold zeros.
void cut_columns(LineMatrix* m, int32_t cols);
/// A sparse matrix gets its own chain instead of that of its transpose.
void unflip_matrix(LineMatrix* m);

/// Row (or column) q += f times row (or column) k; q and k differ. Time: the elements of the line; of a
/// sparse matrix, across its chain, all rows.
void add_line(LineMatrix& m, bool rows, int32_t q, quoly f, int32_t k);
void exchange_lines(LineMatrix& m, bool rows, int32_t i, int32_t j);
void scale_line(LineMatrix& m, bool rows, int32_t k, quoly f);
void negate_line(LineMatrix& m, bool rows, int32_t k);
/// Every element becomes its quotient by d.
void quotient_line(LineMatrix& m, bool rows, int32_t k, quoly d);
/// The same where all quotients are known to be exact.
void divide_line(LineMatrix& m, bool rows, int32_t k, quoly d);
/// The row of a sparse chain at `to` += f times the row `from`.
void sparse_row_add(colm_ptrptr to, const colnode* from, quoly f);

// ---- the record ----------------------------------------------------------------------------------------

/// r.m has been set, all else is 0: the wanted matrices of operations become identities.
void begin_reduction(Reduction* r, const bool want[k_aux_matrices]);
/// The chains of flipped matrices are turned: the results can be taken out.
void settle_reduction(Reduction* r);
void drop_reduction(Reduction* r);
/// Raises the error; if that comes back the record has failed.
void fail_reduction(Reduction* r, Err code);
/// The reduction of the transpose of A: m becomes its transpose, alpha that of beta, and so on.
void transpose_reduction(Reduction* r);

/// Row q += f row k, column q += f column k; f is kept.
void reduction_add_row(Reduction& r, int32_t q, quoly f, int32_t k);
void reduction_add_column(Reduction& r, int32_t q, quoly f, int32_t k);
/// Rows (columns) i and j change places; nothing happens if i = j.
void reduction_exchange_rows(Reduction& r, int32_t i, int32_t j);
void reduction_exchange_columns(Reduction& r, int32_t i, int32_t j);
/// Row (column) k times f, a unit.
void reduction_scale_row(Reduction& r, int32_t k, quoly f);
void reduction_scale_column(Reduction& r, int32_t k, quoly f);
/// Row (column) k changes its sign.
void reduction_negate_row(Reduction& r, int32_t k);
void reduction_negate_column(Reduction& r, int32_t k);
}  // namespace tolvex
