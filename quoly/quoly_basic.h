#pragma once
/// quoly/quoly_basic.h: making, copying, comparing quolys.
#include "quoly/quoly.h"
namespace tolvex {
void quoly_set(int32_t n, quolyptr q);
void scalar_to_quoly(const number* n, quolyptr q);    ///< a copy
void spec_scalar_quoly(const number* n, quolyptr q);  ///< from a chain, in any mode
void quoly_assign(const quolynode* p, quolyptr q);    ///< deep copy
/// The same with safe points: p stays in place while statements run (copy_value of language/evaluator.h).
void quoly_assign_polled(const quolynode* p, quolyptr q);
void quoly_inplace(quoly q);  ///< negates
void quoly_makeneg(const quolynode* p, quolyptr q);
void quoly_abs(quoly q);
boolean quoly_equal(const quolynode* p,
                    const quolynode* q);  ///< equality of values (cross products where needed)
boolean quoly_negtive(const quolynode* p, const quolynode* q);
boolean quoly_iszero(const quolynode* q);
void quoly_to_poly(const quolynode* q, polyptrr p);    ///< a numb as a constant polynomial, copied
void quoly_consume(quolyptr q, polyptrr p);            ///< the same, q used up
void polynum_to_quoly(quoly q);                        ///< numer is a number, denom nil: becomes numb
void poly_to_quoly(polyptrr p, quolyptr q);            ///< q := the polynomial, p used up
int32_t big_quoly_convert_to_int(const quolynode* q);  ///< word of a numb; k_no_word
}  // namespace tolvex
