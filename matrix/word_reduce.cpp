#include "matrix/word_reduce.h"

#include "gcd/word_gcd.h"
#include "matrix/elimination_steps.h"
#include "matrix/word_rows.h"
#include "numbers/number_modes.h"
#include "quoly/quoly_basic.h"
#include "storage/scratch.h"

#include <numeric>
namespace tolvex {
namespace {
/// A matrix row by row.
struct WordMatrix {
    uint32_t* at;  // nil: absent
    int32_t rows, cols;
};
uint32_t* word_row(const WordMatrix& m, int32_t r) { return m.at + int64_t{r} * m.cols; }

/// The frame of matrix/elimination_steps.h on words.
struct WordFrame {
    WordField f;
    bool composite;
    WordMatrix m;
    WordMatrix alpha, beta, alphinv, betinv;  // beta and alphinv transposed
    int32_t *row_number, *column_number;      // those of the record

    int32_t rows() const { return m.rows; }
    int32_t cols() const { return m.cols; }
    uint32_t at(int32_t r, int32_t c) const { return m.at[int64_t{r} * m.cols + c]; }

    PivotSearch block_pivot(int32_t i, int32_t* row, int32_t* column) const;
    PivotSearch column_pivot(int32_t i, int32_t c, int32_t* row) const;
    void exchange_rows(int32_t i, int32_t j);
    void exchange_columns(int32_t i, int32_t j);
    void clear_rows(int32_t k, int32_t c, int32_t from);
    void make_monic(int32_t k, int32_t c);
    void clear_columns(int32_t k);
};

void add_row(const WordField& f, const WordMatrix& m, int32_t q, uint32_t factor, int32_t k) {
    if (m.at != nullptr) add_row_multiple(f, word_row(m, q), word_row(m, k), factor, m.cols);
}
void swap_rows(const WordMatrix& m, int32_t i, int32_t j) {
    if (m.at != nullptr && i != j) std::swap_ranges(word_row(m, i), word_row(m, i) + m.cols, word_row(m, j));
}
void scale_row(const WordField& f, const WordMatrix& m, int32_t k, uint32_t factor) {
    if (m.at != nullptr) scale_row_by(f, word_row(m, k), factor, m.cols);
}

/// The best pivot so far: by rank, then by column, then by row.
struct BestWord {
    uint32_t rank;
    int32_t row, column;
    bool not_zero;
};
void consider(BestWord* best, uint32_t rank, int32_t row, int32_t column) {
    if (rank > best->rank || (rank == best->rank && column >= best->column)) return;
    *best = {rank, row, column, true};
}
}  // namespace

// ---- pivots --------------------------------------------------------------------------------------------

/// The entries of a row from column c up to `last`, over a field.
static void search_field_row(const WordFrame& w, BestWord* best, int32_t r, int32_t c, int32_t last) {
    const uint32_t* row = word_row(w.m, r);
    uint32_t least = least_pivot_rank(w.f, row + c, last - c);
    if (least == UINT32_MAX || least > best->rank) return;
    while (pivot_rank(w.f, row[c]) != least) c++;
    consider(best, least, r, c);
}

/// The same over a composite modulus: units alone count.
static void search_unit_row(const WordFrame& w, BestWord* best, int32_t r, int32_t c, int32_t last) {
    const uint32_t* row = word_row(w.m, r);
    for (; c < last; c++) {
        if (row[c] == 0) continue;
        best->not_zero = true;
        uint32_t rank = pivot_rank(w.f, row[c]);
        if (rank <= best->rank && std::gcd(row[c], w.f.p) == 1) consider(best, rank, r, c);
    }
}

static PivotSearch search_words(const WordFrame& w, const OpenBlock& b, int32_t* row, int32_t* column) {
    BestWord best = {UINT32_MAX, -1, INT32_MAX, false};
    for (int32_t r = b.first_row; r < b.last_row; r++)
        (w.composite ? search_unit_row : search_field_row)(w, &best, r, b.first_col, b.last_col);
    if (best.row < 0) return best.not_zero ? PivotSearch::no_unit : PivotSearch::none;
    *row = best.row;
    *column = best.column;
    return PivotSearch::found;
}

PivotSearch WordFrame::block_pivot(int32_t i, int32_t* row, int32_t* column) const {
    return search_words(*this, {i, i, rows(), cols()}, row, column);
}

PivotSearch WordFrame::column_pivot(int32_t i, int32_t c, int32_t* row) const {
    int32_t column = 0;
    return search_words(*this, {i, c, rows(), c + 1}, row, &column);
}

// ---- steps ---------------------------------------------------------------------------------------------

void WordFrame::exchange_rows(int32_t i, int32_t j) {
    swap_rows(m, i, j);
    swap_rows(alpha, i, j);
    swap_rows(alphinv, i, j);
    if (row_number != nullptr) std::swap(row_number[i], row_number[j]);
}

void WordFrame::exchange_columns(int32_t i, int32_t j) {
    for (int32_t r = 0; r < m.rows && i != j; r++) std::swap(word_row(m, r)[i], word_row(m, r)[j]);
    swap_rows(beta, i, j);
    swap_rows(betinv, i, j);
    if (column_number != nullptr) std::swap(column_number[i], column_number[j]);
}

void WordFrame::clear_rows(int32_t k, int32_t c, int32_t from) {
    uint32_t over = wf_inverse(f, at(k, c));
    for (int32_t q = from; q < m.rows; q++) {
        uint32_t e = at(q, c);
        if (q == k || e == 0) continue;
        poll_interrupt();
        uint32_t factor = wf_mul(f, e, over);
        add_row_multiple(f, word_row(m, q) + c, word_row(m, k) + c, wf_neg(f, factor), m.cols - c);
        add_row(f, alpha, q, wf_neg(f, factor), k);
        add_row(f, alphinv, k, factor, q);
    }
}

void WordFrame::make_monic(int32_t k, int32_t c) {
    uint32_t pivot = at(k, c);
    if (pivot == 1) return;
    uint32_t over = wf_inverse(f, pivot);
    scale_row(f, m, k, over);
    scale_row(f, alpha, k, over);
    scale_row(f, alphinv, k, pivot);
}

void WordFrame::clear_columns(int32_t k) {
    for (int32_t c = k + 1; c < m.cols; c++) {
        uint32_t e = at(k, c);
        if (e == 0) continue;
        poll_interrupt();
        word_row(m, k)[c] = 0;  // the rest of the pivot's column is 0
        add_row(f, beta, c, wf_neg(f, e), k);
        add_row(f, betinv, k, e, c);
    }
}

// ---- to words and back ---------------------------------------------------------------------------------

static bool all_numbers(const LineMatrix& m) {
    if (m.at == nullptr) return sparse_allnumbs(m.spar, m.rows);
    for (int64_t k = 0; k < int64_t{m.rows} * m.cols; k++) {
        poll_every<4096>(k);
        if (!m.at[k]->numb) return false;
    }
    return true;
}

bool fits_words(const Reduction& r) {
    // dense rows take a second at 2^23 elements, a chain that is filled in takes minutes: with three entries
    // a row it is
    constexpr int64_t k_small = 1 << 22, k_large = 1 << 25;
    constexpr double k_filled_in = 2.5;
    if (!modularmode || !all_numbers(r.m)) return false;
    int64_t elements = int64_t{r.m.rows} * r.m.cols;
    if (r.m.at != nullptr || elements <= k_small) return true;
    auto entries = static_cast<double>(sparse_entries(r.m.spar, r.m.rows));
    return elements <= k_large && entries > k_filled_in * std::min(r.m.rows, r.m.cols);
}

/// The matrix as rows of words, or as rows of its transpose.
static WordMatrix words_of(const LineMatrix& m, bool transposed) {
    if (!is_present(m)) return {nullptr, 0, 0};
    WordMatrix w = {nullptr, transposed ? m.cols : m.rows, transposed ? m.rows : m.cols};
    int64_t row_step = transposed ? 1 : w.cols, col_step = transposed ? w.cols : 1,
            count = int64_t{m.rows} * m.cols;
    w.at = scratch_array<uint32_t>(count);
    if (m.at != nullptr) {
        for (int64_t c = 0; c < m.cols; c++, poll_interrupt())
            for (int64_t r = 0; r < m.rows; r++)
                w.at[r * row_step + c * col_step] = static_cast<uint32_t>(m.at[r + c * m.rows]->ncoef->lint);
        return w;
    }
    scratch_clear(w.at, static_cast<size_t>(count) * sizeof(uint32_t));
    if (m.flipped) std::swap(row_step, col_step);
    SparseWalk walk = walk_sparse(m.spar, m.flipped ? m.cols : m.rows);
    while (colm_ptrptr t = next_row(walk))
        for (const colnode* p = *t; p != nullptr; p = p->next)
            w.at[walk.row * row_step + (p->coord - 1) * col_step] =
                static_cast<uint32_t>(p->val->ncoef->lint);
    return w;
}

static quoly word_value(uint32_t word) {
    quoly q = nullptr;
    quoly_set(0, &q);
    q->ncoef->lint = static_cast<int32_t>(word);
    return q;
}

/// A sparse matrix gets the words as its entries.
static void rewrite_sparse(LineMatrix* m, const uint32_t* at, int64_t row_step, int64_t col_step) {
    int32_t rows = m->flipped ? m->cols : m->rows, cols = m->flipped ? m->rows : m->cols;
    if (m->flipped) std::swap(row_step, col_step);
    free_sparse_data(m->spar, rows);
    SparseWalk walk = walk_sparse(m->spar, rows);
    while (colm_ptrptr t = next_row(walk)) {
        poll_interrupt();
        for (int32_t c = 0; c < cols; c++) {
            uint32_t word = at[walk.row * row_step + c * col_step];
            if (word == 0) continue;
            *t = newcolm(c + 1, word_value(word), nullptr);
            t = &(*t)->next;
        }
    }
}

static void write_back(LineMatrix* m, const WordMatrix& w, bool transposed) {
    if (w.at == nullptr) return;
    int64_t row_step = transposed ? 1 : w.cols, col_step = transposed ? w.cols : 1;
    if (m->at == nullptr) return rewrite_sparse(m, w.at, row_step, col_step);
    for (int64_t c = 0; c < m->cols; c++, poll_interrupt())
        for (int64_t r = 0; r < m->rows; r++)
            m->at[r + c * m->rows]->ncoef->lint = static_cast<int32_t>(w.at[r * row_step + c * col_step]);
}

int32_t reduce_words(Reduction* r, WordSteps steps, int32_t cut) {
    ScratchMark mark = scratch_mark();
    LineMatrix* aux = r->aux;
    WordFrame w = {word_field_ring(),
                   ring_is_composite(),
                   words_of(r->m, false),
                   words_of(aux[k_alpha], false),
                   words_of(aux[k_beta], true),
                   words_of(aux[k_alphinv], true),
                   words_of(aux[k_betinv], false),
                   r->row_number,
                   r->column_number};
    int32_t rank = steps == WordSteps::rows      ? row_steps(w, cut)
                   : steps == WordSteps::echelon ? echelon_steps(w)
                                                 : normal_steps(w);
    write_back(&r->m, w.m, false);
    write_back(&aux[k_alpha], w.alpha, false);
    write_back(&aux[k_beta], w.beta, true);
    write_back(&aux[k_alphinv], w.alphinv, true);
    write_back(&aux[k_betinv], w.betinv, false);
    scratch_release(mark);
    return rank;
}
}  // namespace tolvex
