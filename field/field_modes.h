#pragma once
/// field/field_modes.h: switches and state of field towers.
///
/// Purpose    the words that tell whether a tower is in force and which primes go with it; the modding
///            polynomials themselves stand in the records of their variables (poly/poly.h).
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline int32_t aux_num_1factor = 400;  // search for first auxiliary primes, 300..4583      writers: &X
inline int32_t aux_num_2factor = 100;  // search for second auxiliary primes, 10..20000     writers: &A

// The tower in force.
inline int32_t tower_ring = -1;  // ring of the modding polynomials: -1 chains, else residues  writers: &P, &p
inline int32_t tower_stamp = 0;  // goes up with every change of one of them or of a level  writers: &P, &p
inline boolean modding_held = 0;  // a new one is being read: none is in force  writers: suspend_modding

// First auxiliary primes: the tower stays a field modulo each.       writers: session/mod_out
inline constexpr int32_t k_first_aux_primes = 4583;
inline int32_t aux_prime1[k_first_aux_primes];
inline int32_t aux_prime1_number = 0;  // their number
}  // namespace tolvex
