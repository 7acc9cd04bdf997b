#pragma once
/// quoly/canonical.h: bringing a quoly to canonical form.
#include "quoly/quoly.h"
namespace tolvex {
void check_quoly(
    quolyptr q, boolean q_odd);  ///< in full, after a raw change of numer or denom; q_odd: negative exponents
void normal_form(quolyptr q, boolean laur);  ///< sign, monic, Laurent; no gcd
void sanitize(quoly q);                      ///< removes the common integer content
}  // namespace tolvex
