#include "language/array_elements.h"
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/functions.h"
#include "language/locations.h"
#include "language/other_rings.h"
#include "language/parse.h"
#include "language/symbols.h"
#include "language/tokens/look_ahead.h"
#include "numbers/decimal_io.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "poly/poly_basic.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_quot.h"

#include <cstdio>
namespace tolvex {
namespace {
/// What a primary works on: the stream, the cursor, where the value goes and where it is found.
struct Reader {
    FILE* inf;
    quolyptr n;
    nameptr* flag;
    quolyptr at;  // n, or the location of a variable; nil: none
};

// ---- names and numbers ---------------------------------------------------------------------------------

void polynomial_variable(Reader& r, int32_t level) {
    poly p = nullptr;
    base_poly(&p, level);
    poly_to_quoly(&p, r.n);
    next_token(r.inf, r.flag);
}

/// A name that no table knows. In front of ":" it becomes a variable with the value 0.
void unknown_name(Reader& r, tokentipe& name) {
    quoly zero = nullptr;
    quoly_set(0, &zero);
    if (at_char(':')) {
        varptr p = nullptr;
        insert_var(name, zero, &p);
        r.at = &p->val;
        return;
    }
    *r.n = zero;
    r.at = r.n;
    if (tok_is(name, "quit"))
        fputs(" The quit command is &q.\n", stdout);
    else if (tok_is(name, "else") || tok_is(name, "fi") || tok_is(name, "od"))
        error(Err::closing_word_misplaced, tok_text(name));  // there is nothing that it could end
    else
        error(Err::undefined_variable, tok_text(name));
}

/// for, if, while, unless a variable has the name: a control statement in the place of a value.
bool starts_control(tokentipe& name) {
    unsigned char c = tok_char(name);
    if (c != 'f' && c != 'i' && c != 'w') return false;
    return (tok_is(name, "for") || tok_is(name, "if") || tok_is(name, "while")) && find_var(name) == nullptr;
}

/// A name whose value stands in another ring: it may get a new one, 0 until that is known.
void name_of_other_ring(Reader& r, tokentipe& name) {
    if (at_char(':') && sign_follows(r.inf, r.flag, '=')) {
        if (*r.at == nullptr) quoly_set(0, r.at);
        return;
    }
    refuse_other_ring(r.at, name);
    quoly_set(0, r.n);
    r.at = r.n;
}

/// A variable of a loop is its word where modular arithmetic is suspended, unless it is assigned to.
void take_loop_word(Reader& r) {
    int32_t word = loop_word(*r.at);
    if (word == 0 || at_char(':')) return;
    quoly_set(word, r.n);
    r.at = r.n;
}

/// A name that Compile has bound.
bool read_bound_name(Reader& r, varptr p) {
    tokentipe name = token;
    next_token(r.inf, r.flag);
    r.at = &p->val;
    if (stands_in_other_ring(r.at))
        name_of_other_ring(r, name);
    else
        take_loop_word(r);
    return true;
}

/// An element x[k] that Compile has bound, the tokens of its subscript being passed over. False if it has
/// gone.
bool read_bound_element(Reader& r, nameptr node) {
    const ElementTarget& target = node->bound->element;
    quolyptr at = location_of(target);
    if (at == nullptr || *at == nullptr) return false;
    *r.flag = end_of_bound_element(node);
    next_token(r.inf, r.flag);
    r.at = at;
    element_read = {at, target};
    return true;
}

bool read_name(Reader& r) {
    nameptr node = *r.flag;
    if (node != nullptr && node->compiled) {
        if (node->bound->var != nullptr) return read_bound_name(r, node->bound->var);
        if (is_bound_element(node) && read_bound_element(r, node)) return true;
    }
    int32_t level = number_polys > 0 ? its_a_polyname(token) : 0;
    if (level != 0) {
        polynomial_variable(r, level);
        return true;
    }
    tokentipe name = token;
    next_token(r.inf, r.flag);
    if (starts_control(name)) {
        call_sys_func(name, r.inf, r.n, r.flag);
        return true;
    }
    if (at_char('[')) {
        new_arretrieve(r.inf, name, r.flag, &r.at, r.n);
        return true;
    }
    retrieve(name, &r.at, r.n, r.inf, r.flag);
    if (r.at == nullptr) {
        unknown_name(r, name);
    } else if (stands_in_other_ring(r.at)) {
        name_of_other_ring(r, name);
    } else {
        take_loop_word(r);
    }
    return true;
}

bool read_number(Reader& r) {
    nameptr node = *r.flag;
    if (node != nullptr && node->tipe == word_literal) {
        word_value(node->word, r.n);
        *r.flag = node->last;
        next_token(r.inf, r.flag);
    } else {
        int32_t digits = 0;
        init_quoly_node(r.n);
        lines_close = eval_state.bar_closes & k_line_closes;
        new_readin(r.inf, (*r.n)->ncoef, r.flag, &digits);
    }
    if (at_char('.')) {
        quoly fraction = nullptr;
        get_decimal_part(&fraction, r.inf, r.flag);
        best_quoly_add(r.n, fraction);
    }
    return true;
}

bool read_fraction(Reader& r) {
    get_decimal_part(r.n, r.inf, r.flag);
    return true;
}

bool read_function(Reader& r) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    nameptr node = *r.flag;
    if (!builtin_function(r.inf, r.n, r.flag)) {
        tokentipe typed;
        if (node == nullptr) typed = token;
        evaluate(r.inf, node != nullptr ? node->let : typed, r.n, r.flag);
    }
    eval_state.bar_closes = saved;
    return true;
}

/// 'c': the code of the character.
bool read_character(Reader& r) {
    boolean eoln = 0;
    dumbscanner(r.inf, &token, r.flag, &eoln);
    int32_t code = tok_char(token);
    quoly_set(modularmode ? residue_of_int(code) : code, r.n);
    next_token(r.inf, r.flag);
    bool cut_off = *r.flag == nullptr && at_char(';') && at_end(r.inf);
    expect(r.inf, r.flag, '\'', cut_off ? Err::end_of_file_inside : Err::unterminated_character);
    return true;
}

// ---- signs ---------------------------------------------------------------------------------------------

bool read_parenthesis(Reader& r) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    next_token(r.inf, r.flag);
    old_expre(r.inf, r.n, r.flag);
    expect(r.inf, r.flag, ')', Err::close_paren_expected);
    eval_state.bar_closes = saved;
    return true;
}

