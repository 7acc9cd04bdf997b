#pragma once
/// quoly/quoly_mult.h: products, powers, reciprocals.
///
/// Raises     22 reciprocal of 0; 32 exponent of more than one digit; 85 no inverse; 210 denominator became
/// 0.
#include "quoly/quoly.h"
namespace tolvex {
void quoly_mult(quoly n, quoly m, quolyptr p);
void fast_quoly_mult(quolyptr n, quoly m);  ///< n := n m, m kept
void quoly_reciprocal(quolyptr n);
void quoly_compute_power(quolyptr q, int32_t expont);  ///< expont >= 1
void raise_to_power(quolyptr n, const number* n2);     ///< any exponent; a chain, or a word in lintmode
}  // namespace tolvex
