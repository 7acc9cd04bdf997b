#pragma once
/// field/tower_inverse.h: inverses of field elements.
///
/// Ownership  operands are kept, results are fresh.
/// Modes      Z, or modular with a prime modulus or a table field.
/// Raises     poll_interrupt.
#include "poly/poly.h"
namespace tolvex {
/// *numer / *denom := the inverse of the field element a, which is no number, in the variables from pt on
/// (levels above the field are pads); denom > 0 has no factor in common with numer; in modular mode it is 1.
/// Fresh. False, nothing made: a is a zero divisor; the tower is no field then. Over Q: an inverse modulo a
/// word prime, lifted by Newton's iteration until the numbers are found; the product is the proof. The cost
/// is that of a few products of elements with numbers of the length of the result.
bool tower_invert(poly a, polypt pt, polyptrr numer, polyptrr denom);
}  // namespace tolvex
