#include "language/expre.h"

#include "language/array_elements.h"
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/other_rings.h"
#include "language/small_words.h"
#include "language/stack_bound.h"
#include "language/symbols.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/residue.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- operands ------------------------------------------------------------------------------------------

bool expect(FILE* inf, nameptr* flag, char c, Err missing) {
    if (at_char(c)) {
        next_token(inf, flag);
        return true;
    }
    error(missing);
    return false;
}

/// The routines leave an empty location where an error was resumed: such a value is 0.
static void make_whole(quolyptr* qp, quolyptr n) {
    if (*qp != nullptr && **qp != nullptr) return;
    *qp = n;
    if (*n == nullptr) quoly_set(0, n);
}

void read_factor(FILE* inf, Value* v, nameptr* flag) {
    v->own = nullptr;
    v->hold.own = &v->own;
    fact(inf, &v->hold.at, &v->own, flag);
    make_whole(&v->hold.at, &v->own);
}

void take_value(Value* v, quolyptr n) {
    if (is_private(v)) {
        free_quoly(n);
        *n = v->own;
        v->own = nullptr;
    } else {
        copy_value(v->hold.at, n);
        release(v);
    }
}

void copy_value(quolyptr at, quolyptr n) {
    const quolynode* q = *at;
    if (q == *n) return;
    if (q->numb && (lintmode || q->ncoef->size == 1)) {
        quoly_assign(q, n);
        return;
    }
    Value source;
    source.own = nullptr;
    source.hold = {at, &source.own, nullptr};
    hold(&source);
    quoly copy = nullptr;
    quoly_assign_polled(value_of(&source), &copy);
    let_go(&source);
    release(&source);
    free_quoly(n);
    *n = copy;
}

// ---- products ------------------------------------------------------------------------------------------

/// The operator that the current token stands for, 0 if the term ends here. A name or "(" is a product.
static char multiplying_sign() {
    unsigned char c = tok_char(token);
    if (c == '*' || c == '/' || c == '\\') return static_cast<char>(c);
    if (c == '|') return bar_closes_here() ? 0 : '|';
    if (line_ends_here()) return 0;
    if (c == '(') return '1';
    if ((is_lower(c) && !tok_is(token, "or") && !tok_is(token, "and")) || is_upper(c)) return '1';
    return 0;
}

/// True for an integer of one digit, outside word arithmetic: what most operands of programs are.
static inline bool is_small(const quolynode* q) { return q->numb && !lintmode && q->ncoef->size == 1; }
static inline int64_t small_value(const quolynode* q) { return q->ncoef->head->value; }

/// n := v if that has one digit, in place if n is a small integer itself.
static bool set_small(int64_t v, quolyptr n) {
    if (v > k_max_digit || v < -k_max_digit) return false;
    if (*n == nullptr || !is_small(*n)) {
        free_quoly(n);
        word_value(static_cast<int32_t>(v), n);
    } else {
        (*n)->ncoef->head->value = static_cast<int32_t>(v);
    }
    return true;
}

/// n := a (sign) b for small integers, by the rules of the general routines; false if the result is not
/// small.
static bool combine_small(char sign, int64_t a, int64_t b, quolyptr n) {
    if (sign == '*' || sign == '1') return set_small(a * b, n);
    if (b == 0) return false;
    int64_t rest = a % b;
    if (sign == '/') return rest == 0 && set_small(a / b, n);
    if (sign == '\\') return set_small(a / b, n);
    if (rest < 0 && pos_mod) rest += b < 0 ? -b : b;
    return set_small(rest, n);
}

