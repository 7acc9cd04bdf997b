#pragma once
/// quoly/quoly_scalar.h: number-theoretic functions of scalar values.
///
/// Raises     346 (nth_prime).
#include "quoly/quoly.h"
namespace tolvex {
/// n := the greatest common divisor of two numbers, never negative; m is used up. Of rational numbers the
/// numerators count. Residues: the gcd with the modulus as well; table fields: 1.
void gcdnum(quolyptr n, quolyptr m);
/// q := the q-th prime, 2 being the first; q from 1 to 1229.
void nth_prime(quolyptr q);
}  // namespace tolvex
