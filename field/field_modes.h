#pragma once
/// field/field_modes.h: switches of field towers.
#include <cstdint>
namespace tolvex {
inline int32_t aux_num_1factor = 400;  // search for first auxiliary primes, 300..4583      writers: &X
inline int32_t aux_num_2factor = 100;  // search for second auxiliary primes, 10..20000     writers: &A
}  // namespace tolvex
