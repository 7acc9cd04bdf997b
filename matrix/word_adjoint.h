#pragma once
/// matrix/word_adjoint.h: inverses and adjoints of matrices of words.
///
/// Purpose    what the inverses and adjoints of numbers and polynomials are put together from.
///            Cost: n^3 products; an adjoint of a singular matrix 7/3 n^3.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// a, n by n, row by row, over the field, := its inverse; returns the determinant. 0: a is singular, and
/// holds nothing of use.
uint32_t word_inverse(const WordField& f, uint32_t* a, int32_t n);
/// a := its adjoint, the transpose of the matrix of its cofactors; returns the determinant.
uint32_t word_adjoint(const WordField& f, uint32_t* a, int32_t n);
}  // namespace tolvex
