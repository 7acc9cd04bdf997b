#pragma once
/// poly/div_field.h: division with remainder in the main variable over a field.
///
/// Purpose    n = q m + r with deg r < deg m, where the leading coefficient of m is a number that is a unit.
///            One level: through residue arrays. Several levels: classical, or divide and conquer on the
///            degree (Karatsuba's split of m, after Burnikel and Ziegler).
/// Invariant  no negative exponents, except that fast_mod_and_div clears them.
/// Ownership  operands are kept; old results are given back after the new ones are complete, so a result
///            may be an operand.
/// Modes      pt: the variable of the operands' top level, for coefficients that are modded out.
/// Raises     error 85 when the leading number of m is no unit.
#include "poly/poly.h"
namespace tolvex {
/// Any ring: over Z, a leading number of m other than 1 and -1 is divided as poly_mod_and_div does. cancall:
/// large degrees modulo a prime may take the divide and conquer.
void basic_poly_divide(poly n, poly m, polyptrr q, polyptrr r, boolean cancall, polypt pt = polynames);
/// One level, modular. Large degrees go through arrays.
void simplest_poly_divide(poly n, poly m, polyptrr q, polyptrr r);
/// The divide and conquer; m is monic. from_basic: the caller has seen that there are no negative exponents.
void fast_mod_and_div(poly n, poly m, polyptrr r, polyptrr qt, polypt pt, boolean from_basic);
/// Remainder only, modular.
void poly_div_no_q(poly n, poly m, polyptrr r, polypt pt = polynames);
}  // namespace tolvex
