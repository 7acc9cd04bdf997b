#pragma once
/// numbers/num_root.h: square roots.
///
/// Raises     34, 37, in square_root alone.
#include "numbers/number.h"
namespace tolvex {
/// Floor of the root of a chain >= 0; flag is kept for the callers.
void int_sqrt(const number* n, imptr n2, boolean flag);
boolean its_a_square(int32_t n);  ///< modular: n^((modulus-1)/2) is 1
int32_t modular_sqrt(int32_t n);  ///< a root modulo a prime modulus, 0 if there is none
void square_root(imptr n);        ///< n := root of n in the mode in force; errors 34, 37
}  // namespace tolvex
