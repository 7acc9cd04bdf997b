#include "matrix/hamilton.h"

#include "matrix/hamilton_proofs.h"
#include "poly/word_field.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
#include <cstdio>
namespace tolvex {
namespace {
constexpr int16_t k_gone = 16000;             // is added to the count of a line that has been taken out
constexpr int64_t k_branches_alone = 100000;  // after them few vertices are decided by subsets
enum class Outcome { path, none, limit, undecided };

struct PathEntry {
    int32_t line[2];  // row and column
    int16_t vertex;   // that it uses, from 1; 0: none
};
/// An expansion along a line, and how far it has come.
struct Expansion {
    int32_t line;
    int32_t next;   // the place in the list of the line that is tried next
    int32_t entry;  // under way, -1: none
};
/// Lines 0..side-1 are rows, side..2 side-1 columns. An entry is alive while its lines are and its vertex is
/// unused.
struct PathSearch {
    int32_t n, side;
    PathEntry* entry;
    int32_t *line_first, *line_entry;      // entries of a line
    int32_t *vertex_first, *vertex_entry;  // entries that use a vertex
    int16_t *count, *mass;                 // living entries of a line, and those of them that use a vertex
    bool *gone, *used;                     // lines, vertices
    Expansion* expansion;
    int32_t depth, vertices;  // expansions under way, vertices used
    uint32_t randint;
    int64_t total_cnt, lowcnt;  // branches, complete expansions
};
}  // namespace

// ---- the matrix ----------------------------------------------------------------------------------------

/// Calls add(row, column, vertex) for all entries of the derived matrix.
template <class Add> static void each_entry(const bool* edge, int32_t n, Add add) {
    int32_t extra = n * n;
    for (int32_t r = 0; r < extra; r++) add(r, r, 0);
    for (int32_t v = 0; v < n; v++) {
        add(extra, v * n, v + 1);
        add(v * n + n - 1, extra, 0);
    }
    for (int32_t i = 0; i < n; i++) {
        poll_interrupt();
        for (int32_t j = 0; j < n; j++)
            for (int32_t p = 1; i != j && edge[i * n + j] && p < n; p++) add(i * n + p - 1, j * n + p, j + 1);
    }
}

/// first[k]..first[k + 1] - 1 become the places of those that key(entry) counts as k.
template <class Key>
static void index_entries(int32_t entries, int32_t keys, int32_t* first, int32_t* list, Key key) {
    std::fill_n(first, keys + 1, 0);
    for (int32_t e = 0; e < entries; e++) first[key(e) + 1]++;
    for (int32_t k = 0; k < keys; k++) first[k + 1] += first[k];
    for (int32_t e = 0; e < entries; e++) list[first[key(e)]++] = e;
    for (int32_t k = keys; k > 0; k--) first[k] = first[k - 1];
    first[0] = 0;
}

static PathSearch set_up_hamilton(const bool* edge, int32_t n) {
    PathSearch s = {};
    s.n = n;
    s.side = n * n + 1;
    int32_t entries = 0, k = 0, lines = 2 * s.side;
    each_entry(edge, n, [&](int32_t, int32_t, int32_t) { entries++; });
    s.entry = scratch_array<PathEntry>(entries);
    each_entry(edge, n, [&](int32_t row, int32_t column, int32_t vertex) {
        s.entry[k++] = {{row, s.side + column}, static_cast<int16_t>(vertex)};
    });
    s.line_first = scratch_array<int32_t>(int64_t{lines} + 1);
    s.line_entry = scratch_array<int32_t>(2 * int64_t{entries});
    index_entries(entries, s.side, s.line_first, s.line_entry, [&](int32_t e) { return s.entry[e].line[0]; });
    index_entries(entries, s.side, s.line_first + s.side, s.line_entry + entries,
                  [&](int32_t e) { return s.entry[e].line[1] - s.side; });
    for (int32_t line = s.side; line <= lines; line++) s.line_first[line] += entries;
    s.vertex_first = scratch_array<int32_t>(int64_t{n} + 2);
    s.vertex_entry = scratch_array<int32_t>(entries);
    index_entries(entries, n + 1, s.vertex_first, s.vertex_entry,
                  [&](int32_t e) { return s.entry[e].vertex; });
    s.count = scratch_array<int16_t>(lines);
    s.mass = scratch_array<int16_t>(lines);
    s.gone = scratch_array<bool>(lines);
    s.used = scratch_array<bool>(int64_t{n} + 1);
    s.expansion = scratch_array<Expansion>(s.side);
    return s;
}

/// Nothing is used, all lines are there.
static void begin_try(PathSearch& s) {
    s.depth = s.vertices = 0;
    s.total_cnt = s.lowcnt = 0;
    std::fill_n(s.gone, 2 * s.side, false);
    std::fill_n(s.used, s.n + 1, false);
    for (int32_t line = 0; line < 2 * s.side; line++) {
        s.count[line] = static_cast<int16_t>(s.line_first[line + 1] - s.line_first[line]);
        s.mass[line] = 0;
        for (int32_t k = s.line_first[line]; k < s.line_first[line + 1]; k++)
            s.mass[line] = static_cast<int16_t>(s.mass[line] + (s.entry[s.line_entry[k]].vertex > 0));
    }
}

// ---- changes and their undoing -------------------------------------------------------------------------

static bool is_alive(const PathSearch& s, const PathEntry& e) {
    return !s.gone[e.line[0]] && !s.gone[e.line[1]] && !s.used[e.vertex];
}

static void change_count(PathSearch& s, int32_t line, const PathEntry& e, int change) {
    s.count[line] = static_cast<int16_t>(s.count[line] + change);
    if (e.vertex > 0) s.mass[line] = static_cast<int16_t>(s.mass[line] + change);
}

/// The living entries of a line enter or leave the counts of the lines that cross it.
static void change_crossing(PathSearch& s, int32_t line, int change) {
    bool column = line >= s.side;
    for (int32_t k = s.line_first[line]; k < s.line_first[line + 1]; k++) {
        const PathEntry& e = s.entry[s.line_entry[k]];
        if (is_alive(s, e)) change_count(s, e.line[!column], e, change);
    }
}

static void remove_line(PathSearch& s, int32_t line) {
    change_crossing(s, line, -1);
    s.gone[line] = true;
    s.count[line] = static_cast<int16_t>(s.count[line] + k_gone);
}

static void restore_line(PathSearch& s, int32_t line) {
    s.gone[line] = false;
    s.count[line] = static_cast<int16_t>(s.count[line] - k_gone);
    change_crossing(s, line, 1);
}

static void change_vertex(PathSearch& s, int32_t vertex, int change) {
    for (int32_t k = s.vertex_first[vertex]; k < s.vertex_first[vertex + 1]; k++) {
        const PathEntry& e = s.entry[s.vertex_entry[k]];
        if (!is_alive(s, e)) continue;
        change_count(s, e.line[0], e, change);
        change_count(s, e.line[1], e, change);
    }
}

static void use_vertex(PathSearch& s, int32_t vertex) {
    change_vertex(s, vertex, -1);
    s.used[vertex] = true;
    s.vertices++;
    if (verbose && s.vertices >= std::max(s.n, 2) - 1)
        printf("     path found of length %d\n", s.vertices - 1);
}

static void free_vertex(PathSearch& s, int32_t vertex) {
    s.used[vertex] = false;
    change_vertex(s, vertex, 1);
    s.vertices--;
}

// ---- the search ----------------------------------------------------------------------------------------

WIDE_VECTORS static int16_t least_count(const int16_t* count, int32_t lines) {
    int16_t least = k_gone;
    for (int32_t k = 0; k < lines; k++) least = count[k] < least ? count[k] : least;
    return least;
}

/// True once in four times or so.
static bool toss(PathSearch& s) {
    s.randint = s.randint * 145 % 40099;
    return s.randint % 4 == 0;
}

/// The line with the fewest living entries; of several the one with most that use a vertex; of these any. -1:
/// a line has none.
static int32_t choose_line(PathSearch& s) {
    int32_t lines = 2 * s.side, best = -1;
    int16_t least = least_count(s.count, lines);
    if (least == 0) return -1;
    for (int32_t line = 0; line < lines; line++) {
        if (s.count[line] != least) continue;
        if (best < 0 || s.mass[line] > s.mass[best] || (s.mass[line] == s.mass[best] && toss(s))) best = line;
    }
    return best;
}

/// The last row: its entry, if there is one, completes the path.
static Outcome leaf(PathSearch& s, int32_t limit) {
    s.lowcnt++;
    int32_t row = 0;
    while (s.gone[row]) row++;
    if (s.count[row] > 0) return Outcome::path;
    return s.lowcnt >= limit ? Outcome::limit : Outcome::none;
}

/// Takes back the entry that is under way.
static void take_back(PathSearch& s, Expansion& x) {
    const PathEntry& e = s.entry[x.entry];
    restore_line(s, e.line[x.line < s.side]);
    if (e.vertex > 0) free_vertex(s, e.vertex);
}

/// The next living entry of the line is used. False: there is none, the line is restored.
static bool try_next_entry(PathSearch& s, Expansion& x) {
    bool row = x.line < s.side;
    for (; x.next < s.line_first[x.line + 1]; x.next++) {
        const PathEntry& e = s.entry[s.line_entry[x.next]];
        if (s.gone[e.line[row]] || s.used[e.vertex]) continue;
        x.entry = s.line_entry[x.next++];
        s.total_cnt++;
        if (e.vertex > 0) use_vertex(s, e.vertex);
        remove_line(s, e.line[row]);
        return true;
    }
    restore_line(s, x.line);
    return false;
}

/// One try, on a stack of its own: as deep as the matrix has rows. Undecided after so many branches.
static Outcome hamilton_path(PathSearch& s, int32_t limit, int64_t most_branches) {
    bool down = true;  // a new line is chosen; else the last expansion goes on
    for (;;) {
        poll_interrupt();
        if (s.total_cnt > most_branches) return Outcome::undecided;
        if (down && s.depth == s.side - 1) {
            Outcome o = leaf(s, limit);
            if (o != Outcome::none) return o;
            down = false;
        } else if (down) {
            int32_t line = choose_line(s);
            down = line >= 0;
            if (down) {
                s.expansion[s.depth++] = {line, s.line_first[line], -1};
                remove_line(s, line);
                down = try_next_entry(s, s.expansion[s.depth - 1]);
                if (!down) s.depth--;
            }
        }
        while (!down) {
            if (s.depth == 0) return Outcome::none;
            Expansion& x = s.expansion[s.depth - 1];
            take_back(s, x);
            down = try_next_entry(s, x);
            if (!down) s.depth--;
        }
    }
}

static Outcome try_until_limit(PathSearch& s, const bool* edge, int32_t limit) {
    bool by_subsets = s.n <= k_most_subset_vertices;
    begin_try(s);
    Outcome o = hamilton_path(s, limit, by_subsets ? k_branches_alone : INT64_MAX);
    if (o == Outcome::undecided) o = path_by_subsets(edge, s.n) ? Outcome::path : Outcome::none;
    if (verbose)
        printf("   total branches, leaf count: %lld, %lld\n", static_cast<long long>(s.total_cnt),
               static_cast<long long>(s.lowcnt));
    if (o == Outcome::limit) fputs(" Leaf count limit exceeded; try again: \n", stdout);
    return o;
}

bool hamilton_path_driver(const bool* edge, int32_t n, int32_t limit) {
    ScratchMark mark = scratch_mark();
    PathSearch s = set_up_hamilton(edge, n);
    s.randint = 145;
    for (uint32_t k = wf_random_below(64); k > 0; k--) toss(s);
    if (verbose) dumpitt("Hamiltonian path search, side ", s.side, 1, 1, 0);
    bool possible = has_path_matching(edge, n) && components_in_line(edge, n);
    Outcome o = possible ? Outcome::limit : Outcome::none;
    while (o == Outcome::limit) o = try_until_limit(s, edge, limit);
    if (verbose) decr_dumpitt(1, 1, verbose);
    scratch_release(mark);
    return o == Outcome::path;
}
}  // namespace tolvex
