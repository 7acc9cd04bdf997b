#pragma once
/// gcd/content.h: content of a polynomial in its main variable.
#include "poly/poly.h"
namespace tolvex {
/// *s := gcd of the coefficients of u's top chain, padded to stand at u's level. qsave: u is kept.
void content(poly u, polyptrr s, polypt pt, boolean verbon, boolean allcons, boolean qsave);
}  // namespace tolvex
