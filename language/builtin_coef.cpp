// Built-in functions of coefficients, terms and monomials.
#include "field/tower_divide.h"
#include "language/builtin_parts.h"
#include "language/builtin_table.h"
#include "language/locations.h"
#include "language/symbols.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "quoly/canonical.h"
#include "quoly/quoly_add.h"
namespace tolvex {
// ---- what the functions ask for ------------------------------------------------------------------------

/// The argument of a coefficient function becomes the value; true if it is a polynomial to be worked on. A
/// number is its own coefficient.
static bool polynomial_argument(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    take_argument(call, &v);
    const quolynode* q = *call.n;
    if (q->numb) return false;
    if (q->denom == nullptr) return true;
    error(q->rat ? Err::rational_not_allowed : Err::rational_function_argument);
    set_zero(call.n);
    return false;
}

static bool is_pad(const polynode* p) { return p->exp == 0 && !p->numb && p->next == nullptr; }

static poly copy_of(const polynode* p) {
    poly c = nullptr;
    poly_assign(p, &c);
    return c;
}

static void number_value(BuiltinCall& call, const number* x) {
    quoly value = nullptr;
    scalar_to_quoly(x, &value);
    free_quoly(call.n);
    *call.n = value;
}

// ---- leading and trailing ------------------------------------------------------------------------------

/// Lcoef: the coefficient of the highest power of the main variable.
static poly leading_coefficient(const polynode* p) {
    int32_t level = 1;
    for (; is_pad(p); p = p->pcoef) level++;
    if (p->numb) {
        poly c = nullptr;
        node_assign(p, &c);
        return c;
    }
    poly c = copy_of(p->pcoef);
    add_pad(&c, level);
    return c;
}

void builtin_Lcoef(BuiltinCall& call) {
    if (!polynomial_argument(call)) return;
    poly c = leading_coefficient((*call.n)->numer);
    return_poly(call, &c);
}

/// A chain of the leading terms of p at every level: its first monomial with its number.
static poly leading_term(const polynode* p) {
    poly t = nullptr;
    if (p->numb)
        node_assign(p, &t);
    else
        new_term(&t, p->exp, leading_term(p->pcoef));
    if (!t->numb) fix_top(&t);
    return t;
}

void builtin_Lterm(BuiltinCall& call) {
    if (!polynomial_argument(call)) return;
    poly t = leading_term((*call.n)->numer);
    return_poly(call, &t);
}

/// Flcoef: the leading element of the coefficient field; without a field the number of the first term.
void builtin_Flcoef(BuiltinCall& call) {
    if (!polynomial_argument(call)) return;
    polypt level = polynames;
    const polynode* first = field_depth > 0 ? leading_element((*call.n)->numer, polynames, &level)
                                            : leading_coef((*call.n)->numer);
    poly element = nullptr;
    if (first->numb)
        node_assign(first, &element);
    else
        poly_assign(first, &element);
    add_pad(&element, level->depth - 1);
    return_poly(call, &element);
}

/// Ncoef: the number of the first term.
void builtin_Ncoef(BuiltinCall& call) {
    if (!polynomial_argument(call)) return;
    number_value(call, leading_coef((*call.n)->numer)->ncoef);
}

/// Ntcoef: the number of the last term in display order.
void builtin_Ntcoef(BuiltinCall& call) {
    if (!polynomial_argument(call)) return;
    const polynode* p = (*call.n)->numer;
    for (;;) {
        while (p->next != nullptr) p = p->next;
        if (p->numb) break;
        p = p->pcoef;
    }
    number_value(call, p->ncoef);
}

// ---- monomials -----------------------------------------------------------------------------------------

/// Exponents by level, 1 based.
struct Exponents {
    int32_t of[k_levels];
    int32_t last;  // deepest level with an exponent; 0: the monomial 1
};

/// The exponents of a value that is a monomial; error 192 if it is none.
static bool exponents_of(const quolynode* q, Exponents* e) {
    *e = {};
    if (q->numb) return true;
    if (q->denom != nullptr || !monomial(q->numer)) {
        error(Err::not_monomial);
        return false;
    }
    int32_t level = 1;
    for (const polynode* p = q->numer; !p->numb; p = p->pcoef, level++) {
        e->of[level] = p->exp;
        if (p->exp != 0) e->last = level;
    }
    return true;
}

/// The monomial with these exponents and the coefficient 1.
static poly monomial_of(const Exponents* e) {
    poly p = nullptr;
    poly_set(1, &p);
    for (int32_t level = e->last; level >= 1; level--) {
        poly t = nullptr;
        new_term(&t, e->of[level], p);
        p = t;
    }
    return p;
}

/// Which terms select() takes: the exponents equal to the wanted ones, or at least as large.
enum class Match { equal, divisible };

/// The part of the chain p, which stands at `level`, that matches e there and below, divided by the monomial.
/// nil if nothing matches.
static poly select(const polynode* p, int32_t level, const Exponents* e, Match match) {
    poly head = nullptr;
    poly* end = &head;
    for (; p != nullptr; p = p->next) {
        int32_t wanted = e->of[level];
        bool fits = wanted == 0 || (match == Match::equal ? p->exp == wanted : p->exp >= wanted);
        if (!fits) continue;
        poly c = nullptr;
        if (p->numb) {
            if (level < e->last) continue;
            node_assign(p, &c);
        } else {
            c = level < e->last ? select(p->pcoef, level + 1, e, match) : copy_of(p->pcoef);
        }
        if (c == nullptr) continue;
        int32_t exp = p->exp - wanted;
        if (exp == 0 && is_number(c))
            *end = c;
        else
            new_term(end, exp, c);
        end = &(*end)->next;
    }
    return head;
}

static poly selected(const polynode* p, const Exponents* e, Match match) {
    poly part = e->last == 0 && match == Match::divisible ? copy_of(p) : select(p, 1, e, match);
    fix_top(&part);
    return part;
}

/// The number in front of exactly the monomial e; nil if it does not occur.
static const number* number_at(const polynode* p, const Exponents* e) {
    for (int32_t level = 1;; level++) {
        int32_t wanted = level <= e->last ? e->of[level] : 0;
        while (p != nullptr && p->exp != wanted) p = p->next;
        if (p == nullptr) return nullptr;
        if (p->numb) return level >= e->last ? p->ncoef : nullptr;
        p = p->pcoef;
        if (is_number(p)) return level >= e->last ? p->ncoef : nullptr;
    }
}

/// Reads "," and an argument that is a monomial.
static bool monomial_argument(BuiltinCall& call, Exponents* e) {
    Value m;
    need_comma(call);
    get_the_data(call, &m);
    bool good = exponents_of(value_of(&m), e);
    drop_data(&m);
    return good;
}

/// The arguments (p, m) of the functions below. The caller ends with drop_data(&v).
struct MonomialCall {
    Value v;
    Exponents e;
    polynode leaf;
    const polynode* p;  // v as a polynomial; nil after an error
};

static void read_monomial_call(BuiltinCall& call, MonomialCall* m) {
    open_call(call);
    get_the_data(call, &m->v);
    bool good = monomial_argument(call, &m->e);
    close_call(call);
    m->p = polynomial_of(value_of(&m->v), &m->leaf, Err::rational_function_argument);
    if (!good) m->p = nullptr;
}

/// Nmcoef(p, m): the number in front of m.
void builtin_Nmcoef(BuiltinCall& call) {
    MonomialCall m;
    read_monomial_call(call, &m);
    const number* x = m.p != nullptr ? number_at(m.p, &m.e) : nullptr;
    if (x != nullptr)
        number_value(call, x);
    else
        quoly_set(0, call.n);
    drop_data(&m.v);
}

/// Zcoef(p): the number that stands alone.
void builtin_Zcoef(BuiltinCall& call) {
    if (!polynomial_argument(call)) return;
    Exponents none = {};
    const number* x = number_at((*call.n)->numer, &none);
    if (x != nullptr)
        number_value(call, x);
    else
        set_zero(call.n);
}

/// Mcoef(p, m) and Mcoefs(p, m).
void builtin_Mcoef(BuiltinCall& call) {
    constexpr int32_t k_divisible_id = 44;  // ORDER BUILTIN_IDS
    MonomialCall m;
    read_monomial_call(call, &m);
    poly part = nullptr;
    if (m.p != nullptr)
        part = selected(m.p, &m.e, call.id == k_divisible_id ? Match::divisible : Match::equal);
    else
        poly_set(0, &part);
    drop_data(&m.v);
    return_poly(call, &part);
}

// ---- Coef ----------------------------------------------------------------------------------------------

int32_t main_level(const polynode* p) {
    int32_t level = 1;
    for (; is_pad(p); p = p->pcoef) level++;
    return level;
}

/// The coefficient of the power k of the variable `down` levels below the chain p, nil if it is 0.
static poly coefficient_of_power(const polynode* p, int32_t down, int32_t k) {
    poly head = nullptr;
    poly* end = &head;
    for (; p != nullptr; p = p->next) {
        if (down == 0 && p->exp != k) continue;
        poly c = nullptr;
        if (p->numb) {
            if (down > 0 && k != 0) continue;
            node_assign(p, &c);
        } else {
            c = down == 0 ? copy_of(p->pcoef) : coefficient_of_power(p->pcoef, down - 1, k);
        }
        if (c == nullptr) continue;
        int32_t exp = down == 0 ? 0 : p->exp;
        if (exp == 0 && is_number(c))
            *end = c;
        else
            new_term(end, exp, c);
        end = &(*end)->next;
    }
    return head;
}

void take_coefficient(quolyptr n, int32_t level, int32_t k) {
    poly p = nullptr;
    quoly_consume(n, &p);
    poly c = coefficient_of_power(p, level - 1, k);
    free_poly(&p);
    fix_top(&c);
    poly_to_quoly(&c, n);
}

/// One argument "x" or "k" of Coef: the level of a variable, or 0 and the number *k.
static int32_t variable_or_power(BuiltinCall& call, int32_t* k) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    Value v;
    get_the_data(call, &v);
    const quolynode* q = value_of(&v);
    Exponents e = {};
    int32_t level = 0;
    *k = 0;
    if (q->numb) {
        *k = convert_to_int(q->ncoef);
    } else if (q->denom == nullptr && monomial(q->numer) && exponents_of(q, &e) && e.of[e.last] == 1) {
        level = e.last;
        for (int32_t i = 1; i < e.last; i++)
            if (e.of[i] != 0) level = -1;
    } else {
        level = -1;
    }
    drop_data(&v);
    restore_modular(was_modular);
    if (level == -1) error(Err::variable_not_declared);
    return level;
}

