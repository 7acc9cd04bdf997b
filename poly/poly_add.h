#pragma once
/// poly/poly_add.h: addition and subtraction of recursive sparse polynomials.
///
/// Purpose    *p := n + m and n - m, in four versions that differ in what becomes of n and m.
/// Ownership  poly_ keeps both operands; better_ uses up n; best_ and simplest_ use up both. *p may be a
///            used-up operand.
/// Modes      any; simplest_ needs modularmode and one level.
#include "poly/poly.h"
namespace tolvex {
void poly_add(poly n, poly m, polyptrr p);           ///< n + m; time linear in the terms of both
void better_poly_add(poly n, poly m, polyptrr p);    ///< n is used up
void best_poly_add(poly n, poly m, polyptrr p);      ///< n and m are used up
void simplest_poly_add(poly n, poly m, polyptrr p);  ///< both are used up
void poly_sub(poly n, poly m, polyptrr p);           ///< n - m, in the same four versions
void better_poly_sub(poly n, poly m, polyptrr p);
void best_poly_sub(poly n, poly m, polyptrr p);
void simplest_poly_sub(poly n, poly m, polyptrr p);
/// *p += t in place for a monomial t that is no number; t is used up. False, and nothing changed, if a term
/// would vanish, a constant would become a chain, or the place lies deep in a long chain. It allocates before
/// it changes anything and has no safe point: whoever looks at *p finds the old value or the sum. Time linear
/// in the terms in front of the place.
bool insert_monomial(polyptrr p, poly t);
}  // namespace tolvex
