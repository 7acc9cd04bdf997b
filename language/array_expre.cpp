#include "language/array_expre.h"

#include "language/array_ops.h"
#include "language/builtin_table.h"
#include "language/evaluator.h"
#include "language/stack_bound.h"
#include "language/substitute.h"
#include "language/tokens/look_ahead.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- sums and terms ------------------------------------------------------------------------------------

/// What an operand tells those to its right about their shape.
static void learn_shape(ArrReader& r, const ArrOperand& v) {
    if (!is_scalar(v)) r.known = v.facts;
}

static bool ends_term() {
    return tok_is(token, "and") || tok_is(token, "or") || tok_is(token, "then") || tok_is(token, "do") ||
           tok_is(token, "else") || tok_is(token, "fi") || tok_is(token, "od") || tok_is(token, "to") ||
           tok_is(token, "by");
}

/// The sign at the current token, '1' for a product without sign, 0 if the term ends here.
static char term_sign(const ArrOperand& left) {
    unsigned char c = tok_char(token);
    if (c == '*' || c == '/' || c == '\\' || c == '_') return static_cast<char>(c);
    if (c == '|') return bar_closes_here() ? 0 : '|';
    if (line_ends_here()) return 0;
    if (c == '(' && is_scalar(left)) return '1';
    return (is_lower(c) || is_upper(c)) && !ends_term() ? '1' : 0;
}

static void rest_of_arr_term(ArrReader& r, ArrOperand& v) {
    for (char sign = term_sign(v); sign != 0; sign = term_sign(v)) {
        if (sign != '1') next_token(r.inf, r.flag);
        learn_shape(r, v);
        poll_interrupt();
        ArrOperand right;
        if (!begin_operand(right)) return scalar_zero(v);
        arr_fact(r, right);
        combine_operands(v, right, sign == '1' ? '*' : sign);
        end_operand(right);
    }
}

static void arr_term(ArrReader& r, ArrOperand& v) {
    arr_fact(r, v);
    rest_of_arr_term(r, v);
}

static void rest_of_arr_sum(ArrReader& r, ArrOperand& v) {
    while (at_char('+') || (at_char('-') && !line_ends_here())) {
        bool minus = at_char('-');
        next_token(r.inf, r.flag);
        learn_shape(r, v);
        poll_interrupt();
        ArrOperand right;
        if (!begin_operand(right)) return scalar_zero(v);
        arr_term(r, right);
        add_operands(v, right, minus);
        end_operand(right);
    }
}

void arr_expre(ArrReader& r, ArrOperand& v) {
    arr_descr known = r.known;
    arr_term(r, v);
    rest_of_arr_sum(r, v);
    r.known = known;
}

// ---- postfix -------------------------------------------------------------------------------------------

static void arr_power(ArrReader& r, ArrOperand& v) {
    next_token(r.inf, r.flag);
    number exponent = {};
    get_exponent(r.inf, r.flag, &exponent, 1);
    matrix_power(v, &exponent);
    free_num(&exponent);
}

static void substitute_element(quolyptr value, void* context) {
    total_eval(*value, value, static_cast<const quoly*>(context), number_polys);
}

static void substitute_in_matrix(const quoly* values, void* context) {
    change_elements(*static_cast<ArrOperand*>(context), substitute_element, const_cast<quoly*>(values));
}

/// "#": of a scalar in front of a matrix the polynomial at that matrix, else values for variables.
static void arr_substitution(ArrReader& r, ArrOperand& v) {
    if (!is_scalar(v)) {
        with_replacements(r.inf, r.flag, substitute_in_matrix, &v);
        return;
    }
    if (!sign_follows(r.inf, r.flag, '[')) {
        get_evalquoly(r.inf, &v.n, r.flag);
        return;
    }
    next_token(r.inf, r.flag);
    ArrOperand matrix;
    if (!begin_operand(matrix)) return;
    arr_fact(r, matrix);
    quoly_at_matrix(matrix, v.n);
    swap_operands(v, matrix);
    end_operand(matrix);
}

