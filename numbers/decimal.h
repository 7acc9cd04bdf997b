#pragma once
/// numbers/decimal.h: chains in base 2^28 to decimal chains in base 10^8.
#include "numbers/number.h"
namespace tolvex {
void make_base_10(const number* n, imptr n2);  ///< n2 := decimal chain of n
void verybig_base_10(numptr p, numptr t, int32_t size,
                     imptr n2);  ///< the same by divide and conquer, bare chain
}  // namespace tolvex
