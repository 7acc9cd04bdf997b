#pragma once
/// quoly/reduce.h: division of two polynomials by their claimed greatest common divisor.
///
/// Purpose    a gcd may rest on a probabilistic step; the exact divisions made here are its proof. When
///            one fails the switches of the fast tests are turned off one after another (with a warning
///            under verbose) and the gcd is computed again: a bounded number of times, the last one by a
///            checked gcd.
/// Ownership  n, m are only read. *num, *den take the quotients when both exist. *common may be replaced.
#include "poly/poly.h"
namespace tolvex {
void reduce(poly n, poly m, polyptrr common, polyptrr num, polyptrr den);  ///< n / *common and m / *common
}  // namespace tolvex
