#pragma once
/// matrix/bareiss.h: determinants of matrices over an integral domain.
///
/// Purpose    elimination without fractions: each step divides exactly by the pivot before, so that entries
///            are minors.
///            Source: E. H. Bareiss, "Sylvester's identity and multistep integer-preserving Gaussian
///            elimination", Math. Comp. 22 (1968).
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// *det := the determinant of a, m by m, column by column, m >= 1; its elements are changed, none is nil.
/// Entries with denominators are allowed: columns are cleared of them first. minors_at: as soon as that many
/// rows are left, at most 40, the rest is expanded by minors; 0 or 1: never. What *det held is given back.
/// Time m^3 products and exact divisions of minors.
void bareiss_determinant(quoly* a, int32_t m, int32_t minors_at, quolyptr det);
}  // namespace tolvex
