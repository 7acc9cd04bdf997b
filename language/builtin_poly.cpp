// Built-in functions of polynomials and rational functions: shape, parts, divisibility, derivatives.
#include "field/tower_divide.h"
#include "language/builtin_parts.h"
#include "language/builtin_table.h"
#include "language/locations.h"
#include "language/symbols.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "poly/div_general.h"
#include "poly/div_trial.h"
#include "poly/div_user.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "poly/size_estimates.h"
#include "quoly/canonical.h"
#include "quoly/quoly_deriv.h"
#include "quoly/quoly_mass.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
namespace tolvex {
// ---- numerator and denominator -------------------------------------------------------------------------

void builtin_Numer(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    take_argument(call, &v);
    quoly q = *call.n;
    if (q->numb) return;
    free_poly(&q->denom);
    q->rat = 0;
    settle(q);
}

void builtin_Denom(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    poly denom = nullptr;
    const quolynode* q = value_of(&v);
    if (q->numb || q->denom == nullptr)
        poly_set(1, &denom);
    else
        poly_assign(q->denom, &denom);
    drop_data(&v);
    return_poly(call, &denom);
}

/// Killden(^x): the denominator of a variable is forgotten; Killden[a]: those of an array.
void builtin_Killden(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    if (at_char('[')) {
        kill_denominators(call);
        return;
    }
    expect(call.inf, call.flag, '(', Err::builtin_open_paren);
    ResultPlace place;
    read_result_place(call, &place);
    close_call(call);
    quolyptr at = place_to_change(&place);
    if (at != nullptr && *at != nullptr && !(*at)->numb) {
        own_value(at);
        quoly q = *at;
        free_poly(&q->denom);
        q->rat = 0;
        settle(q);
        close_place(place);
    }
    quoly_set(0, call.n);
}

// ---- variables and shape -------------------------------------------------------------------------------

/// The level of the polynomial variable that q is, 0 if it is none.
static int32_t level_of_variable(const quolynode* q) {
    if (q->numb || q->denom != nullptr) return 0;
    const polynode* p = q->numer;
    int32_t level = 1;
    for (; p->exp == 0 && !p->numb && p->next == nullptr; p = p->pcoef) level++;
    return p->exp == 1 && p->next == nullptr && poly_eq_1(p->pcoef) ? level : 0;
}

int32_t read_level(BuiltinCall& call, Err not_declared) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    Value v;
    get_the_data(call, &v);
    const quolynode* q = value_of(&v);
    int32_t level = q->numb ? convert_to_int(q->ncoef) : level_of_variable(q);
    drop_data(&v);
    restore_modular(was_modular);
    if (level >= 1 && level <= number_polys) return level;
    error(not_declared);
    return 0;
}

/// Var(k) or Var k: the polynomial variable of level k.
void builtin_Var(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    int32_t k = read_plain_word(call.inf, call.flag, Err::number_expected, false);
    if (k < 1 || k > number_polys) {
        error(Err::variable_number_range);
        quoly_set(0, call.n);
        return;
    }
    poly p = nullptr;
    base_poly(&p, k);
    return_poly(call, &p);
}

/// A count or measure of the numerator of the argument; `of_number` for numbers.
static void measure(BuiltinCall& call, int64_t (*of_poly)(const polynode*), int64_t of_number) {
    Value v;
    standard_read(call, &v);
    const quolynode* q = value_of(&v);
    int64_t m = q->numb || q->rat ? of_number : of_poly(q->numer);
    drop_data(&v);
    return_word(call, m);
}

void builtin_Height(BuiltinCall& call) {
    measure(
        call, [](const polynode* p) -> int64_t { return poly_height(p); }, 0);
}

void builtin_Level(BuiltinCall& call) {
    measure(
        call, [](const polynode* p) -> int64_t { return poly_level(p); }, 0);
}

void builtin_Vars(BuiltinCall& call) {
    measure(
        call, [](const polynode* p) -> int64_t { return driver_poly_vars(p); }, 0);
}

/// Terms of numerator and denominator.
void builtin_Terms(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    int64_t terms = numterms(value_of(&v));
    drop_data(&v);
    return_word(call, terms);
}

/// Terms over the coefficient field.
void builtin_Fterms(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    int64_t terms = f_numterms(value_of(&v));
    drop_data(&v);
    return_word(call, terms);
}

