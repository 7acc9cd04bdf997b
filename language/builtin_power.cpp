// Powermod: powers with exponents of any length, reduced on the way.

#include "language/builtin_table.h"
#include "language/copy_tokens.h"
#include "language/statements.h"
#include "language/tokens/token_list.h"
#include "numbers/num_assign.h"
#include "numbers/num_sign.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "poly/poly_shape.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "quoly/quoly_scalar.h"
#include "storage/interrupt.h"

#include <cstdio>
#include <cstring>
namespace tolvex {
// ---- the exponent --------------------------------------------------------------------------------------

/// The value of the expression at the current token as a chain, in every mode. False if it is no number.
static bool exponent_here(BuiltinCall& call, imptr e) {
    Value v;
    get_the_data(call, &v);
    const quolynode* q = value_of(&v);
    if (q->numb && lintmode)
        special_set_2(q->ncoef->lint, 1, e);
    else if (q->numb)
        spec_num_assign(q->ncoef, e);
    bool number = q->numb;
    drop_data(&v);
    return number;
}

/// A token of one character.
static void append_character(TokenCopy& c, char character) {
    const tokentipe current = token;
    tok_set_char(token, static_cast<unsigned char>(character));
    append_token(c);
    token = current;
}

/// A number in parentheses.
static void append_word(TokenCopy& c, int32_t word) {
    char digits[16];
    snprintf(digits, sizeof digits, "(%d)", word);
    for (const char* at = digits; *at != 0; at++) append_character(c, *at);
}

/// The operand at the current token, read with modular arithmetic suspended. False if it is no number.
static bool append_operand(BuiltinCall& call, TokenCopy& c) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    Value v;
    read_bare_factor(call.inf, &v, call.flag);
    if (at_char('#') || at_char('"')) postfix(call.inf, &v.hold.at, &v.own, call.flag);
    bool number = value_of(&v)->numb != 0;
    append_word(c, number ? value_of(&v)->ncoef->lint : 0);
    release(&v);
    restore_modular(was_modular);
    return number;
}

/// True for a token that stays as it is. A bar behind an operand is the remainder sign, any other begins one.
static bool is_arithmetic(bool behind_operand) {
    return is_digit(tok_char(token)) || strchr("+-*/\\^!()", tok_char(token)) != nullptr ||
           (at_char('|') && behind_operand);
}

/// Copies the argument up to its "," or ")": digits and signs as they stand, what else there is as its value.
/// False if an operand is no number.
static bool copy_exponent(BuiltinCall& call, TokenCopy& c) {
    bool numbers = true, behind_operand = false;
    for (int32_t depth = 0;;) {
        if (tok_is(token, k_end_token) || at_char(';') || (depth == 0 && (at_char(',') || at_char(')'))))
            return numbers;
        if (at_char('(')) depth++;
        if (at_char(')')) depth--;
        if (is_arithmetic(behind_operand)) {
            behind_operand = is_digit(tok_char(token)) || at_char(')') || at_char('!');
            copy_token(c);
        } else {
            if (!append_operand(call, c)) numbers = false;
            behind_operand = true;
        }
    }
}

/// The copied argument, worked out over the integers: words are too short for long exponents.
static bool copied_exponent(const BuiltinCall& call, nameptr tokens, imptr e) {
    nameptr cursor;
    start_list(tokens, &cursor);
    BuiltinCall inner = {call.inf, call.n, &cursor, call.id};
    RingState ring = ring_save();
    ring_enter_integers();
    bool number = exponent_here(inner, e);
    ring_restore(ring);
    return number;
}

/// Reads the exponent as a chain. False if it is no number.
static bool read_exponent(BuiltinCall& call, imptr e) {
    if (!lintmode) return exponent_here(call, e);
    TokenCopy copy = {call.inf, call.flag, nullptr, nullptr};
    copy.link = &copy.first;
    Unfinished u;
    begin_unfinished(
        u, [](void* what) { freename(static_cast<nameptr*>(what)); }, &copy.first);
    bool number = copy_exponent(call, copy);
    const tokentipe last = token;
    nameptr outer = currentchar;
    append_token(copy);
    tok_set_end(token);
    append_token(copy);
    if (number) number = copied_exponent(call, copy.first, e);
    token = last;
    currentchar = outer;
    end_unfinished(u);
    freename(&copy.first);
    return number;
}