void half_arr_fact(ArrReader& r, ArrOperand& v) {
    if (at_char('#')) {
        arr_substitution(r, v);
    } else if (is_scalar(v)) {
        half_fact(r.inf, &v.n, r.flag);
    } else if (at_char('^')) {
        arr_power(r, v);
    }
}

void half_arr_expre(ArrReader& r, ArrOperand& v) {
    half_arr_fact(r, v);
    rest_of_arr_term(r, v);
    rest_of_arr_sum(r, v);
}

// ---- factors -------------------------------------------------------------------------------------------

static void parenthesis_factor(ArrReader& r, ArrOperand& v) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    next_token(r.inf, r.flag);
    arr_expre(r, v);
    expect(r.inf, r.flag, ')', Err::close_paren_expected);
    eval_state.bar_closes = saved;
    half_arr_fact(r, v);
}

/// A sign or a name in front of the factor that it works on.
template <void (*operate)(ArrOperand& v)> static void prefixed_factor(ArrReader& r, ArrOperand& v) {
    next_token(r.inf, r.flag);
    arr_fact(r, v);
    operate(v);
}

static void integer_part(quolyptr value, void*) { quoly_great_int(value); }
static void absolute_value(quolyptr value, void*) { quoly_abs(*value); }

static void integer_part_factor(ArrReader& r, ArrOperand& v) {
    next_token(r.inf, r.flag);
    arr_fact(r, v);
    is_scalar(v) ? quoly_great_int(&v.n) : change_elements(v, integer_part, nullptr);
}

static void absolute_factor(ArrReader& r, ArrOperand& v) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = k_bar_closes;
    next_token(r.inf, r.flag);
    arr_expre(r, v);
    is_scalar(v) ? quoly_abs(v.n) : change_elements(v, absolute_value, nullptr);
    eval_state.bar_closes = saved;
    expect(r.inf, r.flag, '|', Err::close_bar_expected);
    half_arr_fact(r, v);
}

/// A factor of the scalar evaluator. "#" in front of "[" is left to the caller.
static void scalar_factor(ArrReader& r, ArrOperand& v) {
    Value value;
    value.own = nullptr;
    value.hold = {&value.own, &value.own, nullptr};
    if (at_char('*')) {
        read_factor(r.inf, &value, r.flag);
        take_value(&value, &v.n);
        release(&value);
        return;
    }
    bool open = primary(r.inf, &value.hold.at, &value.own, r.flag);
    if (value.hold.at == nullptr || *value.hold.at == nullptr)
        quoly_set(0, &v.n);
    else
        take_value(&value, &v.n);
    release(&value);
    if (open) half_arr_fact(r, v);
}

// ---- functions of matrices -----------------------------------------------------------------------------

/// Name, "(" and the first operand, a square or any dense matrix.
static bool open_function(ArrReader& r, ArrOperand& v, bool power) {
    next_token(r.inf, r.flag);
    if (!expect(r.inf, r.flag, '(', Err::builtin_open_paren)) {
        scalar_zero(v);
        return false;
    }
    arr_expre(r, v);
    if (is_scalar(v)) return fail_operand(v, power ? Err::power_not_square : Err::matrix_needed);
    if (is_sparse(v)) return fail_operand(v, Err::sparse_not_allowed);
    if (power && !is_square(v)) return fail_operand(v, Err::power_not_square);
    if (expect(r.inf, r.flag, ',', Err::builtin_comma)) return true;
    scalar_zero(v);
    return false;
}