/// n := left (sign) right, left being at *qp. A private right side may be used up.
static void combine(char sign, boolean nogcd, const Value* left, Value* right, quolyptr n) {
    quoly m = value_of(right);
    bool in_place = is_private(left);
    if (is_small(m) && is_small(value_of(left)) &&
        combine_small(sign, small_value(value_of(left)), small_value(m), n))
        return;
    if (in_place && is_private(right) && sign != '\\' && sign != '|') {
        right->own = nullptr;
        sign == '/' ? best_quoly_quot(n, m, nogcd) : best_quoly_mult(n, m);
        return;
    }
    switch (sign) {
    case '/':
        if (in_place)
            fast_quoly_quot(n, m, nogcd);
        else
            quoly_quot(value_of(left), m, n, nogcd);
        break;
    case '\\':
    case '|':
        quoly_mod_or_div(value_of(left), m, n, sign);
        break;
    default:
        if (in_place)
            fast_quoly_mult(n, m);
        else
            quoly_mult(value_of(left), m, n);
    }
}

/// The value becomes a left operand, which stays whole while statements run that the right one brings along.
static void begin_operands(Value* left, quolyptr* qp, quolyptr n) {
    make_whole(qp, n);
    left->hold = {*qp, n, nullptr};
    hold(left);
    poll_interrupt();
}

/// The result stands in *n: neither operand is needed any more.
static void end_operands(Value* left, Value* right, quolyptr* qp, quolyptr n) {
    let_go(right);
    let_go(left);
    release(right);
    *qp = n;
}

/// One operator and its right operand. A bare variable on either side is read where it lives.
static void multiply_once(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag, char sign) {
    boolean nogcd = 0;
    if (sign != '1') next_token(inf, flag);
    if (sign == '/' && at_char('/')) {
        nogcd = 1;
        next_token(inf, flag);
    }
    if (sign != '1' && at_char('/')) error(Err::slash_after_operator);
    Value left, right;
    begin_operands(&left, qp, n);
    read_factor(inf, &right, flag);
    hold(&right);
    combine(sign, nogcd, &left, &right, n);
    end_operands(&left, &right, qp, n);
}

static void rest_of_term(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    for (char sign = multiplying_sign(); sign != 0; sign = multiplying_sign())
        multiply_once(inf, qp, n, flag, sign);
}

void term(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    fact(inf, qp, n, flag);
    rest_of_term(inf, qp, n, flag);
}

// ---- sums ----------------------------------------------------------------------------------------------

// A long sum of polynomials is added up like a binary counter: place k holds the sum of 2^k terms, so that a
// sum of n terms costs n log n steps and not n^2.
static constexpr int32_t k_counter_places = 40;
static constexpr int32_t k_plain_terms = 16;  // terms added one by one before the counter is worth its while

static bool is_plain_polynomial(const quolynode* q) { return !q->numb && q->denom == nullptr; }

struct SumCounter {
    quoly place[k_counter_places];
};

static void count_in(SumCounter* sum, quoly carry) {
    int32_t k = 0;
    for (; k < k_counter_places - 1 && sum->place[k] != nullptr; k++) {
        best_quoly_add(&sum->place[k], carry);
        carry = sum->place[k];
        sum->place[k] = nullptr;
    }
    if (sum->place[k] != nullptr)
        best_quoly_add(&sum->place[k], carry);
    else
        sum->place[k] = carry;
}

static void count_out(SumCounter* sum, quolyptr n) {
    for (quoly& place : sum->place) {
        if (place == nullptr) continue;
        quoly part = place;
        place = nullptr;
        if (is_plain_polynomial(part) && is_plain_polynomial(*n)) {
            best_quoly_add(&part, *n);
            *n = part;
        } else {
            best_quoly_add(n, part);
        }
    }
}

/// n := left + or - right; both are operands of the present sum.
static void add_once(bool minus, const Value* left, Value* right, quolyptr n) {
    quoly m = value_of(right);
    if (is_small(m) && is_small(value_of(left))) {
        int64_t a = small_value(value_of(left)), b = small_value(m);
        if (set_small(minus ? a - b : a + b, n)) return;
    }
    if (is_private(left)) {
        if (is_private(right)) {
            right->own = nullptr;
            minus ? best_quoly_sub(n, m) : best_quoly_add(n, m);
        } else {
            minus ? fast_quoly_sub(n, m) : fast_quoly_add(n, m);
        }
    } else if (minus) {
        quoly_sub(value_of(left), m, n);
    } else {
        quoly_add(value_of(left), m, n);
    }
}

