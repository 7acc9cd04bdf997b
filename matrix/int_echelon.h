#pragma once
/// matrix/int_echelon.h: the reduced row echelon form of integers through images modulo primes.
///
/// Purpose    the columns of the pivots are found modulo one prime; the others are combinations of them,
///            whose coefficients Cramer's rule gives as fractions with one denominator.
///            Proof: the rank is proved by the bound of larger minors; rows of that rank in echelon form that
///            span the same space are the reduced form, which is unique. Zeros in the wrong places show that
///            the prime was unlucky.
///            Cost: rank^2 columns products of words for each 31 bits of Hadamard's bound.
/// Raises     poll_interrupt; the matrix is changed when all is known.
#include "matrix/reduction.h"
namespace tolvex {
/// True for a dense matrix of integers, large enough, none of whose matrices of operations is wanted.
bool fits_int_echelon(const Reduction& r);
/// m := its reduced row echelon form, *rank := its rank. False, and nothing has changed: the prime was
/// unlucky.
bool int_echelon(Reduction* r, int32_t* rank);
}  // namespace tolvex
