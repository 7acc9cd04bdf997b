#pragma once
/// gcd/gcd_modes.h: counters and switches of the gcd driver.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline int32_t alg_c_count = 0;  // runs of the subresultant engine in this problem
inline int32_t original_depth = 1;
inline int32_t c_cntcount = 0, a_cntcount = 0, d_cntcount = 0, g_cntcount = 0;  // cleared a statement
inline int32_t g_cutoff = 10;
inline int16_t lookupgcd = 0;   // gcd stash stack counter     writers: &C
inline boolean chinhensel = 1;  // Hensel lifting and remaindering for several variables    writers: &O
inline boolean hen_check = 1;   // lifted answers are checked twice                         writers: &c
}  // namespace tolvex
