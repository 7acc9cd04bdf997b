#pragma once
/// numbers/number_modes.h: the ground ring in force, and the cutoffs of the number routines.
///
/// Purpose    no routine takes a ring as an argument: it reads these words.
/// Invariant  modularmode implies lintmode; modulus is -1 exactly in rational mode; modulus and all that
///            depends on it is written by set_modulus alone (numbers/ring_switch.h). finf is tested
///            before smallmodulus.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline boolean modularmode =
    0;  // residues, not integers             writers: change_prec, check_modular, images
inline boolean lintmode = 0;         // values stand in lint               writers: with modularmode
inline int32_t modulus = -1;         // -1 rational; 2..2147483646; 256, 65536 in table fields
inline int32_t half_modulus = 0;     // modulus / 2: the line of the symmetric display
inline boolean smallmodulus = 0;     // modulus below 65535, or a table field
inline boolean mod_is_prime = 0;     // modulus is prime, or a table field
inline boolean f256 = 0, f2t16 = 0;  // the field of 2^8, of 2^16 elements
inline boolean finf = 0;             // either of them
inline double rmodulus = 0;          // modulus as a floating-point number
inline int32_t two28_mod = 0;        // 2^28 mod modulus
inline uint64_t modulus_recip = 0;   // floor(2^64 / modulus): residue products need no division
inline int32_t was_modulus = -1;     // a modulus set aside by a level
inline int32_t prev_modulus = -1;
inline int32_t limit_char_arrays = 998;  // 998, or the modulus if smaller
inline int16_t mod_is_changed = 0;       // nested suspensions of modular mode
inline boolean changed_in_modmode = 0;   // modular mode may not be left: error 353
inline boolean was_in_rat = 1;           // the user is in rational mode       writers: change_prec
inline boolean integerflag = 0;          // the evaluator knows that all values are words
inline boolean pos_mod = 1;              // `|` returns non-negative values    writers: &|
inline int32_t multcut = 16;             // digits up to which the stated method is schoolbook
inline int32_t sqcut = 16;               // cutoff of int_sqrt
inline int32_t rand_denom_n = 1;         // denominator of random rationals    writers: &_r, change_prec
}  // namespace tolvex
