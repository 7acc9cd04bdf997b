#pragma once
/// gcd/num_content.h: gcds of numeric coefficients.
#include "poly/poly.h"
namespace tolvex {
void find_gcdcoefs(const polynode* p,
                   imptr com);  ///< gcd of all numeric coefficients (chains); stops early at 1
void gcd_coefs(const polynode* q, polyptrr r);  ///< the same as a constant polynomial; modular: 1
}  // namespace tolvex
