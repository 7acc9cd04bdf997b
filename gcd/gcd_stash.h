#pragma once
/// gcd/gcd_stash.h: a hash table from pairs of polynomials to their gcds.
///
///   bucket ──► entry ──next──► entry      newest first
///               │  lo: operand of lower degree
///               └─ slot ── pcoef: operand of higher degree, next: the gcd (nil: unknown), exp: mass of the
///               entry
///
/// Purpose    elimination over rational functions asks for the same gcds again and again. Off by default;
///            the matrix routines switch it on for the length of their work.
/// Invariant  entries hold canonical operands (positive leading number, or monic) of one ground ring, one
///            list of variables and one state of laurent: a change of these empties the table before it
///            is used again. With a field the level of the main variable belongs to the pair. While a
///            frame holds an open slot (polygcd_stack_depth > 0) nothing is evicted, and an entry whose
///            gcd is unknown outlives even the emptying of the table until all frames are closed.
/// Ownership  entries own their polynomials. A slot belongs to the table; its user fills it by
///            gcd_stash_store.
#include "poly/poly.h"
#include "storage/memory.h"

#include <cstdint>
namespace tolvex {
struct GcdEntry {
    GcdEntry* next;
    poly lo, slot;
    int32_t level;  // of the main variable, 0 without a field
};
inline constexpr int32_t k_gcd_buckets = 367;

inline int64_t gcdmass = 0;              // sum of the estimated masses
inline int32_t polygcd_stack_depth = 0;  // frames that hold an open slot
inline int16_t gcd_stash_level = 0;      // lookupgcd outside images   writers: init_, pop_, free_gcd_stash
/// True if there is room for further entries.
inline bool gcd_stash_has_room() { return gcdmass <= initial_memory / 2; }
/// *gcdp := the slot of this pair, found or made. Its next is the gcd, nil: unknown. pt: main variable of the
/// pair. The hash looks at six terms of each operand.
void gcdhash(poly u, poly v, polyptrr gcdp, polypt pt);
poly gcd_stash_known(poly u, poly v, polypt pt);   ///< the gcd of this pair, nil: unknown; nothing is added
void gcd_stash_store(poly slot, poly g);           ///< a copy of g into an open slot, masses counted
void gcd_stash_forget(poly u, poly v, polypt pt);  ///< empties the slot of a pair whose gcd proved wrong
/// Levels of use, counted by lookupgcd. The first one empties a table of another ring. The last one empties
/// it over Z; in modular mode the entries stay for the next use with this modulus.
void init_gcd_stash();
void pop_gcd_stash();
void free_gcd_stash();               ///< leaves all levels
void purge_gcd_stash(int32_t keep);  ///< evicts, never from bucket keep (-1: none is kept)
int64_t mass_gcd_stash();            ///< true size in bytes
/// To be called when entries become wrong, or useless for long: a change of ground ring, variables, modding
/// polynomials or laurent.
void gcd_stash_outdated();
/// Visits every record that the table keeps: the entries by on_entry, their polynomials by on_poly.
void walk_gcd_stash(void (*on_entry)(), void (*on_poly)(const polynode*));
}  // namespace tolvex
