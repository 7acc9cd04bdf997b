// Conditions: comparisons, not, and, or, in brackets.

#include "language/evaluator.h"
#include "language/integer_words.h"
#include "language/small_words.h"
#include "language/stack_bound.h"
#include "language/statements.h"
#include "numbers/num_compare.h"
#include "poly/poly.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
namespace tolvex {
namespace {
enum class Relation { none, equal, unequal, less, less_equal, greater, greater_equal };
}

static bool condition_ends() { return at_char(']') || tok_is(token, k_end_token); }

/// The comparison sign at the current token, which is read over; the token itself goes to *sign.
static Relation read_relation(FILE* inf, nameptr* flag, tokentipe* sign) {
    *sign = token;
    if (at_char('=')) {
        next_token(inf, flag);
        return Relation::equal;
    }
    bool less = at_char('<');
    if (!less && !at_char('>')) return Relation::none;
    next_token(inf, flag);
    Relation r = less ? Relation::less : Relation::greater;
    if (at_char('='))
        r = less ? Relation::less_equal : Relation::greater_equal;
    else if (less && at_char('>'))
        r = Relation::unequal;
    else
        return r;
    next_token(inf, flag);
    return r;
}

/// True for the number 1 and nothing else.
static bool is_true(const quolynode* q) {
    if (!q->numb) return false;
    return lintmode ? q->ncoef->lint == 1 : is_longint(q->ncoef, 1) != 0;
}

static bool holds(Relation r, int order) {
    switch (r) {
    case Relation::equal:
        return order == 0;
    case Relation::unequal:
        return order != 0;
    case Relation::less:
        return order < 0;
    case Relation::less_equal:
        return order <= 0;
    case Relation::greater:
        return order > 0;
    case Relation::greater_equal:
        return order >= 0;
    case Relation::none:
        break;
    }
    return false;
}

/// -1, 0, 1 as a is below, equal to, above b. Residues compare as 0 to modulus - 1, field elements by code.
static int order_of_numbers(const number* a, const number* b) {
    if (lintmode) return (a->lint > b->lint) - (a->lint < b->lint);
    if (a->size == 1 && b->size == 1)
        return (a->head->value > b->head->value) - (a->head->value < b->head->value);
    return bigger(a, b) ? 1 : bigger(b, a) ? -1 : 0;
}

/// A number, or a quotient of two: its parts. False for everything else.
static bool parts_of(const quolynode* q, const number** numer, const number** denom) {
    if (q->numb) {
        *numer = q->ncoef;
        *denom = nullptr;
        return true;
    }
    if (!q->rat || lintmode) return false;
    *numer = q->numer->ncoef;
    *denom = q->denom == nullptr ? nullptr : q->denom->ncoef;
    return true;
}

/// *product := x * y as a value; y nil stands for 1.
static void product_value(const number* x, const number* y, quolyptr product) {
    scalar_to_quoly(x, product);
    if (y == nullptr) return;
    quoly factor = nullptr;
    scalar_to_quoly(y, &factor);
    fast_quoly_mult(product, factor);
    free_quoly(&factor);
}

/// False if the two cannot be ordered. Fractions by cross products: denominators are positive.
static bool compare(const quolynode* a, const quolynode* b, int* order) {
    const number *na, *da, *nb, *db;
    if (!parts_of(a, &na, &da) || !parts_of(b, &nb, &db)) return false;
    if (da == nullptr && db == nullptr) {
        *order = order_of_numbers(na, nb);
        return true;
    }
    quoly left = nullptr, right = nullptr;
    product_value(na, db, &left);
    product_value(nb, da, &right);
    *order = order_of_numbers(left->ncoef, right->ncoef);
    free_quoly(&left);
    free_quoly(&right);
    return true;
}

static bool related(Relation r, const quolynode* a, const quolynode* b, const tokentipe& sign) {
    bool ordering = r != Relation::equal && r != Relation::unequal;
    if (!ordering && !(a->numb && b->numb)) return (quoly_equal(a, b) != 0) == (r == Relation::equal);
    int order = 0;
    if (compare(a, b, &order)) return holds(r, order);
    error(Err::order_of_non_numbers, tok_text(sign));
    return false;
}

/// The left value alone is the condition.
static bool lone_value(bool truth) {
    if (condition_ends() || tok_is(token, "and") || tok_is(token, "or")) return truth;
    error(Err::comparison_expected);
    return false;
}

static bool compare_words(FILE* inf, nameptr* flag) {
    WordReader r = {*flag, inf, flag};
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    int32_t left = word_expression(r);
    uint32_t orders = comparison_sign(&r.at);
    int32_t right = orders != 0 ? word_expression(r) : 0;
    eval_state.bar_closes = saved;
    give_back(r);
    return orders != 0 ? order_holds(orders, left, right) : lone_value(left == 1);
}

/// A comparison of two values, which stay where they live, or a value alone.
static bool evalcond(FILE* inf, nameptr* flag) {
    bool truth = false;
    if (*flag != nullptr && small_comparison(flag, &truth)) return truth;
    Value left, right;
    read_expression(inf, &left, flag);
    tokentipe sign;
    Relation r = read_relation(inf, flag, &sign);
    bool result;
    if (r == Relation::none) {
        result = lone_value(is_true(value_of(&left)));
    } else {
        hold(&left);
        read_expression(inf, &right, flag);
        let_go(&left);
        result = related(r, value_of(&left), value_of(&right), sign);
        release(&right);
    }
    release(&left);
    return result;
}

static bool bool_fact(FILE* inf, nameptr* flag) {
    if (stack_is_low()) {
        error(Err::nested_too_deeply);
        return false;
    }
    if (tok_is(token, "not")) {
        next_token(inf, flag);
        return !bool_fact(inf, flag);
    }
    if (!at_char('['))
        return integerflag && *flag != nullptr ? compare_words(inf, flag) : evalcond(inf, flag);
    next_token(inf, flag);
    bool result = bool_expre(inf, flag);
    expect(inf, flag, ']', Err::condition_bracket);
    return result;
}

// Every clause is evaluated: what it does besides is meant to happen.
static bool bool_term(FILE* inf, nameptr* flag) {
    bool result = bool_fact(inf, flag);
    while (tok_is(token, "and")) {
        next_token(inf, flag);
        bool right = bool_fact(inf, flag);
        result = result && right;
    }
    return result;
}

bool bool_expre(FILE* inf, nameptr* flag) {
    bool result = bool_term(inf, flag);
    while (tok_is(token, "or")) {
        next_token(inf, flag);
        bool right = bool_term(inf, flag);
        result = result || right;
    }
    if (!condition_ends()) {
        error(Err::condition_not_closed);
        return false;
    }
    return result;
}
}  // namespace tolvex
