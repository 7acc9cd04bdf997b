#pragma once
/// tests/unit/gcd/remainder_gcd.h: the plain subresultant remainder sequence, a second method for tests.
#include "poly/poly.h"
namespace tolvex::test {
/// The gcd of two polynomials of positive degree in the main variable, primitive there, up to units; it is
/// primitive.
poly prs_gcd(poly u, poly v, polypt pt);
}  // namespace tolvex::test
