#pragma once
/// poly/poly_modes.h: modes and cutoffs of polynomial arithmetic.
///
/// Purpose    read by every layer from poly/ upwards.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline boolean laurent = 0;  // negative exponents                                            writers: &l

// The field tower.                                                             writers: reset_pseudo_poly
inline int32_t field_depth = 0;  // the level from which on every variable belongs to the tower; 0: none
inline boolean modout_above_field = 0;  // a level above the tower has a modding polynomial
inline boolean plain_above_field = 0;   // these polynomials are not in force   writers: gcd, determinants

// Choices of method.
inline int32_t poly_cutoff = 80;            // Karatsuba and dense engine       writers: &#, session/modulus
inline int32_t div_poly_cutoff = 6;         // 6 rational, 25 modular           writers: session/modulus
inline int32_t simplest_poly_cutoff = 140;  // reported only                    writers: &_k
inline int32_t fast_mult_cut = 10;          // one-level products term by term below this count
inline int32_t fast_gcd_size = 25000;       // limit of the sum of degrees of the array route

// Reading and display.
inline boolean monomial_list = 0;  // display as list of monomials            writers: &_l
inline boolean do_line_sup = 1;    // suppress long displays                  writers: &_s; levels for a while
inline boolean linesuppression = 1;  // still displaying this value             writers: the displays
inline boolean nomodpolyreadin = 0;  // read polynomials as integers            writers: &n
inline boolean minus_warning = 0;    // a reading warns of a leading minus      writers: session/load

// Proofs of gcds.
inline boolean try_rat = 1, rat_yes = 1;  // fast probabilistic division tests writers: &_t, gcd/polygcd_entry
inline boolean gcd_unproved = 0;  // a gcd rests on a test that may be wrong    writers: gcd, poly/div_trial
inline boolean gcd_sure = 0;      // sure mode: nothing unproved is accepted    writers: gcd
}  // namespace tolvex
