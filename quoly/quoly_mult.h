#pragma once
/// quoly/quoly_mult.h: products, powers, reciprocals.
///
/// Raises     22 reciprocal of 0; 32 exponent of more than one digit; 85 no inverse; 210 denominator
///            became 0.
#include "quoly/quoly.h"
namespace tolvex {
/// What a quotient by 0 is after error 22 has come back: 1, and 0 where a pushed level carries on by itself.
inline int32_t quotient_by_zero = 1;  // writers: the levels of the session

void quoly_mult(quoly n, quoly m, quolyptr p);  ///< p := n m; common factors go across, before the products
void fast_quoly_mult(quolyptr n, quoly m);      ///< n := n m, m kept
void best_quoly_mult(quolyptr n, quoly m);      ///< n := n m, m used up
void quoly_reciprocal(quolyptr n);              ///< n := 1 / n; error 22 for 0
void quoly_compute_power(quolyptr q, int32_t expont);  ///< expont >= 1
void raise_to_power(quolyptr n, const number* n2);     ///< any exponent; a chain, or a word in lintmode
}  // namespace tolvex
