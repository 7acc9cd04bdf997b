#pragma once
/// poly/poly_shape.h: degrees, levels, counts of terms.
///
/// Ownership  operands are only read; what is returned stays part of them.
#include "poly/poly.h"
namespace tolvex {
poly leading_coef(poly p);                          ///< the leaf reached by first coefficients
int32_t real_degree(const polynode* p, int32_t n);  ///< exp of the first term at level n, along first terms
int16_t poly_level(const polynode* p);              ///< level of the first real variable; 0 for a number
int16_t poly_depth(const polynode* p);              ///< the same, 16384 for a number
int32_t poly_length(const polynode* p);             ///< terms of the top chain
/// Terms of the top chain, negated when the spread of exponents exceeds 6 times the count; *last: lowest
/// exponent; *flag stays true only if all coefficients are numbers in modularmode and the lowest exponent is
/// not negative.
int32_t exp_poly_length(const polynode* p, int32_t* last, boolean* flag);
poly lastnode(poly p);
poly lastnum(poly p);                   ///< the last node, or its coefficient if it is a term
int32_t lastexp(const polynode* p);     ///< exp of the lowest term at the deepest level along last terms
int32_t p_size_of(const polynode* p);   ///< top bit index of a leaf's magnitude
int64_t poly_terms(const polynode* p);  ///< leaves of the whole tree
bool has_negative_exponent(const polynode* p);
}  // namespace tolvex
