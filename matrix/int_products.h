#pragma once
/// matrix/int_products.h: products of dense matrices of integers and rational numbers.
///
/// Purpose    an element is one sum in words or limbs, and becomes a value when it is complete. Rows on the
///            left and columns on the right are cleared of denominators, so that no fraction is reduced but
///            the result. Costs rows inner cols products: below a nanosecond each if words of 63 bits hold
///            the sums.
/// Invariant  none between calls: what is known besides the result stands in scratch memory.
/// Ownership  operands are kept; the result is filled with new values.
/// Modes      lintmode; in modularmode products are made elsewhere.
/// Raises     poll_interrupt.
#include "matrix/work.h"
namespace tolvex {
/// result := a b as matrix_mult() does. False, and nothing has been done: the ring is not Z, or an element is
/// neither an integer nor a rational number.
bool multiply_rationals(const quoly* a, const quoly* b, int32_t rows, int32_t inner, int32_t cols,
                        workptr result);
}  // namespace tolvex
