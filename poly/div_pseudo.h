#pragma once
/// poly/div_pseudo.h: pseudo-division in the main variable.
#include "poly/poly.h"
namespace tolvex {
/// One factor lc(m) for each step in which it does not divide; want_rem: *q is left alone. *r is always
/// given.
void pseudo_div(poly n, poly m, polyptrr q, polyptrr r, boolean want_rem, polypt pt);
/// want_Knuth: the remainder of lc(m)^(deg n - deg m + 1) n exactly.
void pseudo_div_no_q(poly n, poly m, polyptrr r, polypt pp, boolean want_Knuth);
void num_pseudo_div(poly n, poly m, polyptrr q, polyptrr r, polyptrr coef, polypt pt);  ///< coef n = q m + r
}  // namespace tolvex
