#pragma once
/// matrix/row_reduce.h: echelon forms by elimination over the field of fractions.
///
/// Purpose    reductions of the record of matrix/reduction.h: dense and sparse, in every ring. Over a
/// composite
///            modulus each pivot is a unit.
/// Ownership  the record takes the result; r->failed tells that an error has come back.
/// Raises     85: entries are left, and none of them is a unit. poll_interrupt.
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
}  // namespace tolvex
