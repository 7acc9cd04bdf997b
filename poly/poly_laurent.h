#pragma once
/// poly/poly_laurent.h: monomial factors and negative exponents.
///
/// Purpose    computations on negative exponents take the monomial factor away, and put it back at the end.
/// Ownership  a list of exponents belongs to the caller, who gives it back with free_exponent_list.
#include "poly/poly.h"
namespace tolvex {
/// For each level up to depth: the least exponent that occurs, the minimum started at value (0: only negative
/// ones count; 2147483647: any common power). Divides *p by that monomial; returns the exponents as a list of
/// leaves-less nodes (exp at each level, next deeper level), nil when there is none.
poly clear_bads(polyptrr p, int32_t value, int32_t depth);
/// Multiplies *q by the monomial of the list, exponents times factor (1 restores, -1 moves to the other
/// side).
void eliminate_bads(polyptrr q, const polynode* list, int32_t factor);
void free_exponent_list(polyptrr list);
/// Subtracts e from all exponents of the top chain (adding: a negative e). Leaves and terms change form as
/// needed.
void sub_expons(polyptrr p, int32_t e);
}  // namespace tolvex
