#pragma once
/// quoly/quoly_fraction.h: the product of two fractions, for products and quotients.
///
/// Ownership  the parts are only read; the results are fresh.
#include "quoly/quoly_internal.h"
namespace tolvex {
/// numer / denom, borrowed; denom nil: 1.
struct Fraction {
    poly numer, denom;
};
/// The product, cancelled across: of two fractions in lowest terms it is in lowest terms. numerators are not
/// 0. *denom may come out nil. Signs, leading numbers and monomials are as they fall.
void fraction_product(Fraction a, Fraction b, poly* numer, poly* denom);
}  // namespace tolvex
