#include "field/tower_divide.h"

#include "field/tower_inverse.h"
#include "gcd/num_content.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- leading elements ----------------------------------------------------------------------------------

const polynode* leading_element(const polynode* p, polypt pt, polypt* level) {
    for (; pt->depth < field_depth && !p->numb; p = p->pcoef) pt = pt->next;
    *level = pt;
    return p;
}

/// What the leading element a is multiplied by: its inverse, over Q without the denominator; for a number
/// over Q its sign. Fresh, at `level`; nil: there is no inverse.
static poly normalising_factor(const polynode* a, polypt level) {
    poly factor = nullptr, denom = nullptr;
    if (!a->numb) {
        (void)tower_invert(const_cast<poly>(a), level, &factor, &denom);
        free_poly(&denom);
    } else if (!modularmode) {
        poly_set(chain_sign(a->ncoef) < 0 ? -1 : 1, &factor);
    } else {
        int32_t inverse = mod_inverse_or_0(a->ncoef->lint);
        if (inverse != 0) poly_set(inverse, &factor);
    }
    return factor;
}

bool tower_normalise(polyptrr r, polypt pt, polyptrr factor) {
    if (lintmode && !modularmode) return false;  // words that wrap: nothing is known of them
    polypt level;
    const polynode* a = leading_element(*r, pt, &level);
    poly f = normalising_factor(a, level);
    if (f == nullptr) return false;
    add_pad(&f, level->depth - pt->depth);
    if (!poly_eq_1(f)) poly_mult(*r, f, r, pt);
    if (factor != nullptr) {
        free_poly(factor);
        *factor = f;
    } else {
        free_poly(&f);
    }
    return true;
}

// ---- division by a polynomial whose leading element is a number ----------------------------------------

namespace {
/// A division under way: c n = q m + rest at every step.
struct ScaledDivision {
    poly q, rest;
    number c;  // a chain; not used in modular mode
};
}  // namespace

static void times_number(polyptrr p, const number* c) {
    if (!poly_iszero(*p)) num_poly_mult(p, c);
}

static void drop_division(ScaledDivision& d) {
    free_poly(&d.q);
    free_poly(&d.rest);
    special_free(&d.c);
}

/// m is a number: over Q c = m / gcd(m, content of n). False: no unit of the ring of words.
static bool divide_by_leaf(poly n, const number* m, ScaledDivision& d) {
    poly_set(0, &d.rest);
    if (modularmode) {
        d.q = divide_by_number(n, m);
        return d.q != nullptr;
    }
    number g = {};
    abs_val_num(m, &d.c);
    find_gcdcoefs(n, &g);
    if (!iszero(&g)) binary_gcd(&g, &d.c, &g);
    poly_assign(n, &d.q);
    if (!iszero(&g) && !is_longint(&g, 1)) {
        num_poly_quot(&d.q, &g, 0);
        divide_exact(&d.c, &g);
    }
    if (chain_sign(m) < 0) poly_inplace(d.q);
    special_free(&g);
    return true;
}

static bool divide_scaled(poly n, poly m, ScaledDivision& d, bool exact, polypt pt);

/// Takes the leading term off the rest: its coefficient is divided by that of m one level down.
static bool divide_top(poly m, ScaledDivision& d, polypt pt) {
    poly coefficient = coefficient_copy(d.rest);
    const int32_t e = d.rest->exp - m->exp;
    ScaledDivision below = {};
    bool divides = divide_scaled(coefficient, m->pcoef, below, true, pt->next);
    free_poly(&coefficient);
    if (!divides) {
        drop_division(below);
        return false;
    }
    drop_first_term(&d.rest);
    if (!modularmode && !is_longint(&below.c, 1)) {
        times_number(&d.rest, &below.c);
        times_number(&d.q, &below.c);
        fast_mult(&d.c, &below.c, &d.c);
    }
    poly factor = nullptr, product = nullptr;
    append_term(&factor, e, below.q), below.q = USED_UP;
    drop_division(below);
    if (m->next != nullptr) {
        poly_mult(factor, m->next, &product, pt);
        best_poly_sub(d.rest, product, &d.rest);
    }
    best_poly_add(d.q, factor, &d.q);
    return true;
}

