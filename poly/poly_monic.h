#pragma once
/// poly/poly_monic.h: leading numbers made 1, and polynomials that differ by a unit.
///
/// Modes      modular where inverses are taken; essentially_equal any.
#include "poly/poly.h"
namespace tolvex {
/// *r := r divided by its leading number, in place; returns the factor, 1 when nothing is done: the leading
/// number is 1 already, or has no inverse.
int32_t monic_poly(polyptrr r);
/// True if the leading number of p is 1 or has an inverse in the ring in force.
bool has_unit_lead(poly p);
/// True if u and v have the same support and lc(v) u = lc(u) v with numeric leading numbers: over Z equal
/// primitive parts up to sign. Linear in the terms; stops at the first difference.
bool essentially_equal(poly u, poly v);
}  // namespace tolvex
