#pragma once
/// quoly/quoly_quot.h: quotients, and `\`, `|` on quolys.
///
/// Raises     22, 85, 205, 210.
#include "quoly/quoly.h"
namespace tolvex {
void quoly_quot(quoly n, quoly m, quolyptr p, boolean nogcd);     ///< p := n / m; nogcd: as it stands
void fast_quoly_quot(quolyptr n, quoly m, boolean nogcd);         ///< n := n / m, m kept
void best_quoly_quot(quolyptr n, quoly m, boolean nogcd);         ///< n := n / m, m used up
void quoly_mod_or_div(quoly n, quoly m, quolyptr p, char which);  ///< '\\' or '|'
void quoly_great_int(quolyptr q);                                 ///< $q: floor, or the polynomial quotient
}  // namespace tolvex
