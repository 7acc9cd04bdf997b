#pragma once
/// gcd/field_hooks.h: what the gcd asks of a field tower. Without one (field_depth 0) none of it is called
/// but the counts.
#include "poly/poly.h"
namespace tolvex {
int32_t aux_prime_count();  ///< first auxiliary primes: the tower stays a field modulo each
/// An image of g and h by a second auxiliary prime, the generators replaced by roots. False: no good prime;
/// else *coprime: the image gcd has degree 0, which proves it for g and h.
bool gorwin_modular(poly g, poly h, polypt pt, bool* coprime);
/// Over Q: r times what makes its leading field element an integer.
void rat_monic_poly(polyptrr r);
/// *q := c (u / s) without integer content, c the least number that clears denominators. False: not
/// divisible.
bool special_div(poly u, poly s, polyptrr q, polypt pt);
/// *r := the remainder of n by m, whose leading coefficient is a field element, up to a unit.
void field_coef_remainder(poly n, poly m, polyptrr r, polypt pt);
/// Does y divide x over a field over Q? *worked false: undecided.
bool mod_trial_poly_divide(poly x, poly y, bool fast_yes, bool* worked, polypt pt);
}  // namespace tolvex
