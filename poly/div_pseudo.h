#pragma once
/// poly/div_pseudo.h: pseudo-division in the main variable.
///
/// Ownership  n and m are kept; results are fresh.
/// Modes      any.
#include "poly/poly.h"
namespace tolvex {
/// coef n = q m + r: one factor lc(m) for each step in which it does not divide.
void num_pseudo_div(poly n, poly m, polyptrr q, polyptrr r, polyptrr coef, polypt pt);
/// The remainder alone. want_Knuth: that of lc(m)^(deg n - deg m + 1) n exactly.
void pseudo_div_no_q(poly n, poly m, polyptrr r, polypt pp, boolean want_Knuth);
}  // namespace tolvex