// ---- degrees -------------------------------------------------------------------------------------------

static const polynode* below_pads(const polynode* p) {
    while (p->exp == 0 && !p->numb && p->next == nullptr) p = p->pcoef;
    return p;
}

/// Largest or smallest exponent of the variable that lies `down` levels below the chain p.
static int32_t extreme_degree(const polynode* p, int32_t down, bool largest) {
    bool first = true;
    int32_t best = 0;
    for (; p != nullptr; p = p->next) {
        int32_t e = p->exp;
        if (down > 0) e = p->numb ? 0 : extreme_degree(p->pcoef, down - 1, largest);
        if (first || (largest ? e > best : e < best)) best = e;
        first = false;
    }
    return best;
}

static void degree_in_parentheses(BuiltinCall& call, bool largest) {
    next_token(call.inf, call.flag);
    Value v;
    get_the_data(call, &v);
    bool of_main = !next_argument(call);
    int32_t level = of_main ? 1 : read_level(call, Err::variable_argument);
    close_call(call);
    const quolynode* q = value_of(&v);
    int32_t degree = 0;
    if (!q->numb && level > 0)
        degree = extreme_degree(of_main ? below_pads(q->numer) : q->numer, level - 1, largest);
    drop_data(&v);
    return_word(call, degree);
}

/// Deg and Codeg: (p), (^p), (p, x), or a bare name; 0 without one.
void builtin_Deg(BuiltinCall& call) {
    bool largest = call.id == 9;
    next_token(call.inf, call.flag);
    if (at_char('(')) {
        degree_in_parentheses(call, largest);
        return;
    }
    if (at_char('[')) {
        if (largest) {
            degree_of_array(call);
        } else {
            next_token(call.inf, call.flag);
            error(Err::degree_form);
            quoly_set(0, call.n);
        }
        return;
    }
    if (!is_lower(tok_char(token)) && !at_char('<') && !at_char('%')) {
        quoly_set(0, call.n);
        return;
    }
    quolyptr at = nullptr;
    get_quoly_ptr(&at, call.inf, call.flag);
    int32_t degree = 0;
    if (at != nullptr && *at != nullptr && !(*at)->numb)
        degree = extreme_degree(below_pads((*at)->numer), 0, largest);
    return_word(call, degree);
}

// ---- derivative ----------------------------------------------------------------------------------------

/// Deriv(p, x, k): the k-th derivative, k = 1 if it is not given.
void builtin_Deriv(BuiltinCall& call) {
    open_call(call);
    if (at_char('^')) error(Err::location_not_wanted);
    Value v;
    get_the_data(call, &v);
    need_comma(call);
    int32_t level = read_level(call, Err::variable_not_declared);
    int32_t k = next_argument(call) ? read_integer(call) : 1;
    close_call(call);
    take_argument(call, &v);
    if (k < 0) {
        error(Err::negative_derivative);
        return;
    }
    for (; k > 0 && level > 0 && !((*call.n)->numb && iszero((*call.n)->ncoef)); k--)
        quoly_differentiate(call.n, level);
}

// ---- equality ------------------------------------------------------------------------------------------

/// Equal: 1 or 0. Equals: 1, -1 for opposite values, 0.
void builtin_Equal(BuiltinCall& call) {
    Value a, b;
    open_with_two(call, &a, &b);
    close_call(call);
    int32_t answer = 0;
    if (quoly_equal(value_of(&a), value_of(&b)))
        answer = 1;
    else if (call.id == 18 && quoly_negtive(value_of(&a), value_of(&b)))
        answer = -1;
    drop_data(&b);
    drop_data(&a);
    return_word(call, answer);
}

// ---- divisibility --------------------------------------------------------------------------------------

/// True and *q := n / m if m divides n. Under Laurent exponents powers of the variables are units.
static bool exact_quotient(poly n, poly m, polyptrr q) {
    if (!laurent) return trial_poly_divide(n, m, q, polynames, 0, 0, 0) != 0;
    boolean failed = 0;
    Lpoly_divide(n, m, q, polynames, &failed);
    return !failed;
}

