#pragma once
/// quoly/quoly_convert.h: quolys between ground rings and variable lists.
///
/// Raises     nothing: a value without an image becomes 0.
#include "quoly/quoly.h"
namespace tolvex {
/// Called inside change_prec with the new modulus set and lintmode, modularmode still off (to) or already off
/// (from): chains are read, given back, residues written; and the reverse, symmetric under alt_form_display.
void quoly_change_to_mod(quolyptr q);
void quoly_change_from_mod(quolyptr q);
void quoly_insert_level(quoly q, int32_t level);  ///< a new variable came in at that level
void quoly_remove_level(quoly q, int32_t level);  ///< taken out; it does not occur
boolean quoly_contains_level(const quolynode* q, int32_t level);
/// q with the variable of `level` replaced by a number; false: the denominator became 0 (q is 1 then).
bool quoly_put_number(quolyptr q, int32_t level, const quolynode* value);
}  // namespace tolvex
