#pragma once
/// session/modulus.h: changes of the ground ring.
///
/// Purpose    `&p` and `&(p = v)`: from the integers to the integers modulo v or a table field, and back. All
///            stored values are converted.
/// Invariant  a value without an image becomes 0: the conversion raises nothing. Until all values have their
///            images nothing changes (session/value_images.h); the change itself is not interrupted. The
///            value under way and the previous value are 0 after a change.
/// Raises     62, 73, 84 before anything is changed; 353 where modular mode may not be left; 148 at the
///            question.
#include "quoly/quoly.h"
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
/// The ground ring stands still above level 1, and while a value is half computed in it: error 73, false.
bool ring_may_change();
inline constexpr int32_t k_greatest_modulus = 2147483646;
/// From the integers to the ring modulo m; m = 256 and 65536 are the table fields. False after an error.
bool enter_modular(int32_t m, bool loud);
/// Back to the integers. False after an error.
bool leave_modular(bool loud);
/// `&p`: leaves modular mode, or asks for the modulus. `listed`: what is converted has been listed
/// (session/ring_list.h).
void toggle_ground_ring(bool listed);
/// `&(p = v)`; `rational` for `&(p = _i)`.
void set_ground_ring(int32_t v, bool rational, bool loud, bool listed);
/// After a part outside the ground ring has run: the words that it left in *value and in stored values become
/// residues. Time linear in the size of all values.
void reduce_stored_words(quolyptr value);
}  // namespace tolvex
