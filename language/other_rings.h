#pragma once
/// language/other_rings.h: values that a change of the ground ring leaves in the ring before.
///
/// Purpose    a change with a list converts only what is listed. Every other value is put away with the
///            number of its ring: reading it is error 121, storing a new value is legal, and it comes
///            back with its ring or when a later change converts it.
/// Invariant  a ring is told by its modulus, -1 for the integers. A location stands on the list of the values
///            put away at most once; its own value is nil, or 0 while a new value is being worked out for it.
/// Ownership  the list owns the values. They are freed, walked and converted in their own ring.
/// Raises     121 refuse_other_ring.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
struct away_value {
    away_value* next;
    quolyptr at;  // the location that the value belongs to
    quoly value;
    int32_t ring;
};
inline away_value* away_list = nullptr;

/// *at := nil; its value is put away.
void put_away(quolyptr at, int32_t ring);
/// The value put away for that location is freed, if there is one.
void drop_away(quolyptr at);
bool find_away(const quoly* at);  ///< for stands_in_other_ring
/// True if the value of that location is put away. A test of one word as long as nothing is.
inline bool stands_in_other_ring(const quoly* at) { return away_list != nullptr && find_away(at); }
/// Error 121 if it is: true then.
bool refuse_other_ring(const quoly* at, tokentipe& name);
/// *link, an entry of the list, is taken off; its value goes back to its location.
void bring_back(away_value** link);
#ifdef TOLVEX_CHECKED
/// Counts the values put away as reachable.
void audit_reach_away();
#endif
}  // namespace tolvex
