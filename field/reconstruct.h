#pragma once
/// field/reconstruct.h: polynomials over Q from their residues modulo a large number.
///
/// Modes      chains. The residues are symmetric, of magnitude at most half the modulus.
#include "poly/poly.h"
namespace tolvex {
/// x := the residue of x modulo m > 1 of least magnitude; half is m div 2.
void symmetric_residue(imptr x, const number* m, const number* half);
/// The same for each number of *p.
void symmetric_leaves(polyptrr p, const number* m);
/// *numer, *denom > 0 with numer = denom y modulo m, numbers of about half the length of m (Wang's rational
/// reconstruction, one common denominator). False: there are none. Fresh; a guess until the caller has proved
/// it.
bool reconstruct_poly(const polynode* y, const number* m, polyptrr numer, imptr denom);
}  // namespace tolvex
