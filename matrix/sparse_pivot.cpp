#include "matrix/sparse_pivot.h"

#include "matrix/matrix_modes.h"
#include "numbers/number_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mass.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
namespace tolvex {
// ---- sizes ---------------------------------------------------------------------------------------------

/// The bits of the magnitude less one; of a residue of a field 1.
static int32_t number_mass(const number* n) {
    constexpr int32_t k_digit = 28;
    if (lintmode) return 1;
    return k_digit * (n->size - 1) + std::bit_width(static_cast<uint32_t>(std::abs(n->head->value))) - 1;
}

static EntrySize size_of_entry(const colnode* p) {
    const quolynode* q = p->val;
    bool field = modularmode && (finf || mod_is_prime);
    if (!q->numb)
        return {p->coord, quoly_mass(q), better_quoly_mass(q), numterms(q), false, false, can_be_pivot(q)};
    int32_t mass = number_mass(q->ncoef);
    return {p->coord, mass, mass, 1, true, field || is_pm1(q->ncoef), can_be_pivot(q)};
}

void refresh_row(PivotTable& t, int32_t r, const colnode* row) {
    PivotRow& x = t.row[r];
    int32_t count = 0;
    for (const colnode* p = row; p != nullptr; p = p->next) count++;
    if (count > x.room) {
        x.room = 2 * count;
        x.entry = scratch_array<EntrySize>(x.room);
    }
    t.entries += count - x.count;
    x.count = count;
    x.mass = 0;
    for (int32_t k = 0; k < count; k++, row = row->next) {
        x.entry[k] = size_of_entry(row);
        x.mass += x.entry[k].terms;
    }
}

PivotTable new_pivot_table(sparseptr spar, int32_t rows, int32_t cols, int32_t first_row, int32_t first_col) {
    PivotTable t = {scratch_array<PivotRow>(rows),
                    rows,
                    cols,
                    0,
                    scratch_array<int32_t>(cols + 1),
                    scratch_array<int32_t>(cols + 1),
                    scratch_array<int32_t>(cols + 1),
                    scratch_array<int32_t>(cols + 1)};
    SparseWalk w = walk_sparse(spar, rows);
    while (colm_ptrptr head = next_row(w)) {
        poll_interrupt();
        t.row[w.row] = {nullptr, 0, 0, 0, w.row >= first_row};
        if (w.row >= first_row) refresh_row(t, w.row, *get_sparse_colm(head, first_col + 1));
    }
    return t;
}

void close_row(PivotTable& t, int32_t r) {
    t.row[r].open = false;
    t.entries -= t.row[r].count;
}

int32_t place_in_row(const PivotRow& row, int32_t column) {
    const EntrySize *first = row.entry, *end = first + row.count;
    const EntrySize* at =
        std::lower_bound(first, end, column, [](const EntrySize& e, int32_t c) { return e.column < c; });
    return at != end && at->column == column ? static_cast<int32_t>(at - row.entry) : -1;
}

// ---- the census of columns -----------------------------------------------------------------------------

namespace {
/// What the census tells: the column with a single entry, or with the fewest; count 0: there is none.
struct Census {
    int32_t count, row, column;
    int64_t mass, terms;
};
}  // namespace

/// Over all columns of the matrix: those that have no open entry are closed, or empty.
static Census sparse_fill_clc(PivotTable& t) {
    for (int32_t c = 0; c <= t.cols; c++) t.count[c] = 0, t.least_mass[c] = INT32_MAX;
    for (int32_t r = 0; r < t.rows; r++) {
        const PivotRow& x = t.row[r];
        for (int32_t k = 0; x.open && k < x.count; k++) {
            const EntrySize& e = x.entry[k];
            t.count[e.column]++;
            if (!e.usable || e.better_mass >= t.least_mass[e.column]) continue;
            t.least_mass[e.column] = e.better_mass;
            t.least_row[e.column] = r;
            t.least_place[e.column] = k;
        }
    }
    Census best = {0, 0, 0, 0, 0};
    for (int32_t c = 1; c <= t.cols; c++) {
        if (t.count[c] == 0 || t.least_mass[c] == INT32_MAX) continue;
        bool single = t.count[c] == 1;
        bool better = best.count == 0 || t.count[c] < best.count ||
                      (t.count[c] == best.count &&
                       (single ? t.least_mass[c] > best.mass : t.least_mass[c] < best.mass));
        if (!better) continue;
        best = {t.count[c], t.least_row[c], c, t.least_mass[c],
                t.row[t.least_row[c]].entry[t.least_place[c]].terms};
    }
    return best;
}

// ---- the search ----------------------------------------------------------------------------------------

namespace {
/// The lowest score so far of numbers, or of other entries.
struct Candidate {
    int64_t score;  // the greatest: none yet
    int32_t row, column, count;
};
constexpr Candidate k_no_candidate = {INT64_MAX, -1, 0, 0};
struct Search {
    Candidate number, other;
    bool not_zero;
};
bool exists(const Candidate& c) { return c.row >= 0; }
}  // namespace

static int64_t score_of(const EntrySize& e, int64_t rowmass) {
    switch (pseudet_heur) {
    case 0:
        return e.mass;
    case 1:
        return e.number ? rowmass : e.terms + rowmass;
    case 2:
        return e.mass + rowmass;
    case 4:
        return e.number ? e.mass + rowmass : e.terms;
    default:
        return (e.number ? e.mass : e.better_mass) + rowmass;
    }
}

/// True if the entry is taken at once.
static bool consider(Search& s, const PivotRow& x, int32_t r, const EntrySize& e) {
    constexpr int32_t k_short_row = 3;
    s.not_zero = true;
    if (!e.usable) return false;
    Candidate& best = e.number ? s.number : s.other;
    int64_t score = score_of(e, x.mass);
    if (e.unit && x.count < k_short_row) score = INT64_MIN;
    if (score < best.score) best = {score, r, e.column, x.count};
    return score == INT64_MIN;
}

/// Rule 5: the column of the census takes the place of the entry that rows have chosen.
static bool column_goes_first(const Search& s, const Census& c) {
    const Candidate& chosen = exists(s.number) ? s.number : s.other;
    constexpr int32_t k_few = 3, k_share = 8, k_other_share = 7;
    if (pseudet_heur != 5 || c.count == 0 || c.column == chosen.column) return false;
    int64_t score = c.count * c.terms + c.mass;
    if (score >= chosen.score) return false;
    if (!exists(s.number)) return c.count <= chosen.count + k_few;
    int64_t other = s.other.score < 0 ? s.other.score + k_other_share : s.other.score;
    return c.count <= k_few && other / k_share > score;
}

PivotSearch sparse_findbest(PivotTable& t, bool firstonly, int32_t* row, int32_t* column) {
    Census census = sparse_fill_clc(t);
    if (census.count == 1) {
        *row = census.row;
        *column = census.column;
        return PivotSearch::found;
    }
    Search s = {k_no_candidate, k_no_candidate, false};
    bool ended = false;
    for (int32_t r = 0; r < t.rows && !ended; r++) {
        const PivotRow& x = t.row[r];
        if (!x.open) continue;
        if (x.count == 0 && firstonly) return PivotSearch::none;
        for (int32_t k = 0; k < x.count && !ended; k++) ended = consider(s, x, r, x.entry[k]);
    }
    if (!exists(s.number) && !exists(s.other)) return s.not_zero ? PivotSearch::no_unit : PivotSearch::none;
    const Candidate& best = exists(s.number) ? s.number : s.other;
    bool by_column = !ended && column_goes_first(s, census);
    *row = by_column ? census.row : best.row;
    *column = by_column ? census.column : best.column;
    return PivotSearch::found;
}

PivotSearch sparse_colfindbest(PivotTable& t, int32_t column, int32_t* row) {
    Search s = {k_no_candidate, k_no_candidate, false};
    bool ended = false;
    for (int32_t r = 0; r < t.rows && !ended; r++) {
        const PivotRow& x = t.row[r];
        int32_t k = x.open ? place_in_row(x, column) : -1;
        if (k >= 0) ended = consider(s, x, r, x.entry[k]);
    }
    if (!exists(s.number) && !exists(s.other)) return s.not_zero ? PivotSearch::no_unit : PivotSearch::none;
    *row = exists(s.number) ? s.number.row : s.other.row;
    return PivotSearch::found;
}
}  // namespace tolvex
