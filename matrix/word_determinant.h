#pragma once
/// matrix/word_determinant.h: determinants of matrices of words.
///
/// Purpose    the determinants that all others rest on: of residues modulo a prime or a composite number, of
///            elements of a table field. Matrices are flat, row by row; they are overwritten.
///            Cost: n^3 / 3 products: modulo a prime below 2^23 a fused instruction forms and adds four of
///            them; up to 2^31 it takes two such instructions; in a table field one look-up a product.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// The determinant of a, n by n, n >= 1, over the field; not over an extension of the ring in force.
uint32_t word_determinant(const WordField& f, uint32_t* a, int32_t n);
/// The determinant modulo m >= 2, any number, by the Euclidean algorithm on rows, a unit being the pivot
/// where there is one. Up to n^2 log m / 2 steps on rows more than over a field.
uint32_t euclid_determinant(uint32_t m, uint32_t* a, int32_t n);
}  // namespace tolvex
