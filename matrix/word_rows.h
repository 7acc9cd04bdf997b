#pragma once
/// matrix/word_rows.h: rows of residues, and of elements of a table field: what elimination does with them.
///
/// Modes      the modulus is passed along, any number from 2 to 2^31 - 1; a table field is the one in force.
/// Raises     nothing.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// to[c] += factor * from[c] for c = 0..count-1; the rows do not overlap. A vector instruction forms several
/// products at a time.
void add_row_multiple(const WordField& f, uint32_t* to, const uint32_t* from, uint32_t factor, int64_t count);
/// row[c] *= factor.
void scale_row_by(const WordField& f, uint32_t* row, uint32_t factor, int64_t count);
/// The least rank of the elements as pivots: 0 for 1 and -1, value - 1 else, the greatest word for 0.
uint32_t least_pivot_rank(const WordField& f, const uint32_t* row, int64_t count);
inline uint32_t pivot_rank(const WordField& f, uint32_t value) {
    return !f.table && value == f.p - 1 ? 0 : value - 1;
}
}  // namespace tolvex
