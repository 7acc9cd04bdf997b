#pragma once
/// matrix/float_lu.h: elimination of matrices of residues in blocks, in floating point. Private to matrix/.
///
/// Purpose    products of blocks are exact sums of floating-point products, reduced once.
///            Source: J.-G. Dumas, P. Giorgi, C. Pernet, "Dense linear algebra over word-size prime fields:
///            the FFLAS and FFPACK packages", ACM TOMS 35 (2008).
/// Modes      the processor rounds to nearest.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// The determinant of a, n by n, row by row, residues of a prime below 2^31. a is only read. n^3 / 3
/// products, 8 n^2 bytes of scratch.
uint32_t float_lu_determinant(const WordField& f, const uint32_t* a, int32_t n);
}  // namespace tolvex
