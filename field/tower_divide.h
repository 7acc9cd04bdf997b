#pragma once
/// field/tower_divide.h: division of polynomials whose coefficients lie in a field tower.
///
/// Purpose    the divisor is first multiplied by what makes its leading field element a number (the first one
///            in the order of the levels); from there on only numbers are divided by. Over Q a multiplier c
///            keeps everything in integers.
/// Ownership  operands are kept, results fresh.
/// Modes      rational or modular; words outside the modular ring have no inverses.
#include "poly/poly.h"
namespace tolvex {
/// The leading field element of p, in the variables from pt on: first coefficients down to the field. Part of
/// p; *level: where it stands.
const polynode* leading_element(const polynode* p, polypt pt, polypt* level);
/// *r := r times a field element after which its leading element is 1, over Q a positive integer. *factor,
/// unless nil, := that element, in the variables from pt on. False, nothing done: the leading element has no
/// inverse.
bool tower_normalise(polyptrr r, polypt pt, polyptrr factor);
/// *r := r divided by its leading element; modular mode. False, nothing done: that has no inverse.
inline bool tower_monic(polyptrr r, polypt pt) { return tower_normalise(r, pt, nullptr); }
/// c n = q m with c > 0, least over Q, 1 in modular mode. False: m does not divide n, or its leading element
/// has no inverse.
bool tower_quotient(poly n, poly m, polyptrr q, polyptrr c, polypt pt);
/// c n = q m + r in the main variable of m, whose leading coefficient is in the field. False: it has no
/// inverse.
bool tower_quotient_rest(poly n, poly m, polyptrr q, polyptrr r, polyptrr c, polypt pt);
}  // namespace tolvex
