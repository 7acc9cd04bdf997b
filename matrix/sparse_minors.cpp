#include "matrix/sparse_minors.h"

#include "matrix/matrix_modes.h"
#include "numbers/number_modes.h"
#include "poly/word_field.h"
#include "quoly/garbage.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mass.h"
#include "quoly/quoly_mult.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <iterator>
namespace tolvex {
// ---- the two kinds of values ---------------------------------------------------------------------------

namespace {
/// Values of the language; nil is 0.
struct QuolyValues {
    using Value = quoly;
    static constexpr const char* title = "Sparse minors det, side ";
    static Value zero() { return nullptr; }
    static bool is_zero(Value v) { return v == nullptr; }
    static Value copy(const quolynode* v) {
        quoly q = nullptr;
        if (v != nullptr && !quoly_iszero(v)) quoly_assign(v, &q);
        return q;
    }
    static void release(Value v) { free_quoly(&v); }
    /// *sum += entry times minor, or -=; the minor is used up.
    static void add(Value* sum, const quolynode* entry, Value minor, bool minus) {
        fast_quoly_mult(&minor, const_cast<quoly>(entry));
        if (minus) quoly_inplace(minor);
        if (*sum == nullptr)
            *sum = minor;
        else
            best_quoly_add(sum, minor);
        if (quoly_iszero(*sum)) free_quoly(sum);
    }
    static int64_t mass(const quolynode* entry) { return quoly_mass(entry); }
};

/// Residues and elements of a table field.
struct WordValues {
    using Value = uint32_t;
    static constexpr const char* title = " Sparse minors det, integer, modular, side ";
    static Value zero() { return 0; }
    static bool is_zero(Value v) { return v == 0; }
    static Value copy(Value v) { return v; }
    static Value copy(const quolynode* v) { return static_cast<uint32_t>(v->ncoef->lint); }
    static void release(Value) {}
    static void add(Value* sum, const quolynode* entry, Value minor, bool minus) {
        WordField f = word_field_ring();
        uint32_t term = wf_mul(f, copy(entry), minor);
        *sum = minus ? wf_sub(f, *sum, term) : wf_add(f, *sum, term);
    }
    static int64_t mass(const quolynode*) { return 1; }
};

using Word = uint64_t;
constexpr int32_t k_word_bits = 64;

/// A kept minor: its sets stand behind the record, rows first.
template <class Value> struct MinorNode {
    MinorNode* next;
    Value value;
    int32_t hits;
    Word* set;
};

/// A row or column with the entries that are still there.
struct Line {
    int64_t mass;
    const int64_t* entry;  // places in the list of entries
    int32_t listed, count;
};

template <class Ops> struct Expansion {
    using Value = typename Ops::Value;
    using Node = MinorNode<Value>;
    const MatrixEntries& m;
    int32_t n, words;  // words of a set
    const int32_t* row_of;
    const int64_t* mass;  // of the entries
    Line *row, *column;
    Word* present;       // rows, then columns, that are still there
    int32_t* row_order;  // of a full matrix: the order in which rows are taken, so that minors share theirs
    Node** bucket;
    Node* unused;
    int32_t max_stash_row, min_stash_row, init_max_stash_row, minor_count;
    int64_t node_bytes;  // of the records in the table; they do not come from the stashes of the budget
};
constexpr int32_t k_init_max_stash = 2, k_init_min_stash = 3;

/// The line along which a minor is expanded.
struct Choice {
    bool is_row, empty;
    int32_t line;
};
}  // namespace

// ---- the sets ------------------------------------------------------------------------------------------

template <class Ops> static bool is_present(const Expansion<Ops>& e, bool row, int32_t k) {
    return (e.present[(row ? 0 : e.words) + k / k_word_bits] >> (k % k_word_bits) & 1) != 0;
}
template <class Ops> static void flip_present(Expansion<Ops>& e, bool row, int32_t k) {
    e.present[(row ? 0 : e.words) + k / k_word_bits] ^= Word{1} << (k % k_word_bits);
}

/// How many rows (columns) before this one are there.
template <class Ops> static int32_t lines_before(const Expansion<Ops>& e, bool row, int32_t k) {
    const Word* set = e.present + (row ? 0 : e.words);
    int32_t count = std::popcount(set[k / k_word_bits] & ((Word{1} << (k % k_word_bits)) - 1));
    for (int32_t w = 0; w < k / k_word_bits; w++) count += std::popcount(set[w]);
    return count;
}

/// A line leaves or comes back: the lines that cross it have one entry less or more.
template <class Ops> static void toggle_line(Expansion<Ops>& e, bool row, int32_t k, int32_t step) {
    const Line& x = (row ? e.row : e.column)[k];
    flip_present(e, row, k);
    for (int32_t i = 0; i < x.listed; i++) {
        int64_t at = x.entry[i];
        Line& other = row ? e.column[e.m.places.column[at]] : e.row[e.row_of[at]];
        other.count += step;
        other.mass += step * e.mass[at];
    }
}

/// The row, or strictly better the column, with the fewest entries; at a tie the lighter one. Of a full
/// matrix the next row.
template <class Ops> static Choice choose_line(const Expansion<Ops>& e) {
    if (e.row_order != nullptr) {
        const int32_t* next = e.row_order;
        while (!is_present(e, true, *next)) next++;
        return {true, e.row[*next].count == 0, *next};
    }
    Choice best = {true, false, -1};
    const Line* line = nullptr;
    for (bool is_row : {true, false}) {
        const Line* lines = is_row ? e.row : e.column;
        for (int32_t k = 0; k < e.n; k++) {
            const Line& x = lines[k];
            if (line != nullptr &&
                (x.count > line->count || (x.count == line->count && x.mass >= line->mass)))
                continue;
            if (!is_present(e, is_row, k)) continue;
            line = &x;
            best = {is_row, x.count == 0, k};
            if (best.empty) return best;
        }
    }
    return best;
}

// ---- the table -----------------------------------------------------------------------------------------

/// Sizes of the table: it grows when buckets hold more than 4 minors on average.
static constexpr int32_t k_table_sizes[] = {641,   1277,   2473,   4967,   9901,    20011,   40087,
                                            80177, 160357, 320723, 641453, 1282909, 2565841, 5131693};

static int32_t minorsize(int32_t rows) {
    static constexpr int32_t limits[] = {31, 45, 80, 110, 190, 300};
    int32_t k = 0;
    while (k < 6 && rows >= limits[k]) k++;
    return k_table_sizes[k];
}

template <class Ops> static int64_t minorshash(const Expansion<Ops>& e, const Word* set) {
    uint64_t h = 0;
    for (int32_t k = 0; k < 2 * e.words; k++) h = (h ^ set[k]) * 0x9E3779B97F4A7C15u, h ^= h >> 29;
    return static_cast<int64_t>(h % static_cast<uint64_t>(minorprime));
}

template <class Ops> static void new_buckets(Expansion<Ops>& e) {
    e.bucket = scratch_array<MinorNode<typename Ops::Value>*>(minorprime);
    for (int32_t k = 0; k < minorprime; k++) e.bucket[k] = nullptr;
}

/// The kept minor of the sets that are present, nil: it is not known.
template <class Ops> static MinorNode<typename Ops::Value>* minor_is_there(Expansion<Ops>& e) {
    auto* node = e.bucket[minorshash(e, e.present)];
    size_t bytes = 2 * static_cast<size_t>(e.words) * sizeof(Word);
    while (node != nullptr && memcmp(node->set, e.present, bytes) != 0) node = node->next;
    return node;
}

template <class Ops> static void reconfigure_stash(Expansion<Ops>& e) {
    const int32_t* size = std::find(std::begin(k_table_sizes), std::end(k_table_sizes), minorprime);
    if (size + 1 == std::end(k_table_sizes)) return;
    if (verbose) fputs("Minor stash has grown large; will reconfigure.\n", stdout);
    auto** old = e.bucket;
    int32_t buckets = minorprime;
    minorprime = size[1];
    new_buckets(e);
    for (int32_t k = 0; k < buckets; k++)
        while (old[k] != nullptr) {
            auto* node = old[k];
            old[k] = node->next;
            auto*& head = e.bucket[minorshash(e, node->set)];
            node->next = head;
            head = node;
        }
}

template <class Ops> static int64_t bytes_of_node(const Expansion<Ops>& e) {
    return static_cast<int64_t>(sizeof(MinorNode<typename Ops::Value>)) + 2 * e.words * int64_t{sizeof(Word)};
}

template <class Ops> static void stash_minor(Expansion<Ops>& e, typename Ops::Value value) {
    constexpr int32_t k_full = 4;
    auto* node = e.unused;
    if (node != nullptr) {
        e.unused = node->next;
    } else {
        node = scratch_array<MinorNode<typename Ops::Value>>(1);
        node->set = scratch_array<Word>(2 * int64_t{e.words});
    }
    auto*& head = e.bucket[minorshash(e, e.present)];
    node->next = head;
    node->value = Ops::copy(value);
    node->hits = 1;
    memcpy(node->set, e.present, 2 * static_cast<size_t>(e.words) * sizeof(Word));
    head = node;
    e.node_bytes += bytes_of_node(e);
    if (++minor_total > k_full * int64_t{minorprime}) reconfigure_stash(e);
}

/// The first `count` minors of each bucket go, the newest; returns how often they have been met.
template <class Ops> static int64_t release_minors(Expansion<Ops>& e, int32_t count) {
    int64_t hits = 0;
    for (int32_t k = 0; k < minorprime; k++) {
        auto*& head = e.bucket[k];
        for (int32_t i = 0; i < count && head != nullptr; i++) {
            auto* node = head;
            head = node->next;
            hits += node->hits;
            Ops::release(node->value);
            node->next = e.unused;
            e.unused = node;
            minor_total--;
            e.node_bytes -= bytes_of_node(e);
        }
        poll_every<64>(k);
    }
    return hits;
}

/// True if memory has become short. The figures of the free lists say how much of what has been handed out is
/// free.
static bool memory_is_short(int64_t node_bytes) {
    constexpr int64_t k_low = 36000000, k_low_at_end = 260000000;
    int64_t available = std::max(int64_t{0}, static_cast<int64_t>(memavail()) - node_bytes);
    if (available > static_cast<int64_t>(minor_memory / 5)) return false;
    int64_t free_records = available == 0 ? big_garbsize() : fast_garbsize();
    if (available == 0 ? free_records < k_low_at_end : free_records < k_low) return true;
    if (verbose)
        printf(" Refrain from purging. memavail, minor memory, garbsize, total branches, leaf count: %lli, "
               "%lli, "
               "%u, %d, %d\n",
               static_cast<long long>(available), static_cast<long long>(minor_memory),
               static_cast<unsigned>(free_records), sp_total_cnt, sp_lowcnt);
    return false;
}

template <class Ops> static void try_purge_minors(Expansion<Ops>& e) {
    minor_memory /= 3;
    if (verbose) {
        printf("Running low on memory; purging minor stash. %lli, %lli, %d\n",
               static_cast<long long>(memavail()), static_cast<long long>(minor_memory), e.minor_count);
        printf(" prime, total branches, leaf count, stash nodes, hits: %d, %d, %d, %d, %d\n", minorprime,
               sp_total_cnt, sp_lowcnt, minor_total, purged_hits);
    }
    purged_hits += static_cast<int32_t>(release_minors(e, e.minor_count));
    e.minor_count++;
    e.max_stash_row--;
    if (e.min_stash_row == k_init_min_stash) e.min_stash_row++;
}

/// The window comes back when memory has.
template <class Ops> static void try_resume_stash(Expansion<Ops>& e) {
    if (e.init_max_stash_row - 1 <= e.max_stash_row || memavail() <= minor_memory) return;
    minor_memory *= 3;
    e.max_stash_row = e.init_max_stash_row;
    e.min_stash_row = k_init_min_stash;
    e.minor_count--;
    purged_hits = 0;
    if (verbose)
        printf(" Resuming minor caching.  %lli, %d, %d\n", static_cast<long long>(minor_memory),
               e.max_stash_row, e.min_stash_row);
}

// ---- the expansion -------------------------------------------------------------------------------------

template <class Ops> static bool in_window(const Expansion<Ops>& e, int32_t rows) {
    return rows >= e.min_stash_row && rows <= e.max_stash_row;
}

/// The minor is in the table: *value := a copy.
template <class Ops> static bool look_up(Expansion<Ops>& e, typename Ops::Value* value) {
    constexpr int32_t k_useless = 100;
    auto* node = minor_is_there(e);
    if (node == nullptr) return false;
    node->hits++;
    *value = Ops::copy(node->value);
    if (e.minor_count > k_useless) fputs("*** Out of memory. Minors method fails.\n", stdout);
    if (memory_is_short(e.node_bytes)) try_purge_minors(e);
    return true;
}

static void report_line(const Choice& c) {
    constexpr int32_t k_shown_levels = 8;
    if (!verbose || dumpitt_level > k_shown_levels) return;
    printf(c.is_row ? "using row %1d.\n" : "using col %1d.\n", c.line + 1);
}

template <class Ops> static typename Ops::Value do_minors_det(Expansion<Ops>& e, int32_t rows);

/// The sum over the entries of the line, which has left.
template <class Ops>
static typename Ops::Value expand_along(Expansion<Ops>& e, const Choice& c, int32_t rows, int32_t position) {
    const Line& line = (c.is_row ? e.row : e.column)[c.line];
    typename Ops::Value sum = Ops::zero();
    for (int32_t i = 0; i < line.listed; i++) {
        int64_t at = line.entry[i];
        int32_t cross = c.is_row ? e.m.places.column[at] : e.row_of[at];
        if (!is_present(e, !c.is_row, cross)) continue;
        poll_interrupt();
        sp_total_cnt++;
        bool minus = ((position + lines_before(e, !c.is_row, cross)) & 1) != 0;
        toggle_line(e, !c.is_row, cross, -1);
        typename Ops::Value minor = do_minors_det(e, rows - 1);
        toggle_line(e, !c.is_row, cross, 1);
        if (!Ops::is_zero(minor)) Ops::add(&sum, e.m.value[at], minor, minus);
    }
    return sum;
}

/// The determinant of the rows and columns that are present.
template <class Ops> static typename Ops::Value do_minors_det(Expansion<Ops>& e, int32_t rows) {
    typename Ops::Value value = Ops::zero();
    bool kept = in_window(e, rows);
    if (kept && look_up(e, &value)) return value;
    Choice c = choose_line(e);
    if (c.empty || rows == 1) {
        sp_lowcnt++;
        const Line& line = (c.is_row ? e.row : e.column)[c.line];
        for (int32_t i = 0; i < line.listed && !c.empty; i++) {
            int64_t at = line.entry[i];
            if (is_present(e, !c.is_row, c.is_row ? e.m.places.column[at] : e.row_of[at]))
                value = Ops::copy(e.m.value[at]);
        }
        return value;
    }
    dumpitt_level++;
    report_line(c);
    int32_t position = lines_before(e, c.is_row, c.line);
    toggle_line(e, c.is_row, c.line, -1);
    value = expand_along(e, c, rows, position);
    toggle_line(e, c.is_row, c.line, 1);
    try_resume_stash(e);
    if (kept && in_window(e, rows)) stash_minor(e, value);
    dumpitt_level--;
    return value;
}

// ---- set-up --------------------------------------------------------------------------------------------

/// Rows and columns with their entries.
template <class Ops> static void list_lines(Expansion<Ops>& e, int32_t* row_of, int64_t* mass) {
    const MatrixPattern& p = e.m.places;
    int64_t count = entry_count(e.m);
    auto* places = scratch_array<int64_t>(count);
    auto* by_column = scratch_array<int64_t>(count);
    for (int32_t k = 0; k < e.n; k++) e.row[k] = e.column[k] = {0, nullptr, 0, 0};
    for (int32_t r = 0; r < e.n; r++)
        for (int64_t k = p.start[r]; k < p.start[r + 1]; k++) {
            row_of[k] = r;
            mass[k] = Ops::mass(e.m.value[k]);
            places[k] = k;
            e.row[r].mass += mass[k];
            e.column[p.column[k]].mass += mass[k];
            e.row[r].count++;
            e.column[p.column[k]].count++;
        }
    int64_t start = 0;
    for (int32_t k = 0; k < e.n; k++) {
        e.row[k].entry = places + p.start[k];
        e.row[k].listed = e.row[k].count;
        e.column[k].entry = by_column + start;
        start += e.column[k].count;
    }
    for (int64_t k = 0; k < count; k++) {
        Line& c = e.column[p.column[k]];
        by_column[c.entry - by_column + c.listed++] = k;
    }
}

/// Minors of one size then have the same rows: n 2^(n - 1) products in all. The rows with the most zeros come
/// first.
template <class Ops> static void order_rows(Expansion<Ops>& e) {
    auto is_empty = [](const Line& x) { return x.count == 0; };
    if (2 * entry_count(e.m) <= int64_t{e.n} * e.n || std::any_of(e.column, e.column + e.n, is_empty)) return;
    e.row_order = scratch_array<int32_t>(e.n);
    for (int32_t k = 0; k < e.n; k++) e.row_order[k] = k;
    std::sort(e.row_order, e.row_order + e.n, [&](int32_t r, int32_t s) {
        return e.row[r].count != e.row[s].count ? e.row[r].count < e.row[s].count : r < s;
    });
}

template <class Ops> static typename Ops::Value expand(const MatrixEntries& m) {
    int32_t n = m.places.n, words = (n + k_word_bits - 1) / k_word_bits;
    auto* row_of = scratch_array<int32_t>(entry_count(m));
    auto* mass = scratch_array<int64_t>(entry_count(m));
    Expansion<Ops> e = {m,
                        n,
                        words,
                        row_of,
                        mass,
                        scratch_array<Line>(n),
                        scratch_array<Line>(n),
                        scratch_array<Word>(2 * int64_t{words}),
                        nullptr,
                        nullptr,
                        nullptr,
                        n - k_init_max_stash,
                        k_init_min_stash,
                        n - k_init_max_stash,
                        2,
                        0};
    list_lines(e, row_of, mass);
    order_rows(e);
    memset(e.present, 0, 2 * static_cast<size_t>(words) * sizeof(Word));
    for (int32_t k = 0; k < n; k++) {
        flip_present(e, true, k);
        flip_present(e, false, k);
    }
    minorprime = minorsize(n);
    new_buckets(e);
    minor_total = purged_hits = sp_total_cnt = sp_lowcnt = 0;
    minor_memory = memavail();
    if (verbose) dumpitt(Ops::title, n, 1, 0, 0);
    typename Ops::Value value = do_minors_det(e, n);
    int32_t nodes = minor_total;
    int64_t hits = release_minors(e, INT32_MAX);
    if (verbose)
        printf(" total branches, leaf count, stash nodes, hits: %d %d %d %d\n", sp_total_cnt, sp_lowcnt,
               nodes, static_cast<int32_t>(hits));
    minor_total = nodes;
    return value;
}

static bool all_residues(const MatrixEntries& m) {
    if (!modularmode) return false;
    return std::all_of(m.value, m.value + entry_count(m), [](const quolynode* q) { return q->numb != 0; });
}

void sparse_minors_det(const MatrixEntries& m, quolyptr det) {
    quoly_set(0, det);
    if (m.places.n > k_most_minor_rows) return error(Err::expansion_rows);
    if (sp_total_cnt > 0) return error(Err::expansion_running);
    ScratchMark mark = scratch_mark();
    if (all_residues(m)) {
        uint32_t value = expand<WordValues>(m);
        (*det)->ncoef->lint = static_cast<int32_t>(value);
    } else {
        quoly value = expand<QuolyValues>(m);
        if (value != nullptr) {
            free_quoly(det);
            *det = value;
        }
    }
    sp_total_cnt = 0;
    scratch_release(mark);
}
}  // namespace tolvex