/// The operand after "+" or "-".
static void read_term(FILE* inf, Value* v, nameptr* flag) {
    v->own = nullptr;
    v->hold.own = &v->own;
    term(inf, &v->hold.at, &v->own, flag);
    make_whole(&v->hold.at, &v->own);
}

static void add_next_term(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    bool minus = at_char('-');
    next_token(inf, flag);
    Value left, right;
    begin_operands(&left, qp, n);
    read_term(inf, &right, flag);
    hold(&right);
    add_once(minus, &left, &right, n);
    end_operands(&left, &right, qp, n);
}

static bool at_sum_sign() { return at_char('+') || (at_char('-') && !line_ends_here()); }

/// The rest of a sum that has become long: polynomials go to the counter, everything else to *n at once.
[[gnu::noinline]] static void long_sum(FILE* inf, quolyptr n, nameptr* flag) {
    ScratchMark mark = scratch_mark();
    auto* sum = scratch_array<SumCounter>(1);
    *sum = {};
    held_operand here = {n, n, eval_state.held};
    eval_state.held = &here;
    while (at_sum_sign()) {
        bool minus = at_char('-');
        next_token(inf, flag);
        poll_interrupt();
        Value right;
        read_term(inf, &right, flag);
        if (is_private(&right) && is_plain_polynomial(right.own) && is_plain_polynomial(*n)) {
            if (minus) quoly_inplace(right.own);
            count_in(sum, right.own);
            continue;
        }
        Value left;
        left.hold = {n, n, nullptr};
        hold(&right);
        add_once(minus, &left, &right, n);
        let_go(&right);
        release(&right);
    }
    count_out(sum, n);
    eval_state.held = here.below;
    scratch_release(mark);
}

/// The loop over "+" and "-" after the first term.
static void rest_of_sum(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    for (int32_t i = 0; at_sum_sign(); i++) {
        if (i >= k_plain_terms && is_plain_polynomial(*n)) {
            long_sum(inf, n, flag);
            return;
        }
        add_next_term(inf, qp, n, flag);
    }
}

// ---- plain values --------------------------------------------------------------------------------------

/// *n := a copy of *qp unless the value is there already. The copy of a loop's variable is its word too.
static void own_result(quolyptr qp, quolyptr n) {
    make_whole(&qp, n);
    if (qp == n) return;
    int32_t word = (*qp)->word;
    copy_value(qp, n);
    (*n)->word = word;
}

void old_fact(FILE* inf, quolyptr n, nameptr* flag) {
    quolyptr qp = n;
    fact(inf, &qp, n, flag);
    own_result(qp, n);
}

/// The value of an expression where it lives: no assignment is read.
static void plain_sum(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    term(inf, qp, n, flag);
    rest_of_sum(inf, qp, n, flag);
}

void old_expre(FILE* inf, quolyptr n, nameptr* flag) {
    int64_t small = 0;
    if (*flag != nullptr && small_expression(flag, &small)) {
        value_of_long(small, n);
        return;
    }
    quolyptr qp = n;
    plain_sum(inf, &qp, n, flag);
    own_result(qp, n);
}

void half_fact(FILE* inf, quolyptr n, nameptr* flag) {
    quolyptr qp = n;
    postfix(inf, &qp, n, flag);
}

void half_term(FILE* inf, quolyptr n, nameptr* flag) {
    quolyptr qp = n;
    rest_of_term(inf, &qp, n, flag);
}

void half_expre(FILE* inf, quolyptr n, nameptr* flag) {
    half_fact(inf, n, flag);
    half_term(inf, n, flag);
    quolyptr qp = n;
    rest_of_sum(inf, &qp, n, flag);
}

