#pragma once
/// poly/poly_mult_internal.h: the methods behind poly_mult. For poly_mult_*.cpp and their tests.
#include "poly/poly_mult.h"
namespace tolvex {
void simple_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p);
void simplest_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p);
void fastest_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p);
void k_fastest_poly_mult(poly n, poly m, polyptrr p);
boolean try_fast_2_var(poly n, poly m);
void fastest_poly2_mult(poly n, poly m, polyptrr p);
void karatsuba_poly_mult(poly n, poly m, polyptrr p, polypt pol);
/// The packed method: exponents in words, coefficients in word accumulators. False: does not apply, nothing
/// done.
bool packed_poly_mult(poly n, poly m, polyptrr p);
}  // namespace tolvex
