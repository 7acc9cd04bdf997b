#pragma once
/// matrix/sparse_pivot.h: the choice of pivots in sparse matrices of values.
///
/// Purpose    fill-in and growth decide what a sparse elimination costs: the entries of all open rows are
///            scored. A column with a single entry goes first, the heaviest of them; else the rule that
///            `pseudet_heur` chooses.
///
///   0  the size of the entry          3  number: size plus row; else better mass plus row
///   1  terms plus the row's terms     4  number: size plus row; else terms
///   2  size plus row                  5  as 3, and a column with few, light entries may come first
///
/// Invariant  sizes of entries are kept a row at a time and made anew when the row has changed.
/// Ownership  the table stands in scratch memory of the caller; values are only read.
#include "matrix/pivots.h"
#include "matrix/sparse.h"

#include <cstdint>
namespace tolvex {
struct EntrySize {
    int32_t column;  // from 1
    int32_t mass, better_mass;
    int64_t terms;
    bool number, unit;  // unit: +-1; over a field every number
    bool usable;        // can be a pivot
};
struct PivotRow {
    EntrySize* entry;  // in the order of the columns
    int32_t count, room;
    int64_t mass;  // numbers count 1, other entries their terms
    bool open;
};
struct PivotTable {
    PivotRow* row;
    int32_t rows, cols;
    int64_t entries;  // of open rows
    // Of each column, for one search.
    int32_t *count, *least_mass, *least_row, *least_place;
};
/// A table for all rows of the chain; rows below first_row, and columns below first_col, are closed.
PivotTable new_pivot_table(sparseptr spar, int32_t rows, int32_t cols, int32_t first_row, int32_t first_col);
/// The row, an open one, has changed.
void refresh_row(PivotTable& t, int32_t r, const colnode* row);
void close_row(PivotTable& t, int32_t r);
/// The place of the column in the row, -1: no entry.
int32_t place_in_row(const PivotRow& row, int32_t column);
/// A pivot of the open rows. firstonly: a row without entries ends the search, since the determinant is 0
/// then. Time: the entries of the open rows.
PivotSearch sparse_findbest(PivotTable& t, bool firstonly, int32_t* row, int32_t* column);
/// The same in one column, from 1: the entry +-1 of a row, else the one of the least score.
PivotSearch sparse_colfindbest(PivotTable& t, int32_t column, int32_t* row);
}  // namespace tolvex
