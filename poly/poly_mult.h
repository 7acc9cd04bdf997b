#pragma once
/// poly/poly_mult.h: the choice of method for a product, and powers.
#include "poly/poly.h"
namespace tolvex {
/// *p := n m in the variables from pol on. *p may be n or m. n and m may be one pointer (then it squares).
void poly_mult(poly n, poly m, polyptrr p, polypt pol);
/// Modular, one level. size1 = 0: sizes and last exponents are computed; a negative size means sparse.
void simplest_poly_mult(poly n, poly m, polyptrr p, int32_t size1, int32_t size2, int32_t expon,
                        int32_t exp2);
/// *n := n^expont, expont >= 1, in the variables from pol on.
void compute_power(polyptrr n, int32_t expont, polypt pol);
}  // namespace tolvex
