#pragma once
/// quoly/quoly_eval.h: values of the language put in for polynomial variables.
///
/// Purpose    Horner's scheme in the arithmetic of rational functions: a power is formed only for a gap
///            above 1.
/// Ownership  operands are kept, an old *n is given back when the result is complete: *n may be the operand.
/// Modes      any. Negative exponents take the reciprocal of the value.
/// Raises     22 a reciprocal of 0; 210 a denominator that becomes 0.
#include "quoly/quoly.h"
namespace tolvex {
/// *n := q, which stands at `level`, with value[l] put in for the variable of every level l up to last; nil:
/// the variable stays.
void tot_eval_poly(const polynode* q, int32_t level, const quoly* value, int32_t last, quolyptr n);
/// *n := q with value[1..levels] put in for its variables; numerator and denominator are evaluated apart.
void spec_quoly_eval(const quolynode* q, quolyptr n, const quoly* value, int32_t levels);
/// *n := q with n2 put in for the variable of level target.
void horner_quoly_eval(const quolynode* q, quolyptr n, quoly n2, int32_t target);
}  // namespace tolvex
