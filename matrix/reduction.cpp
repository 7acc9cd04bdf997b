#include "matrix/reduction.h"

#include "matrix/exact_quotient.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/memory.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
namespace tolvex {
// ---- matrices ------------------------------------------------------------------------------------------

LineMatrix new_dense_matrix(int32_t rows, int32_t cols) {
    int64_t count = int64_t{rows} * cols;
    LineMatrix m = {nullptr, nullptr, rows, cols, false};
    m.at =
        static_cast<quoly*>(checked_malloc(static_cast<size_t>(std::max<int64_t>(count, 1)) * sizeof(quoly)));
    for (int64_t k = 0; k < count; k++) {
        m.at[k] = nullptr;
        quoly_set(0, &m.at[k]);
    }
    return m;
}

LineMatrix new_sparse_matrix(int32_t rows, int32_t cols) {
    LineMatrix m = {nullptr, nullptr, rows, cols, false};
    sparse_init(&m.spar, std::max(rows, 1));
    return m;
}

/// Rows of the chain of a sparse matrix.
static int32_t chain_rows(const LineMatrix& m) { return m.flipped ? m.cols : m.rows; }

void drop_matrix(LineMatrix* m) {
    if (m->at != nullptr) {
        ValueRelease release;
        for (int64_t k = 0; k < int64_t{m->rows} * m->cols; k++) release(&m->at[k]);
        free(m->at);
        m->at = nullptr;
    }
    if (m->spar != nullptr) free_sparse(&m->spar, chain_rows(*m), 1);
}

quoly matrix_element(const LineMatrix& m, int32_t r, int32_t c) {
    if (m.at != nullptr) return m.at[r + int64_t{c} * m.rows];
    if (m.flipped) std::swap(r, c);
    return spar_retrieve(m.spar, r + 1, c + 1);
}

void set_matrix_element(LineMatrix& m, int32_t r, int32_t c, quoly value) {
    if (m.at == nullptr) {
        if (m.flipped) std::swap(r, c);
        sparse_insert(m.spar, r, c + 1, value);
        return;
    }
    quoly& slot = m.at[r + int64_t{c} * m.rows];
    free_quoly(&slot);
    slot = value;
}

void cut_columns(LineMatrix* m, int32_t cols) {
    for (int64_t k = int64_t{cols} * m->rows; m->at != nullptr && k < int64_t{m->cols} * m->rows; k++)
        free_quoly(&m->at[k]);
    m->cols = cols;
}

void unflip_matrix(LineMatrix* m) {
    if (!m->flipped) return;
    trans_sparse(&m->spar, m->cols, m->rows);
    m->flipped = false;
}

static void transpose_dense(LineMatrix* m) {
    auto* turned = static_cast<quoly*>(checked_malloc(
        static_cast<size_t>(std::max<int64_t>(int64_t{m->rows} * m->cols, 1)) * sizeof(quoly)));
    for (int64_t r = 0; r < m->rows; r++)
        for (int64_t c = 0; c < m->cols; c++) turned[c + r * m->cols] = m->at[r + c * m->rows];
    free(m->at);
    m->at = turned;
}

void transpose_matrix(LineMatrix* m) {
    if (m->at != nullptr)
        transpose_dense(m);
    else
        m->flipped = !m->flipped;
    std::swap(m->rows, m->cols);
}

// ---- lines ---------------------------------------------------------------------------------------------

static void add_product(quolyptr to, quoly f, quoly x) {
    quoly product = nullptr;
    quoly_mult(f, x, &product);
    best_quoly_add(to, product);
}

namespace {
/// A line of a dense matrix.
struct DenseLine {
    quoly* at;
    int64_t step, count;
};
DenseLine dense_line(const LineMatrix& m, bool rows, int32_t k) {
    if (rows) return {m.at + k, m.rows, m.cols};
    return {m.at + int64_t{k} * m.rows, 1, m.rows};
}
}  // namespace

void sparse_row_add(colm_ptrptr to, const colnode* from, quoly f) {
    for (; from != nullptr; from = from->next) {
        poll_interrupt();
        to = get_sparse_colm(to, from->coord);
        quoly product = nullptr;
        quoly_mult(f, from->val, &product);
        if (!stands_at(to, from->coord))
            *to = newcolm(from->coord, product, *to);
        else
            best_quoly_add(&(*to)->val, product);
        if (quoly_iszero((*to)->val))
            free_colm(to);
        else
            to = &(*to)->next;
    }
}

/// In every row of the chain: entry q += f times entry k.
static void add_across(LineMatrix& m, int32_t q, quoly f, int32_t k) {
    SparseWalk w = walk_sparse(m.spar, chain_rows(m));
    while (colm_ptrptr row = next_row(w)) {
        poll_interrupt();
        colm_ptrptr source = get_sparse_colm(row, k + 1);
        if (!stands_at(source, k + 1)) continue;
        colnode single = {q + 1, (*source)->val, nullptr};
        sparse_row_add(row, &single, f);
    }
}

void add_line(LineMatrix& m, bool rows, int32_t q, quoly f, int32_t k) {
    if (m.at == nullptr) {
        if (rows == m.flipped)
            add_across(m, q, f, k);
        else
            sparse_row_add(sparse_row(m.spar, q), *sparse_row(m.spar, k), f);
        return;
    }
    DenseLine to = dense_line(m, rows, q), from = dense_line(m, rows, k);
    for (int64_t i = 0; i < to.count; i++) {
        quoly x = from.at[i * from.step];
        if (quoly_iszero(x)) continue;
        poll_interrupt();
        add_product(&to.at[i * to.step], f, x);
    }
}

void exchange_lines(LineMatrix& m, bool rows, int32_t i, int32_t j) {
    if (i == j) return;
    if (m.at == nullptr) {
        if (rows == m.flipped)
            sparse_switch_columns(m.spar, chain_rows(m), 0, i + 1, j + 1);
        else
            std::swap(*sparse_row(m.spar, i), *sparse_row(m.spar, j));
        return;
    }
    DenseLine x = dense_line(m, rows, i), y = dense_line(m, rows, j);
    for (int64_t k = 0; k < x.count; k++) std::swap(x.at[k * x.step], y.at[k * y.step]);
}

/// Calls f for the location of every element of the line that is stored; it may make the element 0.
template <class Change> static void change_line(LineMatrix& m, bool rows, int32_t k, Change f) {
    if (m.at != nullptr) {
        DenseLine x = dense_line(m, rows, k);
        for (int64_t i = 0; i < x.count; i++) {
            poll_interrupt();
            if (!quoly_iszero(x.at[i * x.step])) f(&x.at[i * x.step]);
        }
        return;
    }
    auto change_entry = [&](colm_ptrptr t) {
        f(&(*t)->val);
        if (!quoly_iszero((*t)->val)) return &(*t)->next;
        free_colm(t);
        return t;
    };
    if (rows != m.flipped) {
        colm_ptrptr t = sparse_row(m.spar, k);
        while (*t != nullptr) {
            poll_interrupt();
            t = change_entry(t);
        }
        return;
    }
    SparseWalk w = walk_sparse(m.spar, chain_rows(m));
    while (colm_ptrptr row = next_row(w)) {
        poll_interrupt();
        colm_ptrptr t = get_sparse_colm(row, k + 1);
        if (stands_at(t, k + 1)) change_entry(t);
    }
}

void scale_line(LineMatrix& m, bool rows, int32_t k, quoly f) {
    change_line(m, rows, k, [f](quolyptr x) { fast_quoly_mult(x, f); });
}

void negate_line(LineMatrix& m, bool rows, int32_t k) {
    change_line(m, rows, k, [](quolyptr x) { quoly_inplace(*x); });
}

void quotient_line(LineMatrix& m, bool rows, int32_t k, quoly d) {
    change_line(m, rows, k, [d](quolyptr x) { fast_quoly_quot(x, d, 0); });
}

void divide_line(LineMatrix& m, bool rows, int32_t k, quoly d) {
    change_line(m, rows, k, [d](quolyptr x) { exact_quotient(x, d); });
}

// ---- the record ----------------------------------------------------------------------------------------

static LineMatrix identity_matrix(int32_t n, bool sparse) {
    LineMatrix m = sparse ? new_sparse_matrix(n, n) : new_dense_matrix(n, n);
    for (int32_t k = 0; k < n; k++) {
        quoly one = nullptr;
        quoly_set(1, &one);
        set_matrix_element(m, k, k, one);
    }
    return m;
}

void begin_reduction(Reduction* r, const bool want[k_aux_matrices]) {
    bool sparse = r->m.spar != nullptr;
    for (int32_t k = 0; k < k_aux_matrices; k++) {
        if (!want[k]) continue;
        bool of_rows = k == k_alpha || k == k_alphinv;
        r->aux[k] = identity_matrix(of_rows ? r->m.rows : r->m.cols, sparse);
        r->aux[k].flipped = sparse && (k == k_beta || k == k_alphinv);  // they change by columns
    }
}

template <class Visit> static void each_matrix(Reduction* r, Visit f) {
    f(&r->m);
    for (LineMatrix& m : r->aux) f(&m);
    for (LineMatrix& m : r->extra) f(&m);
}

void settle_reduction(Reduction* r) { each_matrix(r, unflip_matrix); }

void drop_reduction(Reduction* r) {
    each_matrix(r, drop_matrix);
    free_quoly(&r->value);
}

void fail_reduction(Reduction* r, Err code) {
    r->failed = true;
    error(code);
}

void transpose_reduction(Reduction* r) {
    transpose_matrix(&r->m);
    unflip_matrix(&r->m);
    for (LineMatrix& m : r->aux)
        if (is_present(m)) transpose_matrix(&m);
    std::swap(r->aux[k_alpha], r->aux[k_beta]);
    std::swap(r->aux[k_alphinv], r->aux[k_betinv]);
    std::swap(r->row_number, r->column_number);
}

namespace {
/// A step on rows changes alpha by the same step and alphinv by the opposite one on columns; a step on
/// columns does so with beta and betinv.
LineMatrix& matrix_of_steps(Reduction& r, bool rows) { return r.aux[rows ? k_alpha : k_beta]; }
LineMatrix& inverse_of_steps(Reduction& r, bool rows) { return r.aux[rows ? k_alphinv : k_betinv]; }

void add_step(Reduction& r, bool rows, int32_t q, quoly f, int32_t k) {
    add_line(r.m, rows, q, f, k);
    LineMatrix &steps = matrix_of_steps(r, rows), &inverse = inverse_of_steps(r, rows);
    if (is_present(steps)) add_line(steps, rows, q, f, k);
    if (!is_present(inverse)) return;
    quoly minus = nullptr;
    quoly_makeneg(f, &minus);
    add_line(inverse, !rows, k, minus, q);
    free_quoly(&minus);
}

void exchange_step(Reduction& r, bool rows, int32_t i, int32_t j) {
    if (i == j) return;
    exchange_lines(r.m, rows, i, j);
    if (int32_t* numbers = rows ? r.row_number : r.column_number; numbers != nullptr)
        std::swap(numbers[i], numbers[j]);
    LineMatrix &steps = matrix_of_steps(r, rows), &inverse = inverse_of_steps(r, rows);
    if (is_present(steps)) exchange_lines(steps, rows, i, j);
    if (is_present(inverse)) exchange_lines(inverse, !rows, i, j);
}

void scale_step(Reduction& r, bool rows, int32_t k, quoly f) {
    scale_line(r.m, rows, k, f);
    LineMatrix &steps = matrix_of_steps(r, rows), &inverse = inverse_of_steps(r, rows);
    if (is_present(steps)) scale_line(steps, rows, k, f);
    if (!is_present(inverse)) return;
    quoly over = nullptr;
    quoly_assign(f, &over);
    quoly_reciprocal(&over);
    scale_line(inverse, !rows, k, over);
    free_quoly(&over);
}

void negate_step(Reduction& r, bool rows, int32_t k) {
    negate_line(r.m, rows, k);
    LineMatrix &steps = matrix_of_steps(r, rows), &inverse = inverse_of_steps(r, rows);
    if (is_present(steps)) negate_line(steps, rows, k);
    if (is_present(inverse)) negate_line(inverse, !rows, k);
}
}  // namespace

void reduction_add_row(Reduction& r, int32_t q, quoly f, int32_t k) { add_step(r, true, q, f, k); }
void reduction_add_column(Reduction& r, int32_t q, quoly f, int32_t k) { add_step(r, false, q, f, k); }
void reduction_exchange_rows(Reduction& r, int32_t i, int32_t j) { exchange_step(r, true, i, j); }
void reduction_exchange_columns(Reduction& r, int32_t i, int32_t j) { exchange_step(r, false, i, j); }
void reduction_scale_row(Reduction& r, int32_t k, quoly f) { scale_step(r, true, k, f); }
void reduction_scale_column(Reduction& r, int32_t k, quoly f) { scale_step(r, false, k, f); }
void reduction_negate_row(Reduction& r, int32_t k) { negate_step(r, true, k); }
void reduction_negate_column(Reduction& r, int32_t k) { negate_step(r, false, k); }
}  // namespace tolvex
