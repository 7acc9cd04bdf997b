#pragma once
/// field/field_modes.h: switches and state of field towers.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline int32_t aux_num_1factor = 400;  // search for first auxiliary primes, 300..4583      writers: &X
inline int32_t aux_num_2factor = 100;  // search for second auxiliary primes, 10..20000     writers: &A

// The tower in force.
inline int32_t tower_ring =
    -1;  // ring in which modding polynomials stand: -1 chains, else residues   writers: &P, &p
inline int32_t tower_stamp =
    0;  // goes up with every change of a modding polynomial or level          writers: the same
inline boolean modding_held =
    0;  // a new modding polynomial is being read: none is in force           writers: suspend_modding
inline constexpr int32_t k_first_aux_primes = 4583;
inline int32_t aux_prime1[k_first_aux_primes];  // first auxiliary primes: the tower stays a field modulo each
inline int32_t aux_prime1_number = 0;           // their number
inline boolean aux1_hit_0 = 0;                  // the list has become empty while it was thinned out
}  // namespace tolvex
