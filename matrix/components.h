#pragma once
/// matrix/components.h: the strong components of the graph of a square matrix.
///
/// Purpose    rows and columns ordered by components make the matrix block triangular: determinants and
///            characteristic polynomials are products over the diagonal blocks.
///            Source: R. Tarjan, "Depth-first search and linear graph algorithms", SIAM J. Comput. 1 (1972).
/// Raises     poll_interrupt: only scratch memory is under way then.
#include <cstdint>
namespace tolvex {
/// Places of a matrix that are not 0, row by row: those of row r at start[r]..start[r + 1] - 1.
struct MatrixPattern {
    int32_t n;
    const int64_t* start;   // n + 1 of them
    const int32_t* column;  // from 0
};
/// The rows of component k are row[first[k]]..row[first[k + 1] - 1], rising; no place leads from a component
/// to a later one.
struct Components {
    int32_t count;
    int32_t* first;  // count + 1 of them
    int32_t* row;    // n
};
/// In scratch memory of the caller. Linear in places and rows.
Components strong_components(const MatrixPattern& m);
/// True if the permutation of 0..n-1 is odd. It is used up. Linear.
bool odd_permutation(int32_t* to, int32_t n);
}  // namespace tolvex
