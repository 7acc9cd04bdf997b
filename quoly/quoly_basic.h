#pragma once
/// quoly/quoly_basic.h: making, copying, comparing quolys.
///
/// Ownership  what *q held is given back when its new value is complete; operands are kept unless it is said.
#include "quoly/quoly.h"
namespace tolvex {
void quoly_set(int32_t n, quolyptr q);
void scalar_to_quoly(const number* n, quolyptr q);  ///< a copy
void quoly_assign(const quolynode* p, quolyptr q);  ///< deep copy
/// The same with safe points: p stays in place while statements run (copy_value of language/evaluator.h).
void quoly_assign_polled(const quolynode* p, quolyptr q);
void quoly_inplace(quoly q);  ///< negates
void quoly_makeneg(const quolynode* p, quolyptr q);
void quoly_abs(quoly q);
/// Equality of values, by cross products where needed.
boolean quoly_equal(const quolynode* p, const quolynode* q);
boolean quoly_negtive(const quolynode* p, const quolynode* q);
boolean quoly_iszero(const quolynode* q);
void quoly_consume(quolyptr q, polyptrr p);  ///< p := the numerator; a numb as a constant; q used up
void polynum_to_quoly(quoly q);              ///< numer is a number, denom nil: becomes numb
void poly_to_quoly(polyptrr p, quolyptr q);  ///< q := the polynomial, p used up
int32_t big_quoly_convert_to_int(const quolynode* q);  ///< word of a numb; k_no_word
}  // namespace tolvex
