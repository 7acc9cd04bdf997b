#pragma once
/// quoly/quoly_add.h: sums and differences of quolys.
///
/// Ownership  plain keeps both; better_ uses up n; best_ works in place on n and uses up m.
#include "quoly/quoly.h"
namespace tolvex {
void quoly_add(quoly n, quoly m, quolyptr p);         ///< p := n + m, with a gcd where denominators differ
void better_quoly_add(quoly n, quoly m, quolyptr p);  ///< n is used up
void best_quoly_add(quolyptr n, quoly m);             ///< n := n + m, m is used up
void quoly_sub(quoly n, quoly m, quolyptr p);         ///< p := n - m, in the same versions
void better_quoly_sub(quoly n, quoly m, quolyptr p);
void best_quoly_sub(quolyptr n, quoly m);
/// n := n + m in place, m kept (the accumulation of an expression).
void fast_quoly_add(quolyptr n, quoly m);
void fast_quoly_sub(quolyptr n, quoly m);  ///< n := n - m
}  // namespace tolvex
