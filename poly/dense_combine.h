#pragma once
/// poly/dense_combine.h: linear combinations of many rows of residues: a product of matrices.
///
/// Purpose    the step of modular composition that is quadratic in the degree (Brent and Kung, "Fast
///            algorithms for manipulating formal power series", 1978).
/// Modes      any field f but extensions (f.ext is nil). The processor rounds to nearest.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// out[i][0..n) := the sum over k < count of coef[i][k] row[k][0..n), 0 <= i < rows; all three are stored row
/// by row. rows count n products in floating point, twice that from moduli of about 2^23 on; polls.
void combine_rows(const WordField& f, const uint32_t* coef, int32_t rows, int32_t count, const uint32_t* row,
                  int32_t n, uint32_t* out);
}  // namespace tolvex