bool read_minus(Reader& r) {
    next_token(r.inf, r.flag);
    Value v;
    read_factor(r.inf, &v, r.flag);
    if (is_private(&v)) {
        quoly_inplace(v.own);
        take_value(&v, r.n);
    } else {
        copy_value(v.hold.at, r.n);
        quoly_inplace(*r.n);
    }
    return false;
}

bool read_integer_part(Reader& r) {
    next_token(r.inf, r.flag);
    old_fact(r.inf, r.n, r.flag);
    quoly_great_int(r.n);
    return false;
}

bool read_absolute_value(Reader& r) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 1;
    next_token(r.inf, r.flag);
    old_expre(r.inf, r.n, r.flag);
    quoly_abs(*r.n);
    eval_state.bar_closes = saved;
    expect(r.inf, r.flag, '|', Err::close_bar_expected);
    return true;
}

/// "_x": a factor computed with ordinary integers in the middle of modular arithmetic.
bool read_suspended(Reader& r) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    next_token(r.inf, r.flag);
    old_fact(r.inf, r.n, r.flag);
    restore_modular(was_modular);
    if (was_modular) reduce_words(r.n);
    return false;
}

/// A statement as a factor.
bool read_statement(Reader& r) {
    parse(r.inf, r.n, r.flag);
    if (*r.n == nullptr) quoly_set(0, r.n);
    return true;
}

/// "<": the value of the previous statement; "<[" the system array, "<F" the stored control statement.
bool read_previous(Reader& r) {
    next_token(r.inf, r.flag);
    if (at_char('['))
        system_element(r.inf, r.flag, &r.at, r.n);
    else if (tok_is(token, "F"))
        run_sys_func(r.inf, r.n, r.flag);
    else if (prevnum != nullptr)
        r.at = &prevnum;
    return true;
}

bool read_array_of_arrays(Reader& r) {
    element_of_place(r.inf, r.flag, &r.at, r.n);
    return true;
}

bool no_factor(Reader&) {
    error(Err::bad_factor);
    return true;
}

// ---- the table by first character ----------------------------------------------------------------------

constexpr FactorTable<bool (*)(Reader&)> primaries(no_factor, {{k_lower_letters, read_name},
                                                               {k_upper_letters, read_function},
                                                               {k_digits, read_number},
                                                               {k_statement_signs, read_statement},
                                                               {".", read_fraction},
                                                               {"'", read_character},
                                                               {"(", read_parenthesis},
                                                               {"-", read_minus},
                                                               {"$", read_integer_part},
                                                               {"|", read_absolute_value},
                                                               {"_", read_suspended},
                                                               {"<", read_previous},
                                                               {"%", read_array_of_arrays}});
}  // namespace

void reduce_words(quolyptr n) {
    Err fault = quoly_reduce_words(n);
    if (fault != Err{}) error(fault);
}

bool primary(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    Reader r = {inf, n, flag, n};
    bool open = primaries.of[tok_char(token)](r);
    *qp = r.at;
    return open;
}
}  // namespace tolvex
