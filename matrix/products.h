#pragma once
/// matrix/products.h: products of matrices.
///
/// Purpose    the product row by column; over a ring of residues numbers are multiplied as words, with one
///            reduction an element; integers and rational numbers: matrix/int_products.h.
/// Ownership  operands are kept; the result is filled with new values.
/// Raises     poll_interrupt.
#include "matrix/sparse.h"
#include "matrix/work.h"
namespace tolvex {
/// result := a b, where a is rows by inner and b is inner by cols; the slots of result are nil before. Time
/// rows * inner * cols products.
void matrix_mult(workptr a, workptr b, int32_t rows, int32_t inner, int32_t cols, workptr result);
/// result := a b; it is an empty chain of `rows` rows; b has `inner` rows. Time: for each entry of a the
/// length of a row of b, and the merging of those rows.
void sparse_mult(sparseptr a, sparseptr b, int32_t rows, int32_t inner, sparseptr result);
/// a := a + b, entry by entry, or a - b; a is changed in place, b is used up.
void add_sparses(sparseptr a, sparseptr* b, int32_t rows, bool minus);
}  // namespace tolvex
