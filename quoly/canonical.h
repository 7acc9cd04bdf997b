#pragma once
/// quoly/canonical.h: bringing a quoly to canonical form.
///
/// Invariant  after check_quoly numerator and denominator are coprime, the denominator is positive or monic.
/// Ownership  in place.
#include "quoly/quoly.h"
namespace tolvex {
/// In full, after a raw change of numer or denom; q_odd: negative exponents may occur.
void check_quoly(quolyptr q, boolean q_odd);
}  // namespace tolvex
