#pragma once
/// numbers/number_modes.h: the ground ring in force.
///
/// Purpose    no routine takes a ring as an argument: it reads these words.
/// Invariant  modularmode implies lintmode; modulus is -1 exactly in rational mode; modulus and all that
///            depends on it is written by set_modulus alone (numbers/ring_switch.h). finf is tested
///            before smallmodulus.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
// The ring.                                             writers: numbers/ring_switch, session/modulus
inline boolean modularmode = 0;      // residues, not integers; check_modular clears it for a while
inline boolean lintmode = 0;         // values stand in lint: with modularmode; cleared where chains are meant
inline int32_t modulus = -1;         // -1 rational; 2..2147483646; 256, 65536 in table fields
inline int32_t half_modulus = 0;     // modulus / 2: the line of the symmetric display
inline boolean smallmodulus = 0;     // modulus below 65535, or a table field
inline boolean mod_is_prime = 0;     // modulus is prime, or a table field
inline boolean f256 = 0, f2t16 = 0;  // the field of 2^8, of 2^16 elements
inline boolean finf = 0;             // either of them
inline double rmodulus = 0;          // modulus as a floating-point number
inline int32_t two28_mod = 0;        // 2^28 mod modulus
inline uint64_t modulus_recip = 0;   // floor(2^64 / modulus): residue products need no division
inline int16_t mod_is_changed = 0;   // nested suspensions of modular mode: check_modular, restore_modular

// The ring of the user.
inline boolean changed_in_modmode = 0;  // modular mode may not be left: error 353    writers: session/mod_out
inline boolean was_in_rat = 1;          // the user is in rational mode               writers: session/modulus
inline int32_t prev_modulus = -1;       // the ring of the entries of the gcd stash   writers: gcd/gcd_stash

inline boolean integerflag = 0;   // the evaluator knows that all values are words    writers: language, loads
inline boolean pos_mod = 1;       // `|` returns non-negative values                  writers: &|
inline int32_t rand_denom_n = 1;  // denominator of random rationals  writers: &_r, session/modulus
}  // namespace tolvex
