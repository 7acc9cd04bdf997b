#include "matrix/pivots.h"

#include "gcd/word_gcd.h"
#include "matrix/sparse_pivot.h"
#include "numbers/num_compare.h"
#include "numbers/num_sign.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mass.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <numeric>
namespace tolvex {
/// By size: the bits of a chain; of a residue its value.
static int64_t size_of_number(const number* n) {
    if (lintmode) return n->lint;
    return int64_t{k_digit_bits} * (n->size - 1) +
           std::bit_width(static_cast<uint32_t>(std::abs(n->head->value)));
}

bool is_pm1(const number* n) {
    if (lintmode) return n->lint == 1 || (modularmode && !finf && n->lint == modulus - 1);
    return n->size == 1 && std::abs(n->head->value) == 1;
}

bool can_be_pivot(const quolynode* q) {
    if (quoly_iszero(q)) return false;
    return !q->numb || !ring_is_composite() || std::gcd(q->ncoef->lint, modulus) == 1;
}

namespace {
struct Spot {
    int32_t row, column;
    int64_t size;
};
}  // namespace

bool find_good_spot(const quoly* a, int32_t m, int32_t i, int32_t num_cols, int32_t* row, int32_t* column) {
    Spot number_spot = {-1, -1, INT64_MAX}, other = {-1, -1, INT64_MAX};
    for (int32_t c = i; c < std::min(m, i + num_cols); c++) {
        for (int32_t r = i; r < m; r++) {
            const quolynode* q = a[r + int64_t{c} * m];
            if (quoly_iszero(q)) continue;
            int64_t size = q->numb ? size_of_number(q->ncoef) : quoly_mass(q);
            Spot& best = q->numb ? number_spot : other;
            if (size < best.size) best = {r, c, size};
            if (!q->numb || !is_pm1(q->ncoef)) continue;
            *row = r;
            *column = c;
            return true;
        }
        if (c == i && number_spot.row < 0 && other.row < 0) return false;
    }
    const Spot& best = number_spot.row >= 0 ? number_spot : other;
    *row = best.row;
    *column = best.column;
    return true;
}

// ---- reductions ----------------------------------------------------------------------------------------

namespace {
/// The best pivot so far.
struct BestPivot {
    const number* least;  // the number; nil: none yet
    int32_t mass;         // of the best one that is no number; -1: none yet
    int32_t number_row, number_column, other_row, other_column;
    bool not_zero;  // an entry that cannot be a pivot has been seen
};
}  // namespace

/// True if no better one can come.
static bool consider(BestPivot* best, const quolynode* q, int32_t row, int32_t column) {
    if (quoly_iszero(q)) return false;
    best->not_zero = true;
    if (!can_be_pivot(q)) return false;
    if (!q->numb) {
        if (best->least != nullptr) return false;
        int32_t mass = quoly_mass(q);
        if (best->mass >= 0 && mass >= best->mass) return false;
        best->mass = mass;
        best->other_row = row;
        best->other_column = column;
        return false;
    }
    if (best->least != nullptr && !is_pm1(q->ncoef) && !abs_larger(best->least, q->ncoef)) return false;
    best->least = q->ncoef;
    best->number_row = row;
    best->number_column = column;
    return is_pm1(q->ncoef);
}

static void search_dense(const LineMatrix& m, const OpenBlock& b, BestPivot* best) {
    for (int32_t c = b.first_col; c < b.last_col; c++) {
        poll_interrupt();
        const quoly* column = m.at + int64_t{c} * m.rows;
        for (int32_t r = b.first_row; r < b.last_row; r++)
            if (consider(best, column[r], r, c)) return;
    }
}

/// Of a sparse matrix the rule that pseudet_heur chooses.
static PivotSearch search_sparse(const LineMatrix& m, const OpenBlock& b, int32_t* row, int32_t* column) {
    ScratchMark mark = scratch_mark();
    PivotTable t = new_pivot_table(m.spar, m.rows, m.cols, b.first_row, b.first_col);
    PivotSearch found;
    if (b.last_col == b.first_col + 1 && m.cols > b.last_col) {
        *column = b.last_col;
        found = sparse_colfindbest(t, b.last_col, row);
    } else {
        found = sparse_findbest(t, false, row, column);
    }
    --*column;
    scratch_release(mark);
    return found;
}

PivotSearch findbest(const LineMatrix& m, const OpenBlock& b, int32_t* row, int32_t* column) {
    if (m.at == nullptr) return search_sparse(m, b, row, column);
    BestPivot best = {nullptr, -1, 0, 0, 0, 0, false};
    search_dense(m, b, &best);
    if (best.least == nullptr && best.mass < 0)
        return best.not_zero ? PivotSearch::no_unit : PivotSearch::none;
    *row = best.least != nullptr ? best.number_row : best.other_row;
    *column = best.least != nullptr ? best.number_column : best.other_column;
    return PivotSearch::found;
}

// ---- exchanges -----------------------------------------------------------------------------------------

void exchange_rows(quoly* a, int32_t m, int32_t r, int32_t s) {
    if (r == s) return;
    for (int64_t c = 0; c < m; c++) std::swap(a[r + c * m], a[s + c * m]);
}

void exchange_columns(quoly* a, int32_t m, int32_t r, int32_t s) {
    if (r == s) return;
    std::swap_ranges(a + int64_t{r} * m, a + int64_t{r} * m + m, a + int64_t{s} * m);
}
}  // namespace tolvex
