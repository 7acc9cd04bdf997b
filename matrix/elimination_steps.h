#pragma once
/// matrix/elimination_steps.h: the order of the steps of echelon forms. Private to matrix/.
///
/// Purpose    written once for values, dense and sparse, and for words: a frame is a matrix under reduction
///            with the matrices of its operations. It offers rows(), cols(); block_pivot() and
///            column_pivot(), which look for a pivot from row i on; exchange_rows(), exchange_columns();
///            clear_rows(k, c, from): all rows from `from` on but k lose their elements in column c;
///            make_monic(k, c): row k is divided by its element in column c;
///            clear_columns(k): the columns behind k lose their elements in row k, whose pivot, at (k, k),
///            is 1 and alone in its column.
/// Raises     poll_interrupt between two steps.
#include "matrix/pivots.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
/// A pivot of the open block, if there is one, comes to (i, i).
template <class Frame> PivotSearch bring_pivot(Frame& f, int32_t i) {
    poll_interrupt();
    int32_t row = 0, column = 0;
    PivotSearch found = f.block_pivot(i, &row, &column);
    if (found == PivotSearch::none || found == PivotSearch::no_unit) return found;
    f.exchange_rows(i, row);
    f.exchange_columns(i, column);
    return found;
}

/// The rank, or the pivots found up to `cut`; -1: no unit.
template <class Frame> int32_t row_steps(Frame& f, int32_t cut) {
    int32_t last = std::min({f.rows(), f.cols(), cut}), i = 0;
    for (; i < last; i++) {
        PivotSearch found = bring_pivot(f, i);
        if (found == PivotSearch::none) break;
        if (found == PivotSearch::no_unit) return -1;
        f.clear_rows(i, i, i + 1);
    }
    return i;
}

/// The rank of the reduced row echelon form; -1: no unit.
template <class Frame> int32_t echelon_steps(Frame& f) {
    int32_t i = 0;
    for (int32_t c = 0; c < f.cols() && i < f.rows(); c++) {
        poll_interrupt();
        int32_t row = 0;
        PivotSearch found = f.column_pivot(i, c, &row);
        if (found == PivotSearch::none) continue;
        if (found == PivotSearch::no_unit) return -1;
        f.exchange_rows(i, row);
        f.make_monic(i, c);
        f.clear_rows(i, c, 0);
        i++;
    }
    return i;
}

/// The rank of the form with units on the diagonal and nothing beside them; -1: no unit.
template <class Frame> int32_t normal_steps(Frame& f) {
    int32_t last = std::min(f.rows(), f.cols()), i = 0;
    for (; i < last; i++) {
        PivotSearch found = bring_pivot(f, i);
        if (found == PivotSearch::none) break;
        if (found == PivotSearch::no_unit) return -1;
        f.make_monic(i, i);
        f.clear_rows(i, i, i + 1);
        f.clear_columns(i);
    }
    return i;
}
}  // namespace tolvex
