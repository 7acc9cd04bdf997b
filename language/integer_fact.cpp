// Factors in machine words.

#include "language/builtin_table.h"
#include "language/functions.h"
#include "language/integer_arrays.h"
#include "language/other_rings.h"
#include "language/parse.h"
#include "language/stack_bound.h"
#include "numbers/decimal_io.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "numbers/random_num.h"
#include "numbers/ring_switch.h"
#include "poly/poly_vars.h"

#include <ctime>
namespace tolvex {
namespace {
// ---- values of the general evaluator -------------------------------------------------------------------

/// The word of a value that the general evaluator has left in *n, which is given back. It must be a word.
int32_t take_word(WordReader& r, quolyptr n) {
    int32_t word = 0;
    bool good = *n == nullptr || word_of_value(*n, &word);
    free_quoly(n);
    take_up(r);
    if (!good) word_error(r, Err::number_expected);
    return word;
}

// ---- names and numbers ---------------------------------------------------------------------------------

/// A name without a variable: an assignment makes it, as 0.
void unknown_name(WordReader& r, nameptr node) {
    if (word_at(r, ':')) {
        quoly zero = nullptr;
        varptr p = nullptr;
        quoly_set(0, &zero);
        insert_var(node->let, zero, &p);
        return;
    }
    give_back(r);
    bool control = tok_is(node->let, "for") || tok_is(node->let, "if") || tok_is(node->let, "while");
    error(control ? Err::control_in_wrong_place : Err::undefined_variable, tok_text(node->let));
}

/// What a variable has that is no word: an assignment may follow, anything else needs a number.
void no_word(WordReader& r, nameptr node, quolyptr at) {
    if (word_at(r, ':') && r.at->next != nullptr && tok_is(r.at->next->let, "=")) return;
    give_back(r);
    if (refuse_other_ring(at, node->let)) return;
    error(Err::number_expected, tok_text(node->let));
}

bool read_name(WordReader& r, int32_t* value) {
    nameptr node = r.at;
    *value = 0;
    word_step(r);
    if (number_polys > 0 && !node->compiled && its_a_polyname(node->let) != 0) {
        give_back(r);
        error(Err::number_expected, tok_text(node->let));
        return true;
    }
    if (word_at(r, '[')) {
        word_element(r, node, value);
        return true;
    }
    varptr p = var_at(node);
    if (p == nullptr)
        unknown_name(r, node);
    else if (p->val == nullptr || stands_in_other_ring(&p->val) || !word_of_value(p->val, value))
        no_word(r, node, &p->val);
    else if (int32_t word = loop_word(p->val); word != 0)
        *value = word;
    return true;
}

bool read_number(WordReader& r, int32_t* value) {
    if (r.at->tipe == word_literal) {
        *value = modularmode ? residue_of_int(r.at->word) : r.at->word;
        r.at = r.at->last;
        word_step(r);
        return true;
    }
    quoly n = nullptr;
    int32_t digits = 0;
    init_quoly_node(&n);
    give_back(r);
    new_readin(r.inf, n->ncoef, r.flag, &digits);
    *value = take_word(r, &n);
    return true;
}

// ---- signs ---------------------------------------------------------------------------------------------

bool read_parenthesis(WordReader& r, int32_t* value) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    word_step(r);
    *value = word_expression(r);
    word_expect(r, ')', Err::close_paren_expected);
    eval_state.bar_closes = saved;
    return true;
}

bool read_minus(WordReader& r, int32_t* value) {
    word_step(r);
    *value = word_negative(word_operand(r));
    return true;
}

/// "_x": a factor computed with ordinary integers.
bool read_suspended(WordReader& r, int32_t* value) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    word_step(r);
    *value = word_operand(r);
    restore_modular(was_modular);
    if (was_modular) *value = residue_of_int(*value);
    return true;
}

bool read_absolute_value(WordReader& r, int32_t* value) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 1;
    word_step(r);
    *value = word_expression(r, Err::integer_operand);
    if (*value < 0 && !modularmode) *value = wrapped(-int64_t{*value});
    eval_state.bar_closes = saved;
    word_expect(r, '|', Err::close_bar_expected);
    return true;
}