// ---- the power -----------------------------------------------------------------------------------------

namespace {
/// The bits of a chain from the top down.
struct BitReader {
    const numnode* digit;
    int32_t bit;
};
}  // namespace

/// The next bit, -1 after the last one.
static int32_t next_bit(BitReader* r) {
    if (r->bit < 0) {
        if (r->digit->next == nullptr) return -1;
        r->digit = r->digit->next;
        r->bit = k_digit_bits - 1;
    }
    return (r->digit->value >> r->bit--) & 1;
}

static void reduce_power(quolyptr x, quoly m) {
    if (m != nullptr) quoly_mod_or_div(*x, m, x, '|');
}

/// *n := *n^e, or *n^e | m if m is not nil, by squaring from the top bit, reduced after every step. e is a
/// chain that is not negative.
static void power_by_squaring(quolyptr n, const number* e, quoly m) {
    quoly base = *n, result = nullptr;
    quoly_set(1, &result);
    *n = nullptr;
    reduce_power(&base, m);
    reduce_power(&result, m);
    BitReader reader = {e->head, k_digit_bits - 1};
    bool begun = false;
    for (int32_t bit = next_bit(&reader); bit >= 0; bit = next_bit(&reader)) {
        poll_interrupt();
        if (begun) {
            quoly_mult(result, result, &result);
            reduce_power(&result, m);
        }
        if (bit == 1) {
            fast_quoly_mult(&result, base);
            reduce_power(&result, m);
            begun = true;
        }
    }
    free_quoly(&base);
    *n = result;
}

/// True if the powers of q stay as small as q is: a residue, or an element of a tower over residues.
static bool in_finite_field(const quolynode* q) {
    if (q->numb) return true;
    return field_depth > 0 && q->denom == nullptr && poly_level(q->numer) >= field_depth;
}

/// *n := *n^e. In word modes an exponent that is no word is too long for a polynomial.
static void plain_power(quolyptr n, const number* e) {
    if (!lintmode) {
        raise_to_power(n, e);
        return;
    }
    boolean words = lintmode;
    lintmode = 0;
    int32_t word = convert_to_int(e);
    lintmode = words;
    if (word != k_no_word) {
        number as_word = {};
        as_word.lint = word;
        raise_to_power(n, &as_word);
    } else if (in_finite_field(*n)) {
        power_by_squaring(n, e, nullptr);
    } else {
        error(Err::exponent_too_long);
        quoly_set(0, n);
    }
}

static bool has_denominator(const quolynode* q) { return !q->numb && q->denom != nullptr && !q->rat; }

/// Powermod(a, e), Powermod(a, e, m): a^e, or its remainder by m. e may have any length.
void builtin_Powermod(BuiltinCall& call) {
    open_call(call);
    Value a, m;
    number e = {};
    get_the_data(call, &a);
    need_comma(call);
    bool number = read_exponent(call, &e);
    bool reduced = next_argument(call);
    if (reduced) get_the_data(call, &m);
    close_call(call);
    take_value(&a, call.n);
    if (!number) {
        error(Err::number_expected);
    } else if (e.head->value < 0) {
        printf("*** bad exponent (negative): \n");
        error(Err::negative_power);
    } else if (!reduced) {
        plain_power(call.n, &e);
    } else if (has_denominator(value_of(&m)) || (has_denominator(*call.n) && !value_of(&m)->numb)) {
        error(Err::rational_function_argument);
    } else if (quoly_iszero(value_of(&m))) {
        error(Err::division_by_zero);
    } else {
        power_by_squaring(call.n, &e, value_of(&m));
    }
    special_free(&e);
    if (reduced) drop_data(&m);
    drop_data(&a);
}
}  // namespace tolvex
