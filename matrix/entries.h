#pragma once
/// matrix/entries.h: the elements of a square matrix that are not 0, dense and sparse alike.
///
/// Ownership  the lists stand in scratch memory of the caller; the values belong to the matrix and are only
///            read.
/// Raises     poll_interrupt.
#include "matrix/components.h"
#include "matrix/sparse.h"
namespace tolvex {
/// Row by row, columns rising.
struct MatrixEntries {
    MatrixPattern places;
    const quolynode** value;
};
inline int64_t entry_count(const MatrixEntries& m) { return m.places.start[m.places.n]; }
/// Of an n by n matrix, column by column, no element nil.
MatrixEntries dense_entries(const quoly* a, int32_t n);
MatrixEntries sparse_entry_list(sparseptr spar, int32_t n);
}  // namespace tolvex
