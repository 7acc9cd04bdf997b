#pragma once
/// poly/poly_modes.h: modes and cutoffs of polynomial arithmetic.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline boolean laurent = 0;                 // negative exponents            writers: &l
// 0, or the smallest level from which on every variable belongs to the field tower.  writers: reset_pseudo_poly
inline int32_t field_depth = 0;
inline boolean modout_above_field = 0;      // a level above the field has a modding polynomial  writers: the same
inline boolean plain_above_field = 0;       // these polynomials are not in force                 writers: gcd
inline int32_t poly_cutoff = 80;            // Karatsuba and dense engine    writers: &#, reset_cutoffs
inline int32_t div_poly_cutoff = 6;         // 6 rational, 25 modular        writers: change_prec
inline int32_t simplest_poly_cutoff = 140;  // reported only                 writers: &_k
inline int32_t fast_mult_cut = 10;          // one-level products term by term below this count
inline int32_t fast_gcd_size = 25000;       // limit of the sum of degrees of the array route
inline int32_t hgcd_cut = 11000;            // degree sum from which the half-gcd pays
inline boolean monomial_list = 0;           // display as list of monomials  writers: &_l
inline boolean do_line_sup = 1;             // suppress long displays        writers: &_s
inline boolean linesuppression = 1;         // still displaying this value
inline boolean nomodpolyreadin = 0;         // read polynomials as integers  writers: &n
inline boolean minus_warning = 0;           // set during a load
inline boolean try_rat = 1, rat_yes = 1;    // fast probabilistic division tests   writers: &_t, reduce
inline boolean gcd_unproved = 0;  // a gcd in flight rests on a test that may be wrong   writers: gcd, trial_poly_divide_noq
inline boolean gcd_sure = 0;      // sure mode: nothing unproved is accepted             writers: gcd
}  // namespace tolvex
