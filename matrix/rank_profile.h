#pragma once
/// matrix/rank_profile.h: rows and columns that carry the rank of a matrix of integers.
///
/// Purpose    normal forms are computed on the rows and columns of a regular minor.
///            Cost: one elimination of words; if that does not find full rank, as many as there are words in
///            Hadamard's bound of the minors of one more row.
/// Ownership  lists stand in scratch memory of the caller.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
/// row: all rows, the first `rank` of them rising and independent, the others rising behind them; column:
/// likewise. The minor of the first `rank` rows and columns is not 0.
struct RankProfile {
    int32_t rank;
    int32_t *row, *column;
};
RankProfile rank_profile(const IntGrid& g);
}  // namespace tolvex
