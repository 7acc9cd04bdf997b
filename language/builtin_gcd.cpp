// Built-in functions of common divisors and contents.
#include "gcd/content.h"
#include "gcd/gcd_modes.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "gcd/word_lane.h"
#include "language/builtin_parts.h"
#include "language/builtin_table.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "poly/field_shape.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "quoly/quoly_scalar.h"
#include "storage/progress.h"
namespace tolvex {
// ---- greatest common divisor ---------------------------------------------------------------------------

/// The gcd of all numbers in p and g, in words.
static int32_t gcd_of_words(const polynode* p, int32_t g) {
    for (; p != nullptr && g != 1; p = p->next)
        g = p->numb ? smallgcd(g, p->ncoef->lint) : gcd_of_words(p->pcoef, g);
    return g;
}

/// *n := the gcd of the number x and the polynomial p. gcd(0, p) is p in normal form.
static void gcd_number_poly(const number* x, poly p, quolyptr n) {
    if (iszero(x)) {
        poly normal = nullptr;
        Lpolygcd2(p, p, &normal, polynames);
        poly_to_quoly(&normal, n);
        return;
    }
    quoly content = nullptr;
    if (modularmode) {
        quoly_set(finf ? 1 : smallgcd(gcd_of_words(p, x->lint), modulus), n);
        return;
    }
    poly numbers = nullptr;
    gcd_coefs(p, &numbers);
    poly_to_quoly(&numbers, &content);
    scalar_to_quoly(x, n);
    gcdnum(n, &content);
}

/// Denominators play no part.
static const number* number_in(const quolynode* q) {
    if (q->numb) return q->ncoef;
    return is_number(q->numer) ? q->numer->ncoef : nullptr;
}

/// Modulo a composite a leading number that is no unit may stop Euclid's algorithm. False: *r is no more than
/// what is common for certain.
static bool gcd_modulo_composite(poly a, poly b, polyptrr r) {
    poly u = nullptr, v = nullptr;
    poly_assign_polled(a, &u);
    poly_assign_polled(b, &v);
    const polyptrr both[] = {&u, &v};
    for (polyptrr p : both) {  // monomials are units under laurent
        if (!has_negative_exponent(*p)) continue;
        poly shift = clear_bads(p, INT32_MAX, k_leaf_depth);
        free_exponent_list(&shift);
    }
    bool whole = true;
    if (is_number(u) || is_number(v))
        Lpolygcd2(u, v, r, polynames);
    else
        whole = composite_gcd(u, v, r, polynames);
    free_poly(&u);
    free_poly(&v);
    return whole;
}

void gcd_of_values(const quolynode* a, const quolynode* b, quolyptr n) {
    const number *x = number_in(a), *y = number_in(b);
    if (x != nullptr && y != nullptr) {
        quoly second = nullptr;
        scalar_to_quoly(x, n);
        scalar_to_quoly(y, &second);
        gcdnum(n, &second);
    } else if (x != nullptr) {
        gcd_number_poly(x, b->numer, n);
    } else if (y != nullptr) {
        gcd_number_poly(y, a->numer, n);
    } else {
        poly r = nullptr;
        if (!ring_is_composite())
            Lpolygcd2(a->numer, b->numer, &r, polynames);
        else if (!gcd_modulo_composite(a->numer, b->numer, &r))
            error(Err::not_invertible);
        poly_to_quoly(&r, n);
    }
}

void builtin_GCD(BuiltinCall& call) {
    Value a, b;
    open_with_two(call, &a, &b);
    close_call(call);
    const quolynode *x = value_of(&a), *y = value_of(&b);
    if (verbose && ((!x->numb && x->denom != nullptr) || (!y->numb && y->denom != nullptr)))
        printf("Warning. An argument to GCD is a rational function. Denominators ignored. \n");
    gcd_of_values(x, y, call.n);
    drop_data(&b);
    drop_data(&a);
}

/// Numcon: the numeric content.
void builtin_Numcon(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    take_argument(call, &v);
    quoly q = *call.n;
    if (q->numb && (iszero(q->ncoef) || !lintmode)) {
        quoly_abs(q);
    } else if (q->numb) {
        quoly_set(1, call.n);
    } else if (q->rat) {
        quoly_abs(q);
    } else if (q->denom != nullptr) {
        error(Err::rational_not_allowed);
        set_zero(call.n);
    } else {
        poly content = nullptr;
        gcd_coefs(q->numer, &content);
        return_poly(call, &content);
    }
}

// ---- contents ------------------------------------------------------------------------------------------

/// The name of a polynomial variable, read over; 0 after error 282.
static int32_t read_variable_name(BuiltinCall& call) {
    int32_t level = is_lower(tok_char(token)) ? its_a_polyname(token) : 0;
    if (level == 0) error(Err::variable_not_declared);
    next_token(call.inf, call.flag);
    return level;
}

/// *r := the gcd of the coefficients of p in the variable of `level`; a number is its own, without sign.
static void call_content(poly p, int32_t level, polyptrr r) {
    if (is_number(p)) {
        if (modularmode)
            poly_set(iszero(p->ncoef) ? 0 : 1, r);
        else
            gcd_coefs(p, r);
        return;
    }
    gcd_counters_reset();  // in a body too it is a computation of its own
    *r = content_in_level(p, level, polynames);
}

/// Content(p), Content(p, x): the gcd of the coefficients in the main variable, or in x.
void builtin_Content(BuiltinCall& call) {
    open_call(call);
    Value v;
    get_the_data(call, &v);
    bool named = next_argument(call);
    int32_t level = named ? read_variable_name(call) : 0;
    close_call(call);
    polynode leaf;
    poly r = nullptr;
    poly p = named && level == 0 ? nullptr : plain_polynomial(value_of(&v), &leaf);
    if (p == nullptr)
        poly_set(0, &r);
    else
        call_content(p, named ? level : main_level(p), &r);
    drop_data(&v);
    return_poly(call, &r);
}
}  // namespace tolvex
