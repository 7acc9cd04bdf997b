#pragma once
/// gcd/gcd_stash.h: a hash table from pairs of polynomials to their gcds.
///
/// Off by default; the matrix routines switch it on for the length of their work. Entries hold canonical
/// operands (positive leading number, or monic). Memory is bounded by a mass estimate and a two-stage
/// eviction; while a frame holds an open slot (polygcd_stack_depth > 0) nothing is evicted.
#include "poly/poly.h"

#include <cstdint>
namespace tolvex {
inline int64_t gcdmass = 0;              // sum of the estimated masses
inline int32_t polygcd_stack_depth = 0;  // frames that hold an open slot
/// *gcdp := the slot of this pair, found or made. Its next is the gcd, nil: unknown. pt: main variable of the
/// pair.
void gcdhash(poly u, poly v, polyptrr gcdp, polypt pt);
void gcd_stash_store(poly slot, poly g);           ///< a copy of g into an open slot, masses counted
void gcd_stash_forget(poly u, poly v, polypt pt);  ///< empties the slot of a pair whose gcd proved wrong
void init_gcd_stash();
void pop_gcd_stash();
void free_gcd_stash();
void purge_gcd_stash(int32_t keep);  ///< evicts, never from bucket keep (-1: none is kept)
int64_t mass_gcd_stash();            ///< true size in bytes
/// Counts a change that makes entries wrong: ring, variables, modding polynomials, laurent.
void gcd_stash_outdated();
}  // namespace tolvex