/// Coef(p), Coef(p, k), Coef(p, x1, k1, x2, k2, ...). An empty p is 0.
void builtin_Coef(BuiltinCall& call) {
    open_call(call, Err::builtin_shape_coefficient);
    if (at_char(',') || at_char(')')) {
        quoly_set(0, call.n);
    } else {
        Value v;
        get_the_data(call, &v);
        take_value(&v, call.n);
        let_go(&v);
    }
    if (!(*call.n)->numb && (*call.n)->denom != nullptr) {
        error(Err::rational_function_argument);
        set_zero(call.n);
    }
    held_operand here = {call.n, call.n, eval_state.held};
    eval_state.held = &here;
    if (at_char(')') && !(*call.n)->numb) {
        poly c = leading_coefficient((*call.n)->numer);
        return_poly(call, &c);
    }
    while (next_argument(call)) {
        int32_t k = 0;
        int32_t level = variable_or_power(call, &k);
        if (level == 0) {
            take_coefficient(call.n, (*call.n)->numb ? 1 : main_level((*call.n)->numer), k);
            break;
        }
        need_comma(call);
        k = read_integer(call);
        if (level > 0) take_coefficient(call.n, level, k);
    }
    eval_state.held = here.below;
    close_call(call);
}

/// The number in front of the monomial e becomes x: the difference of both, times the monomial, is added.
static void change_coef(ResultPlace* place, quolyptr p, const Exponents* e, const number* x) {
    polynode leaf;
    const polynode* target = polynomial_of(*p, &leaf, Err::rational_function_argument);
    if (target == nullptr) return;
    const number* old = number_at(target, e);
    poly change = monomial_of(e), fresh = nullptr, sum = nullptr;
    scalar_by_poly(x, change, &fresh);
    if (old != nullptr) {
        scalar_by_poly(old, change, &change);
        best_poly_sub(fresh, change, &fresh);
    } else {
        free_poly(&change);
    }
    poly_assign(target, &sum);
    best_poly_add(sum, fresh, &sum);
    quoly value = nullptr;
    poly_to_quoly(&sum, &value);
    set_quotient(place, &value);
}

