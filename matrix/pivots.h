#pragma once
/// matrix/pivots.h: the choice of pivots in dense matrices, and exchanges of rows and columns.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// A pivot of the open block of a, m by m, column by column, rows and columns from i (from 0) on: an entry
/// +-1 at once; else the smallest number, the first one at a tie; else the value of least quoly_mass. The
/// first num_cols open columns are searched; if the first of them is empty the search ends. False: no entry
/// that is not 0.
bool find_good_spot(const quoly* a, int32_t m, int32_t i, int32_t num_cols, int32_t* row, int32_t* column);
/// Rows, columns r and s of an m by m matrix change places.
void exchange_rows(quoly* a, int32_t m, int32_t r, int32_t s);
void exchange_columns(quoly* a, int32_t m, int32_t r, int32_t s);
}  // namespace tolvex
