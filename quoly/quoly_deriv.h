#pragma once
/// quoly/quoly_deriv.h: partial derivatives of rational functions.
///
/// Ownership  in place.
/// Modes      any.
#include "quoly/quoly.h"
namespace tolvex {
/// *q := dq/dx for the variable x of that level; of a number 0.
void quoly_differentiate(quolyptr q, int32_t level);
}  // namespace tolvex
