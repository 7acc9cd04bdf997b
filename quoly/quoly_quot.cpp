#include "quoly/quoly_quot.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_mult.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "poly/div_user.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "quoly/canonical.h"
#include "quoly/ports.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_fraction.h"
#include "quoly/quoly_internal.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_rats.h"
#include "storage/failure.h"
namespace tolvex {
// ---- quotients -----------------------------------------------------------------------------------------

static void divide_lints(int32_t n, int32_t m, imptr q) {
    if (modularmode) {
        int32_t inverse;
        mod_inverse(m, &inverse);
        q->lint = modmult(static_cast<uint32_t>(n), static_cast<uint32_t>(inverse));
    } else {
        q->lint = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(int64_t{n} / m)));
    }
}

/// n / m without any gcd: the user vouches that there is none.
static void quotient_as_given(Fraction a, Fraction b, poly* numer, poly* denom) {
    *numer = *denom = nullptr;
    if (b.denom != nullptr) {
        poly_mult(a.numer, b.denom, numer, polynames);
    } else {
        poly_assign(a.numer, numer);
    }
    if (a.denom != nullptr) {
        poly_mult(a.denom, b.numer, denom, polynames);
    } else {
        poly_assign(b.numer, denom);
    }
}

/// `lent`: the parts of both may become parts of *p.
static void divide_fractions(quoly n, quoly m, quolyptr p, boolean nogcd, bool lent = false) {
    QuolyView a(n), b(m);
    poly numer = nullptr, denom = nullptr;
    if (nogcd) {
        quotient_as_given({a.numer, a.denom}, {b.numer, b.denom}, &numer, &denom);
    } else {
        // The reciprocal of m is a view with its parts exchanged; m itself is never touched.
        Fraction reciprocal = {b.denom != nullptr ? b.denom : poly_1, b.numer, lent && !m->numb};
        fraction_product({a.numer, a.denom, lent && !n->numb}, reciprocal, &numer, &denom);
        let_parts_go(n, numer, denom);
        let_parts_go(m, numer, denom);
    }
    if (!poly_iszero(denom) && !poly_iszero(numer)) normalise_parts(&numer, &denom, laurent);
    receive_fraction(p, numer, denom);
}

void quoly_quot(quoly n, quoly m, quolyptr p, boolean nogcd) {
    if (quoly_iszero(m)) {
        error(Err::division_by_zero);
        quoly_set(quotient_by_zero, p);
    } else if (n == m) {
        quoly_set(1, p);
    } else if (lintmode && n->numb && m->numb) {
        int32_t top = n->ncoef->lint, bottom = m->ncoef->lint;
        divide_lints(top, bottom, numb_target(p));
    } else if (quoly_iszero(n)) {
        quoly_set(0, p);
    } else if (integerflag && !lintmode && n->numb && m->numb) {
        number q = {};
        trunc_divide(n->ncoef, m->ncoef, &q, nullptr);
        scalar_to_quoly(&q, p);
        special_free(&q);
    } else if (!lintmode && is_rational(n) && is_rational(m)) {
        quot_rats(n, m, p);
    } else {
        divide_fractions(n, m, p, nogcd);
    }
}

void fast_quoly_quot(quolyptr n, quoly m, boolean nogcd) { quoly_quot(*n, m, n, nogcd); }

void best_quoly_quot(quolyptr n, quoly m, boolean nogcd) {
    if ((*n)->numb || m->numb || is_rational(*n) || is_rational(m))
        quoly_quot(*n, m, n, nogcd);
    else
        divide_fractions(*n, m, n, nogcd, /*lent*/ true);
    free_quoly(&m);
}

// ---- quotient and remainder as the user means them -----------------------------------------------------

/// A part of n divided by m.
static poly divided_part(poly part, poly m, char which) {
    poly r = nullptr;
    if (is_number(part) && is_number(m)) {
        newpoly(&r);
        init_poly_node(r);
        mod_or_div(part->ncoef, m->ncoef, r->ncoef, which);
    } else {
        poly_mod_or_div(part, m, &r, which, polynames);
    }
    return r;
}

