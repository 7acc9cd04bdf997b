#include "matrix/rank_profile.h"

#include "matrix/word_rows.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <bit>
namespace tolvex {
/// The row is cleared by the pivots before; its first entry that is not 0 becomes its pivot. words: the
/// matrix, row by row; pivot_row[0..rank) and their columns.
static int32_t pivot_column(const WordField& f, uint32_t* words, int32_t cols, int32_t r,
                            const RankProfile& p) {
    uint32_t* row = words + int64_t{r} * cols;
    for (int32_t k = 0; k < p.rank; k++) {
        uint32_t entry = row[p.column[k]];
        if (entry != 0) add_row_multiple(f, row, words + int64_t{p.row[k]} * cols, wf_neg(f, entry), cols);
    }
    int32_t c = 0;
    while (c < cols && row[c] == 0) c++;
    if (c < cols) scale_row_by(f, row, wf_inverse(f, row[c]), cols);
    return c;
}

/// The rest of the lines go behind the first `rank`.
static void complete(int32_t* line, int32_t rank, int32_t count) {
    ScratchMark mark = scratch_mark();
    auto* taken = scratch_array<bool>(count);
    std::fill_n(taken, count, false);
    std::sort(line, line + rank);
    for (int32_t k = 0; k < rank; k++) taken[line[k]] = true;
    for (int32_t k = 0; k < count; k++)
        if (!taken[k]) line[rank++] = k;
    scratch_release(mark);
}

/// Modulo one prime, into the lists of p.
static void word_profile(const WordField& f, const IntGrid& g, RankProfile* p) {
    ScratchMark mark = scratch_mark();
    auto* words = scratch_array<uint32_t>(int64_t{g.rows} * g.cols);
    for (int64_t k = 0; k < int64_t{g.rows} * g.cols; k++) words[k] = entry_residue(f, g.at[k]);
    p->rank = 0;
    for (int32_t r = 0; r < g.rows && p->rank < g.cols; r++) {
        poll_interrupt();
        int32_t c = pivot_column(f, words, g.cols, r, *p);
        if (c == g.cols) continue;
        p->row[p->rank] = r;
        p->column[p->rank++] = c;
    }
    scratch_release(mark);
}

RankProfile rank_profile(const IntGrid& g) {
    RankProfile best = {-1, scratch_array<int32_t>(g.rows), scratch_array<int32_t>(g.cols)};
    ScratchMark mark = scratch_mark();
    RankProfile p = {0, scratch_array<int32_t>(g.rows), scratch_array<int32_t>(g.cols)};
    int64_t bits = 0;  // of the primes modulo which no larger rank has been found
    int32_t most = std::min(g.rows, g.cols);
    for (uint32_t prime = (1u << 30) - 35; best.rank < most; prime = image_prime_below(prime)) {
        word_profile(word_field_prime(prime), g, &p);
        if (p.rank > best.rank) {
            best.rank = p.rank;
            std::copy_n(p.row, p.rank, best.row);
            std::copy_n(p.column, p.rank, best.column);
        }
        bits += std::bit_width(prime) - 1;
        if (bits > row_length_bits(g, best.rank + 1)) break;  // all larger minors are 0
    }
    scratch_release(mark);
    complete(best.row, best.rank, g.rows);
    complete(best.column, best.rank, g.cols);
    return best;
}
}  // namespace tolvex
