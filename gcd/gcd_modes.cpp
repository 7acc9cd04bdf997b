#include "gcd/gcd_modes.h"

#include "poly/poly_modes.h"
namespace tolvex {
GcdCounters gcd_counters_save() {
    return {alg_c_count, original_depth, c_cntcount, c_cntdepth, a_cntcount, a_cntdepth,  d_cntcount,
            d_cntdepth,  g_cntcount,     g_cutoff,   tripval,    lookupgcd,  gcd_unproved};
}

void gcd_counters_restore(const GcdCounters& saved) {
    alg_c_count = saved.alg_c;
    original_depth = saved.original;
    c_cntcount = saved.c, c_cntdepth = saved.c_depth;
    a_cntcount = saved.a, a_cntdepth = saved.a_depth;
    d_cntcount = saved.d, d_cntdepth = saved.d_depth;
    g_cntcount = saved.g, g_cutoff = saved.g_limit;
    tripval = saved.trip;
    lookupgcd = saved.lookup;
    gcd_unproved = saved.unproved;
}

void gcd_counters_reset() {
    GcdCounters fresh = {};
    fresh.original = 1;
    fresh.g_limit = 10;
    fresh.trip = 20;
    fresh.lookup = lookupgcd;
    gcd_counters_restore(fresh);
    gcd_nesting = 0;
}
}  // namespace tolvex
