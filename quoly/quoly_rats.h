#pragma once
/// quoly/quoly_rats.h: arithmetic of rational numbers, apart from all polynomial code.
///
/// Purpose    operands of one digit are worked on in words; longer ones as chains, by the two-gcd sum and the
///            cross-cancelling product (Knuth, The Art of Computer Programming 2, 4.5.1; Henrici).
/// Ownership  operands are kept; *p may be an operand.
/// Modes      not lintmode. Operands are numb or rat; results too.
#include "quoly/quoly.h"
namespace tolvex {
void add_rats(const quolynode* n, const quolynode* m, quolyptr p, bool subtract);  ///< n + m, n - m
void mult_rats(const quolynode* n, const quolynode* m, quolyptr p);                ///< n m
void quot_rats(const quolynode* n, const quolynode* m, quolyptr p);                ///< m is not 0
}  // namespace tolvex
