#pragma once
/// poly/dense_basic.h: one-variable modular polynomials as arrays of residues.
///
/// Invariant  the entry at index i is the coefficient of x^i; slices are (array, low index, high index),
///            inclusive; a degree of -1 is the zero polynomial. modularmode.
/// Ownership  arrays are the caller's, in scratch memory. Additions and products of at most k_dense_entries
///            entries are not interrupted.
#include "poly/poly.h"
namespace tolvex {
inline constexpr int32_t k_dense_entries = 25001;  // fast_gcd_size + 1
inline constexpr int32_t k_bivariate = 701;        // row length of the two-level arrays
/// x[0..degree] := a one-level polynomial (or a number) without negative exponents; gaps become 0.
void fill_poly_array(const polynode* n, int32_t* x);
/// *p := the fresh sparse form of x[0..degree], whose top entry is not 0; degree -1 gives the number 0. The
/// old *p is given back.
void array_to_poly(const int32_t* x, int32_t degree, polyptrr p);
/// The same for two levels: row i, of k_bivariate entries, holds the coefficient of x^i, of degree
/// row_degree[i] (-1: no term).
void array_to_poly2(const int32_t* x, int32_t degree, const int32_t* row_degree, polyptrr p);
/// c[0..] := a[xa..xb] + b[ya..yb], each slice moved down to index 0; an empty slice (xb < xa) is 0. c may be
/// the start of a slice. *deg: the true degree.
void onevar_add(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                int32_t yb, int32_t* deg);
void onevar_sub(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                int32_t yb, int32_t* deg);
/// Degree of x[0..top], -1 if all zero.
int32_t dense_degree(const int32_t* x, int32_t top);
}  // namespace tolvex
