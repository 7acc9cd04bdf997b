#pragma once
/// quoly/quoly_convert.h: quolys between ground rings and variable lists.
///
/// Purpose    what a lasting change of the ground ring or of the variable list does to one stored value.
///            The result is in canonical form.
/// Modes      modulus and mod_is_prime are those of the modular ring, in both directions; for a table
///            field modulus is 2 (to) or the table field's own (from). modularmode and lintmode may be on
///            or off: they are set as needed and come back as they were. `to` reads chains, gives them
///            back and leaves residues; `from` leaves chains, symmetric under alt_form_display outside
///            table fields.
/// Raises     nothing: a value without an image becomes 0.
#include "quoly/quoly.h"
#include "storage/failure.h"
namespace tolvex {
/// The image of q, fresh; q is only read and has to stay in place while statements run: they poll.
quoly quoly_image_to_mod(const quolynode* q);
quoly quoly_image_from_mod(const quolynode* q);
/// q becomes its image.
void quoly_change_to_mod(quolyptr q);
void quoly_change_from_mod(quolyptr q);
/// q, whose words were computed outside the modular ring in force, brought into it. Err{} if it has a value
/// there; otherwise the error of its denominator, 0 or without an inverse, for the caller to raise or not: q
/// is 0 then.
Err quoly_reduce_words(quolyptr q);
/// *q reduced by the modding polynomials in force, in canonical form. False: its denominator has become 0 or
/// has no inverse that it needs; then *q is 0.
bool quoly_mod_out(quolyptr q);
/// q, canonical under the other setting of `laurent`, in the form of the present one: powers of the variables
/// in its denominator move up as negative exponents, or negative exponents down. Linear.
void quoly_follow_laurent(quoly q);
void quoly_insert_level(quoly q, int32_t level);  ///< a new variable came in at that level
void quoly_remove_level(quoly q, int32_t level);  ///< taken out; it does not occur
boolean quoly_contains_level(const quolynode* q, int32_t level);
/// q with the variable of `level` replaced by a number; false: the denominator became 0 (q is 1 then).
bool quoly_put_number(quolyptr q, int32_t level, const quolynode* value);
}  // namespace tolvex
