#pragma once
/// numbers/num_gcd.h: greatest common divisors of integers. Operands are only read.
///
/// Modes      chains, whatever the mode says.
#include "numbers/number.h"
namespace tolvex {
void gcd(const number* n, const number* m, imptr ans);         ///< chains, >= 0
void binary_gcd(const number* n, const number* m, imptr ans);  ///< chains, >= 0; ans may be an operand
/// gcd of chains and the cofactors: *gcd1 true: gcd is 1, qn and qm untouched; else qn := n/gcd, qm := m/gcd.
/// gcd(0, m) = |m| with cofactors 0 and sign(m); gcd(0, 0) = 0, cofactors 0.
void extgcd(const number* n, const number* m, imptr g, imptr qn, imptr qm, boolean* gcd1);
int32_t smallgcd(int32_t u, int32_t v);  ///< of the magnitudes
}  // namespace tolvex