void read_expression(FILE* inf, Value* v, nameptr* flag) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    v->own = nullptr;
    v->hold.own = v->hold.at = &v->own;
    plain_sum(inf, &v->hold.at, &v->own, flag);
    make_whole(&v->hold.at, &v->own);
    eval_state.bar_closes = saved;
}

// ---- assignment ----------------------------------------------------------------------------------------

/// The word that an increment shows: the residue, the word, or the least significant digit.
static int32_t low_word(const number* x) { return lintmode ? x->lint : x->tail->value; }

/// x := x + step in place, touching the least significant digit only. False, and nothing changed, if that
/// digit would overflow or take the other sign.
static bool add_to_im(imptr x, int32_t step) {
    if (modularmode) {
        x->lint = mod_add(x->lint, residue_of_int(step), modulus);
        return true;
    }
    if (lintmode) {
        x->lint = static_cast<int32_t>(static_cast<uint32_t>(x->lint) + static_cast<uint32_t>(step));
        return true;
    }
    int32_t digit = x->tail->value + step;  // both below 2^28 in magnitude
    if (digit > k_max_digit || digit < -k_max_digit) return false;
    if (x->size > 1 && digit != 0 && (digit < 0) != (x->head->value < 0)) return false;
    x->tail->value = digit;
    return true;
}

/// The number in the polynomial that stands alone, nil if there is none.
static imptr constant_term(const polynode* p) {
    while (p != nullptr) {
        if (p->exp != 0)
            p = p->next;
        else if (p->numb)
            return p->ncoef;
        else
            p = p->pcoef;
    }
    return nullptr;
}

/// The operand of ":+" and ":-": 1, or a factor whose number has one digit.
static int32_t read_step(FILE* inf, nameptr* flag) {
    unsigned char c = tok_char(token);
    if (!is_lower(c) && !is_digit(c) && c != '(') return 1;
    Value v;
    read_factor(inf, &v, flag);
    const quolynode* q = value_of(&v);
    int32_t step = 0;
    if (!q->numb)
        error(Err::increment_not_number);
    else if (!lintmode && q->ncoef->size > 1)
        error(Err::increment_too_long);
    else
        step = low_word(q->ncoef);
    release(&v);
    return step;
}

namespace {
/// What stands in front of a ":": a name, and the node where it stands in a stored list, or an element.
struct Target {
    tokentipe name;
    nameptr node;
    bool is_element;
    ElementTarget element;
};
}  // namespace

static varptr find_target(Target& t) { return t.node != nullptr ? var_at(t.node) : find_var(t.name); }

/// The variable takes the value; it is created if it has gone meanwhile.
static varptr store_in_target(Target& t, quoly value) {
    varptr p = find_target(t);
    if (p == nullptr) {
        insert_var(t.name, value, &p);
        return p;
    }
    free_value(&p->val);
    if (value->numb) value->arr_arg = 0;
    p->val = value;
    return p;
}

/// Where the number of the target is, if a new number may overwrite it in place; else nil.
static quolyptr number_of_target(Target& t) {
    if (t.is_element) return number_to_change(t.element);
    varptr p = find_target(t);
    if (p == nullptr || away_list != nullptr || p->val == nullptr || !p->val->numb) return nullptr;
    own_value(&p->val);
    return &p->val;
}

/// The target, whose value the sum p + t begins with, takes t where it stands, so that a polynomial built
/// term by term costs no copies. False, and the value unchanged, unless both are polynomials and t a monomial
/// that insert_monomial takes.
static bool grow_target(Target& name, bool minus, quolyptr left, const Value* right) {
    const quolynode* t = value_of(right);
    if (name.is_element || away_list != nullptr || !is_plain_polynomial(t) || !monomial(t->numer))
        return false;
    varptr p = find_target(name);
    if (p == nullptr || &p->val != left || p->val == nullptr || !is_plain_polynomial(p->val)) return false;
    own_value(left);
    poly term = nullptr;
    if (minus)
        poly_makeneg(t->numer, &term);
    else
        poly_assign(t->numer, &term);
    if (insert_monomial(&p->val->numer, term)) return true;
    free_poly(&term);
    return false;
}

