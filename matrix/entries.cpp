#include "matrix/entries.h"

#include "quoly/quoly_basic.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
MatrixEntries dense_entries(const quoly* a, int32_t n) {
    auto* start = scratch_array<int64_t>(int64_t{n} + 1);
    auto* column = scratch_array<int32_t>(int64_t{n} * n);
    auto* value = scratch_array<const quolynode*>(int64_t{n} * n);
    int64_t used = 0;
    for (int32_t r = 0; r < n; r++) {
        start[r] = used;
        for (int32_t c = 0; c < n; c++) {
            const quolynode* q = a[r + int64_t{c} * n];
            if (quoly_iszero(q)) continue;
            column[used] = c;
            value[used++] = q;
        }
        poll_interrupt();
    }
    start[n] = used;
    return {{n, start, column}, value};
}

MatrixEntries sparse_entry_list(sparseptr spar, int32_t n) {
    int64_t entries = sparse_entries(spar, n), used = 0;
    auto* start = scratch_array<int64_t>(int64_t{n} + 1);
    auto* column = scratch_array<int32_t>(entries);
    auto* value = scratch_array<const quolynode*>(entries);
    SparseWalk w = walk_sparse(spar, n);
    while (colm_ptrptr t = next_row(w)) {
        start[w.row] = used;
        for (const colnode* e = *t; e != nullptr; e = e->next) {
            column[used] = e->coord - 1;
            value[used++] = e->val;
        }
        poll_every<64>(w.row);
    }
    start[n] = used;
    return {{n, start, column}, value};
}
}  // namespace tolvex
