#pragma once
/// matrix/int_grid.h: matrices of integers in scratch memory, which the normal forms are made from.
///
/// Ownership  all stands in scratch memory of the caller. Entries do not change; grids may share them.
/// Raises     poll_interrupt: only scratch memory is under way then, except where values are stored.
#include "matrix/int_entries.h"
#include "matrix/reduction.h"
namespace tolvex {
inline constexpr IntEntry k_entry_zero = {nullptr, 0, false};
/// Row by row.
struct IntGrid {
    IntEntry* at;
    int32_t rows, cols;
    IntEntry& operator()(int64_t r, int64_t c) const { return at[r * cols + c]; }
};
/// Zeros; the identity.
IntGrid zero_grid(int32_t rows, int32_t cols);
IntGrid identity_grid(int32_t n);
/// The elements of a matrix, which are integers.
IntGrid grid_of(const LineMatrix& m);
/// The same without the rows and columns of a sparse matrix that have no entry.
IntGrid occupied_grid(const LineMatrix& m);
/// All elements but the first ones of the diagonal become 0.
void store_diagonal(const IntEntry* diagonal, int32_t count, LineMatrix& m);
/// The matrix, of the same shape, takes the values.
void store_grid(const IntGrid& g, LineMatrix& m);
IntGrid transposed(const IntGrid& g);
/// The rows row[0..rows) and columns column[0..cols); nil: the first ones.
IntGrid grid_part(const IntGrid& g, const int32_t* row, int32_t rows, const int32_t* column, int32_t cols);
IntGrid grid_product(const IntGrid& a, const IntGrid& b);
/// The permutation matrix whose row i has its 1 in column order[i].
IntGrid permutation_grid(const int32_t* order, int32_t n);
/// The bits of its longest entry.
int64_t grid_bits(const IntGrid& g);
/// The product of the lengths of the rows is below 2 to this power; the lengths of rows of zeros count as 1.
/// `rows` of them at most, the longest ones.
int64_t row_length_bits(const IntGrid& g, int32_t rows);

/// The sum of products of integers, in two's complement.
struct IntSum {
    limb* at;
    int64_t n;
    limb* product;
};
/// Room for sums of `terms` products of entries of at most so many bits.
IntSum new_sum(int64_t bits, int64_t other_bits, int64_t terms);
inline void clear_sum(IntSum& s) {
    for (int64_t k = 0; k < s.n; k++) s.at[k] = 0;
}
/// s += a b, or s -= a b.
void add_to_sum(IntSum& s, const IntEntry& a, const IntEntry& b, bool minus);
/// The value in memory of its own; the sum is lost.
IntEntry value_of_sum(IntSum& s);
/// a / b, which is exact, of any signs.
IntEntry exact_entry_quotient(const IntEntry& a, const IntEntry& b);
}  // namespace tolvex
