#include "matrix/products.h"

#include "matrix/int_products.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- dense matrices over residues ----------------------------------------------------------------------

/// The elements as words, row by row or column by column. Nil if one of them is no number. In scratch memory.
static uint32_t* words_of(const workptr a, int32_t rows, int32_t cols, bool by_row) {
    auto* words = scratch_array<uint32_t>(int64_t{rows} * cols);
    for (int32_t c = 0; c < cols; c++) {
        for (int32_t r = 0; r < rows; r++) {
            const quolynode* q = a[r + int64_t{c} * rows];
            if (!q->numb) return nullptr;
            int64_t place = by_row ? int64_t{r} * cols + c : r + int64_t{c} * rows;
            words[place] = static_cast<uint32_t>(q->ncoef->lint);
        }
    }
    return words;
}

/// The scalar product of two runs of residues: sums stay below 2 m^2, so that a conditional subtraction
/// replaces the division.
static uint32_t scalar_product(const uint32_t* x, const uint32_t* y, int32_t n, uint32_t m) {
    uint64_t square = uint64_t{m} * m, sum = 0;
    for (int32_t k = 0; k < n; k++) {
        sum += uint64_t{x[k]} * y[k];
        if (sum >= square) sum -= square;
    }
    return static_cast<uint32_t>(sum % m);
}

/// The product over Z/m; false if an element is no number.
static bool residue_mult(workptr a, workptr b, int32_t rows, int32_t inner, int32_t cols, workptr result) {
    ScratchMark mark = scratch_mark();
    const uint32_t* x = words_of(a, rows, inner, true);
    const uint32_t* y = x == nullptr ? nullptr : words_of(b, inner, cols, false);
    auto m = static_cast<uint32_t>(modulus);
    for (int32_t c = 0; y != nullptr && c < cols; c++) {
        poll_interrupt();
        for (int32_t r = 0; r < rows; r++) {
            uint32_t v = scalar_product(x + int64_t{r} * inner, y + int64_t{c} * inner, inner, m);
            quoly_set(static_cast<int32_t>(v), &result[r + int64_t{c} * rows]);
        }
    }
    scratch_release(mark);
    return y != nullptr;
}

// ---- dense matrices ------------------------------------------------------------------------------------

/// *sum := the sum of x[k * step] y[k]. Products by 0 are left out.
static void element_product(const quoly* x, int64_t step, const quoly* y, int32_t n, quolyptr sum) {
    for (int32_t k = 0; k < n; k++) {
        if (quoly_iszero(x[k * step]) || quoly_iszero(y[k])) continue;
        poll_interrupt();
        quoly term = nullptr;
        quoly_mult(x[k * step], y[k], &term);
        if (*sum == nullptr)
            *sum = term;
        else
            best_quoly_add(sum, term);
    }
    if (*sum == nullptr) quoly_set(0, sum);
}

void matrix_mult(workptr a, workptr b, int32_t rows, int32_t inner, int32_t cols, workptr result) {
    if (modularmode && !finf && residue_mult(a, b, rows, inner, cols, result)) return;
    if (!modularmode && multiply_rationals(a, b, rows, inner, cols, result)) return;
    for (int32_t c = 0; c < cols; c++)
        for (int32_t r = 0; r < rows; r++)
            element_product(a + r, rows, b + int64_t{c} * inner, inner, &result[r + int64_t{c} * rows]);
}

// ---- sparse matrices -----------------------------------------------------------------------------------

/// The row at *t += factor * the row b. Entries are merged; sums that vanish go.
static void add_multiple(colm_ptrptr t, const colnode* b, quoly factor) {
    for (; b != nullptr; b = b->next) {
        quoly term = nullptr;
        quoly_mult(factor, b->val, &term);
        t = get_sparse_colm(t, b->coord);
        if (stands_at(t, b->coord))
            best_quoly_add(&(*t)->val, term);
        else
            *t = newcolm(b->coord, term, *t);
        purge_sparse(t);
    }
}

void sparse_mult(sparseptr a, sparseptr b, int32_t rows, int32_t inner, sparseptr result) {
    auto blocks = static_cast<size_t>((int64_t{inner} + k_rows_a_block - 1) / k_rows_a_block);
    ScratchMark mark = scratch_mark();
    auto* table = scratch_array<sparseptr>(static_cast<int64_t>(blocks));
    for (size_t i = 0; i < blocks; i++, b = b->next) table[i] = b;
    SparseWalk from = walk_sparse(a, rows), to = walk_sparse(result, rows);
    while (colm_ptrptr row = next_row(from)) {
        colm_ptrptr target = next_row(to);
        for (const colnode* p = *row; p != nullptr; p = p->next) {
            poll_interrupt();
            int32_t k = p->coord - 1;
            add_multiple(target, table[k / k_rows_a_block]->indx[k % k_rows_a_block], p->val);
        }
    }
    scratch_release(mark);
}

/// The nodes of the row b go into the row at *t.
static void merge_row(colm_ptrptr t, colm_ptr b, bool minus) {
    while (b != nullptr) {
        colm_ptr node = b;
        b = b->next;
        if (minus) quoly_inplace(node->val);
        t = get_sparse_colm(t, node->coord);
        if (!stands_at(t, node->coord)) {
            node->next = *t;
            *t = node;
            continue;
        }
        best_quoly_add(&(*t)->val, node->val);
        pool_push<&colnode::next>(colm_garb, node);
        purge_sparse(t);
    }
}

void add_sparses(sparseptr a, sparseptr* b, int32_t rows, bool minus) {
    SparseWalk to = walk_sparse(a, rows), from = walk_sparse(*b, rows);
    while (colm_ptrptr t = next_row(to)) {
        poll_interrupt();
        colm_ptrptr row = next_row(from);
        colm_ptr nodes = *row;
        *row = nullptr;
        merge_row(t, nodes, minus);
    }
    free_sparse(b, rows, 1);
}
}  // namespace tolvex
