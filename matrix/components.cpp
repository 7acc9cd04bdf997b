#include "matrix/components.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
/// Tarjan's search with a stack of its own: matrices are deeper than the process stack.
struct Search {
    const MatrixPattern& m;
    Components& out;
    int32_t *number, *low;  // by row; number 0: not met yet
    int32_t *path, depth;   // rows under way
    int64_t* next;          // by row: the place that is looked at next
    int32_t *open, opened;  // rows met whose component is not complete
    bool* is_open;
    int32_t met, closed;  // rows
};
}  // namespace

static void enter(Search& s, int32_t row) {
    s.number[row] = s.low[row] = ++s.met;
    s.next[row] = s.m.start[row];
    s.path[s.depth++] = row;
    s.open[s.opened++] = row;
    s.is_open[row] = true;
}

/// The row, and all that were opened after it, make a component if nothing reaches above it.
static void leave(Search& s, int32_t row) {
    s.depth--;
    if (s.depth > 0) {
        int32_t above = s.path[s.depth - 1];
        s.low[above] = std::min(s.low[above], s.low[row]);
    }
    if (s.low[row] != s.number[row]) return;
    int32_t from = s.closed, member;
    do {
        member = s.open[--s.opened];
        s.is_open[member] = false;
        s.out.row[s.closed++] = member;
    } while (member != row);
    std::sort(s.out.row + from, s.out.row + s.closed);
    s.out.first[++s.out.count] = s.closed;
}

static void search_from(Search& s, int32_t root) {
    enter(s, root);
    for (int64_t turns = 0; s.depth > 0; turns++) {
        poll_every<4096>(turns);
        int32_t row = s.path[s.depth - 1];
        if (s.next[row] == s.m.start[row + 1]) {
            leave(s, row);
            continue;
        }
        int32_t to = s.m.column[s.next[row]++];
        if (s.number[to] == 0)
            enter(s, to);
        else if (s.is_open[to])
            s.low[row] = std::min(s.low[row], s.number[to]);
    }
}

Components strong_components(const MatrixPattern& m) {
    Components out = {0, scratch_array<int32_t>(int64_t{m.n} + 1), scratch_array<int32_t>(m.n)};
    out.first[0] = 0;
    ScratchMark mark = scratch_mark();
    Search s = {m,
                out,
                scratch_array<int32_t>(m.n),
                scratch_array<int32_t>(m.n),
                scratch_array<int32_t>(m.n),
                0,
                scratch_array<int64_t>(m.n),
                scratch_array<int32_t>(m.n),
                0,
                scratch_array<bool>(m.n),
                0,
                0};
    std::fill_n(s.number, m.n, 0);
    std::fill_n(s.is_open, m.n, false);
    for (int32_t r = 0; r < m.n; r++)
        if (s.number[r] == 0) search_from(s, r);
    scratch_release(mark);
    return out;
}

bool odd_permutation(int32_t* to, int32_t n) {
    bool odd = false;
    for (int32_t r = 0; r < n; r++) {
        while (to[r] != r) {
            int32_t other = to[r];
            to[r] = to[other];
            to[other] = other;
            odd = !odd;
        }
    }
    return odd;
}
}  // namespace tolvex
