#pragma once
/// matrix/pivots.h: the choice of pivots in dense matrices, and exchanges of rows and columns.
///
/// Purpose    a small pivot keeps the entries of what is left small.
/// Ownership  elements are only read; exchanges move their slots.
#include "matrix/reduction.h"

#include <cstdint>
namespace tolvex {
/// 1 or -1 in the ring in force.
bool is_pm1(const number* n);
/// False for what can be no pivot: 0, and over a composite modulus a number that is no unit.
bool can_be_pivot(const quolynode* q);

enum class PivotSearch { none, found, no_unit };  // no_unit: not all entries are 0, but none is a unit
/// The part of a matrix in which a pivot is looked for: rows and columns from 0, the last ones excluded.
struct OpenBlock {
    int32_t first_row, first_col, last_row, last_col;
};
/// A pivot of the block, column by column: an entry +-1 at once, else the number of least absolute value, the
/// first one at a tie; else the value of least quoly_mass. Residues count by their values. Time: the elements
/// of the block; of a sparse matrix its entries, row by row.
PivotSearch findbest(const LineMatrix& m, const OpenBlock& b, int32_t* row, int32_t* column);
/// A pivot of the open block of a, m by m, column by column, rows and columns from i (from 0) on: an entry
/// +-1 at once; else the smallest number, the first one at a tie; else the value of least quoly_mass. The
/// first num_cols open columns are searched; if the first of them is empty the search ends. False: no entry
/// that is not 0.
bool find_good_spot(const quoly* a, int32_t m, int32_t i, int32_t num_cols, int32_t* row, int32_t* column);
/// Rows, columns r and s of an m by m matrix change places.
void exchange_rows(quoly* a, int32_t m, int32_t r, int32_t s);
void exchange_columns(quoly* a, int32_t m, int32_t r, int32_t s);
}  // namespace tolvex
