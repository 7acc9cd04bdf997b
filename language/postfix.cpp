#include "language/array_statement.h"
#include "language/evaluator.h"
#include "language/substitute.h"
#include "language/tokens/look_ahead.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "quoly/quoly_deriv.h"
#include "quoly/quoly_mult.h"
namespace tolvex {
/// *n := the value at *qp as one that may be changed.
static void make_private(quolyptr* qp, quolyptr n) {
    if (*qp == n && *n != nullptr) return;
    if (*qp != nullptr && **qp != nullptr)
        quoly_assign(**qp, n);
    else if (*n == nullptr)
        quoly_set(0, n);
    *qp = n;
}

void read_bare_factor(FILE* inf, Value* v, nameptr* flag) {
    bool minus = false;
    for (; at_char('-'); minus = !minus) next_token(inf, flag);
    if (at_char('*')) {
        read_factor(inf, v, flag);
    } else {
        v->own = nullptr;
        v->hold.own = v->hold.at = &v->own;
        primary(inf, &v->hold.at, &v->own, flag);
        make_private(&v->hold.at, &v->own);
    }
    if (minus) {
        quoly_makeneg(value_of(v), &v->own);
        v->hold.at = &v->own;
    }
}

void get_exponent(FILE* inf, nameptr* flag, imptr m, boolean one_factor) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    Value v;
    one_factor ? read_bare_factor(inf, &v, flag) : read_expression(inf, &v, flag);
    if (value_of(&v)->numb) {
        num_assign(value_of(&v)->ncoef, m);
    } else {
        error(Err::exponent_not_number, "^");
        setvalue(0, m);
    }
    release(&v);
    restore_modular(was_modular);
}

int32_t read_plain_word(FILE* inf, nameptr* flag, Err code, bool whole_expression) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    Value v;
    whole_expression ? read_expression(inf, &v, flag) : read_bare_factor(inf, &v, flag);
    int32_t word = 0;
    if (value_of(&v)->numb)
        word = convert_to_int(value_of(&v)->ncoef);
    else
        error(code);
    if (word == k_no_word && !lintmode && chain_sign(value_of(&v)->ncoef) > 0) word = INT32_MAX;
    release(&v);
    restore_modular(was_modular);
    return word;
}

static void apply_power(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    next_token(inf, flag);
    Value base;
    make_private(qp, n);
    base.hold = {n, n, nullptr};
    hold(&base);
    number exponent = {};
    get_exponent(inf, flag, &exponent, 1);
    let_go(&base);
    raise_to_power(n, &exponent);
    free_num(&exponent);
}

static void apply_factorial(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    make_private(qp, n);
    next_token(inf, flag);
    if ((*n)->numb)
        factorial((*n)->ncoef);
    else
        error(Err::factorial_of_non_number, "!");
}

static void apply_substitution(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    make_private(qp, n);
    if (sign_follows(inf, flag, '['))
        value_at_matrix(inf, n, flag);
    else
        get_evalquoly(inf, n, flag);
}

void postfix(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    if (at_char('^'))
        apply_power(inf, qp, n, flag);
    else if (at_char('!'))
        apply_factorial(inf, qp, n, flag);
    else if (at_char('#'))
        apply_substitution(inf, qp, n, flag);
    while (at_char('"')) {
        make_private(qp, n);
        quoly_differentiate(n, 1);
        next_token(inf, flag);
    }
}
}  // namespace tolvex
