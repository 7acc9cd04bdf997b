#include "matrix/sparse.h"

#include "poly/poly.h"
#include "quoly/garbage.h"
#include "quoly/quoly_audit.h"
#include "quoly/quoly_basic.h"
#include "storage/audit.h"
#include "storage/interrupt.h"

#include <cstring>
#include <utility>
namespace tolvex {
// ---- records -------------------------------------------------------------------------------------------

sparseptr newsparse() {
    sparseptr s = pool_pop<&rowarray::next>(spargarb, nullptr);
    s->next = nullptr;
    return s;
}

void sparse_init(sparseptr* spar, int32_t r) {
    sparseptr* link = spar;
    for (int32_t done = 0; done < r; done += k_rows_a_block) {
        *link = newsparse();
        memset(static_cast<void*>((*link)->indx), 0, sizeof(*link)->indx);
        link = &(*link)->next;
    }
}

// ---- single entries ------------------------------------------------------------------------------------

colm_ptrptr sparse_row(sparseptr spar, int32_t r) {
    for (; r >= k_rows_a_block; r -= k_rows_a_block) spar = spar->next;
    return &spar->indx[r];
}

quoly spar_retrieve(sparseptr spar, int32_t r, int32_t c) {
    colm_ptrptr t = get_sparse_colm(sparse_row(spar, r - 1), c);
    return stands_at(t, c) ? (*t)->val : quol_num_0;
}

void free_colm(colm_ptrptr t) {
    colm_ptr gone = *t;
    *t = gone->next;
    free_quoly(&gone->val);
    pool_push<&colnode::next>(colm_garb, gone);
}

void purge_sparse(colm_ptrptr t) {
    if (quoly_iszero((*t)->val)) free_colm(t);
}

void sparse_insert(sparseptr spar, int32_t r, int32_t c, quoly value) {
    colm_ptrptr t = get_sparse_colm(sparse_row(spar, r), c);
    if (stands_at(t, c)) {
        free_quoly(&(*t)->val);
        (*t)->val = value;
    } else {
        *t = newcolm(c, value, *t);
    }
    purge_sparse(t);
}

// ---- whole matrices ------------------------------------------------------------------------------------

void put_in_front(colm_ptrptr head, int32_t c, quolyptr slot) {
    if (*slot == nullptr) return;
    if (quoly_iszero(*slot)) {
        free_quoly(slot);
        return;
    }
    *head = newcolm(c, *slot, *head);
    *slot = nullptr;
}

/// Splices the entries of a row to the free list, their values having been given back if a release is given.
static void free_row(colm_ptrptr t, ValueRelease* release) {
    if (*t == nullptr) return;
    colm_ptr last = *t;
    for (colm_ptr p = *t; p != nullptr; p = p->next) {
        if (release != nullptr) (*release)(&p->val);
        last = p;
    }
    pool_splice<&colnode::next>(colm_garb, *t, last);
    *t = nullptr;
}

static void free_blocks(sparseptr* spar) {
    if (*spar == nullptr) return;
    sparseptr last = *spar;
    while (last->next != nullptr) last = last->next;
    pool_splice<&rowarray::next>(spargarb, *spar, last);
    *spar = nullptr;
}

static void free_rows(sparseptr spar, int32_t rows, bool values) {
    ValueRelease release;
    SparseWalk w = walk_sparse(spar, rows);
    while (colm_ptrptr t = next_row(w)) free_row(t, values ? &release : nullptr);
}

void free_sparse(sparseptr* spar, int32_t rows, boolean arr_free) {
    if (*spar != nullptr && arr_free) {
        free_rows(*spar, rows, true);
        free_blocks(spar);
    }
    *spar = nullptr;
}

void free_sparse_frame(sparseptr* spar, int32_t rows) {
    free_rows(*spar, rows, false);
    free_blocks(spar);
}

void free_sparse_data(sparseptr spar, int32_t rows) { free_rows(spar, rows, true); }

template <bool polled> static void copy_rows(sparseptr s, sparseptr* t, int32_t rows, bool neg) {
    sparse_init(t, rows);
    SparseWalk from = walk_sparse(s, rows), to = walk_sparse(*t, rows);
    while (colm_ptrptr row = next_row(from)) {
        colm_ptrptr link = next_row(to);
        for (colm_ptr p = *row; p != nullptr; p = p->next) {
            if constexpr (polled) poll_interrupt();
            quoly value = nullptr;
            neg ? quoly_makeneg(p->val, &value) : quoly_assign(p->val, &value);
            *link = newcolm(p->coord, value, nullptr);
            link = &(*link)->next;
        }
    }
}

void copy_sparse(sparseptr s, sparseptr* t, int32_t rows, boolean neg) {
    copy_rows<false>(s, t, rows, neg != 0);
}

void copy_sparse_polled(sparseptr s, sparseptr* t, int32_t rows) { copy_rows<true>(s, t, rows, false); }

void put_back_sparse(sparseptr* dup, sparseptr spar, int32_t rows) {
    ValueRelease release;
    SparseWalk from = walk_sparse(*dup, rows), to = walk_sparse(spar, rows);
    while (colm_ptrptr row = next_row(from)) {
        colm_ptrptr target = next_row(to);
        free_row(target, &release);
        *target = *row;
    }
    free_blocks(dup);
}

/// The blocks of a chain in the opposite order: the last becomes the first.
static sparseptr reverse_blocks(sparseptr s) {
    sparseptr reversed = nullptr;
    while (s != nullptr) {
        sparseptr next = s->next;
        s->next = reversed;
        reversed = s;
        s = next;
    }
    return reversed;
}

/// The blocks of a chain as a table, so that any row is reached at once. It is given back by free().
static sparseptr* table_of_blocks(sparseptr s, int64_t rows) {
    auto count = static_cast<size_t>((rows + k_rows_a_block - 1) / k_rows_a_block);
    auto* table = static_cast<sparseptr*>(checked_malloc(count * sizeof(sparseptr)));
    for (size_t i = 0; i < count; i++, s = s->next) table[i] = s;
    return table;
}

static colm_ptrptr row_in(sparseptr* table, int32_t r) {
    return &table[r / k_rows_a_block]->indx[r % k_rows_a_block];
}

void trans_sparse(sparseptr* spar, int32_t rows, int32_t cols) {
    sparseptr target = nullptr;
    sparse_init(&target, cols);
    sparseptr* table = table_of_blocks(target, cols);
    sparseptr source = reverse_blocks(*spar);
    for (int32_t r = rows - 1; r >= 0; r--) {
        colm_ptr p = source->indx[r % k_rows_a_block];
        while (p != nullptr) {
            colm_ptr next = p->next;
            colm_ptrptr head = row_in(table, p->coord - 1);
            p->coord = r + 1;
            p->next = *head;
            *head = p;
            p = next;
        }
        if (r % k_rows_a_block == 0) {
            sparseptr empty = source;
            source = source->next;
            pool_push<&rowarray::next>(spargarb, empty);
        }
    }
    free(table);
    *spar = target;
}

void flip_sparse(sparseptr spar, sparseptr* flipped, int32_t rows, int32_t cols) {
    sparse_init(flipped, cols);
    sparseptr* to = table_of_blocks(*flipped, cols);
    sparseptr* from = table_of_blocks(spar, rows);
    for (int32_t r = rows - 1; r >= 0; r--) {
        for (colm_ptr p = *row_in(from, r); p != nullptr; p = p->next) {
            colm_ptrptr head = row_in(to, p->coord - 1);
            *head = newcolm(r + 1, p->val, *head);
        }
    }
    free(from);
    free(to);
}

/// In one row: the entries of columns i < j, from 1, change their columns.
static void switch_entries(colm_ptrptr row, int32_t i, int32_t j) {
    colm_ptrptr at_i = get_sparse_colm(row, i), at_j = get_sparse_colm(at_i, j);
    colm_ptr x = stands_at(at_i, i) ? *at_i : nullptr, y = stands_at(at_j, j) ? *at_j : nullptr;
    if (x != nullptr && y != nullptr) {
        std::swap(x->val, y->val);
    } else if (x != nullptr) {
        *at_i = x->next;
        if (at_j == &x->next) at_j = at_i;
        x->coord = j;
        x->next = *at_j;
        *at_j = x;
    } else if (y != nullptr) {
        *at_j = y->next;
        y->coord = i;
        y->next = *at_i;
        *at_i = y;
    }
}

void sparse_switch_columns(sparseptr spar, int32_t rows, int32_t first, int32_t i, int32_t j) {
    if (i == j) return;
    if (i > j) std::swap(i, j);
    SparseWalk w = walk_sparse(spar, rows);
    while (colm_ptrptr row = next_row(w))
        if (w.row >= first) switch_entries(row, i, j);
}

void change_sparse(sparseptr spar, int32_t rows, void (*f)(quolyptr value, void* context), void* context) {
    SparseWalk w = walk_sparse(spar, rows);
    while (colm_ptrptr t = next_row(w)) {
        while (*t != nullptr) {
            colm_ptr p = *t;
            f(&p->val, context);
            if (quoly_iszero(p->val))
                free_colm(t);
            else
                t = &p->next;
        }
    }
}

// ---- predicates ----------------------------------------------------------------------------------------

/// True if f holds for every entry.
template <class Test> static bool all_entries(sparseptr spar, int32_t rows, Test f) {
    SparseWalk w = walk_sparse(spar, rows);
    while (colm_ptrptr t = next_row(w))
        for (colm_ptr p = *t; p != nullptr; p = p->next)
            if (!f(p->val)) return false;
    return true;
}

int64_t sparse_entries(sparseptr spar, int32_t rows) {
    int64_t count = 0;
    all_entries(spar, rows, [&](quoly) {
        count++;
        return true;
    });
    return count;
}

bool sparse_allpolys(sparseptr spar, int32_t rows, bool* allnumbs) {
    *allnumbs = true;
    return all_entries(spar, rows, [&](quoly q) {
        if (q->numb) return true;
        *allnumbs = false;
        return q->denom == nullptr;
    });
}

bool sparse_allnumbs(sparseptr spar, int32_t rows) {
    return all_entries(spar, rows, [](quoly q) { return q->numb != 0; });
}

bool sparse_iszero(sparseptr spar, int32_t rows) {
    return all_entries(spar, rows, [](quoly) { return false; });
}

/// The level of the outermost variable that occurs, from 1; dummy terms of exponent 0 stand for the others.
static int32_t depth_of(const polynode* p) {
    int32_t depth = 1;
    while (p->exp == 0 && p->next == nullptr) {
        if (p->numb) return k_no_variable_depth;
        p = p->pcoef;
        depth++;
    }
    return depth;
}

int32_t sparse_polydepth(sparseptr spar, int32_t rows) {
    int32_t least = k_no_variable_depth;
    all_entries(spar, rows, [&](quoly q) {
        if (!q->numb) least = minn(least, depth_of(q->numer));
        return true;
    });
    return least;
}

/// True if no term of the polynomial at its outermost level that occurs has a coefficient with variables.
static bool in_one_variable(const polynode* p, int32_t level) {
    for (; level > 1; level--) p = p->pcoef;
    for (; p != nullptr; p = p->next)
        if (!p->numb && depth_of(p->pcoef) != k_no_variable_depth) return false;
    return true;
}

bool sparse_one_var_polys(sparseptr spar, int32_t rows) {
    int32_t level = k_no_variable_depth;
    return all_entries(spar, rows, [&](quoly q) {
        if (q->numb) return true;
        if (q->denom != nullptr) return false;
        int32_t depth = depth_of(q->numer);
        if (depth == k_no_variable_depth) return true;
        if (level != k_no_variable_depth && depth != level) return false;
        level = depth;
        return in_one_variable(q->numer, depth);
    });
}

static bool negative_exponent(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (p->exp < 0 || (!p->numb && negative_exponent(p->pcoef))) return true;
    return false;
}

bool sparse_negexponents(sparseptr spar, int32_t rows) {
    return !all_entries(spar, rows, [](quoly q) {
        return q->numb || (!negative_exponent(q->numer) && !negative_exponent(q->denom));
    });
}

// ---- reports and the checked build ---------------------------------------------------------------------

static int64_t free_entries() {
    int64_t count = 0;
    for (const colnode* p = colm_garb; p != nullptr; p = pool_link<&colnode::next>(p)) count++;
    return count;
}

static int64_t free_row_tables() {
    int64_t count = 0;
    for (const rowarray* p = spargarb; p != nullptr; p = pool_link<&rowarray::next>(p)) count++;
    return count;
}

void init_sparse() {
    garbage_provide(GarbageRow::sparse_rows, {free_row_tables, sizeof(rowarray), nullptr});
    garbage_provide(GarbageRow::colms, {free_entries, sizeof(colnode), nullptr});
#ifdef TOLVEX_CHECKED
    audit_pool<colnode>("colnode");
    audit_pool<rowarray>("rowarray");
#endif
}

#ifdef TOLVEX_CHECKED
void sparse_check(sparseptr spar, int32_t rows, int64_t cols) {
    int32_t r = 0;
    for (sparseptr s = spar; s != nullptr; s = s->next) {
        CHECK(r < rows);
        for (int32_t i = 0; i < k_rows_a_block; i++, r++) {
            CHECK(r < rows || s->indx[i] == nullptr);
            int32_t last = 0;
            for (colm_ptr p = s->indx[i]; p != nullptr; p = p->next) {
                CHECK(p->coord > last && p->coord <= cols && p->val != nullptr && !quoly_iszero(p->val));
                last = p->coord;
            }
        }
    }
    CHECK(r >= rows);
}

void audit_reach_sparse(sparseptr spar, int32_t rows) {
    for (sparseptr s = spar; s != nullptr; s = s->next) audit_reach<rowarray>();
    if (spar == nullptr) return;
    SparseWalk w = walk_sparse(spar, rows);
    while (colm_ptrptr t = next_row(w)) {
        for (colm_ptr p = *t; p != nullptr; p = p->next) {
            audit_reach<colnode>();
            audit_reach_quoly(p->val);
        }
    }
}
#endif
}  // namespace tolvex
