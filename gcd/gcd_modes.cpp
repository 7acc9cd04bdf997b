// Counters of the driver around images, retries and command levels.
#include "gcd/gcd_modes.h"

#include "gcd/gcd_stash.h"
#include "poly/poly_modes.h"
namespace tolvex {
static constexpr int16_t k_tripval = 20;
static constexpr int32_t k_g_cutoff = 10;

GcdCounters gcd_counters_save() {
    return {alg_c_count, original_depth, c_cntcount,  c_cntdepth,       a_cntcount,
            a_cntdepth,  d_cntcount,     d_cntdepth,  g_cntcount,       g_cutoff,
            gcd_nesting, gcd_outer,      gcd_attempt, gcd_retry_ring,   tripval,
            lookupgcd,   gcd_unproved,   gcd_sure,    plain_above_field};
}

void gcd_counters_restore(const GcdCounters& saved) {
    alg_c_count = saved.alg_c;
    original_depth = saved.original;
    c_cntcount = saved.c;
    c_cntdepth = saved.c_depth;
    a_cntcount = saved.a;
    a_cntdepth = saved.a_depth;
    d_cntcount = saved.d;
    d_cntdepth = saved.d_depth;
    g_cntcount = saved.g;
    g_cutoff = saved.g_limit;
    gcd_nesting = saved.nesting;
    gcd_outer = saved.outer;
    gcd_attempt = saved.attempt;
    gcd_retry_ring = saved.retry_ring;
    tripval = saved.trip;
    lookupgcd = saved.lookup;
    gcd_unproved = saved.unproved;
    gcd_sure = saved.sure;
    plain_above_field = saved.plain;
}

void gcd_counters_reset() {
    alg_c_count = 0;
    original_depth = 1;
    c_cntcount = c_cntdepth = 0;
    a_cntcount = a_cntdepth = 0;
    d_cntcount = d_cntdepth = 0;
    g_cntcount = 0;
    g_cutoff = k_g_cutoff;
    gcd_nesting = gcd_outer;
    gcd_attempt = gcd_retry_ring = 0;
    tripval = k_tripval;
    gcd_unproved = gcd_sure = 0;
    plain_above_field = 0;
}

void gcd_counters_clear() {
    gcd_outer = 0;
    gcd_counters_reset();
    if (lookupgcd < 0) lookupgcd = gcd_stash_level;  // the error has come out of an image or a retry
    polygcd_stack_depth = 0;
}

void gcd_counters_push() {
    gcd_outer = gcd_nesting;
    gcd_counters_reset();
    if (lookupgcd < 0) lookupgcd = gcd_stash_level;
}
}  // namespace tolvex
