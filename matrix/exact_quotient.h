#pragma once
/// matrix/exact_quotient.h: quotients that are known to be exact.
///
/// Purpose    divisions of elimination without fractions, for which the general quotient would take a gcd.
/// Ownership  *n is replaced; d is kept.
#include "quoly/quoly.h"
namespace tolvex {
/// *n := *n / d, exact: no gcd is looked for where numbers or polynomials divide at once. d is kept, and not
/// 0.
void exact_quotient(quolyptr n, quoly d);
}  // namespace tolvex
