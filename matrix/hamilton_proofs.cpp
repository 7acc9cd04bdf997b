#include "matrix/hamilton_proofs.h"

#include "matrix/components.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
namespace tolvex {
namespace {
struct Matching {
    const bool* edge;
    int32_t n;
    int32_t* leads_to;  // by the vertex that is entered: the one that its edge leaves, -1: none
    bool* seen;
};
}  // namespace

/// Vertex i gets an edge of its own, others changing theirs. Depth at most n.
static bool augment(Matching& m, int32_t i) {
    for (int32_t j = 0; j < m.n; j++) {
        if (i == j || m.seen[j] || !m.edge[i * m.n + j]) continue;
        m.seen[j] = true;
        if (m.leads_to[j] >= 0 && !augment(m, m.leads_to[j])) continue;
        m.leads_to[j] = i;
        return true;
    }
    return false;
}

bool has_path_matching(const bool* edge, int32_t n) {
    ScratchMark mark = scratch_mark();
    Matching m = {edge, n, scratch_array<int32_t>(n), scratch_array<bool>(n)};
    std::fill_n(m.leads_to, n, -1);
    int32_t matched = 0;
    for (int32_t i = 0; i < n; i++) {
        std::fill_n(m.seen, n, false);
        matched += augment(m, i);
        poll_interrupt();
    }
    scratch_release(mark);
    return matched >= n - 1;
}

bool components_in_line(const bool* edge, int32_t n) {
    ScratchMark mark = scratch_mark();
    auto* start = scratch_array<int64_t>(int64_t{n} + 1);
    auto* column = scratch_array<int32_t>(int64_t{n} * n);
    start[0] = 0;
    for (int32_t i = 0; i < n; i++) {
        start[i + 1] = start[i];
        for (int32_t j = 0; j < n; j++)
            if (edge[i * n + j]) column[start[i + 1]++] = j;
    }
    Components c = strong_components({n, start, column});
    auto* component = scratch_array<int32_t>(n);
    for (int32_t k = 0; k < c.count; k++)
        for (int32_t r = c.first[k]; r < c.first[k + 1]; r++) component[c.row[r]] = k;
    auto* joined = scratch_array<bool>(c.count);  // to the one before, which a path enters next
    std::fill_n(joined, c.count, false);
    for (int32_t i = 0; i < n; i++)
        for (int64_t k = start[i]; k < start[i + 1]; k++)
            if (component[column[k]] == component[i] - 1) joined[component[i]] = true;
    bool in_line = std::all_of(joined + 1, joined + c.count, [](bool j) { return j; });
    scratch_release(mark);
    return in_line;
}

bool path_by_subsets(const bool* edge, int32_t n) {
    ScratchMark mark = scratch_mark();
    uint32_t all = (1u << n) - 1, enter[k_most_subset_vertices] = {};
    for (int32_t j = 0; j < n; j++)
        for (int32_t i = 0; i < n; i++)
            if (i != j && edge[i * n + j]) enter[j] |= 1u << i;
    auto* ends = scratch_array<uint32_t>(int64_t{all} + 1);  // of paths through the set
    ends[0] = 0;
    for (uint32_t set = 1; set <= all; set++) {
        poll_every<4096>(set);
        uint32_t found = std::has_single_bit(set) ? set : 0;
        for (uint32_t left = set; left != 0; left &= left - 1) {
            auto j = std::countr_zero(left);
            if ((ends[set & ~(1u << j)] & enter[j]) != 0) found |= 1u << j;
        }
        ends[set] = found;
    }
    bool is_path = ends[all] != 0;
    scratch_release(mark);
    return is_path;
}
}  // namespace tolvex
