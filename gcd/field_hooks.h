#pragma once
/// gcd/field_hooks.h: what the gcd asks of the layer of field towers. Declared here, defined in field/.
///
/// Purpose    plain gcds meet field elements in one step of the driver and hand the operands over here.
/// Ownership  operands are kept and results fresh; what stands behind a pointer to a polynomial is replaced.
/// Modes      a tower is in force: field_depth is positive.
#include "poly/poly.h"
namespace tolvex {
/// *r := the gcd in normal form of u and v, in the variables from pt on; a field element occurs in one of
/// them, neither is a number. Proved. Where the tower proves to be no field, the gcd of the integer contents.
void tower_gcd(poly u, poly v, polyptrr r, polypt pt);
/// *num / *den := n / m divided by their common factor, which has field elements; fresh. Over Q both are
/// multiplied by one number, and lose the integers they have in common. False, nothing done: it does not
/// divide both.
bool tower_reduce(poly n, poly m, poly common, polyptrr num, polyptrr den, polypt pt);
/// *r in the normal form of a gcd: leading field element 1, over Q a positive integer, without denominators.
void tower_gcd_form(polyptrr r, polypt pt);
/// *a, a field element at the level of pt, becomes its p-th root, p the characteristic. False: it has none.
bool tower_pth_root(polyptrr a, polypt pt);
}  // namespace tolvex
