#pragma once
/// poly/ports.h: what polynomial arithmetic asks of the layer of field towers. Declared here, defined in
/// field/.
///
/// Purpose    variables with a modding polynomial (polydata.p) obey it in every product and quotient. Callers
///            ask only while pseudo_polynames is set: without such variables nothing of this is called.
/// Modes      any ground ring, that of an image included.
#include "poly/poly.h"
namespace tolvex {
/// *p, in the variables from pt on, reduced by the modding polynomials of these levels, deepest first; those
/// above the field only while they are in force (plain_above_field 0).
void reduce_product(polyptrr p, polypt pt);
/// Exact division in the tower: *q := n / m in the variables from pt on, fresh. False, *q untouched: m does
/// not divide n with a quotient over the ground ring, or its leading field element has no inverse. m != 0.
bool tower_divide(poly n, poly m, polyptrr q, polypt pt);
/// *q, *r := quotient and remainder of n by m in the main variable of m, whose leading coefficient is a field
/// element that is no number; modular mode. Fresh. An element without inverse ends the statement.
void tower_div_rem(poly n, poly m, polyptrr q, polyptrr r, polypt pt);
}  // namespace tolvex
