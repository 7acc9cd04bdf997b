#pragma once
/// poly/poly_deriv.h: partial derivatives.
///
/// Ownership  p is kept; *q is replaced.
/// Modes      any.
#include "poly/poly.h"
namespace tolvex {
/// *q := dp/dx for the variable x of that level (1: the main one); p is kept, *q may be p's variable. Time
/// linear in the terms.
void poly_differentiate(const polynode* p, polyptrr q, int32_t level);
}  // namespace tolvex
