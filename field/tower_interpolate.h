#pragma once
/// field/tower_interpolate.h: gcds over a tower in several variables, from values for one of them.
///
/// Purpose    instead of a remainder sequence, whose coefficients grow: the deepest variable above the field
///            takes values of the ground ring, or of the field where that has too few; gcds of the images are
///            put together by Newton's interpolation (Brown, "On Euclid's algorithm and the computation of
///            polynomial greatest common divisors", 1971), the divisions at the end are the proof.
/// Modes      modular: a prime modulus or a table field.
#include "poly/poly.h"
namespace tolvex {
enum class Interpolated { found, no_inverse, declined };
/// *g := the monic gcd, fresh. u and v are primitive and monic in the variable of pt, and another variable
/// above the field occurs in them. no_inverse: a zero divisor has been met. declined: the field has too few
/// elements. One gcd of images for each power of that variable that the gcd may have. Polls.
Interpolated gcd_by_interpolation(poly u, poly v, polyptrr g, polypt pt);
/// *g := the monic gcd, fresh; u, v are not 0. False: a zero divisor has been met. Defined in tower_gcd.cpp.
bool gcd_in_words(poly u, poly v, polyptrr g, polypt pt);
}  // namespace tolvex
