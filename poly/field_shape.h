#pragma once
/// poly/field_shape.h: where a polynomial stands with respect to the field tower.
///
/// Purpose    levels field_depth and deeper belong to the tower; these tests look at the shape alone.
///            depth: the level of the polynomial's top variable.
/// Invariant  without a tower (field_depth 0) nothing is a field element and every polynomial lies above it.
#include "poly/poly.h"
namespace tolvex {
/// True if the modding polynomial of the variable is in force.
inline bool is_modded(const polydata* pt) {
    return pt->p != nullptr && pseudo_polynames != nullptr && (pt->field || !plain_above_field);
}
/// True if p, in the variables from pt on, uses a variable that is modded out.
bool uses_modded_level(const polynode* p, const polydata* pt);
/// True if some coefficient that is not a number lies in the tower.
bool exists_field_element(const polynode* p, int32_t depth);
/// True if no field variable occurs in u or v.
bool both_above_field_depth(const polynode* u, const polynode* v, int32_t depth);
/// True if every coefficient of the top chain is a number or a field element; always false without a tower.
bool all_coefs_invrtble(const polynode* p, int32_t depth);
bool all_coefs_invrtble_both(const polynode* u, const polynode* v, int32_t depth);
/// True if p has no variable above the tower: a unit for the gcd. False without a tower.
bool is_field_element(const polynode* p, int32_t depth);
}  // namespace tolvex
