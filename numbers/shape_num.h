#pragma once
/// numbers/shape_num.h: sizes of numbers.
///
/// Ownership  operands are only read.
#include "numbers/number.h"
namespace tolvex {
int32_t sizenumber(const number* p);  ///< bytes: record, and digits outside lintmode; saturates
boolean oversize(const number* n, const number* m);         ///< n m has two digits or exceeds 1000000; chains
boolean sparse_oversize(const number* n, const number* m);  ///< the companion test for sparse dimensions
/// The number as a word; k_no_word if it does not fit (two digits fit while the head is at most 7 in
/// magnitude).
int32_t convert_to_int(const number* n);
inline constexpr int32_t k_no_word = -2147483647;
}  // namespace tolvex
