#include "language/small_words.h"

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

constexpr int32_t k_nesting = 8;
bool small_sum(nameptr* at, int64_t* v, int32_t depth);

/// The value of a variable, if it is an integer of at most two digits.
bool small_variable(nameptr node, int64_t* v) {
    if (!node->compiled && number_polys > 0 && its_a_polyname(node->let) != 0) return false;
    if (is_bound_element(node)) return false;
    varptr p = var_at(node);
    if (p == nullptr || p->val == nullptr || !p->val->numb || p->val->arr_arg) return false;
    const number* x = p->val->ncoef;
    if (x->size > 2) return false;
    *v = x->head->value;
    if (x->size == 2) *v = (*v << k_digit_bits) + x->tail->value;
    return true;
}

bool small_operand(nameptr* at, int64_t* v, int32_t depth) {
    nameptr node = *at;
    unsigned char c = tok_char(node->let);
    if (node->tipe == word_literal) {
        *v = node->word;
        *at = node->last->next;
        return true;
    }
    if (is_lower(c)) {
        *at = node->next;
        return small_variable(node, v);
    }
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
