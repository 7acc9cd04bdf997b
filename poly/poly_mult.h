#pragma once
/// poly/poly_mult.h: the choice of method for a product, and powers.
///
/// Purpose    in order of trial: numbers; one level of residues (simplest_poly_mult; arrays when dense); two
///            dense levels of residues (one array); packed terms (a box of accumulators when the exponents
///            crowd, one long product when they fill the box, otherwise buckets with hash tables); lists term
///            by term, or Karatsuba's method on the lists from polycut terms on.
/// Invariant  results are in normal form also with zero divisors and with negative exponents.
/// Ownership  n and m are kept and never changed; the old *p goes back after the product is complete: *p may
///            be n or m.
/// Modes      any ground ring; laurent.
/// Raises     exponent_too_long when an exponent leaves 32 bits.
#include "poly/poly.h"
namespace tolvex {
/// *p := n m in the variables from pol on (nil: no further variable; then poly_cutoff stands for polycut). n
/// and m may be one pointer (then it squares).
void poly_mult(poly n, poly m, polyptrr p, polypt pol);
/// Modular, one level. size1 = 0: sizes and last exponents are computed; a negative size means sparse.
void simplest_poly_mult(poly n, poly m, polyptrr p, int32_t size1, int32_t size2, int32_t expon,
                        int32_t exp2);
/// *n := *n ^ expont, expont >= 1, in the variables from pol on. A single term directly; in characteristic q
/// and from expont = q on by the digits of expont to the base q; otherwise by squaring.
void compute_power(polyptrr n, int32_t expont, polypt pol);
}  // namespace tolvex
