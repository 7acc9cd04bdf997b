#pragma once
/// matrix/assignment.h: the degree of a determinant from the degrees of its entries.
///
/// Purpose    bounds the degrees of determinants without computing them.
///            Method: H. W. Kuhn, "The Hungarian method for the assignment problem" (1955), in the form with
///            shortest augmenting paths (Jonker and Volgenant, Computing 38 (1987)): n^3 steps at most.
#include <cstdint>
namespace tolvex {
inline constexpr int64_t k_no_degree = INT64_MIN;  // of an entry 0
/// The greatest sum of n degrees, one of each row and column, of an n by n table row by row; k_no_degree:
/// every choice meets an entry 0, and the determinant is 0. No term of the determinant exceeds it. Polls.
int64_t greatest_assignment(const int64_t* degree, int32_t n);
}  // namespace tolvex
