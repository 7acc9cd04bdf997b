#pragma once
/// poly/dense_basic.h: one-variable modular polynomials as arrays of residues.
///
/// Invariant  the entry at index i is the coefficient of x^i; slices are (array, low index, high index),
/// inclusive;
///            a degree of -1 is the zero polynomial. modularmode.
#include "poly/poly.h"
namespace tolvex {
inline constexpr int32_t k_dense_entries = 25001;            // fast_gcd_size + 1
inline constexpr int32_t k_bivariate = 701;                  // row length of the two-level arrays
inline int32_t *xx = nullptr, *yy = nullptr, *zz = nullptr;  // k_dense_entries residues each
inline int32_t *x2 = nullptr, *y2 = nullptr, *z2 = nullptr;  // k_bivariate squared each
void init_dense();
void fill_poly_array(const polynode* n, int32_t* x);  ///< a one-level polynomial; gaps become 0
void array_to_poly(const int32_t* x, int32_t degree, polyptrr p);
void array_to_poly2(const int32_t* x, int32_t degree, const int32_t* row_degree, polyptrr p);
void onevar_add(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                int32_t yb, int32_t* deg);
void onevar_sub(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                int32_t yb, int32_t* deg);
/// Degree of x[0..top], -1 if all zero.
int32_t dense_degree(const int32_t* x, int32_t top);
}  // namespace tolvex
