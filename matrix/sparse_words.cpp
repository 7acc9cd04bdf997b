#include "matrix/sparse_words.h"

#include "matrix/word_determinant.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <numeric>
namespace tolvex {
namespace {
struct Entry {
    int32_t column;
    uint32_t value;
};
struct WordRow {
    Entry* entry;  // in the order of the columns
    int32_t count, room;
    int32_t before, after;  // rows with as many entries, -1: none
};
/// The rows that have had an entry in the column; some of them may have lost it.
struct WordColumn {
    int32_t* row;
    int32_t listed, room;
    int32_t count;  // entries in open rows
};
struct WordElim {
    WordField f;
    bool composite;
    int32_t n, left;
    int64_t entries;  // of open rows
    WordRow* row;
    WordColumn* column;
    int32_t* first;      // of the open rows with k entries, k = 0..n
    int32_t fewest;      // no open row has fewer
    int32_t* column_of;  // of closed rows, else -1
    int32_t* single;     // columns that have come to a single entry
    int32_t singles;
    Entry* merged;  // room for a row
    uint32_t det;
};
}  // namespace

// ---- rows by their lengths -----------------------------------------------------------------------------

static void unlink_row(WordElim& e, int32_t r) {
    WordRow& x = e.row[r];
    (x.before >= 0 ? e.row[x.before].after : e.first[x.count]) = x.after;
    if (x.after >= 0) e.row[x.after].before = x.before;
}

static void link_row(WordElim& e, int32_t r) {
    WordRow& x = e.row[r];
    x.before = -1;
    x.after = e.first[x.count];
    if (x.after >= 0) e.row[x.after].before = r;
    e.first[x.count] = r;
    e.fewest = std::min(e.fewest, x.count);
}

static void note_entry_gone(WordElim& e, int32_t column) {
    if (--e.column[column].count == 1) e.single[e.singles++ % (2 * e.n)] = column;
}

static void note_entry(WordElim& e, int32_t column, int32_t r) {
    WordColumn& c = e.column[column];
    if (c.listed == c.room) {
        auto* larger = scratch_array<int32_t>(2 * int64_t{c.room} + 4);
        if (c.listed > 0) std::copy_n(c.row, c.listed, larger);
        c.row = larger;
        c.room = 2 * c.room + 4;
    }
    c.row[c.listed++] = r;
    c.count++;
}

static Entry* entry_in(const WordRow& x, int32_t column) {
    Entry* end = x.entry + x.count;
    Entry* at =
        std::lower_bound(x.entry, end, column, [](const Entry& y, int32_t c) { return y.column < c; });
    return at != end && at->column == column ? at : nullptr;
}

static bool is_open(const WordElim& e, int32_t r) { return e.column_of[r] < 0; }

static WordElim begin_elimination(const WordField& f, bool composite, const MatrixPattern& m,
                                  const uint32_t* value) {
    int32_t n = m.n;
    WordElim e = {f,
                  composite,
                  n,
                  n,
                  m.start[n],
                  scratch_array<WordRow>(n),
                  scratch_array<WordColumn>(n),
                  scratch_array<int32_t>(n + 1),
                  n,
                  scratch_array<int32_t>(n),
                  scratch_array<int32_t>(2 * int64_t{n}),
                  0,
                  scratch_array<Entry>(n),
                  1 % f.p};
    for (int32_t k = 0; k <= n; k++) e.first[k] = -1;
    for (int32_t c = 0; c < n; c++) e.column[c] = {nullptr, 0, 0, 0};
    auto* entries = scratch_array<Entry>(m.start[n]);
    for (int32_t r = 0; r < n; r++) {
        auto count = static_cast<int32_t>(m.start[r + 1] - m.start[r]);
        e.column_of[r] = -1;
        e.row[r] = {entries + m.start[r], 0, count, -1, -1};
        for (int64_t k = m.start[r]; k < m.start[r + 1]; k++) {
            if (value[k] == 0) continue;
            e.row[r].entry[e.row[r].count++] = {m.column[k], value[k]};
            note_entry(e, m.column[k], r);
        }
        e.entries -= count - e.row[r].count;
        link_row(e, r);
    }
    for (int32_t c = 0; c < n; c++)
        if (e.column[c].count == 1) e.single[e.singles++] = c;
    return e;
}

// ---- steps ---------------------------------------------------------------------------------------------

/// row q += factor row r. The column `gone`, -1: none, is left out of row q.
static void add_row(WordElim& e, int32_t q, uint32_t factor, int32_t r, int32_t gone) {
    WordRow &x = e.row[q], &y = e.row[r];
    const Entry *a = x.entry, *a_end = a + x.count, *b = y.entry, *b_end = b + y.count;
    Entry* out = e.merged;
    while (a != a_end || b != b_end) {
        if (b == b_end || (a != a_end && a->column < b->column)) {
            *out++ = *a++;
            continue;
        }
        uint32_t value = wf_mul(e.f, factor, b->value);
        bool both = a != a_end && a->column == b->column;
        if (both) value = wf_add(e.f, value, a->value);
        if (b->column == gone) value = 0;
        if (value != 0) {
            *out++ = {b->column, value};
            if (!both) note_entry(e, b->column, q);
        } else if (both) {
            note_entry_gone(e, b->column);
        }
        if (both) a++;
        b++;
    }
    auto count = static_cast<int32_t>(out - e.merged);
    unlink_row(e, q);
    if (count > x.room) {
        x.room = std::min(e.n, count + count / 2 + 4);
        x.entry = scratch_array<Entry>(x.room);
    }
    std::copy_n(e.merged, count, x.entry);
    e.entries += count - x.count;
    x.count = count;
    link_row(e, q);
}

/// The row leaves with its pivot in the column.
static void close_row(WordElim& e, int32_t r, int32_t column, uint32_t pivot) {
    WordRow& x = e.row[r];
    unlink_row(e, r);
    e.column_of[r] = column;
    e.entries -= x.count;
    e.left--;
    e.det = wf_mul(e.f, e.det, pivot);
    for (int32_t k = 0; k < x.count; k++) note_entry_gone(e, x.entry[k].column);
}

/// All open rows but r lose their entries in the column.
static void clear_column(WordElim& e, int32_t r, int32_t column) {
    uint32_t pivot = entry_in(e.row[r], column)->value, over = wf_inverse(e.f, pivot);
    WordColumn& c = e.column[column];
    for (int32_t k = 0; k < c.listed && c.count > 1; k++) {
        int32_t q = c.row[k];
        const Entry* at = q == r || !is_open(e, q) ? nullptr : entry_in(e.row[q], column);
        if (at == nullptr) continue;
        poll_interrupt();
        add_row(e, q, wf_neg(e.f, wf_mul(e.f, at->value, over)), r, column);
    }
    close_row(e, r, column, pivot);
}

// ---- pivots --------------------------------------------------------------------------------------------

static bool is_unit(const WordElim& e, uint32_t value) { return !e.composite || std::gcd(value, e.f.p) == 1; }

/// The place of a unit of the row in the column with the fewest entries; nil: none.
static const Entry* best_in_row(const WordElim& e, int32_t r) {
    const WordRow& x = e.row[r];
    const Entry* best = nullptr;
    for (int32_t k = 0; k < x.count; k++) {
        if (best != nullptr && e.column[x.entry[k].column].count >= e.column[best->column].count) continue;
        if (is_unit(e, x.entry[k].value)) best = &x.entry[k];
    }
    return best;
}

/// A column with a single entry, whose row then costs nothing: any entry will do. False: there is none.
static bool take_single(WordElim& e) {
    while (e.singles > 0) {
        int32_t column = e.single[--e.singles % (2 * e.n)];
        WordColumn& c = e.column[column];
        if (c.count != 1) continue;
        for (int32_t k = 0; k < c.listed; k++) {
            int32_t r = c.row[k];
            const Entry* at = is_open(e, r) ? entry_in(e.row[r], column) : nullptr;
            if (at == nullptr) continue;
            close_row(e, r, column, at->value);
            return true;
        }
    }
    return false;
}

/// Remainders until one open row alone has an entry in the column; that row is closed.
static void clear_by_remainders(WordElim& e, int32_t column) {
    for (;;) {
        poll_interrupt();
        const WordColumn& c = e.column[column];
        int32_t least = -1, others = 0;
        uint32_t value = 0;
        for (int32_t k = 0; k < c.listed; k++) {
            const Entry* at = is_open(e, c.row[k]) ? entry_in(e.row[c.row[k]], column) : nullptr;
            if (at == nullptr || c.row[k] == least) continue;
            others++;
            if (least >= 0 && at->value >= value) continue;
            least = c.row[k];
            value = at->value;
        }
        if (others <= 1) return close_row(e, least, column, value);
        for (int32_t k = 0, listed = c.listed; k < listed; k++) {
            int32_t q = e.column[column].row[k];
            const Entry* at = q == least || !is_open(e, q) ? nullptr : entry_in(e.row[q], column);
            if (at != nullptr) add_row(e, q, wf_neg(e.f, at->value / value), least, -1);
        }
    }
}

/// The next pivot and its step. False: the determinant is 0.
static bool step(WordElim& e) {
    if (take_single(e)) return true;
    while (e.fewest <= e.n && e.first[e.fewest] < 0) e.fewest++;
    if (e.fewest == 0) return false;
    for (int32_t k = e.fewest; k <= e.n; k++)
        for (int32_t r = e.first[k]; r >= 0; r = e.row[r].after)
            if (const Entry* at = best_in_row(e, r); at != nullptr) {
                clear_column(e, r, at->column);
                return true;
            }
    clear_by_remainders(e, e.row[e.first[e.fewest]].entry[0].column);
    return true;
}

// ---- the rest ------------------------------------------------------------------------------------------

/// The determinant of the open rows, as dense ones. Their columns become those of the rows, in the order of
/// both.
static uint32_t dense_rest(WordElim& e) {
    int64_t left = e.left;
    auto* place = scratch_array<int32_t>(e.n);
    auto* words = scratch_array<uint32_t>(left * left);
    scratch_clear(words, static_cast<size_t>(left * left) * sizeof(uint32_t));
    for (int32_t c = 0; c < e.n; c++) place[c] = 0;
    for (int32_t r = 0; r < e.n; r++)
        if (!is_open(e, r)) place[e.column_of[r]] = -1;
    auto* open_column = scratch_array<int32_t>(left);
    int32_t open = 0;
    for (int32_t c = 0; c < e.n; c++)
        if (place[c] == 0) {
            open_column[open] = c;
            place[c] = open++;
        }
    int32_t row = 0;
    for (int32_t r = 0; r < e.n; r++) {
        if (!is_open(e, r)) continue;
        for (int32_t k = 0; k < e.row[r].count; k++)
            words[row * left + place[e.row[r].entry[k].column]] = e.row[r].entry[k].value;
        e.column_of[r] = open_column[row++];
    }
    auto n = static_cast<int32_t>(left);
    return e.composite ? euclid_determinant(e.f.p, words, n) : word_determinant(e.f, words, n);
}

uint32_t sparse_word_determinant(const WordField& f, bool composite, const MatrixPattern& places,
                                 const uint32_t* value) {
    constexpr int64_t k_dense_share = 6;  // measured: a dense product costs far less than a merged entry
    constexpr int64_t k_most_dense_rows = 20000;
    ScratchMark mark = scratch_mark();
    WordElim e = begin_elimination(f, composite, places, value);
    bool singular = false;
    while (e.left > 0 && !singular) {
        poll_interrupt();
        if (e.left > 1 && e.left <= k_most_dense_rows &&
            e.entries * k_dense_share > int64_t{e.left} * e.left) {
            e.det = wf_mul(f, e.det, dense_rest(e));
            break;
        }
        singular = !step(e);
    }
    uint32_t det = singular ? 0 : e.det;
    if (det != 0 && odd_permutation(e.column_of, e.n)) det = wf_neg(f, det);
    scratch_release(mark);
    return det;
}
}  // namespace tolvex
