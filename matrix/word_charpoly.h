#pragma once
/// matrix/word_charpoly.h: characteristic polynomials of matrices of words.
///
/// Purpose    the images of which characteristic polynomials are put together.
///            Cost: n^3 / 3 products for each of the two halves of a similarity that leaves zeros below the
///            subdiagonal, and n^3 / 6 for the recurrence over what is left: in floating point up to 2^26, in
///            words above.
///            Source: H. Cohen, "A Course in Computational Algebraic Number Theory", algorithm 2.2.9
///            (Hessenberg).
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// c[0..n] := the coefficients of det(x I - A), c[k] of x^k; a is n by n, n >= 1, row by row, and only read.
/// Over a prime field or the table field in force. 16 n^2 bytes of scratch.
void word_charpoly(const WordField& f, const uint32_t* a, int32_t n, uint32_t* c);
}  // namespace tolvex
