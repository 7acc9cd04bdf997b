#pragma once
/// gcd/num_content.h: gcds of numeric coefficients.
///
/// Purpose    the integer content of a polynomial, without the recursion over contents in variables.
/// Ownership  operands are only read.
#include "poly/poly.h"
namespace tolvex {
/// Gcd of all numeric coefficients (chains); stops early at 1.
void find_gcdcoefs(const polynode* p, imptr com);
void gcd_coefs(const polynode* q, polyptrr r);  ///< the same as a constant polynomial; modular: 1
}  // namespace tolvex