/// The same over a field, whose elements are units: *q / *c = n / m.
static bool quotient_over_field(poly n, poly m, polyptrr q, polyptrr c) {
    if (!laurent) return tower_quotient(n, m, q, c, polynames);
    poly n_rest = nullptr, m_rest = nullptr;
    poly_assign(n, &n_rest);
    poly_assign(m, &m_rest);
    poly n_shift = clear_bads(&n_rest, INT32_MAX, k_leaf_depth);
    poly m_shift = clear_bads(&m_rest, INT32_MAX, k_leaf_depth);
    bool divides = tower_quotient(n_rest, m_rest, q, c, polynames);
    if (divides) {
        eliminate_bads(q, n_shift, 1);
        eliminate_bads(q, m_shift, -1);
    }
    free_poly(&n_rest);
    free_poly(&m_rest);
    free_exponent_list(&n_shift);
    free_exponent_list(&m_shift);
    return divides;
}

/// *quotient := b / a if a, which has no denominator, divides b.
static bool divide_value(const quolynode* a, const quolynode* b, quolyptr quotient) {
    polynode leaf_a, leaf_b;
    poly divisor = polynomial_of(a, &leaf_a, Err::rational_divisor);
    poly numer = b->numb ? polynomial_of(b, &leaf_b, Err::rational_divisor) : b->numer;
    poly q = nullptr, c = nullptr;
    // Elements of a field are units: the quotient may have a denominator.
    bool in_field = exists_field_element(divisor, 1);
    if (in_field ? !quotient_over_field(numer, divisor, &q, &c) : !exact_quotient(numer, divisor, &q)) {
        free_poly(&q);
        free_poly(&c);
        return false;
    }
    newquoly(quotient);
    (*quotient)->numer = q;
    if (in_field) {
        if (!b->numb && b->denom != nullptr) poly_mult(c, b->denom, &c, polynames);
        (*quotient)->denom = c;
        check_quoly(quotient, laurent);
        return true;
    }
    if (b->numb || b->denom == nullptr) {
        settle(*quotient);
        return true;
    }
    poly_assign(b->denom, &(*quotient)->denom);
    check_quoly(quotient, laurent);
    return true;
}

/// The divisor of the functions below; at a pushed level a faulty one is replaced by 1.
static void read_divisor(BuiltinCall& call, Value* a) {
    get_the_data(call, a);
    const quolynode* q = value_of(a);
    bool fraction = !q->numb && q->denom != nullptr;
    if (!fraction && !quoly_iszero(q)) return;
    error(fraction ? Err::rational_divisor : Err::division_by_zero);
    quoly_set(1, &a->own);
    a->hold.at = &a->own;
}

/// Sdiv(a, ^b): b is replaced by the quotient if there is one.
static void divide_in_place(BuiltinCall& call, Value* a) {
    ResultPlace place;
    read_result_place(call, &place);
    close_call(call);
    quolyptr p = place_to_read(&place);
    quoly quotient = nullptr;
    bool yes = false;
    if (p != nullptr) {
        Value b;
        b.own = nullptr;
        b.hold = {p, &b.own, nullptr};
        hold(&b);
        yes = divide_value(value_of(a), value_of(&b), &quotient);
        drop_data(&b);
    }
    if (yes) set_quotient(&place, &quotient);
    drop_data(a);
    return_word(call, yes);
}

/// Divides(a, b, q), Odiv(a, b), Sdiv(a, ^b): 1 if a divides b.
void builtin_Divides(BuiltinCall& call) {
    open_call(call);
    Value a;
    read_divisor(call, &a);
    need_comma(call);
    if (call.id == 80) {
        divide_in_place(call, &a);
        return;
    }
    Value b;
    get_the_data(call, &b);
    ResultPlace place = {};
    bool wanted = next_argument(call);
    if (wanted) read_result_place(call, &place);
    close_call(call);
    quoly quotient = nullptr;
    bool yes = divide_value(value_of(&a), value_of(&b), &quotient);
    if (!yes) quoly_set(1, &quotient);
    drop_data(&b);
    drop_data(&a);
    set_quotient(&place, &quotient);
    return_word(call, yes);
}

