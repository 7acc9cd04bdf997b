#pragma once
/// session/ring_list.h: what a change of the ground ring converts.
///
/// Purpose    `&p(x, [a])` and `&(p = v: x, [a])` name what is converted; without a list everything is.
/// Invariant  values of other rings (language/other_rings.h) whose ring is the new one come back as they are.
/// Raises     1, 19, 28 while a list is read; out of memory, in prepare_values alone.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdint>
#include <cstdio>
namespace tolvex {
/// The next change converts everything.
void list_everything();
/// Reads a list up to its ")", which is the current token then; the first token of the list is current.
/// `empty`: an empty list is legal. False after an error.
bool read_ring_list(FILE* inf, nameptr* flag, bool empty);
/// The images of all stored values that go from the ring `from`, which is in force, to the ring `to`, one of
/// which is -1. Nothing changes: levels may be opened, and a panic stop there leaves all as it was. At most
/// one walk over the values once the last level has been left.
void prepare_values(int32_t from, int32_t to);
/// Right after it, while interrupts are held: the images take the places of the values. No more than two
/// words a value are touched; release_images() gives back the values before.
void exchange_values(int32_t from, int32_t to);
/// One value put away, or a copy that goes with it: from one ring to any other.
void carry_value(quolyptr value, int32_t from, int32_t to);
/// The ring is put in force for the work on a value put away; the state before comes back by ring_assign.
void force_ring(int32_t ring);
}  // namespace tolvex