/// A statement as a factor.
bool read_statement(WordReader& r, int32_t* value) {
    quoly n = nullptr;
    give_back(r);
    parse(r.inf, &n, r.flag);
    *value = take_word(r, &n);
    return true;
}

/// An element that the general evaluator has found: at *at, or in *n, which is given back.
int32_t word_at_location(WordReader& r, quolyptr at, quolyptr n) {
    int32_t word = 0;
    bool good = at == nullptr || *at == nullptr || word_of_value(*at, &word);
    free_quoly(n);
    take_up(r);
    if (!good) word_error(r, Err::number_expected);
    return word;
}

/// "<": there is no previous value here; "<[" is the system array.
bool read_previous(WordReader& r, int32_t* value) {
    *value = 0;
    if (r.at->next == nullptr || !tok_is(r.at->next->let, "[")) {
        word_error(r, Err::previous_in_integer_mode);
        return true;
    }
    quoly n = nullptr;
    quolyptr at = &n;
    word_step(r);
    give_back(r);
    system_element(r.inf, r.flag, &at, &n);
    *value = word_at_location(r, at, &n);
    return true;
}

/// "%": an element of an array of arrays.
bool read_array_of_arrays(WordReader& r, int32_t* value) {
    quoly n = nullptr;
    quolyptr at = &n;
    give_back(r);
    element_of_place(r.inf, r.flag, &at, &n);
    *value = word_at_location(r, at, &n);
    return true;
}

// ---- functions -----------------------------------------------------------------------------------------

/// Two arguments in parentheses.
void two_arguments(WordReader& r, int32_t* a, int32_t* b) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    word_step(r);
    word_expect(r, '(', Err::builtin_open_paren);
    *a = word_expression(r, Err::integer_operand);
    word_expect(r, ',', Err::builtin_comma);
    *b = word_expression(r, Err::integer_operand);
    word_expect(r, ')', Err::close_paren_expected);
    eval_state.bar_closes = saved;
}

/// GCD(a, b); of residues it is that of the numbers 0 to modulus - 1 and the modulus, of field elements 1.
int32_t gcd_of_words(WordReader& r) {
    int32_t a = 0, b = 0;
    two_arguments(r, &a, &b);
    if (modularmode && finf) return a != 0 || b != 0;
    auto x = static_cast<uint32_t>(a < 0 ? -int64_t{a} : a),
         y = static_cast<uint32_t>(b < 0 ? -int64_t{b} : b);
    while (y != 0) {
        uint32_t rest = x % y;
        x = y;
        y = rest;
    }
    if (!modularmode) return static_cast<int32_t>(x);
    return x == 0 ? 0 : smallgcd(static_cast<int32_t>(x), modulus) % modulus;
}

int32_t binomial_of_words(WordReader& r) {
    int32_t a = 0, b = 0;
    boolean was_modular = 0;
    check_modular(&was_modular);
    two_arguments(r, &a, &b);
    restore_modular(was_modular);
    if (a < 0 || b < 0 || b > a) return 0;
    give_back(r);
    return modularmode ? mod_binom(a, b) : lint_binom(a, b);
}

/// Rand and Randint.
int32_t random_of_words(WordReader& r, bool clocked) {
    word_step(r);
    uint32_t word = static_cast<uint32_t>(rand_word());
    if (clocked) word = word * static_cast<uint32_t>(clock()) & 0x0fffffff;
    return modularmode ? residue_of_int(word) : static_cast<int32_t>(word);
}

/// A built-in function or a user's, evaluated as everywhere; its value must be a word.
int32_t general_function(WordReader& r) {
    quoly n = nullptr;
    nameptr node = r.at;
    give_back(r);
    if (!builtin_function(r.inf, &n, r.flag)) evaluate(r.inf, node->let, &n, r.flag);
    return take_word(r, &n);
}

