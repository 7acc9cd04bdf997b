#pragma once
/// matrix/charpoly.h: characteristic polynomials.
///
/// Purpose    det(x I - A) as a product over the strong components of the matrix. A block of residues modulo
///            a prime or of a table field: matrix/word_charpoly.h; of integers: images modulo word primes,
///            put together until their product exceeds twice a bound of the coefficients; of residues modulo
///            a composite number: lifted to the integers; of rational numbers: cleared of their common
///            denominator; of polynomials without x: its values at points, or matrix/berkowitz.h, what is
///            less work; else the determinant itself.
///            Cost: of a block of side n: the bound has about n log2(n max) / 2 + n log2(max) bits; each 23
///            of them take n^3 products of words.
/// Ownership  elements are only read.
#include "matrix/entries.h"

#include <cstdint>
namespace tolvex {
/// *result := det(x I - A), x the variable of `level`. What *result held is given back.
void characteristic_polynomial(const MatrixEntries& m, int32_t level, quolyptr result);
}  // namespace tolvex