/// The sum on the right side of an assignment whose value nobody asks for. True if the target has become the
/// sum already; else the value is in n.
static bool sum_for_target(FILE* inf, quolyptr n, Target& name, nameptr* flag) {
    quolyptr qp = n;
    term(inf, &qp, n, flag);
    if (qp == n || !at_sum_sign()) {
        rest_of_sum(inf, &qp, n, flag);
        own_result(qp, n);
        return false;
    }
    bool minus = at_char('-');
    next_token(inf, flag);
    Value left, right;
    begin_operands(&left, &qp, n);
    read_term(inf, &right, flag);
    let_go(&left);
    bool grown = !at_sum_sign() && !is_private(&left) && grow_target(name, minus, left.hold.at, &right);
    hold(&left);
    hold(&right);
    if (!grown) add_once(minus, &left, &right, n);
    end_operands(&left, &right, &qp, n);
    if (!grown) rest_of_sum(inf, &qp, n, flag);
    return grown;
}

/// The target takes the small integer.
static void store_small(Target& t, int64_t v) {
    quoly value = nullptr;
    quolyptr at = number_of_target(t);
    value_of_long(v, at != nullptr ? at : &value);
    if (at != nullptr) return;
    if (t.is_element)
        store_element(t.element, &value);
    else
        store_in_target(t, value);
}

/// The location of the target; a variable is created with the value 0 if it has gone meanwhile, for an array
/// that has gone the answer is nil.
static quolyptr target_again(Target& t) {
    if (t.is_element) return location_to_change(t.element);
    varptr p = find_target(t);
    if (p == nullptr || p->val == nullptr) {
        quoly zero = nullptr;
        quoly_set(0, &zero);
        p = store_in_target(t, zero);
    }
    return &p->val;
}

/// The variable's value, held where it lives, plus the word step becomes its new value.
static void add_to_variable(quolyptr target, int32_t step, Target& name) {
    Value v;
    v.own = nullptr;
    v.hold = {target, &v.own, nullptr};
    hold(&v);
    quoly addend = nullptr, sum = nullptr;
    quoly_set(0, &addend);
    add_to_im(addend->ncoef, step);
    quoly_add(value_of(&v), addend, &sum);
    free_quoly(&addend);
    let_go(&v);
    release(&v);
    target = target_again(name);
    if (target == nullptr) {
        free_quoly(&sum);
        return;
    }
    free_value(target);
    *target = sum;
}

/// A polynomial target: its constant term is changed where it stands; one that comes or goes is added.
static bool do_poly(quolyptr target, int32_t step, Target& name, int32_t* shown) {
    imptr constant = constant_term((*target)->numer);
    if (constant != nullptr) {
        if (!add_to_im(constant, step)) return false;
        *shown = low_word(constant);
        if (!iszero(constant)) return true;
        add_to_im(constant, -step);  // a zero term has no place in the chain
    } else {
        *shown = modularmode ? residue_of_int(step) : step;
    }
    add_to_variable(target, step, name);
    return true;
}

static void increment(FILE* inf, quolyptr* qp, quolyptr n, Target& name, nameptr* flag) {
    bool minus = at_char('-');
    next_token(inf, flag);
    int32_t step = read_step(inf, flag);
    if (minus) step = static_cast<int32_t>(0u - static_cast<uint32_t>(step));
    quolyptr target = target_again(name);
    int32_t shown = 0;
    bool done = target == nullptr;
    if (!done) own_value(target);
    if (done) {
        // the error has been raised
    } else if ((*target)->numb) {
        done = add_to_im((*target)->ncoef, step);
        shown = low_word((*target)->ncoef);
    } else if ((*target)->denom != nullptr) {
        error(Err::rational_not_allowed);
        done = true;
    } else {
        done = do_poly(target, step, name, &shown);
    }
    if (name.is_element) purge_element(name.element);
    if (!done) error(Err::increment_range);
    quoly_set(0, n);
    if (*flag == nullptr) setvalue(shown, (*n)->ncoef);  // as an assignment it has the value 0 in a body
    *qp = n;
}

