#include "language/small_words.h"

#include "language/array_elements.h"
#include "language/array_values.h"
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/other_rings.h"
#include "numbers/num_assign.h"
#include "poly/poly_vars.h"
#include "storage/checked.h"
namespace tolvex {
namespace {
// ---- what follows an operand ---------------------------------------------------------------------------

enum class Follower : uint8_t { other, end, sum, product };

/// By the first character of the token. Everything that the evaluator would take for a part of the term is
/// `other`.
struct FollowerTable {
    Follower of[256] = {};
    constexpr FollowerTable() {
        for (const char* c = ",;)]=<> "; *c != 0; c++) of[static_cast<unsigned char>(*c)] = Follower::end;
        of[static_cast<unsigned char>(k_end_token[0])] = Follower::end;
        of['+'] = of['-'] = Follower::sum;
        of['*'] = of['|'] = Follower::product;
    }
};
constexpr FollowerTable followers;

Follower follower_at(const namenode* at) {
    Follower f = followers.of[tok_char(at->let)];
    if (f == Follower::other && (tok_is(at->let, "and") || tok_is(at->let, "or"))) return Follower::end;
    return f;
}

// ---- operands ------------------------------------------------------------------------------------------

constexpr int32_t k_nesting = 8;  // parentheses and subscripts
bool small_sum(nameptr* at, int64_t* v, int32_t depth);

/// The value, if it is an integer of at most two digits.
bool small_value(const quolynode* q, int64_t* v) {
    if (q == nullptr || !q->numb || q->arr_arg) return false;
    const number* x = q->ncoef;
    if (x->size > 2) return false;
    *v = x->head->value;
    if (x->size == 2) *v = (*v << k_digit_bits) + x->tail->value;
    return true;
}

/// The subscripts from the "[" at *at on, up to and over the "]".
bool small_subscripts(nameptr* at, Subscripts* s, int32_t depth) {
    *at = (*at)->next;
    if (depth == k_nesting || !small_sum(at, &s->i, depth + 1)) return false;
    s->j = 0;
    s->two = tok_char((*at)->let) == ',';
    if (s->two) {
        *at = (*at)->next;
        if (!small_sum(at, &s->j, depth + 1)) return false;
    }
    if (tok_char((*at)->let) != ']') return false;
    *at = (*at)->next;
    return true;
}

/// An element of a dense array, the "[" behind its name being at *at.
bool small_element(nameptr* at, nameptr node, int64_t* v, int32_t depth) {
    Subscripts s;
    arrptr a = nullptr;
    int64_t index = 0;
    if (interrupt_levels > 0 || !small_subscripts(at, &s, depth)) return false;
    fastestlookup(node->let, &a);
    if (a == nullptr) return false;
    a = array_itself(a);
    return a->spar == nullptr && a->ring == modulus && is_place(a, s.i, s.j, s.two, &index) &&
           small_value(*place_slot(a, index), v);
}

/// A variable or an element; what Compile has bound to an element is left to the evaluator.
bool small_name(nameptr* at, int64_t* v, int32_t depth) {
    nameptr node = *at;
    if (!node->compiled && number_polys > 0 && its_a_polyname(node->let) != 0) return false;
    if (is_bound_element(node)) return false;
    *at = node->next;
    if (tok_char((*at)->let) == '[') return small_element(at, node, v, depth);
    varptr p = var_at(node);
    return p != nullptr && small_value(p->val, v);
}

bool small_operand(nameptr* at, int64_t* v, int32_t depth) {
    nameptr node = *at;
    unsigned char c = tok_char(node->let);
    if (node->tipe == word_literal) {
        *v = node->word;
        *at = node->last->next;
        return true;
    }
    if (is_lower(c)) return small_name(at, v, depth);
    if (c != '(' || depth == k_nesting) return false;
    *at = node->next;
    if (!small_sum(at, v, depth + 1) || tok_char((*at)->let) != ')') return false;
    *at = (*at)->next;
    return true;
}

// ---- terms and sums ------------------------------------------------------------------------------------

/// a := a | b by the rules of the evaluator.
bool take_remainder(int64_t* a, int64_t b) {
    if (b == 0 || b == -1) return false;
    *a %= b;
    if (*a < 0 && pos_mod) *a += b < 0 ? -b : b;
    return true;
}

bool small_term(nameptr* at, int64_t* v, int32_t depth) {
    bool minus = tok_char((*at)->let) == '-';
    if (minus) *at = (*at)->next;
    if (!small_operand(at, v, depth)) return false;
    if (minus) *v = -*v;
    while (follower_at(*at) == Follower::product) {
        bool remainder = tok_char((*at)->let) == '|';
        *at = (*at)->next;
        int64_t right = 0;
        if (!small_operand(at, &right, depth)) return false;
        if (remainder ? !take_remainder(v, right) : __builtin_mul_overflow(*v, right, v)) return false;
    }
    return true;
}

/// A sum up to a token that ends every sum.
bool small_sum(nameptr* at, int64_t* v, int32_t depth) {
    if (!small_term(at, v, depth)) return false;
    while (follower_at(*at) == Follower::sum) {
        bool minus = tok_char((*at)->let) == '-';
        *at = (*at)->next;
        int64_t right = 0;
        if (!small_term(at, &right, depth)) return false;
        if (minus ? __builtin_sub_overflow(*v, right, v) : __builtin_add_overflow(*v, right, v)) return false;
    }
    return follower_at(*at) == Follower::end;
}

bool may_be_small() { return !lintmode && away_list == nullptr && eval_state.bar_closes == 0; }

void go_on_at(nameptr at, nameptr* flag) {
    *flag = at;
    token = at->let;
    currentchar = at->next;
}

}  // namespace

uint32_t comparison_sign(nameptr* at) {
    unsigned char c = tok_char((*at)->let);
    if (c != '=' && c != '<' && c != '>') return 0;
    uint32_t orders = c == '=' ? k_equal : c == '<' ? k_below : k_above;
    *at = (*at)->next;
    unsigned char second = tok_char((*at)->let);
    if (c == '=' || (second != '=' && (c != '<' || second != '>'))) return orders;
    *at = (*at)->next;
    return orders | (second == '=' ? k_equal : k_above);
}

bool small_expression(nameptr* flag, int64_t* v) {
    nameptr at = *flag;
    CHECK(same_name(at->let, token));
    if (!may_be_small() || !small_sum(&at, v, 0)) return false;
    go_on_at(at, flag);
    return true;
}

bool small_comparison(nameptr* flag, bool* truth) {
    nameptr at = *flag;
    int64_t left = 0, right = 0;
    CHECK(same_name(at->let, token));
    if (!may_be_small() || !small_sum(&at, &left, 0)) return false;
    uint32_t orders = comparison_sign(&at);
    if (orders == 0 || !small_sum(&at, &right, 0)) return false;
    *truth = order_holds(orders, left, right);
    go_on_at(at, flag);
    return true;
}

void value_of_long(int64_t v, quolyptr n) {
    if (*n != nullptr && !(*n)->numb) free_quoly(n);
    bool digit = v <= k_max_digit && v >= -k_max_digit;
    if (*n == nullptr) {
        init_quoly_node(n);
        if (digit)
            num_make_digit((*n)->ncoef, static_cast<int32_t>(v));
        else
            setvalue_any(v, (*n)->ncoef);
        return;
    }
    (*n)->arr_arg = 0;
    imptr x = (*n)->ncoef;
    if (digit && x->size == 1)
        x->head->value = static_cast<int32_t>(v);
    else
        setvalue_any(v, x);
}
}  // namespace tolvex
