#pragma once
/// quoly/quoly_fraction.h: the product of two fractions, for products and quotients.
///
/// Ownership  the parts are only read. Of a fraction that is lent a part may become a result as it
///            stands: its owner finds it by the address and lets it go.
#include "quoly/quoly_internal.h"
namespace tolvex {
/// numer / denom, borrowed; denom nil: 1.
struct Fraction {
    poly numer, denom;
    bool lent = false;
};
/// The product, cancelled across: of two fractions in lowest terms it is in lowest terms. numerators are not
/// 0. *denom may come out nil. Signs, leading numbers and monomials are as they fall.
void fraction_product(Fraction a, Fraction b, poly* numer, poly* denom);
/// Lets go the parts of q, which was lent, that have become a result.
void let_parts_go(quoly q, const polynode* numer, const polynode* denom);
}  // namespace tolvex
