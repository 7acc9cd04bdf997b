#pragma once
/// numbers/num_mult.h: products of numbers. ans may be an operand, operands may be one record.
///
/// Ownership  operands are kept; ans is replaced when the product is complete.
#include "numbers/number.h"
namespace tolvex {
/// Chain times digit; *penult: next-to-last node.
void simp_mult(const number* n, imptr ans, int32_t m, numptrptr penult);
void multiply(const number* n, const number* m, imptr ans);   ///< chains, schoolbook
void fast_mult(const number* n, const number* m, imptr ans);  ///< chains: the general entry
void number_power(imptr n, int32_t k);                        ///< n := n^k, k >= 0, every mode
void multout(int32_t first, int32_t last, imptr ans);      ///< product of first..last; empty: 1; every mode
void factorial(imptr n);                                   ///< n := n!; errors 94, 240
void int_mult(const number* n, const number* m, imptr q);  ///< every mode
boolean is_product_of(const number* num, int32_t n, int32_t m);  ///< chains whatever the mode
}  // namespace tolvex
