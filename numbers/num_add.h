#pragma once
/// numbers/num_add.h: addition and subtraction of chains.
///
/// Ownership  n is changed in place; ans and n3 are replaced when the result is complete, and may be
///            operands.
#include "numbers/number.h"
namespace tolvex {
void fastsum(imptr n, const number* m);                                     ///< n := n + m in place, chains
void fastdiff(imptr n, const number* m);                                    ///< n := n - m in place, chains
void medsum(int32_t nsize, int32_t msize, numptr p, numptr q, imptr ans);   ///< ans := p + q, bare chains
void meddiff(int32_t nsize, int32_t msize, numptr p, numptr q, imptr ans);  ///< ans := p - q
void summ(const number* n, const number* m, imptr ans, int32_t vblock);     ///< ans := n + m in base vblock
/// ans := p - m in base vblock.
void diff(numptr p, int32_t size, const number* m, imptr ans, int32_t vblock);
void sub(const number* n1, const number* n2, imptr n3);  ///< n3 := n1 - n2, every mode
/// n := n + m, every mode; as chains only where the result is one digit.
void int_add(imptr n, const number* m);
}  // namespace tolvex
