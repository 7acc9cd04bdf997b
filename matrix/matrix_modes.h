#pragma once
/// matrix/matrix_modes.h: the array origin; switches and thresholds of determinants, inverses and
/// characteristic polynomials.
///
/// Purpose    read by matrix/ and the array language.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline int32_t addresser = 1;              // the first subscript of arrays, mostly 0 or 1         writers: &a
inline boolean chpoly_block = 1;           // slow characteristic polynomials in modular mode     writers: &B
inline int32_t detcutoff = -1;             // rows from which minors finish; negative: defaults   writers: &D
inline int32_t gauss_cutoff = 0;           // 1: Gauss-Bareiss                                    writers: &K
inline int32_t rat_det_method_cut = 5000;  // "mass" up to which determinants are interpolated    writers: &L
inline int32_t mod_det_method_cut = 150;   // the same over Z/p; a 33rd of it when that is set    writers: &L
inline boolean mod_matrix_ok = 1;          // integer matrices by adjoint and remainders          writers: &I
inline boolean lagrange_stash = 0;         // interpolated determinants go to the save file       writers: &_L
inline int32_t pseudet_heur = 0;           // pivot heuristic of sparse elimination, 0..5         writers: &u

/// The subscript that users write for a row, column or place counted from 0; 64 bits, as the origin may be
/// any word.
inline int64_t user_number(int64_t place) { return place + addresser; }

// Figures of minors expansion, shown by `&j`.                        writers: minors expansion
inline uint64_t minor_memory = 0;                // free memory at its start
inline int32_t minorprime = 0;                   // size of the table of minors
inline int32_t sp_total_cnt = 0, sp_lowcnt = 0;  // branches, leaves
inline int32_t minor_total = 0;                  // minors in the table
inline int32_t purged_hits = 0;                  // how often they were met again
}  // namespace tolvex