/// True if m, no number, has a leading coefficient in the field tower (a number is in it): *degree in its
/// main variable, *depth the level of that.
static bool divides_in_field(const polynode* m, int32_t* degree, int32_t* depth) {
    if (field_depth == 0 || lintmode || is_number(m)) return false;
    for (*depth = 1; m->exp == 0 && !m->numb; m = m->pcoef) ++*depth;
    *degree = m->exp;
    if (*depth >= field_depth) return true;
    return is_number(m->pcoef) || is_field_element(m->pcoef, *depth + 1);
}

/// p := n / m in a field over Q: the divisor gets an integer d as leading number, and n is multiplied by a
/// power of d beforehand, so that all quotients are integers.
static void divide_in_field(poly n, poly m, int32_t degree, int32_t depth, quolyptr p, char which) {
    poly divisor = nullptr, factor = nullptr, r = nullptr;
    poly_assign(m, &divisor);
    if (!tower_integer_lead(&divisor, &factor)) tolvex_error("poly invertibility failure. bad pp2");
    number scale = {};
    int32_t most = 0;
    if (depth < field_depth)
        max_degree(n, depth, &most);
    else
        degree = 0;  // m is a field element
    num_assign(leading_coef(divisor)->ncoef, &scale);
    number_power(&scale, most < degree ? 0 : most - degree + 1);
    poly_assign(n, &r);
    num_poly_mult(&r, &scale);
    poly_mod_or_div(r, divisor, &r, which, polynames);
    if (which == '\\') poly_mult(r, factor, &r, polynames);
    free_poly(&divisor);
    free_poly(&factor);
    quoly q = quoly_target(p);
    q->numer = r;
    scalar_to_poly(&scale, &q->denom);
    special_free(&scale);
    check_quoly(p, laurent);
}

void quoly_mod_or_div(quoly n, quoly m, quolyptr p, char which) {
    if (m->denom != nullptr) {
        error(Err::negative_exponents);
        quoly_set(0, p);
        return;
    }
    if (quoly_iszero(m)) {
        error(Err::division_by_zero);
        quoly_set(0, p);
        return;
    }
    if (n->numb && m->numb) {
        number r = {};
        mod_or_div(n->ncoef, m->ncoef, &r, which);
        scalar_to_quoly(&r, p);
        free_num(&r);
        return;
    }
    QuolyView a(n), b(m);
    int32_t degree, depth;
    if (divides_in_field(b.numer, &degree, &depth) && (a.denom == nullptr || is_number(a.denom))) {
        quoly quotient = nullptr;
        divide_in_field(a.numer, b.numer, degree, depth, &quotient, which);
        if (a.denom != nullptr) {
            quoly divisor = nullptr;
            scalar_to_quoly(a.denom->ncoef, &divisor);
            fast_quoly_quot(&quotient, divisor, 0);
            free_quoly(&divisor);
        }
        free_quoly(p);
        *p = quotient;
        return;
    }
    poly numer = divided_part(a.numer, b.numer, which);
    poly denom = a.denom != nullptr ? divided_part(a.denom, b.numer, which) : nullptr;
    if (denom != nullptr && poly_iszero(denom)) {
        free_poly(&numer);
        free_poly(&denom);
        error(Err::zero_denominator);
        quoly_set(0, p);
        return;
    }
    quoly q = quoly_target(p);
    q->numer = numer;
    q->denom = denom;
    check_quoly(p, laurent);
}

/// The floor of a rational number: the truncated quotient, less 1 below 0 (it is never an integer).
static void floor_of_rational(quolyptr q) {
    number floor = {};
    const number* top = (*q)->numer->ncoef;
    trunc_divide(top, (*q)->denom->ncoef, &floor, nullptr);
    bool below_zero = chain_sign(top) < 0;
    scalar_to_quoly(&floor, q);
    special_free(&floor);
    if (!below_zero) return;
    fast_quoly_sub(q, quol_num_1);
}

void quoly_great_int(quolyptr q) {
    if (lintmode || (*q)->numb || (*q)->denom == nullptr) return;
    if ((*q)->rat) {
        floor_of_rational(q);
        return;
    }
    poly r = divided_part((*q)->numer, (*q)->denom, '\\');
    receive_poly(q, r);
}
}  // namespace tolvex
