#pragma once
/// poly/div_user.h: quotient and remainder as the user means them: `\` and `|`.
#include "poly/poly.h"
namespace tolvex {
void poly_mod_and_div(poly n, poly m, polyptrr r, polyptrr qt, polypt pt);
void poly_mod_or_div(poly n, poly m, polyptrr p, char which,
                     polypt pt);  ///< which: '\\' quotient, '|' remainder
void mod_or_div(const number* n, const number* m, imptr p, char which);  ///< numbers; error 22 for m = 0
void mod_and_div(const number* n, const number* m, imptr q,
                 imptr r);  ///< n = q m + r with the remainder of `|`
}  // namespace tolvex
