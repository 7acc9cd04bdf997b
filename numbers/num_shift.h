#pragma once
/// numbers/num_shift.h: shifts of non-negative chains and bit lengths. Shifting 0 gives 0.
///
/// Ownership  shifts work in place.
/// Modes      chains, whatever the mode says.
#include "numbers/number.h"
namespace tolvex {
void shift_right_1(imptr n);               ///< n := n / 2
void shift_right_2(imptr n);               ///< n := n / 4
void gen_shift_right(imptr n, int32_t m);  ///< m in 1..27
void shift_right(imptr n, int32_t m);      ///< any m; beyond the value: 0
void shift_left(imptr n, int32_t k);       ///< n := n 2^k
void fillout(imptr n, int32_t x);          ///< n := n * 2^(28 x)
int32_t logg2(const number* q);            ///< bit length of a non-negative chain; saturates
int32_t logg2_neg(const number* q);        ///< of a negative chain
/// Top bit index of |q|, -1 for 0; folds to the symmetric residue in modular mode.
int32_t logg2lint(int32_t q);
int32_t word_top_bit(int64_t q);  ///< the same without folding
}  // namespace tolvex
