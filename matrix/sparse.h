#pragma once
/// matrix/sparse.h: sparse matrices: chains of row tables with sorted rows of entries.
///
///   sparseptr -> rowarray (rows 1..2048) -> rowarray (rows 2049..4096) -> ... -> nil
///                  indx[0] -> colnode(coord 3) -> colnode(coord 8) -> nil
///
/// Purpose    storage of matrices that are mostly zero, and the walks over them.
/// Invariant  within a row `coord`, the column counted from 1, rises strictly; no entry has the value 0.
///            Row r, counted from 0, stands in block r / 2048 at indx[r % 2048]; heads behind the last
///            row are nil.
/// Ownership  a chain owns its entries and their values, unless it is a frame (flip_sparse), whose values
///            belong to another matrix.
/// Raises     nothing: subscripts are checked by the callers (matrix/array.h).
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
struct colnode;
using colm_ptr = colnode*;
using colm_ptrptr = colm_ptr*;
struct colnode {
    int32_t coord;
    quoly val;
    colm_ptr next;
};
static_assert(sizeof(colnode) == 24 && std::is_trivially_destructible_v<colnode>);
inline constexpr int32_t k_rows_a_block = 2048;
struct rowarray;
using sparseptr = rowarray*;
struct rowarray {
    colm_ptr indx[k_rows_a_block];
    sparseptr next;
};
inline colm_ptr colm_garb = nullptr;
inline sparseptr spargarb = nullptr;

// ---- records -------------------------------------------------------------------------------------------

/// A row table, contents undefined but for `next`, which is nil.
sparseptr newsparse();
inline colm_ptr newcolm(int32_t coord, quoly val, colm_ptr next) {
    colm_ptr p = pool_pop<&colnode::next>(colm_garb, colmstash);
    *p = {coord, val, next};
    return p;
}
/// *spar := an empty chain for r rows.
void sparse_init(sparseptr* spar, int32_t r);

// ---- single entries ------------------------------------------------------------------------------------

/// The head of row r, counted from 0. Time r / 2048.
colm_ptrptr sparse_row(sparseptr spar, int32_t r);
/// The link, at or behind t in its row, at which column c is or would be inserted.
inline colm_ptrptr get_sparse_colm(colm_ptrptr t, int32_t c) {
    while (*t != nullptr && (*t)->coord < c) t = &(*t)->next;
    return t;
}
/// True if the link, found by get_sparse_colm for column c, points to its entry.
inline bool stands_at(const colm_ptr* t, int32_t c) { return *t != nullptr && (*t)->coord == c; }
/// Element (r, c), both counted from 1; the shared zero if there is no entry. To be read only.
quoly spar_retrieve(sparseptr spar, int32_t r, int32_t c);
/// Entry (r, c), r from 0 and c from 1, becomes the value, which is used up; the old one goes. 0 leaves no
/// entry.
void sparse_insert(sparseptr spar, int32_t r, int32_t c, quoly value);
/// Unlinks the entry at the link t with its value.
void free_colm(colm_ptrptr t);
/// The same, only if its value is the number 0.
void purge_sparse(colm_ptrptr t);
/// The value at the slot, if it is there and not 0, becomes the first entry of a row; *slot := nil.
void put_in_front(colm_ptrptr head, int32_t c, quolyptr slot);
/// The walk of a loop over all rows in order, first to last: *t is the head of the next row, *block its
/// table. Returns nil after the last of `rows` rows.
struct SparseWalk {
    sparseptr block;
    int32_t row;   // of the head returned last, from 0
    int32_t rows;  // in all
};
inline SparseWalk walk_sparse(sparseptr spar, int32_t rows) { return {spar, -1, rows}; }
inline colm_ptrptr next_row(SparseWalk& w) {
    w.row++;
    if (w.row == w.rows) return nullptr;
    if (w.row > 0 && w.row % k_rows_a_block == 0) w.block = w.block->next;
    return &w.block->indx[w.row % k_rows_a_block];
}

// ---- whole matrices ------------------------------------------------------------------------------------

/// Frees all: the chain if arr_free, else it was borrowed. *spar := nil.
void free_sparse(sparseptr* spar, int32_t rows, boolean arr_free);
/// Gives back entries and blocks of a frame, not the values.
void free_sparse_frame(sparseptr* spar, int32_t rows);
/// Frees the entries, keeps the blocks.
void free_sparse_data(sparseptr spar, int32_t rows);
/// *t := a deep copy of s, negated if `neg`.
void copy_sparse(sparseptr s, sparseptr* t, int32_t rows, boolean neg);
/// The same with safe points: s must stay as it is while statements run.
void copy_sparse_polled(sparseptr s, sparseptr* t, int32_t rows);
/// The rows of *dup move to spar, whose own entries are freed; *dup is used up.
void put_back_sparse(sparseptr* dup, sparseptr spar, int32_t rows);
/// In place: nodes move, in one pass over the rows from the last to the first, so that each new row is sorted
/// without a search.
void trans_sparse(sparseptr* spar, int32_t rows, int32_t cols);
/// *flipped := the transpose as a frame that shares the values of spar.
void flip_sparse(sparseptr spar, sparseptr* flipped, int32_t rows, int32_t cols);
/// Columns i and j, from 1, change places in all rows from `first` on.
void sparse_switch_columns(sparseptr spar, int32_t rows, int32_t first, int32_t i, int32_t j);
/// Calls f for the location of every value; an entry that has become 0 is unlinked. f must not change the
/// chain.
void change_sparse(sparseptr spar, int32_t rows, void (*f)(quolyptr value, void* context), void* context);

// ---- predicates ----------------------------------------------------------------------------------------

int64_t sparse_entries(sparseptr spar, int32_t rows);
/// False if an entry has a denominator; *allnumbs: all entries are numbers (undefined after false).
bool sparse_allpolys(sparseptr spar, int32_t rows, bool* allnumbs);
bool sparse_allnumbs(sparseptr spar, int32_t rows);
bool sparse_iszero(sparseptr spar, int32_t rows);
/// The least level, from 1, of the main variables of all entries; 16384: no entry has a variable.
inline constexpr int32_t k_no_variable_depth = 16384;
int32_t sparse_polydepth(sparseptr spar, int32_t rows);
/// True if every entry that is no number is a polynomial in one and the same variable.
bool sparse_one_var_polys(sparseptr spar, int32_t rows);
bool sparse_negexponents(sparseptr spar, int32_t rows);

/// Pools and lines of the garbage report. Once, at start-up.
void init_sparse();
#ifdef TOLVEX_CHECKED
/// The invariant above; a failed test ends the program.
void sparse_check(sparseptr spar, int32_t rows, int64_t cols);
void audit_reach_sparse(sparseptr spar, int32_t rows);
#endif
}  // namespace tolvex
