#pragma once
/// poly/poly_scale.h: products with a number or a single term. Zero divisors: terms that become 0 are
/// removed.
///
/// Ownership  *q is fresh, operands are kept; the others work in place.
#include "poly/poly.h"
namespace tolvex {
void scalar_by_poly(const number* x, poly y, polyptrr q);  ///< *q := x y
void node_by_poly(poly x, poly y, polyptrr q);             ///< *q := (x's exp and coefficient) y
void num_poly_mult(polyptrr n, const number* m);           ///< in place, chains
void mod_num_poly_mult(polyptrr n, int32_t x);             ///< in place, residues
void mult_num(polyptrr x, const number* nm);               ///< in place, any mode
}  // namespace tolvex
