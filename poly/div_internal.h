#pragma once
/// poly/div_internal.h: the pieces that the division files share.
///
/// Ownership  results are fresh trees of the caller; operands are only read.
#include "poly/poly.h"
namespace tolvex {
/// Room for exact division of one number by another: quotient into q (fresh or one of the operands).
/// False, q untouched, if d does not divide n; a residue divides by its inverse.
bool number_divides(const number* n, const number* d, imptr q);
/// A fresh n / d for a number d, or nil if some coefficient is no multiple of d.
poly divide_by_number(const polynode* n, const number* d);
/// The coefficient of one term as a polynomial of its own, copied.
poly coefficient_copy(const polynode* term);
/// Appends x^exp * c to the chain whose end is *tail; c is used up; a leaf stands bare at exponent 0.
/// Returns the new end.
polyptrr append_term(polyptrr tail, int32_t exp, poly c);
/// Takes the first term off the chain *r; nothing left: the leaf 0.
void drop_first_term(polyptrr r);
/// Exact division by the recursive schoolbook method, any ring; *q fresh. False, *q nil: not divisible.
bool divide_trees(poly n, poly m, polyptrr q, polypt pt);
/// What the division through flat arrays found.
enum class Packed { yes, no, declined };
/// Exact division through flat arrays of packed terms: yes with the fresh quotient in *q, no: not divisible,
/// declined: operands too small, too wide or of a ring that it does not serve. Neither operand is a number.
Packed divide_packed(const polynode* n, const polynode* m, polyptrr q);
}  // namespace tolvex
