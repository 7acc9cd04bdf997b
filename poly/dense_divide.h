#pragma once
/// poly/dense_divide.h: division of residue arrays. The leading residue of y is a unit, else error 85.
#include "poly/dense_basic.h"
namespace tolvex {
void onevar_array_mod(int32_t* x, const int32_t* y, int32_t* xdeg, int32_t ydeg, boolean* all_zeros);
void onevar_array_div_mod(int32_t* x, const int32_t* y, int32_t* q, int32_t* xdeg, int32_t ydeg,
                          int32_t* qdeg, boolean* all_zeros);
}  // namespace tolvex
