#pragma once
/// gcd/square_free.h: square-free decomposition.
///
/// Result     a chain of nodes, each with the multiplicity in exp and the factor in pcoef, numb false; *count
/// grows by one a
///            factor. The product of the powers is x up to a unit.
#include "poly/poly.h"
namespace tolvex {
void square_free_factor(poly x, polyptrr sq, int32_t* count,
                        polypt pt);  ///< characteristic p; error 308, 352
void rat_sq_free_factor(polyptrr x, polyptrr sq, int32_t* count,
                        polypt pt);  ///< characteristic 0, Yun's method
/// All levels: contents recursively, then one of the above. *x is changed: its content is divided out.
void total_sq_free(polyptrr x, polyptrr sq, int32_t* count, boolean first, polypt pt);
void free_factor_list(polyptrr sq);
}  // namespace tolvex
