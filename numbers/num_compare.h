#pragma once
/// numbers/num_compare.h: comparison of numbers. All stop at the first difference from the head.
///
/// Ownership  operands are only read.
#include "numbers/number.h"
namespace tolvex {
boolean bigger(const number* n, const number* m);                       ///< n > m, signed, either mode
boolean pos_bigger(const number* n, const number* m);                   ///< n > m, non-negative chains
boolean fast_bigger(numptr n, numptr p, int32_t nsize, int32_t psize);  ///< the same on bare chains
/// |n| > |m|, chains; equalok on equality.
boolean int_abs_bigger(const number* n, const number* m, boolean equalok);
boolean abs_larger(const number* n, const number* m);  ///< |n| > |m|, either mode
boolean equal(const number* n, const number* m);       ///< either mode
boolean spec_equal(const number* n, const number* m);  ///< chains whatever the mode
boolean negtive(const number* n, const number* m);     ///< n = -m, either mode
/// Equal chains; else *firstone: n larger.
boolean equal_which(const number* n, const number* m, boolean* firstone);
boolean equal_to_pm1(const number* n, boolean* its_minus1);  ///< 1 or -1, either mode
inline boolean is_longint(const number* num, int32_t n) { return num->size == 1 && num->head->value == n; }
inline boolean iszero(const number* num) { return lintmode ? num->lint == 0 : num->head->value == 0; }
/// -1, 0, 1 as a chain is negative, zero, positive.
inline int32_t chain_sign(const number* n) { return (n->head->value > 0) - (n->head->value < 0); }
}  // namespace tolvex
