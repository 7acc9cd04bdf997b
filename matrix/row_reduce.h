#pragma once
/// matrix/row_reduce.h: echelon forms by elimination over the field of fractions.
///
/// Purpose    reductions of the record of matrix/reduction.h: dense and sparse, in every ring. Over a
///            composite modulus each pivot is a unit.
/// Ownership  the record takes the result; r->failed tells that an error has come back.
/// Raises     375: a sparse matrix of more than 50000 rows or columns; 85: entries are left, and none of them
///            is a unit. poll_interrupt.
#include "matrix/reduction.h"
namespace tolvex {
/// Rows: zeros below the diagonal in the first rank columns, zero rows last; columns are exchanged, no row is
/// divided. options.count: at most so many pivots.
void rowreduce(Reduction* r, const ReductionOptions* options);
/// The same on columns: that of the transpose, turned back.
void colreduce(Reduction* r, const ReductionOptions* options);
/// The reduced row echelon form, which is unique: pivots 1, zeros above and below them, zero rows last.
void red_row_ech(Reduction* r, const ReductionOptions* options);
/// By rows and columns to the identity of size rank, zeros elsewhere.
void normalize(Reduction* r, const ReductionOptions* options);
/// r->value: the product of the pivots of rowreduce, a minor of size rank that is not 0: its absolute value,
/// its leading coefficient positive, or the residue itself; 1 for the zero matrix. extra[0], extra[1]: the
/// rows and columns of the minor, counted as the user does, as columns. Error 122: the matrix is dense.
void pseudo_determinant(Reduction* r, const ReductionOptions* options);
}  // namespace tolvex