/// Altmult([a], [b]): the product.
static void altmult_factor(ArrReader& r, ArrOperand& v) {
    if (!open_function(r, v, false)) return;
    ArrOperand right;
    if (!begin_operand(right)) return scalar_zero(v);
    arr_expre(r, right);
    if (is_scalar(right))
        fail_operand(v, Err::matrix_needed);
    else if (is_sparse(right))
        fail_operand(v, Err::sparse_not_allowed);
    else if (columns_of(v) != right.facts.rows)
        fail_operand(v, Err::shapes_differ);
    else
        combine_operands(v, right, '*');
    end_operand(right);
    expect(r.inf, r.flag, ')', Err::close_paren_expected);
}

/// Altpower([a], k): the power.
static void altpower_factor(ArrReader& r, ArrOperand& v) {
    if (!open_function(r, v, true)) return;
    number exponent = {};
    get_exponent(r.inf, r.flag, &exponent, 0);
    matrix_power(v, &exponent);
    free_num(&exponent);
    expect(r.inf, r.flag, ')', Err::close_paren_expected);
}

/// The third argument of MPowermod: a polynomial of positive degree. False after error 171, 188 or 288.
static bool read_modulus(ArrReader& r, quolyptr m) {
    next_token(r.inf, r.flag);
    old_expre(r.inf, m, r.flag);
    Err fault = (*m)->numb || (*m)->rat  ? Err::matrix_modulus_number
                : (*m)->denom != nullptr ? Err::matrix_modulus_fraction
                                         : Err{};
    if (fault != Err{}) error(fault);
    return fault == Err{};
}

/// MPowermod([a], k) and MPowermod([a], k, m): the power, its elements reduced modulo the polynomial m.
static void powermod_factor(ArrReader& r, ArrOperand& v) {
    if (!open_function(r, v, true)) return;
    number exponent = {};
    get_exponent(r.inf, r.flag, &exponent, 0);
    quoly m = nullptr;
    bool good = !at_char(',') || read_modulus(r, &m);
    if (!good)
        scalar_zero(v);
    else if (m == nullptr && !modularmode)
        fail_operand(v, Err::powermod_outside_modular);
    else if (m == nullptr)
        matrix_power(v, &exponent);
    else
        matpowermod(v, &exponent, m);
    free_quoly(&m);
    free_num(&exponent);
    expect(r.inf, r.flag, ')', Err::close_paren_expected);
}

// ---- the choice ----------------------------------------------------------------------------------------

using FactorReader = void (*)(ArrReader& r, ArrOperand& v);

static FactorReader reader_of_name() {
    if (tok_is(token, "Trans")) return prefixed_factor<transpose_operand>;
    if (tok_is(token, "Diag")) return prefixed_factor<extract_diagonal>;
    if (tok_is(token, "Adjoint")) return prefixed_factor<adjoint_operand>;
    if (tok_is(token, "Altmult")) return altmult_factor;
    if (tok_is(token, "Altpower")) return altpower_factor;
    if (tok_is(token, "MPowermod")) return powermod_factor;
    return scalar_factor;
}

static FactorReader reader_of_token() {
    switch (tok_char(token)) {
    case '(':
        return parenthesis_factor;
    case '-':
        return prefixed_factor<negate_operand>;
    case '$':
        return integer_part_factor;
    case '|':
        return absolute_factor;
    case '[':
        return bracket_factor;
    case '"':
        return prefixed_factor<transpose_operand>;
    case '~':
        return prefixed_factor<extract_diagonal>;
    case '\'':
        return string_factor;
    default:
        return is_upper(tok_char(token)) ? reader_of_name() : scalar_factor;
    }
}

void arr_fact(ArrReader& r, ArrOperand& v) {
    if (stack_is_low()) {
        fail_operand(v, Err::nested_too_deeply);
        return;
    }
    FactorReader reader = reader_of_token();
    bool bracket = reader == bracket_factor || reader == string_factor;
    arr_descr known = r.known;
    reader(r, v);
    r.known = known;
    if (bracket) half_arr_fact(r, v);
    if (is_scalar(v) && v.n == nullptr) quoly_set(0, &v.n);
}
}  // namespace tolvex
