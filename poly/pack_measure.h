#pragma once
/// poly/pack_measure.h: what one walk over a tree tells before its terms are packed.
///
/// Purpose    the widths of the fields of a key are known before the first key is made.
/// Ownership  the tree is only read.
#include "poly/poly.h"
#include "poly/poly_modes.h"

#include <cstdint>
namespace tolvex {
/// Terms from one safe point of a walk to the next.
inline constexpr int64_t k_terms_unpolled = int64_t{1} << 14;

/// False: the chain has fewer terms than that.
inline bool may_be_long(const polynode* p) { return laurent || p->exp >= k_terms_unpolled - 1; }

/// Exponents by level counted from the top of the tree (0 based); deeper than `levels` all of them are 0.
struct PackMeasure {
    int32_t most[k_levels];   // greatest exponent; of a level that does not occur 0
    int32_t least[k_levels];  // least exponent
    int32_t levels;           // levels walked: deeper ones do not occur
    int64_t terms;            // leaves
    int32_t digits;           // digits of the longest coefficient; 1 in lintmode
};
/// Reads p. Levels that the walk leaves out (below a leaf) count as exponent 0. Time linear, with safe
/// points.
void pack_measure(const polynode* p, PackMeasure* m);
}  // namespace tolvex
