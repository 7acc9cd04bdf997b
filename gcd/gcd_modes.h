#pragma once
/// gcd/gcd_modes.h: counters, budgets and switches of the gcd driver.
///
/// Purpose    the counters are shared by all recursion of one computation: they keep contents of contents
///            from costing more than the answer is worth.
/// Invariant  a nested computation on images saves and restores them (GcdCounters).
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
// Switches.
inline int16_t lookupgcd = 0;   // gcd stash: positive on, -1000 around images     writers: &C, init_gcd_stash
inline boolean chinhensel = 1;  // interpolation for several variables             writers: &O
inline boolean hen_check = 1;   // lifted answers are checked twice                writers: &c
inline boolean no_aux_primes2 = 1;  // no second auxiliary primes exist                writers: &P
// Choices that tests alone change.
inline boolean word_engines = 1;           // the engines on word arrays
inline int32_t trial_cutoff = 25;          // above this size trial division is attempted
inline int32_t mod_method_diff = 6;        // degrees that v may lose before the modular method is taken
inline int32_t gcd_stash_cutoff = 200;     // smallest size that polygcd keeps in the stash
inline int32_t small_gcd_stash_cut = 100;  // smallest degree sum that basic_poly_gcd keeps there

// State of one computation, from an entry on.
inline int16_t tripval = 20;                    // smallest size for modular methods; 20 again after an error
inline int32_t alg_c_count = 0;                 // how often Algorithm C has been abandoned
inline int32_t original_depth = 1;              // the level where the computation began
inline int32_t c_cntcount = 0, c_cntdepth = 0;  // work of content
inline int32_t a_cntcount = 0, a_cntdepth = 0;  // work of aux_content
inline int32_t d_cntcount = 0, d_cntdepth = 0;  // work of dual_content
inline int32_t g_cntcount = 0, g_cutoff = 10;   // budget of the contents in several levels
inline int32_t gcd_nesting = 0;                 // polygcd frames in force
inline int32_t gcd_outer = 0;                   // frames of statements below the command level
inline int32_t gcd_attempt = 0;                 // how often the gcd under way has proved wrong
inline int32_t gcd_retry_ring = 0;              // modulus of the ring in which it did

/// What a computation on images, a retry and a pushed command level must find again afterwards.
struct GcdCounters {
    int32_t alg_c, original, c, c_depth, a, a_depth, d, d_depth, g, g_limit;
    int32_t nesting, outer, attempt, retry_ring;
    int16_t trip, lookup;
    boolean unproved, sure, plain;
};
GcdCounters gcd_counters_save();                      ///< a copy of what is in force
void gcd_counters_restore(const GcdCounters& saved);  ///< puts it back
void gcd_counters_reset();  ///< when a statement begins, and after an error: the defaults above
void gcd_counters_clear();  ///< on the way to the top level: the same, and no frame is in force
/// A command level has been pushed, maybe in the middle of a gcd: after gcd_counters_save, before its
/// statements.
void gcd_counters_push();
}  // namespace tolvex
