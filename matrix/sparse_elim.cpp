#include "matrix/sparse_elim.h"

#include "gcd/word_gcd.h"
#include "matrix/components.h"
#include "matrix/determinant.h"
#include "matrix/exact_quotient.h"
#include "matrix/interpolated.h"
#include "matrix/reduction.h"
#include "matrix/sparse_pivot.h"
#include "numbers/number_modes.h"
#include "poly/poly_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstdio>
namespace tolvex {
namespace {
/// Rows and columns stay where they are: which belong together is kept, and makes the sign.
struct SparseElim {
    sparseptr spar;
    int32_t m, done;
    PivotTable table;
    int32_t* column_of;  // of each row, from 0; -1: still open
    quolyptr det;
};
}  // namespace

static SparseElim begin_elimination(sparseptr spar, int32_t m, quolyptr det) {
    SparseElim e = {spar, m, 0, new_pivot_table(spar, m, m, 0, 0), scratch_array<int32_t>(m), det};
    for (int32_t r = 0; r < m; r++) e.column_of[r] = -1;
    quoly_set(1, det);
    return e;
}

/// The pivot has been chosen: its row is closed.
static void take_pivot(SparseElim& e, int32_t row, int32_t column) {
    e.column_of[row] = column - 1;
    close_row(e.table, row);
    e.done++;
}

static void free_row_of(SparseElim& e, int32_t r) {
    colm_ptrptr head = sparse_row(e.spar, r);
    while (*head != nullptr) {
        poll_interrupt();
        free_colm(head);
    }
}

// ---- fractions -----------------------------------------------------------------------------------------

/// row q := row q - e / pivot row r, for every open row with an entry e in the column.
static void eliminate(SparseElim& x, int32_t r, int32_t column) {
    const colnode* pivot_row = *sparse_row(x.spar, r);
    quoly pivot = spar_retrieve(x.spar, r + 1, column);
    fast_quoly_mult(x.det, pivot);
    for (int32_t q = 0; q < x.m; q++) {
        if (!x.table.row[q].open || place_in_row(x.table.row[q], column) < 0) continue;
        colm_ptrptr row = sparse_row(x.spar, q), at = get_sparse_colm(row, column);
        quoly f = nullptr;
        quoly_quot((*at)->val, pivot, &f, 0);
        quoly_inplace(f);
        sparse_row_add(row, pivot_row, f);
        free_quoly(&f);
        at = get_sparse_colm(row, column);
        if (stands_at(at, column)) free_colm(at);
        refresh_row(x.table, q, *row);
    }
}

/// What is left as a dense matrix, its rows and columns in their order; it shares the values.
static quoly* open_block(SparseElim& e, int32_t left) {
    auto* block = scratch_array<quoly>(int64_t{left} * left);
    auto* place = scratch_array<int32_t>(e.m);  // of each open column
    for (int32_t c = 0; c < e.m; c++) place[c] = 0;
    for (int32_t r = 0; r < e.m; r++)
        if (e.column_of[r] >= 0) place[e.column_of[r]] = -1;
    int32_t open = 0, row = 0;
    for (int32_t c = 0; c < e.m; c++)
        if (place[c] == 0) place[c] = open++;
    for (int64_t k = 0; k < int64_t{left} * left; k++) block[k] = quol_num_0;
    int32_t column = 0;
    for (int32_t r = 0; r < e.m; r++) {
        if (!e.table.row[r].open) continue;
        for (const colnode* p = *sparse_row(e.spar, r); p != nullptr; p = p->next)
            block[row + int64_t{place[p->coord - 1]} * left] = p->val;
        while (place[column] < 0) column++;
        e.column_of[r] = column++;
        row++;
    }
    return block;
}

constexpr int64_t k_most_dense_rows = 1000;

/// The rest goes to the dense methods.
static void finish_dense(SparseElim& e) {
    int32_t left = e.m - e.done;
    quoly rest = nullptr;
    const quoly* block = open_block(e, left);
    quoly_set(0, &rest);
    dense_determinant(block, left, &rest);
    fast_quoly_mult(e.det, rest);
    free_quoly(&rest);
}

/// True if a third of what is left has entries.
static bool rest_is_full(const SparseElim& e) {
    constexpr int64_t k_share = 3, k_least_rows = 2;
    int64_t left = e.m - e.done;
    return left <= k_most_dense_rows && left >= k_least_rows && e.table.entries * k_share > left * left;
}

/// Asked once, when the first polynomial would divide: true if values at points are known to take seconds at
/// most, so that no quotients need be formed.
static bool rest_has_few_points(SparseElim& e) {
    constexpr double k_most_work = 1e10;  // nanoseconds
    int64_t left = e.m - e.done;
    bool numbers = false;
    if (left > k_most_dense_rows || field_depth > 0 || laurent) return false;
    if (!sparse_allpolys(e.spar, e.m, &numbers)) return false;
    ScratchMark mark = scratch_mark();
    auto* saved = scratch_array<int32_t>(e.m);
    std::copy(e.column_of, e.column_of + e.m, saved);
    double work =
        interpolation_work(open_block(e, static_cast<int32_t>(left)), static_cast<int32_t>(left), false);
    std::copy(saved, saved + e.m, e.column_of);
    scratch_release(mark);
    return work >= 0 && work < k_most_work;
}

static void end_elimination(SparseElim& e, bool singular) {
    if (singular)
        quoly_set(0, e.det);
    else if (odd_permutation(e.column_of, e.m))
        quoly_inplace(*e.det);
    for (int32_t r = 0; r < e.m; r++) free_row_of(e, r);
}

/// The line that verbose mode begins with.
static void begin_report(const char* text, int32_t m) {
    if (verbose) dumpitt(text, m, 1, 0, 0);
    if (verbose && modularmode && modulus == 2)
        fputs("  Consider using &O to turn off Hensel and C.R.T. for GCD over Z/2.\n", stdout);
}

void sparse_gauss_elim(sparseptr spar, int32_t m, quolyptr det) {
    ScratchMark mark = scratch_mark();
    begin_report("Gauss-Jordan elim method, sparse, size ", m);
    SparseElim e = begin_elimination(spar, m, det);
    bool singular = false, asked = false;
    while (e.done < m) {
        poll_interrupt();
        int32_t row = 0, column = 0;
        bool dense = rest_is_full(e);
        singular = !dense && sparse_findbest(e.table, true, &row, &column) != PivotSearch::found;
        if (singular) break;
        if (!dense && !asked && !spar_retrieve(spar, row + 1, column)->numb && e.table.count[column] > 1) {
            asked = true;
            dense = rest_has_few_points(e);
        }
        if (dense) {
            finish_dense(e);
            break;
        }
        take_pivot(e, row, column);
        if (windy) printf("  choosing pivot at: %d, %d, %d\n", e.done, row + 1, column);
        eliminate(e, row, column);
        free_row_of(e, row);
    }
    end_elimination(e, singular);
    scratch_release(mark);
}

// ---- fraction-free -------------------------------------------------------------------------------------

/// row q := (pivot row q - e row r) / previous for every open row; previous nil: 1.
static void eliminate_exactly(SparseElim& x, int32_t r, int32_t column, quoly pivot, quoly previous) {
    const colnode* pivot_row = *sparse_row(x.spar, r);
    for (int32_t q = 0; q < x.m; q++) {
        if (!x.table.row[q].open) continue;
        colm_ptrptr row = sparse_row(x.spar, q);
        colm_ptrptr at = get_sparse_colm(row, column);
        quoly minus_e = nullptr;
        if (stands_at(at, column)) {
            quoly_makeneg((*at)->val, &minus_e);
            free_colm(at);
        }
        for (colm_ptr p = *row; p != nullptr; p = p->next) {
            poll_interrupt();
            fast_quoly_mult(&p->val, pivot);
        }
        if (minus_e != nullptr) sparse_row_add(row, pivot_row, minus_e);
        free_quoly(&minus_e);
        at = get_sparse_colm(row, column);
        if (stands_at(at, column)) free_colm(at);
        for (colm_ptr p = *row; p != nullptr && previous != nullptr; p = p->next) {
            poll_interrupt();
            exact_quotient(&p->val, previous);
        }
        refresh_row(x.table, q, *row);
    }
}

void sparse_gauss_Bareiss(sparseptr spar, int32_t m, quolyptr det) {
    if (modularmode && ring_is_composite())
        tolvex_error(" must have modularmode and mod is prime, Sparse Gauss-Bareiss");
    ScratchMark mark = scratch_mark();
    begin_report("Gauss-Bareiss method, sparse, size ", m);
    SparseElim e = begin_elimination(spar, m, det);
    quoly previous = nullptr;
    bool singular = false;
    while (e.done < m && !singular) {
        poll_interrupt();
        int32_t row = 0, column = 0;
        singular = sparse_findbest(e.table, true, &row, &column) != PivotSearch::found;
        if (singular) break;
        take_pivot(e, row, column);
        quoly pivot = nullptr;
        quoly_assign(spar_retrieve(spar, row + 1, column), &pivot);
        eliminate_exactly(e, row, column, pivot, previous);
        free_quoly(&previous);
        previous = pivot;
        free_row_of(e, row);
    }
    if (!singular) quoly_assign(previous, det);
    free_quoly(&previous);
    end_elimination(e, singular);
    scratch_release(mark);
}
}  // namespace tolvex
