#pragma once
/// gcd/gcd_internal.h: the steps behind polygcd.
///
/// Purpose    a chain of attempts, cheapest first; each either gives the gcd or passes on.
/// Ownership  operands are only read; results are fresh trees of the caller.
/// Modes      any ring; negative exponents have been cleared.
#include "poly/poly.h"
namespace tolvex {
/// gcd(u, v) in normal form, neither nil; 0 is allowed only as gcd(0, v) = content number of v.
poly gcd_fresh(poly u, poly v, polypt pt);
/// The gcd of the coefficients of the top chain of u, one level down, in normal form.
poly content_fresh(poly u, polypt pt);
/// Normal form of a gcd: positive leading number over Z, monic where the leading number is a unit.
void gcd_normal_form(polyptrr g);
/// The primitive part of p with respect to its main variable; p is used up. c: its content, one level down.
poly without_content(poly p, const polynode* c, polypt pt);
/// The subresultant remainder sequence on polynomials of positive degree in the main variable, primitive
/// there. The gcd up to units, primitive in the main variable. Right in every integral domain.
poly prs_gcd(poly u, poly v, polypt pt);
/// True if the ring in force has zero divisors.
bool ring_is_composite();
}  // namespace tolvex
