#pragma once
/// language/builtin_parts.h: parts of values that several built-in functions take.
///
/// Modes      any.
/// Raises     nothing.
#include "quoly/quoly.h"
namespace tolvex {
/// *n, a polynomial or number, becomes its coefficient of the power k of the variable of `level`. A missing
/// one is 0. Linear in the terms.
void take_coefficient(quolyptr n, int32_t level, int32_t k);
/// The level of the main variable of p, 1 for a number.
int32_t main_level(const polynode* p);
/// *n := the gcd of two values in normal form; denominators play no part.
void gcd_of_values(const quolynode* a, const quolynode* b, quolyptr n);
/// Killden[a], the "[" being the current token: no element has a denominator afterwards.
void kill_denominators(struct BuiltinCall& call);
}  // namespace tolvex