bool read_function(WordReader& r, int32_t* value) {
    // ORDER BUILTIN_IDS
    constexpr int32_t k_binomial = 1, k_gcd = 26, k_random_clocked = 68, k_random = 70;
    int32_t id = r.at->let.address - k_builtin_address;
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    if (id == k_binomial)
        *value = binomial_of_words(r);
    else if (id == k_gcd)
        *value = gcd_of_words(r);
    else if (id == k_random || id == k_random_clocked)
        *value = random_of_words(r, id == k_random_clocked);
    else
        *value = general_function(r);
    eval_state.bar_closes = saved;
    return true;
}

bool no_factor(WordReader&, int32_t*) { return false; }

// ---- the table by first character ----------------------------------------------------------------------

constexpr FactorTable<bool (*)(WordReader&, int32_t*)> word_readers(no_factor,
                                                                    {{k_lower_letters, read_name},
                                                                     {k_upper_letters, read_function},
                                                                     {k_digits, read_number},
                                                                     {k_statement_signs, read_statement},
                                                                     {"(", read_parenthesis},
                                                                     {"-", read_minus},
                                                                     {"|", read_absolute_value},
                                                                     {"_", read_suspended},
                                                                     {"<", read_previous},
                                                                     {"%", read_array_of_arrays}});
}  // namespace

bool word_primary(WordReader& r, int32_t* value) { return word_readers.of[word_char(r)](r, value); }

// ---- postfix -------------------------------------------------------------------------------------------

/// base^e; a negative power is the inverse in modular arithmetic, else 1/base^|e| cut to an integer.
static int32_t inumber_power(const WordReader& r, int32_t base, int32_t e) {
    if (e < 0 && base == 0) {
        word_error(r, Err::division_by_zero);
        return 0;
    }
    if (modularmode) {
        give_back(r);
        if (e < 0) base = imod_inverse(base);
        int32_t power = 1;
        mod_number_power(base, e < 0 ? -int64_t{e} : e, &power);
        return power;
    }
    if (e < 0) return base == 1 ? 1 : base == -1 ? (e & 1 ? -1 : 1) : 0;
    uint32_t power = 1;
    for (auto square = static_cast<uint32_t>(base); e > 0; e >>= 1, square *= square)
        if (e & 1) power *= square;
    return static_cast<int32_t>(power);
}

static int32_t factorial_of_word(const WordReader& r, int32_t word) {
    constexpr int32_t k_greatest = 12;  // 13! exceeds a word
    if (!modularmode && word > k_greatest) {
        word_error(r, Err::factorial_word_range);
        return 0;
    }
    quoly n = nullptr;
    value_of_word(word, &n);
    give_back(r);
    factorial(n->ncoef);
    word_of_value(n, &word);
    free_quoly(&n);
    return word;
}

/// The exponent: a factor without postfix, in ordinary integers.
static int32_t read_exponent(WordReader& r) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    bool minus = false;
    for (; word_at(r, '-'); minus = !minus) word_step(r);
    int32_t e = 0;
    if (!word_primary(r, &e)) word_error(r, Err::integer_operand);
    restore_modular(was_modular);
    return minus ? wrapped(-int64_t{e}) : e;
}

bool word_factor(WordReader& r, int32_t* value) {
    if (stack_is_low()) {
        word_error(r, Err::nested_too_deeply);
        return true;
    }
    bool prefix = word_at(r, '-') || word_at(r, '_');
    if (!word_primary(r, value)) return false;
    if (prefix) return true;  // their operand has taken the postfix
    if (word_at(r, '^')) {
        word_step(r);
        int32_t e = read_exponent(r);
        *value = inumber_power(r, *value, e);
    } else if (word_at(r, '!') && r.at->let.name[1] == 0) {
        word_step(r);
        *value = factorial_of_word(r, *value);
    }
    return true;
}

int32_t word_operand(WordReader& r) {
    int32_t value = 0;
    if (!word_factor(r, &value)) word_error(r, Err::integer_operand);
    return value;
}
}  // namespace tolvex