/// The leading element of m is a number. exact: false as soon as m is seen not to divide n. d is empty
/// before; afterwards it is the caller's in any case.
static bool divide_scaled(poly n, poly m, ScaledDivision& d, bool exact, polypt pt) {
    if (is_number(m)) return divide_by_leaf(n, m->ncoef, d);
    poly_assign(n, &d.rest);
    poly_set(0, &d.q);
    special_set(1, &d.c);
    while (!poly_iszero(d.rest)) {
        poll_interrupt();
        if (is_number(d.rest) || d.rest->exp < m->exp) return !exact;
        if (!divide_top(m, d, pt)) return false;
    }
    return true;
}

// ---- the entries ---------------------------------------------------------------------------------------

/// The quotient and multiplier of d, where the divisor had been multiplied by `factor`, in lowest terms.
static void deliver_quotient(ScaledDivision& d, poly factor, polyptrr q, polyptrr r, polyptrr c, polypt pt) {
    if (!poly_eq_1(factor)) poly_mult(d.q, factor, &d.q, pt);
    if (!modularmode) {
        number g = {};
        find_gcdcoefs(d.q, &g);
        binary_gcd(&g, &d.c, &g);
        if (r != nullptr && !poly_iszero(d.rest)) {
            number rest = {};
            find_gcdcoefs(d.rest, &rest);
            binary_gcd(&g, &rest, &g);
            special_free(&rest);
        }
        if (!is_longint(&g, 1)) {
            num_poly_quot(&d.q, &g, 0);
            if (r != nullptr) num_poly_quot(&d.rest, &g, 0);
            divide_exact(&d.c, &g);
        }
        special_free(&g);
        scalar_to_poly(&d.c, c);
    } else {
        poly_set(1, c);
    }
    free_poly(q);
    *q = d.q, d.q = USED_UP;
    if (r != nullptr) {
        free_poly(r);
        *r = d.rest, d.rest = USED_UP;
    }
}

/// n by m; r nil: exactly.
static bool divide_by_normalised(poly n, poly m, polyptrr q, polyptrr r, polyptrr c, polypt pt) {
    poly divisor = nullptr, factor = nullptr;
    poly_assign(m, &divisor);
    bool done = tower_normalise(&divisor, pt, &factor);
    if (done) {
        ScaledDivision d = {};
        done = divide_scaled(n, divisor, d, r == nullptr, pt);
        if (done) deliver_quotient(d, factor, q, r, c, pt);
        drop_division(d);
    }
    free_poly(&divisor);
    free_poly(&factor);
    return done;
}

bool tower_quotient(poly n, poly m, polyptrr q, polyptrr c, polypt pt) {
    return divide_by_normalised(n, m, q, nullptr, c, pt);
}

bool tower_quotient_rest(poly n, poly m, polyptrr q, polyptrr r, polyptrr c, polypt pt) {
    return divide_by_normalised(n, m, q, r, c, pt);
}

bool tower_divide(poly n, poly m, polyptrr q, polypt pt) {
    poly quotient = nullptr, c = nullptr;
    bool divides = tower_quotient(n, m, &quotient, &c, pt) && poly_eq_1(c);
    free_poly(&c);
    if (divides)
        *q = quotient;
    else
        free_poly(&quotient);
    return divides;
}

void tower_div_rem(poly n, poly m, polyptrr q, polyptrr r, polypt pt) {
    poly c = nullptr;
    if (!tower_quotient_rest(n, m, q, r, &c, pt)) tolvex_error("poly invertibility failure. bad pp2");
    free_poly(&c);
}
}  // namespace tolvex
