#pragma once
/// poly/div_user.h: quotient and remainder as the user means them: `\` and `|`.
///
/// Ownership  operands are kept; results are fresh.
/// Raises     22 for a divisor 0.
#include "poly/poly.h"
namespace tolvex {
void poly_mod_and_div(poly n, poly m, polyptrr r, polyptrr qt, polypt pt);  ///< both: n = qt m + r
/// which: '\\' quotient, '|' remainder.
void poly_mod_or_div(poly n, poly m, polyptrr p, char which, polypt pt);
void mod_or_div(const number* n, const number* m, imptr p, char which);  ///< numbers; error 22 for m = 0
/// n = q m + r with the remainder of `|`.
void mod_and_div(const number* n, const number* m, imptr q, imptr r);
}  // namespace tolvex
