#pragma once
/// gcd/polygcd_env.h: the record that the steps of polygcd share. Private to gcd/.
///
/// Each step is a function of this record; it returns true when it has ended the call, the result standing in
/// *r.
#include "gcd/gcd_modes.h"
#include "poly/poly.h"
namespace tolvex {
inline constexpr int32_t k_eval_points = 151;
struct polygcd_EnvRec {
    // arguments
    poly u, v;   // current operands
    polyptrr r;  // result
    polypt pt;   // main variable
    boolean leave_early, do_fast, allcons, usave, vsave, canreset;
    // what has been stripped and must be put back: d, d2, gcdexp, comm, in this order
    int32_t gcdexp;      // gcd of all exponent gaps; exponents are divided by it (modular mode)
    poly d;              // gcd of the contents in the main variable
    poly d2;             // product of the gcds of contents in further levels
    poly comm;           // common power of the main variable
    int32_t uexp, vexp;  // lowest exponent removed from u, v
    poly utail, vtail;   // node split off by sub_expons
    // private copies
    poly ucopy, vcopy;  // nil: u, v are the caller's
    poly origu, origv;  // the caller's u, v once a copy has been taken
    // the stash
    number num, num2;  // signs or scale factors kept across the look-up
    poly gcdp;         // slot found by gcdhash
    boolean store_new_gcd;
    // levels
    int16_t field_level, field_ulevel, field_vlevel;  // levels in play, clipped above the field
    boolean levels_equal;                             // nothing was clipped
    int16_t level;                                    // number of levels in play
    int16_t ulevel, vlevel;                           // levels below the main variable, -1: not known
    // strategy
    int16_t height;  // number of evaluation tests; later the step count of Algorithm C
    int16_t base;    // radix of the point list: 3, 7 or 2
    int16_t local_list[k_eval_points];
    int32_t delta;  // expected degree of the gcd in the main variable
    int32_t expo;   // degree of the best image gcd
    int64_t uvsize, ssize, tsize, avsize;
    boolean modular_ok, usparse, balanced, tried_use_modular, found_something;
    // scratch
    poly s, t, g, h;
};
}  // namespace tolvex