static void assign(FILE* inf, quolyptr* qp, quolyptr n, Target& name, nameptr* flag, boolean dropped) {
    next_token(inf, flag);
    *qp = n;
    int64_t small = 0;
    if (*flag != nullptr && small_expression(flag, &small)) {
        store_small(name, small);
        quoly_set(0, n);
        return;
    }
    bool shown = *flag == nullptr && !dropped;  // the statements of a body and of a file need no copies
    if (shown) {
        old_expre(inf, n, flag);
    } else if (sum_for_target(inf, n, name, flag)) {
        quoly_set(0, n);
        return;
    }
    quoly value = *n;
    *n = nullptr;
    if (shown)
        quoly_assign_polled(value, n);
    else
        quoly_set(0, n);
    if (name.is_element)
        store_element(name.element, &value);
    else
        store_in_target(name, value);
}

/// What follows the ":" after the single term at *qp, which is a variable of that name if *n is nil.
[[gnu::noinline]] static void after_colon(FILE* inf, quolyptr* qp, quolyptr n, Target name, nameptr* flag,
                                          boolean dropped) {
    next_token(inf, flag);
    name.is_element = *n == nullptr && *qp == element_read.at;
    if (name.is_element) name.element = element_read.target;
    bool assignable = name.is_element || (*n == nullptr && *qp != n && is_lower(tok_char(name.name)));
    if (at_char('=') || at_char('+') || at_char('-')) {
        if (!assignable)
            error(Err::assignment_left_value);
        else if (at_char('='))
            assign(inf, qp, n, name, flag, dropped);
        else
            increment(inf, qp, n, name, flag);
        return;
    }
    if (at_char(';') && *flag == nullptr)
        tok_set(token, ":");  // "x:;" is the value without display
    else
        error(Err::assignment_form);
}

void expre(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    Target name = {token, *flag, false, {}};
    boolean dropped = eval_state.value_dropped;
    eval_state.value_dropped = 0;
    term(inf, qp, n, flag);
    if (at_char(':'))
        after_colon(inf, qp, n, name, flag, dropped);
    else
        rest_of_sum(inf, qp, n, flag);
}

void rest_of_statement(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    if (at_char(':')) {
        after_colon(inf, qp, n, {token, nullptr, false, {}}, flag, 0);
        return;
    }
    postfix(inf, qp, n, flag);
    rest_of_term(inf, qp, n, flag);
    rest_of_sum(inf, qp, n, flag);
}

// ---- factors -------------------------------------------------------------------------------------------

/// "*x": the value leaves the variable, which is left at 1.
static void move_out(quolyptr* qp, quolyptr n) {
    own_value(*qp);
    *n = **qp;
    **qp = nullptr;
    quoly_set(1, *qp);
    *qp = n;
}

/// True if a "*" in front of a variable's name was read.
static bool read_move_sign(FILE* inf, nameptr* flag) {
    if (!at_char('*')) return false;
    next_token(inf, flag);
    if (is_lower(tok_char(token))) return true;
    error(Err::move_needs_variable);
    return false;
}

void fact(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag) {
    free_quoly(n);
    *qp = n;
    if (stack_is_low()) {
        error(Err::nested_too_deeply);
        return;
    }
    bool moving = read_move_sign(inf, flag);
    if (moving && number_polys > 0 && its_a_polyname(token) != 0) {
        error(Err::move_of_polyvar);
        moving = false;
    }
    bool open = primary(inf, qp, n, flag);
    if (moving && *qp != n && *qp != nullptr && **qp != nullptr) move_out(qp, n);
    if (open) postfix(inf, qp, n, flag);
}
}  // namespace tolvex
