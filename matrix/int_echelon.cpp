#include "matrix/int_echelon.h"

#include "matrix/int_solve.h"
#include "matrix/rank_profile.h"
#include "numbers/number_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
bool fits_int_echelon(const Reduction& r) {
    constexpr int32_t k_least = 6;  // rows and columns from which images are faster
    if (lintmode || r.m.at == nullptr || std::min(r.m.rows, r.m.cols) < k_least) return false;
    for (const LineMatrix& aux : r.aux)
        if (is_present(aux)) return false;
    for (int64_t k = 0; k < int64_t{r.m.rows} * r.m.cols; k++)
        if (!r.m.at[k]->numb) return false;
    return true;
}

/// The column `open` of p, which has no pivot, is a combination of pivots in front of it alone.
static bool is_echelon_column(const RankProfile& p, const IntGrid& x, int32_t open) {
    for (int32_t k = 0; k < p.rank; k++)
        if (p.column[k] > p.column[p.rank + open] && x(k, open).n != 0) return false;
    return true;
}

/// m, whose elements are known as integers elsewhere, becomes the echelon form.
static void store_echelon(LineMatrix& m, const RankProfile& p, const IntGrid& x, const IntEntry& det) {
    quoly below = value_of_entry(det);
    for (int64_t k = 0; k < int64_t{m.rows} * m.cols; k++) {
        quoly_set(0, &m.at[k]);
        poll_every<1024>(k);
    }
    for (int32_t k = 0; k < p.rank; k++) {
        set_matrix_element(m, k, p.column[k], value_of_entry(k_entry_one));
        for (int32_t open = 0; open < x.cols; open++) {
            if (x(k, open).n == 0) continue;
            quoly q = value_of_entry(x(k, open));
            fast_quoly_quot(&q, below, false);
            set_matrix_element(m, k, p.column[p.rank + open], q);
            poll_interrupt();
        }
    }
    free_quoly(&below);
}

bool int_echelon(Reduction* r, int32_t* rank) {
    ScratchMark mark = scratch_mark();
    IntGrid g = grid_of(r->m), x = {nullptr, 0, 0};
    RankProfile p = rank_profile(g);
    IntEntry det = k_entry_one;
    int32_t open = g.cols - p.rank;
    bool good = true;
    if (open > 0 && p.rank > 0) {
        x = cramer_numerators(grid_part(g, p.row, p.rank, p.column, p.rank),
                              grid_part(g, p.row, p.rank, p.column + p.rank, open), &det);
        for (int32_t c = 0; c < open && good; c++) good = is_echelon_column(p, x, c);
    }
    if (good) {
        store_echelon(r->m, p, x, det);
        *rank = p.rank;
    }
    scratch_release(mark);
    return good;
}
}  // namespace tolvex
