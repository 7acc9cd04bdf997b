#pragma once
/// matrix/berkowitz.h: characteristic polynomials without divisions.
///
/// Purpose    for rings in which pivots cannot be divided by.
///            Source: S. J. Berkowitz, "On computing the determinant in small parallel time using a small
///            number of processors", Inform. Process. Lett. 18 (1984).
///            Cost: n^4 / 4 products; entries that are 0 save theirs.
/// Raises     poll_interrupt, and what products of polynomials raise.
#include "matrix/growth.h"
#include "poly/poly.h"

#include <cstdint>
namespace tolvex {
/// c[0..n] := the coefficients of det(x I - A), c[k] of x^k, in new polynomials; a is n by n, n >= 1, row by
/// row, with nil for 0, and only read. Any commutative ring.
void berkowitz_charpoly(const poly* a, int32_t n, poly* c);
/// About the nanoseconds of that for n by n entries like those measured.
double berkowitz_work(const EntryMeasure& e, int32_t n);
}  // namespace tolvex
