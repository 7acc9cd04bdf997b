#include "matrix/int_grid.h"

#include "quoly/quoly_basic.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
namespace tolvex {
IntGrid zero_grid(int32_t rows, int32_t cols) {
    IntGrid g = {scratch_array<IntEntry>(int64_t{rows} * cols), rows, cols};
    std::fill_n(g.at, int64_t{rows} * cols, k_entry_zero);
    return g;
}

IntGrid identity_grid(int32_t n) {
    IntGrid g = zero_grid(n, n);
    for (int32_t k = 0; k < n; k++) g(k, k) = k_entry_one;
    return g;
}

IntGrid permutation_grid(const int32_t* order, int32_t n) {
    IntGrid g = zero_grid(n, n);
    for (int32_t k = 0; k < n; k++) g(k, order[k]) = k_entry_one;
    return g;
}

/// Calls f(row, column, entry) for the entries of the chain of a sparse matrix.
template <class Visit> static void each_chain_entry(const LineMatrix& m, Visit f) {
    SparseWalk w = walk_sparse(m.spar, m.flipped ? m.cols : m.rows);
    while (colm_ptrptr t = next_row(w)) {
        poll_every<64>(w.row);
        for (const colnode* e = *t; e != nullptr; e = e->next) f(w.row, e->coord - 1, e);
    }
}

IntGrid grid_of(const LineMatrix& m) {
    IntGrid g = zero_grid(m.rows, m.cols);
    if (m.at != nullptr) {
        for (int32_t r = 0; r < m.rows; r++) {
            for (int32_t c = 0; c < m.cols; c++) g(r, c) = int_entry(m.at[r + int64_t{c} * m.rows]->ncoef);
            poll_interrupt();
        }
        return g;
    }
    each_chain_entry(m, [&](int32_t r, int32_t c, const colnode* e) {
        (m.flipped ? g(c, r) : g(r, c)) = int_entry(e->val->ncoef);
    });
    return g;
}

/// place[k]: the number of line k among those that are marked by 0. Returns their count.
static int32_t number_lines(int32_t* place, int32_t lines) {
    int32_t count = 0;
    for (int32_t k = 0; k < lines; k++)
        if (place[k] == 0) place[k] = count++;
    return count;
}

IntGrid occupied_grid(const LineMatrix& m) {
    if (m.at != nullptr) return grid_of(m);
    int32_t rows = m.flipped ? m.cols : m.rows, cols = m.flipped ? m.rows : m.cols;  // of the chain
    auto *row = scratch_array<int32_t>(rows), *column = scratch_array<int32_t>(cols);
    std::fill_n(row, rows, -1);
    std::fill_n(column, cols, -1);
    each_chain_entry(m, [&](int32_t r, int32_t c, const colnode*) { row[r] = column[c] = 0; });
    rows = number_lines(row, rows);
    cols = number_lines(column, cols);
    IntGrid g = m.flipped ? zero_grid(cols, rows) : zero_grid(rows, cols);
    each_chain_entry(m, [&](int32_t r, int32_t c, const colnode* e) {
        (m.flipped ? g(column[c], row[r]) : g(row[r], column[c])) = int_entry(e->val->ncoef);
    });
    return g;
}

/// A number of its own.
static quoly quoly_of_entry(const IntEntry& e) {
    quoly q;
    init_quoly_node(&q);
    number_of_entry(e, q->ncoef);
    return q;
}

void store_grid(const IntGrid& g, LineMatrix& m) {
    if (m.spar != nullptr) {
        free_sparse_data(m.spar, m.flipped ? m.cols : m.rows);
        for (int32_t r = g.rows - 1; r >= 0; r--) {
            poll_interrupt();
            for (int32_t c = g.cols - 1; c >= 0; c--)
                if (g(r, c).n != 0) set_matrix_element(m, r, c, quoly_of_entry(g(r, c)));
        }
        return;
    }
    for (int32_t r = 0; r < g.rows; r++) {
        poll_interrupt();
        for (int32_t c = 0; c < g.cols; c++) set_matrix_element(m, r, c, quoly_of_entry(g(r, c)));
    }
}

void store_diagonal(const IntEntry* diagonal, int32_t count, LineMatrix& m) {
    if (m.spar != nullptr) {
        free_sparse_data(m.spar, m.flipped ? m.cols : m.rows);
    } else {
        for (int32_t c = 0; c < m.cols; c++) {
            poll_interrupt();
            for (int32_t r = 0; r < m.rows; r++) set_matrix_element(m, r, c, quoly_of_entry(k_entry_zero));
        }
    }
    for (int32_t k = 0; k < count; k++) set_matrix_element(m, k, k, quoly_of_entry(diagonal[k]));
}

IntGrid transposed(const IntGrid& g) {
    IntGrid t = zero_grid(g.cols, g.rows);
    for (int32_t r = 0; r < g.rows; r++)
        for (int32_t c = 0; c < g.cols; c++) t(c, r) = g(r, c);
    return t;
}

IntGrid grid_part(const IntGrid& g, const int32_t* row, int32_t rows, const int32_t* column, int32_t cols) {
    IntGrid p = zero_grid(rows, cols);
    for (int32_t r = 0; r < rows; r++)
        for (int32_t c = 0; c < cols; c++)
            p(r, c) = g(row == nullptr ? r : row[r], column == nullptr ? c : column[c]);
    return p;
}

int64_t grid_bits(const IntGrid& g) {
    int64_t most = 0;
    for (int64_t k = 0; k < int64_t{g.rows} * g.cols; k++) most = std::max(most, entry_bits(g.at[k]));
    return most;
}

int64_t row_length_bits(const IntGrid& g, int32_t rows) {
    ScratchMark mark = scratch_mark();
    auto* twice = scratch_array<int64_t>(g.rows);  // of the logarithm of the length of each row, at most
    for (int32_t r = 0; r < g.rows; r++) {
        int64_t most = 0;
        uint32_t count = 0;
        for (int32_t c = 0; c < g.cols; c++) {
            most = std::max(most, entry_bits(g(r, c)));
            count += g(r, c).n != 0;
        }
        twice[r] = 2 * most + std::bit_width(count);
    }
    std::sort(twice, twice + g.rows, std::greater<>());
    int64_t sum = 0;
    for (int32_t r = 0; r < std::min(rows, g.rows); r++) sum += twice[r];
    scratch_release(mark);
    return sum / 2 + 1;
}

// ---- sums of products ----------------------------------------------------------------------------------

IntSum new_sum(int64_t bits, int64_t other_bits, int64_t terms) {
    int64_t n = (bits + other_bits + std::bit_width(static_cast<uint64_t>(terms)) + 2) / 64 + 1;
    return {scratch_array<limb>(n), n, scratch_array<limb>(n + 1)};
}

/// Adds, or subtracts, the magnitude x.
static void add_magnitude(IntSum& s, const limb* x, int64_t n, bool minus) {
    if (minus) {
        limb borrow = limbs_sub(s.at, s.at, n, x, n);
        for (int64_t k = n; borrow != 0 && k < s.n; k++) borrow = s.at[k]-- == 0;
    } else {
        limb carry = limbs_add(s.at, s.at, n, x, n);
        for (int64_t k = n; carry != 0 && k < s.n; k++) carry = ++s.at[k] == 0;
    }
}

void add_to_sum(IntSum& s, const IntEntry& a, const IntEntry& b, bool minus) {
    if (a.n == 0 || b.n == 0) return;
    minus = minus != (a.negative != b.negative);
    if (a.n == 1 && a.at[0] == 1) return add_magnitude(s, b.at, b.n, minus);
    if (b.n == 1 && b.at[0] == 1) return add_magnitude(s, a.at, a.n, minus);
    limbs_mul(s.product, a.at, a.n, b.at, b.n);
    add_magnitude(s, s.product, limbs_trim(s.product, a.n + b.n), minus);
}

IntEntry value_of_sum(IntSum& s) {
    bool negative = (s.at[s.n - 1] >> 63) != 0;
    if (negative) {
        limb carry = 1;
        for (int64_t k = 0; k < s.n; k++) {
            s.at[k] = ~s.at[k] + carry;
            carry = carry != 0 && s.at[k] == 0;
        }
    }
    int64_t n = limbs_trim(s.at, s.n);
    if (n == 0) return k_entry_zero;
    limb* copy = scratch_array<limb>(n);
    memcpy(copy, s.at, static_cast<size_t>(n) * sizeof(limb));
    return {copy, n, negative};
}

IntGrid grid_product(const IntGrid& a, const IntGrid& b) {
    IntGrid p = zero_grid(a.rows, b.cols);
    IntSum sum = new_sum(grid_bits(a), grid_bits(b), a.cols);
    for (int32_t r = 0; r < a.rows; r++)
        for (int32_t c = 0; c < b.cols; c++) {
            poll_interrupt();
            clear_sum(sum);
            for (int32_t k = 0; k < a.cols; k++) add_to_sum(sum, a(r, k), b(k, c), false);
            p(r, c) = value_of_sum(sum);
        }
    return p;
}

IntEntry exact_entry_quotient(const IntEntry& a, const IntEntry& b) {
    if (a.n == 0) return k_entry_zero;
    IntEntry q = entry_quotient({a.at, a.n, false}, {b.at, b.n, false});
    return {q.at, q.n, a.negative != b.negative};
}
}  // namespace tolvex