/// Rcoef(^p, m, c): the number in front of the monomial m becomes c.
void builtin_Rcoef(BuiltinCall& call) {
    open_call(call);
    ResultPlace place;
    read_result_place(call, &place);
    Exponents e;
    bool good = monomial_argument(call, &e);
    need_comma(call);
    Value c;
    get_the_data(call, &c);
    close_call(call);
    quolyptr p = place_to_read(&place);
    if (!value_of(&c)->numb)
        error(Err::number_expected);
    else if (good && p != nullptr)
        change_coef(&place, p, &e, value_of(&c)->ncoef);
    drop_data(&c);
    quoly_set(0, call.n);
}

// ---- leading monomials ---------------------------------------------------------------------------------

/// Lmon(p), Lmon(p, x): the leading monomial, down to the level of x.
void builtin_Lmon(BuiltinCall& call) {
    open_call(call);
    Value v;
    get_the_data(call, &v);
    int32_t k = 0, level = k_levels;
    if (next_argument(call)) {
        level = variable_or_power(call, &k);
        if (level == 0) error(Err::variable_not_declared);
    }
    close_call(call);
    const quolynode* q = value_of(&v);
    if (!q->numb && q->denom == nullptr) {
        Exponents e = {};
        int32_t at = 1;
        for (const polynode* p = q->numer; !p->numb && at <= level; p = p->pcoef, at++) {
            e.of[at] = p->exp;
            if (p->exp != 0) e.last = at;
        }
        drop_data(&v);
        poly m = monomial_of(&e);
        return_poly(call, &m);
        return;
    }
    if (!q->numb) error(q->rat ? Err::rational_not_allowed : Err::rational_function_argument);
    take_argument(call, &v);
}

/// True if the leading monomial of a comes before that of b, exponents compared from level 1 on.
static bool mon_less(const polynode* a, const polynode* b) {
    for (;;) {
        int32_t ea = a->numb ? 0 : a->exp, eb = b->numb ? 0 : b->exp;
        if (ea != eb) return ea < eb;
        if (a->numb && b->numb) return false;
        if (!a->numb) a = a->pcoef;
        if (!b->numb) b = b->pcoef;
    }
}

/// Monless(a, b).
void builtin_Monless(BuiltinCall& call) {
    Value a, b;
    open_with_two(call, &a, &b);
    close_call(call);
    polynode leaf_a, leaf_b;
    const polynode* p = polynomial_of(value_of(&a), &leaf_a, Err::rational_function_argument);
    const polynode* r = polynomial_of(value_of(&b), &leaf_b, Err::rational_function_argument);
    bool less = p != nullptr && r != nullptr && mon_less(p, r);
    drop_data(&b);
    drop_data(&a);
    return_word(call, less);
}
}  // namespace tolvex