/// r := a | b and q := a \ b together.
static void remainder_and_quotient(const quolynode* a, const quolynode* b, quolyptr r, quolyptr q) {
    if (a->numb && b->numb) {
        init_quoly_node(r);
        init_quoly_node(q);
        mod_and_div(a->ncoef, b->ncoef, (*q)->ncoef, (*r)->ncoef);
        return;
    }
    polynode leaf_a, leaf_b;
    poly n = polynomial_of(a, &leaf_a, Err::rational_function_argument);
    poly m = polynomial_of(b, &leaf_b, Err::rational_function_argument);
    if (n != nullptr && m != nullptr && field_depth > 0 && !lintmode) {  // with denominators
        auto *dividend = const_cast<quoly>(a), *divisor = const_cast<quoly>(b);
        quoly_mod_or_div(dividend, divisor, r, '|');
        quoly_mod_or_div(dividend, divisor, q, '\\');
        return;
    }
    poly rem = nullptr, quot = nullptr;
    if (n == nullptr || m == nullptr) {
        poly_set(0, &rem);
        poly_set(0, &quot);
    } else {
        poly_mod_and_div(n, m, &rem, &quot, polynames);
    }
    poly_to_quoly(&rem, r);
    poly_to_quoly(&quot, q);
}

/// Remquot(a, b, q): the value is a | b, q takes the quotient.
void builtin_Remquot(BuiltinCall& call) {
    Value a, b;
    open_with_two(call, &a, &b);
    if (quoly_iszero(value_of(&b))) {
        error(Err::division_by_zero);
        quoly_set(1, &b.own);
        b.hold.at = &b.own;
    }
    need_comma(call);
    ResultPlace place;
    read_result_place(call, &place);
    close_call(call);
    quoly quotient = nullptr;
    remainder_and_quotient(value_of(&a), value_of(&b), call.n, &quotient);
    drop_data(&b);
    drop_data(&a);
    set_quotient(&place, &quotient);
}

// ---- cutting and joining -------------------------------------------------------------------------------

/// The variable of an argument "^x", which must be a number or polynomial; nil after an error.
static quolyptr polynomial_place(ResultPlace* place) {
    quolyptr p = place_to_read(place);
    if (p == nullptr || (*p)->numb || (*p)->denom == nullptr) return p;
    error(Err::rational_not_allowed);
    return nullptr;
}

/// A copy of a number or polynomial.
static poly copy_of_value(const quolynode* q) {
    poly p = nullptr;
    if (q->numb)
        scalar_to_poly(q->ncoef, &p);
    else
        poly_assign(q->numer, &p);
    return p;
}

/// The power of the main variable at which a polynomial is cut or joined: a number of one digit.
static int32_t read_power(BuiltinCall& call) {
    int32_t k = read_integer(call);
    if (k >= -k_max_digit && k <= k_max_digit) return k;
    error(Err::exponent_too_long);
    return 0;
}

/// Pads in front of the main variable of p; a number has none.
static int32_t pads_of(const polynode* p) {
    int32_t pads = 0;
    for (; p->exp == 0 && !p->numb && p->next == nullptr; p = p->pcoef) pads++;
    return pads;
}

/// *p without its pads.
static void strip_pads(polyptrr p) {
    for (int32_t pads = pads_of(*p); pads > 0; pads--) {
        poly pad = *p;
        *p = pad->pcoef;
        free_node(pad);
    }
}

/// *high := the terms of *high of exponent k and more, divided by x^k; *low := the rest. x: the main
/// variable.
static void split_poly(polyptrr high, polyptrr low, int32_t k) {
    int32_t pads = pads_of(*high);
    strip_pads(high);
    poly* cut = high;
    while (*cut != nullptr && (*cut)->exp >= k) cut = &(*cut)->next;
    *low = *cut;
    *cut = nullptr;
    fix_top(high);
    fix_top(low);
    if (k > 0) sub_expons(high, k);
    add_pad(high, pads);
    add_pad(low, pads);
}

/// Split(^a, k): a keeps the part from the power k of its main variable on, divided by that power; the value
/// is the rest. Split(^a, k, ^q): q takes the rest.
void builtin_Split(BuiltinCall& call) {
    open_call(call);
    ResultPlace a, rest = {};
    read_result_place(call, &a);
    need_comma(call);
    int32_t k = read_power(call);
    if (k < 0) {
        error(Err::negative_power);
        k = 0;
    }
    bool stored = next_argument(call);
    if (stored) read_result_place(call, &rest);
    close_call(call);
    quolyptr p = polynomial_place(&a);
    if (p != nullptr && quoly_iszero(*p)) {
        error(Err::split_of_zero);
        p = nullptr;
    }
    quoly low_value = nullptr;
    if (p != nullptr) {
        poly high = copy_of_value(*p), low = nullptr;
        split_poly(&high, &low, k);
        quoly high_value = nullptr;
        poly_to_quoly(&high, &high_value);
        poly_to_quoly(&low, &low_value);
        set_quotient(&a, &high_value);
    } else {
        quoly_set(0, &low_value);
    }
    if (!stored) {
        *call.n = low_value;
        return;
    }
    set_quotient(&rest, &low_value);
    quoly_set(0, call.n);
}

