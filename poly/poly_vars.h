#pragma once
/// poly/poly_vars.h: the table of polynomial variables.
///
/// Invariant  polynames is the list, level 1 first; depth counts from 1; the sorted table agrees with it.
/// Ownership  records of variables belong to the list.
#include "poly/poly.h"
namespace tolvex {
boolean is_poly_name(const tokentipe& name, int32_t* depth);              ///< *depth := its level
boolean is_poly_name2(const tokentipe& name, int32_t* depth, polypt* p);  ///< *p := its record too
/// Search of the table sorted by name: the level, or 0.
int32_t its_a_polyname(const tokentipe& name);
/// Links a new variable in front (level 1) or at the end (deepest); depth is renumbered, the sorted table
/// rebuilt.
void insert_poly_name(const tokentipe& name, boolean at_end);
void delete_poly_name(int32_t depth);  ///< unlinks and frees the entry of that level
/// Marks in list[1..] the levels in which n has a non-zero exponent; returns the count of marked levels.
int32_t poly_vars(const polynode* n, int32_t level, int16_t* list);
int32_t driver_poly_vars(const polynode* n);                    ///< the number of variables that occur in n
boolean poly_contains_level(const polynode* p, int32_t level);  ///< true if that variable occurs in p
void reset_cutoffs(int32_t fresh);  ///< every polycut equal to poly_cutoff becomes fresh
/// Rewrites *p for a variable inserted at / taken out of `level` (1 based). Out: no exponent may stand there.
void poly_insert_level(polyptrr p, int32_t level);
void remove_one(polyptrr p, int32_t level);
void init_poly_constants();  ///< poly_1, dodo, the start-up stock of polygarb
}  // namespace tolvex
