// Built-in functions of numbers: constants of the session, primes, roots, binomials, random values.
#include "language/builtin_table.h"
#include "numbers/decimal.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_root.h"
#include "numbers/num_sign.h"
#include "numbers/primes.h"
#include "numbers/random_num.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "quoly/quoly_scalar.h"
#include "storage/interrupt.h"

#include <cstdio>
namespace tolvex {
// ---- constants -----------------------------------------------------------------------------------------

static void constant(BuiltinCall& call, int64_t value) {
    next_token(call.inf, call.flag);
    return_word(call, value);
}

void builtin_Modmode(BuiltinCall& call) { constant(call, modularmode); }
void builtin_Modulus(BuiltinCall& call) { constant(call, modulus); }
void builtin_Numvars(BuiltinCall& call) { constant(call, number_polys); }
void builtin_True(BuiltinCall& call) { constant(call, 1); }

// ---- what a value is -----------------------------------------------------------------------------------

void builtin_Numb(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    boolean yes = value_of(&v)->numb;
    drop_data(&v);
    return_word(call, yes);
}

void builtin_Rat(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    boolean yes = value_of(&v)->rat && !lintmode;
    drop_data(&v);
    return_word(call, yes);
}

/// Char and Ord: the value as a word.
void builtin_Char(BuiltinCall& call) {
    Value v;
    open_call(call);
    get_the_data(call, &v);
    int32_t word = 0;
    if (value_of(&v)->numb)
        word = lintmode ? value_of(&v)->ncoef->lint : convert_to_int(value_of(&v)->ncoef);
    else
        error(Err::char_needs_number);
    drop_data(&v);
    if (word == k_no_word && !lintmode) {
        error(Err::number_expected);
        word = 0;
    }
    close_call(call);
    return_word(call, word);
}

// ---- primes --------------------------------------------------------------------------------------------

/// 1 for a prime, the smallest factor otherwise, 0 below 2.
static int64_t prime_or_factor(const number* x) {
    if (lintmode) return x->lint < 2 ? 0 : long_is_prime(x->lint);
    if (chain_sign(x) <= 0 || is_longint(x, 1)) return 0;
    const numnode* d = x->head;
    switch (x->size) {
    case 1:
        return long_is_prime(d->value);
    case 2:
        return long_is_prime((static_cast<int64_t>(d->value) << k_digit_bits) + d->next->value);
    case 3:
        if (d->value < 128) return longg_is_prime(d->value, d->next->value, d->next->next->value);
        [[fallthrough]];
    default:
        error(Err::prime_argument_too_long);
        return 0;
    }
}

void builtin_Isprime(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    int64_t answer = 0;
    if (value_of(&v)->numb)
        answer = prime_or_factor(value_of(&v)->ncoef);
    else
        error(Err::number_expected);
    drop_data(&v);
    return_word(call, answer);
}

/// The k-th prime, k from 1 to 1229.
void builtin_Prime(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    take_argument(call, &v);
    if ((*call.n)->numb) {
        nth_prime(call.n);
        return;
    }
    error(Err::number_expected);
    set_zero(call.n);
}

// ---- roots, binomials, random values -------------------------------------------------------------------

/// The square root of a factor: Sqrt 144 as well as Sqrt(144).
void builtin_Sqrt(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    Value v;
    read_bare_factor(call.inf, &v, call.flag);
    take_value(&v, call.n);
    if ((*call.n)->rat && !lintmode) quoly_great_int(call.n);
    if ((*call.n)->numb)
        square_root((*call.n)->ncoef);
    else
        error(Err::sqrt_of_non_number, "Sqrt");
}

static int64_t binomial_of_words(int32_t a, int32_t b, imptr value) {
    if (modularmode) return mod_binom(a, b);
    if (lintmode) return lint_binom(a, b);
    rat_binom(a, b, value);
    return 0;
}

/// A number argument of Bin read as an integer; what has more than a word is told by *huge.
static int32_t binomial_argument(BuiltinCall& call, bool* huge, bool* negative) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    Value v;
    get_the_data(call, &v);
    int32_t word = 0;
    if (value_of(&v)->numb) {
        word = convert_to_int(value_of(&v)->ncoef);
        *negative = lintmode ? word < 0 : chain_sign(value_of(&v)->ncoef) < 0;
        *huge = word == k_no_word;
    } else {
        error(Err::number_expected);
    }
    drop_data(&v);
    restore_modular(was_modular);
    return word;
}

void builtin_Bin(BuiltinCall& call) {
    bool huge_a = false, huge_b = false, neg_a = false, neg_b = false;
    open_call(call);
    int32_t a = binomial_argument(call, &huge_a, &neg_a);
    need_comma(call);
    int32_t b = binomial_argument(call, &huge_b, &neg_b);
    close_call(call);
    if (neg_a || neg_b || (huge_b && !huge_a) || (!huge_a && b > a)) {
        return_word(call, 0);
        return;
    }
    if (huge_a || huge_b) {
        error(Err::binomial_too_large);
        return_word(call, 0);
        return;
    }
    init_quoly_node(call.n);
    int64_t word = binomial_of_words(a, b, (*call.n)->ncoef);
    if (lintmode) (*call.n)->ncoef->lint = static_cast<int32_t>(word);
}

/// Rand and Randint: a random word over the denominator that &_r sets.
void random_value(bool clocked, quolyptr n) {
    free_quoly(n);
    init_quoly_node(n);
    randomize(clocked, (*n)->ncoef);
    if (rand_denom_n == 1) return;
    quoly denominator = nullptr;
    init_quoly_node(&denominator);
    setvalue_any(modularmode ? residue_of_int(rand_denom_n) : rand_denom_n, denominator->ncoef);
    fast_quoly_quot(n, denominator, 0);
    free_quoly(&denominator);
}

void builtin_Rand(BuiltinCall& call) {
    bool clocked = call.id == 68;
    next_token(call.inf, call.flag);
    random_value(clocked, call.n);
}

// ---- sizes ---------------------------------------------------------------------------------------------

/// *largest := the coefficient of greatest magnitude below p, if it exceeds it.
static void largest_coefficient(const polynode* p, const number** largest) {
    for (; p != nullptr; p = p->next) {
        if (!p->numb)
            largest_coefficient(p->pcoef, largest);
        else if (*largest == nullptr || abs_larger(p->ncoef, *largest))
            *largest = p->ncoef;
    }
}

static int64_t decimal_digits(const number* x) {
    if (lintmode) {
        int64_t v = modularmode ? shown_residue(x->lint) : x->lint;
        int64_t digits = 1;
        for (v = v < 0 ? -v : v; v >= 10; v /= 10) digits++;
        return digits;
    }
    number groups = {};
    make_base_10(x, &groups);
    int64_t digits = 8 * static_cast<int64_t>(groups.size - 1);
    int32_t top = groups.head->value < 0 ? -groups.head->value : groups.head->value;
    for (digits++; top >= 10; top /= 10) digits++;
    special_free(&groups);
    return digits;
}

/// Decimal digits of the largest coefficient.
void builtin_Log(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    const quolynode* q = value_of(&v);
    const number* largest = nullptr;
    if (q->numb) {
        largest = q->ncoef;
    } else {
        largest_coefficient(q->numer, &largest);
        largest_coefficient(q->denom, &largest);
    }
    int64_t digits = decimal_digits(largest);
    drop_data(&v);
    return_word(call, digits);
}
}  // namespace tolvex