/// True if *high x^k has exponents that fit.
static bool power_fits(const quolynode* high, int32_t k) {
    if (high->numb) return true;
    const polynode* p = high->numer;
    while (p->exp == 0 && !p->numb && p->next == nullptr) p = p->pcoef;
    return int64_t{p->exp} + k <= INT32_MAX;
}

/// *high := *high x^k + low, x the main variable of *high, or of low if *high is a number. low is used up.
static void splice_poly(polyptrr high, poly low, int32_t k) {
    int32_t pads = is_number(*high) ? pads_of(low) : pads_of(*high);
    if (!is_number(*high)) {
        strip_pads(high);
        sub_expons(high, -k);
        add_pad(high, pads);
    } else if (!iszero((*high)->ncoef)) {
        poly shifted = nullptr;
        new_term(&shifted, k, *high);
        *high = shifted;
        add_pad(high, pads);
    }
    best_poly_add(*high, low, high);
}

/// Splice(^a, ^b, k): a becomes a x^k + b, b becomes 0.
void builtin_Splice(BuiltinCall& call) {
    open_call(call);
    ResultPlace a, b;
    read_result_place(call, &a);
    need_comma(call);
    read_result_place(call, &b);
    need_comma(call);
    int32_t k = read_power(call);
    if (k < 1) error(Err::splice_power);
    close_call(call);
    quolyptr p = polynomial_place(&a), q = polynomial_place(&b);
    if (p != nullptr && !power_fits(*p, k)) {
        error(Err::exponent_too_long);
        p = nullptr;
    }
    if (k >= 1 && p != nullptr && q != nullptr && number_polys > 0) {
        poly high = copy_of_value(*p), low = copy_of_value(*q);
        splice_poly(&high, low, k);
        quoly sum = nullptr, zero = nullptr;
        poly_to_quoly(&high, &sum);
        quoly_set(0, &zero);
        set_quotient(&b, &zero);
        set_quotient(&a, &sum);
    }
    quoly_set(0, call.n);
}

// ---- levels --------------------------------------------------------------------------------------------

static int32_t deepest_level(const polynode* p, int32_t level) {
    int32_t deepest = is_number(p) ? 0 : level;
    for (; p != nullptr; p = p->next)
        if (!p->numb) deepest = maxx(deepest, deepest_level(p->pcoef, level + 1));
    return deepest;
}

/// Every variable moves k levels deeper (k > 0) or towards level 1. False if there is no such level.
static bool move_levels(polyptrr p, int32_t k) {
    if (*p == nullptr || is_number(*p)) return true;
    if (k > 0) {
        if (deepest_level(*p, 1) + k > number_polys) return false;
        add_pad(p, k);
        return true;
    }
    if (poly_level(*p) + k < 1) return false;
    for (; k < 0; k++) {
        poly pad = *p;
        *p = pad->pcoef;
        free_node(pad);
    }
    return true;
}

/// Lower(e, k) and Raise(e, k); k = 1 if it is not given.
void builtin_Lower(BuiltinCall& call) {
    open_call(call);
    Value v;
    get_the_data(call, &v);
    int32_t k = next_argument(call) ? read_integer(call) : 1;
    close_call(call);
    take_argument(call, &v);
    quoly q = *call.n;
    if (q->numb || k == 0) return;
    if (k < -k_max_polys || k > k_max_polys) k = k_max_polys;
    if (call.id == 69) k = -k;
    poly numer = nullptr, denom = nullptr;
    poly_assign(q->numer, &numer);
    if (q->denom != nullptr) poly_assign(q->denom, &denom);
    if (move_levels(&numer, k) && move_levels(&denom, k)) {
        free_poly(&q->numer);
        free_poly(&q->denom);
        q->numer = numer;
        q->denom = denom;
        return;
    }
    free_poly(&numer);
    free_poly(&denom);
    error(Err::variable_argument);
}
}  // namespace tolvex
