#pragma once
/// poly/div_general.h: exact division of polynomials.
///
/// Ownership  operands are kept; *q is replaced when the quotient is complete; on failure *q is left nil.
#include "poly/poly.h"
namespace tolvex {
/// *q := n / m in the variables from pt on; *failed true if m does not divide n (also: a non-unit, m = 0).
void gen_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean* failed);
/// The same for operands with negative exponents.
void Lpoly_divide(poly n, poly m, polyptrr q, polypt pt, boolean* failed);
/// Laurent division: *q and, unless want_div, *r.
void clear_and_operate(poly n, poly m, polyptrr q, polyptrr r, boolean want_div, polypt pt, boolean* failed);
/// n3 := n1 / n2 in any mode; over Z the truncated quotient.
void quot(const number* n1, const number* n2, imptr n3);
/// n1 := n1 / n2 in place, exact; in modular mode n1 times x, the inverse of n2.
void simple_quot(imptr n1, const number* n2, int32_t x);
void poly_quot(poly n, poly m, polyptrr p);  ///< n / m, m a number that divides every coefficient
/// *n := n / m in place, m a number dividing every coefficient; modular: times the inverse of x, which is m
/// as a residue (error 85 if it is no unit; should that return, *n is 0).
void num_poly_quot(polyptrr n, const number* m, int32_t x);
/// *p := n / m for a number m; *success false (and *p nil) if it does not divide.
void trial_poly_quot(poly n, poly m, polyptrr p, boolean* success);
}  // namespace tolvex
