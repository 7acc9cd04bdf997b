#pragma once
/// poly/poly_test.h: questions about the value of a polynomial.
///
/// Ownership  operands are only read.
/// Modes      any.
#include "poly/poly.h"
namespace tolvex {
boolean poly_iszero(const polynode* p);                    ///< the number 0
boolean node_iszero(const polynode* p);                    ///< a leaf 0, whatever its next
boolean poly_eq_1(const polynode* p);                      ///< the number 1
boolean poly_eq_m1(const polynode* p);                     ///< modular: modulus - 1; table field: 1
boolean poly_eq_pm1(const polynode* p);                    ///< one of both
boolean poly_equal(const polynode* p, const polynode* q);  ///< same tree
boolean poly_neg(const polynode* p, const polynode* q);    ///< p = -q
boolean monomial(const polynode* p);                       ///< a single term at each level
/// The sign bit of the number first met: negative leading term.
boolean neg_leading_term(const polynode* p);
}  // namespace tolvex
