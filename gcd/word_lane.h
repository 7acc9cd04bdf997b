#pragma once
/// gcd/word_lane.h: the engines on word arrays, tried by polygcd before its other engines.
///
/// Purpose    operands are read once into flat arrays of packed exponents and residues; images in each
///            variable bound the gcd, coprime pairs end there; else interpolation (dense or sparse) over
///            one word prime, and further primes over Z.
/// Ownership  operands are only read; *r is replaced when the gcd is found.
/// Modes      Z, a prime modulus, table fields; no field tower; no negative exponents.
#include "poly/poly.h"
namespace tolvex {
/// True: *r is gcd(u, v) in normal form, integer content and common monomial included. Proved, unless raw is
/// true: then gcd_unproved may be set instead of the last division. False: declined, nothing has
/// changed.
bool word_gcd(poly u, poly v, polyptrr r, polypt pt, bool raw);
/// True in fields of so few elements that interpolation in them soon runs out of points.
bool points_are_few();
/// The same as word_gcd where points are few: they come from an extension, which has thousands. Proved.
/// Larger problems are taken on than there.
bool gcd_over_enlarged_field(poly u, poly v, polyptrr r, polypt pt);
/// Modulo a composite: as much of the gcd as units allow, in *r; false: a non-unit leading number has stopped
/// it, and *r is what is common for certain.
bool composite_gcd(poly u, poly v, polyptrr r, polypt pt);
}  // namespace tolvex
