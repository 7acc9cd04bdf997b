#pragma once
/// gcd/hensel.h: what the two lifting gcds share. Private to gcd/ and to tests.
///
/// Purpose    x = g h modulo an ideal element, g and h coprime, is lifted to powers of it; g is monic and
///            stays so, h carries the leading coefficient of x. The gcd is the lifted g times the gcd of
///            the leading coefficients, up to a content. (Moses and Yun, "The EZ GCD algorithm", 1973.)
/// Modes      one variable over a prime field or table field.
#include "poly/poly.h"
namespace tolvex {
/// Coprime factors, g monic of positive degree, and the inverse of h modulo g.
struct HenselPair {
    poly g, h, inverse;
};
/// *s := the inverse of h modulo g, deg g >= 1. False: they are not coprime.
bool rev_euclid(poly g, poly h, polyptrr s);
/// The pair of x and its monic factor g, both kept. False: g does not divide x, or the factors are not
/// coprime.
bool open_hensel_pair(poly x, poly g, HenselPair* pair);
void close_hensel_pair(HenselPair* pair);
/// dg h + dh g = e with deg dg < deg g, both fresh; e is kept.
void solve_hensel_step(const HenselPair& pair, poly e, polyptrr dg, polyptrr dh);
/// A candidate, primitive in the main variable: it must divide y, and x as well under hen_check. Without that
/// two of three are spared the second test outside small fields; then gcd_unproved is set.
bool testarg(poly x, poly y, poly candidate, polypt pt);
}  // namespace tolvex
