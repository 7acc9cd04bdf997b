// Sums, products and assignments in machine words.

#include "language/integer_arrays.h"
#include "language/other_rings.h"
#include "language/small_words.h"
#include "numbers/num_assign.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- words and values ----------------------------------------------------------------------------------

bool word_of_value(const quolynode* q, int32_t* word) {
    if (!q->numb) return false;
    const number* x = q->ncoef;
    if (lintmode) {
        *word = x->lint;
        return true;
    }
    if (x->size == 1) {
        *word = x->head->value;
        return true;
    }
    if (x->size != 2) return false;
    int64_t v = (int64_t{x->head->value} << k_digit_bits) + x->tail->value;
    *word = static_cast<int32_t>(v);
    return *word == v;
}

void value_of_word(int32_t word, quolyptr n) {
    if (!lintmode) {
        value_of_long(word, n);
        return;
    }
    if (*n == nullptr || !(*n)->numb) {
        free_quoly(n);
        init_quoly_node(n);
    }
    (*n)->ncoef->lint = word;
}

void write_word(nameptr node, int32_t word) {
    varptr p = var_at(node);
    if (p != nullptr && away_list == nullptr && p->val != nullptr && p->val->numb) {
        own_value(&p->val);
        value_of_word(word, &p->val);
        p->val->arr_arg = 0;
        return;
    }
    if (p != nullptr) free_value(&p->val);
    quoly value = nullptr;
    value_of_word(word, &value);
    if (p != nullptr)
        p->val = value;
    else
        insert_var(node->let, value, &p);
}

// ---- products ------------------------------------------------------------------------------------------

/// The operator at the current token, 0 if the term ends here.
static char multiplying_sign(const WordReader& r) {
    const tokentipe& t = r.at->let;
    char c = static_cast<char>(t.name[0]);
    if (t.name[1] != 0) return 0;
    if (c == '*' || c == '/' || c == '\\') return c;
    return c == '|' && !eval_state.bar_closes ? c : 0;
}

static int32_t remainder_of(int32_t a, int32_t b) {
    int64_t rest = int64_t{a} % b;
    if (rest < 0 && pos_mod) rest += b < 0 ? -int64_t{b} : b;
    return static_cast<int32_t>(rest);
}

static int32_t combine(const WordReader& r, char sign, int32_t a, int32_t b) {
    if (sign == '*') return word_product(a, b);
    if (b == 0) {
        word_error(r, Err::division_by_zero);
        return 0;
    }
    if (sign == '|') return remainder_of(a, b);
    if (sign == '/' && modularmode) {
        give_back(r);
        return word_product(a, imod_inverse(b));
    }
    return wrapped(int64_t{a} / b);
}

/// A term; false if the current token begins none.
static bool word_term(WordReader& r, int32_t* value) {
    if (!word_factor(r, value)) return false;
    for (char sign = multiplying_sign(r); sign != 0; sign = multiplying_sign(r)) {
        word_step(r);
        if (word_at(r, '/')) word_error(r, Err::integer_slash_after_operator);
        int32_t right = word_operand(r);
        *value = combine(r, sign, *value, right);
    }
    return true;
}

// ---- sums ----------------------------------------------------------------------------------------------

/// The rest of a sum whose first term is *value.
static void rest_of_sum(WordReader& r, int32_t* value) {
    for (;;) {
        bool minus = word_at(r, '-');
        if (!minus && !word_at(r, '+')) return;
        word_step(r);
        int32_t right = 0;
        if (!word_term(r, &right)) word_error(r, Err::integer_operand);
        *value = minus ? word_difference(*value, right) : word_sum(*value, right);
    }
}

int32_t word_expression(WordReader& r, Err missing) {
    int32_t value = 0;
    if (!word_term(r, &value)) {
        word_error(r, missing);
        return 0;
    }
    rest_of_sum(r, &value);
    return value;
}

int32_t old_iexpre(FILE* inf, nameptr* flag) {
    WordReader r = {*flag, inf, flag};
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    int32_t value = word_expression(r);
    eval_state.bar_closes = saved;
    give_back(r);
    return value;
}

// ---- assignment ----------------------------------------------------------------------------------------

/// The operand of ":+" and ":-", 1 if there is none.
static int32_t read_step(WordReader& r) {
    unsigned char c = word_char(r);
    return is_lower(c) || is_digit(c) || c == '(' ? word_operand(r) : 1;
}

namespace {
/// What an assignment goes to: the variable named at the node, or an element.
struct WordTarget {
    nameptr node;  // nil: the element
    ElementTarget element;
};
}  // namespace

/// The word that the target has; 0 if it has gone meanwhile.
static int32_t word_of_target(const WordTarget& t) {
    if (t.node == nullptr) return word_of_element(t.element);
    varptr p = var_at(t.node);
    int32_t word = 0;
    if (p != nullptr && p->val != nullptr) word_of_value(p->val, &word);
    return word;
}

static void write_target(const WordTarget& t, int32_t word) {
    if (t.node == nullptr)
        write_word_element(t.element, word);
    else
        write_word(t.node, word);
}

/// What follows the ":" behind the variable at the node, or behind an element.
static void word_assign(WordReader& r, nameptr node) {
    bool element = word_element_read.colon == r.at && word_element_read.name == node;
    bool assignable = element || (is_lower(tok_char(node->let)) && node->next == r.at);
    WordTarget target = {element ? nullptr : node, word_element_read.target};
    word_element_read.colon = nullptr;
    word_step(r);
    char sign = static_cast<char>(word_char(r));
    if (sign != '=' && sign != '+' && sign != '-' && sign != '*') {
        word_error(r, Err::assignment_form);
        return;
    }
    if (!assignable) {
        word_error(r, Err::assignment_left_value);
        return;
    }
    word_step(r);
    if (sign == '=') {
        write_target(target, word_expression(r));
        return;
    }
    int32_t operand = sign == '*' ? word_operand(r) : read_step(r);
    int32_t old = word_of_target(target);
    if (sign == '*' && element && !word_element_exists(target.element)) return;
    write_target(target, sign == '*'   ? word_product(old, operand)
                         : sign == '-' ? word_difference(old, operand)
                                       : word_sum(old, operand));
}

bool iexpre(FILE* inf, nameptr* flag, int32_t* value) {
    WordReader r = {*flag, inf, flag};
    nameptr node = r.at;
    bool assignment = false;
    *value = 0;
    word_element_read.colon = nullptr;  // what an error left
    if (!word_term(r, value)) {
        word_error(r, Err::not_terminated);
    } else if (word_at(r, ':')) {
        assignment = true;
        *value = 0;
        word_assign(r, node);
    } else {
        rest_of_sum(r, value);
    }
    give_back(r);
    return !assignment;
}
}  // namespace tolvex
