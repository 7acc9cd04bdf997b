#include "quoly/canonical.h"

#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "numbers/limbs.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "poly/div_general.h"
#include "poly/div_user.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "quoly/ports.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_internal.h"
#include "quoly/reduce.h"
#include "storage/failure.h"
namespace tolvex {
// ---- the ends of all operations ------------------------------------------------------------------------

void receive_number(quolyptr p, imptr n) {
    quoly q = quoly_target(p);
    q->numb = 1;
    q->ncoef = n;
}

void receive_poly(quolyptr p, poly n) {
    if (is_number(n)) {
        imptr value = n->ncoef;
        free_node(n);
        receive_number(p, value);
        return;
    }
    quoly_target(p)->numer = n;
}

/// Divides numer by the number in denom, in lintmode: a unit by its inverse, a word with truncation.
static void divide_in(polyptrr numer, polyptrr denom) {
    if (modularmode) {
        int32_t inverse;
        mod_inverse((*denom)->ncoef->lint, &inverse);
        mod_num_poly_mult(numer, inverse);
    } else {
        poly_mod_or_div(*numer, *denom, numer, '\\', polynames);
    }
    free_poly(denom);
}

/// The number 0 takes the place of a value that cannot be, at a pushed level.
static void receive_zero(quolyptr p) {
    imptr zero;
    newimag(&zero);
    setvalue(0, zero);
    receive_number(p, zero);
}

void receive_fraction(quolyptr p, poly numer, poly denom) {
    if (denom == nullptr) {
        receive_poly(p, numer);
        return;
    }
    if (poly_iszero(denom)) {
        free_poly(&numer);
        free_poly(&denom);
        error(Err::zero_denominator);
        receive_zero(p);
        return;
    }
    if (poly_iszero(numer)) {
        free_poly(&denom);
    } else if (is_number(denom)) {
        if (lintmode) {
            divide_in(&numer, &denom);
        } else if (poly_eq_1(denom)) {
            free_poly(&denom);
        }
    }
    if (denom == nullptr) {
        receive_poly(p, numer);
        return;
    }
    quoly q = quoly_target(p);
    q->numer = numer;
    q->denom = denom;
    q->rat = is_number(numer) && is_number(denom);
}

/// The number record of *slot, which holds a leaf or nothing; a leaf is made as needed.
static imptr leaf_number(polyptrr slot) {
    if (*slot == nullptr) {
        newpoly(slot);
        init_poly_node(*slot);
    }
    return (*slot)->ncoef;
}

/// *p as a rational number whose records are used again if it was one.
static quoly rational_target(quolyptr p) {
    if (*p != nullptr && !(*p)->numb && (*p)->rat) return *p;
    quoly q = quoly_target(p);
    q->rat = 1;
    q->numer = nullptr;
    leaf_number(&q->numer);
    leaf_number(&q->denom);
    return q;
}

void receive_rational_limbs(quolyptr p, Limbs numer, bool negative, Limbs denom) {
    if (denom.n == 1 && denom.at[0] == 1) {
        chain_replace(numb_target(p), numer.at, numer.n, negative);
        return;
    }
    quoly q = rational_target(p);
    chain_replace(q->numer->ncoef, numer.at, numer.n, negative);
    chain_replace(q->denom->ncoef, denom.at, denom.n, false);
}

void receive_rational_words(quolyptr p, int64_t numer, int64_t denom) {
    if (denom == 1) {
        chain_set_int64(numb_target(p), numer);
        return;
    }
    quoly q = rational_target(p);
    chain_set_int64(q->numer->ncoef, numer);
    chain_set_int64(q->denom->ncoef, denom);
}

// ---- common factors ------------------------------------------------------------------------------------

void drop_factor(Factor* f) {
    if (f->fresh) free_poly(&f->p);
    f->p = nullptr;
}

poly factor_taken(Factor* f) {
    poly p = f->p;
    if (!f->fresh && !f->lent) {
        p = nullptr;
        poly_assign(f->p, &p);
    }
    f->p = nullptr;
    return p;
}

static void replace_factor(Factor* f, poly p) {
    if (f->fresh) free_poly(&f->p);
    *f = {p, true};
}

/// Divides the number g > 0 out of both. Chains.
static void cancel_number(Factor* f, Factor* g, const number* common) {
    poly a = nullptr, b = nullptr;
    number* c = const_cast<number*>(common);
    polynode leaf = {0, 1, nullptr, {c}};
    poly_quot(f->p, &leaf, &a);
    poly_quot(g->p, &leaf, &b);
    replace_factor(f, a);
    replace_factor(g, b);
}

/// One of the two is a number, coefficients are chains: the gcd of all integers.
static void cancel_contents(Factor* f, Factor* g) {
    const Factor* constant = is_number(f->p) ? f : g;
    number common = {};
    abs_val_num(constant->p->ncoef, &common);
    if (!is_longint(&common, 1)) {
        number other = {};
        find_gcdcoefs(constant == f ? g->p : f->p, &other);
        binary_gcd(&common, &other, &common);
        special_free(&other);
    }
    if (!is_longint(&common, 1)) cancel_number(f, g, &common);
    special_free(&common);
}

static void replace_by_one(Factor* f) {
    poly one = nullptr;
    poly_set(1, &one);
    replace_factor(f, one);
}

void cancel(Factor* f, Factor* g) {
    if (g->p == nullptr || poly_eq_1(g->p) || poly_eq_1(f->p)) return;
    if (lintmode && !modularmode) return;  // words: no gcd is known there
    if (is_number(f->p) || is_number(g->p)) {
        if (!lintmode) cancel_contents(f, g);
        return;
    }
    if (poly_equal(f->p, g->p)) {
        replace_by_one(f);
        replace_by_one(g);
        return;
    }
    poly common = nullptr, a = nullptr, b = nullptr;
    Lpolygcd(f->p, g->p, &common, laurent, polynames);
    if (!is_number(common)) {
        reduce(f->p, g->p, &common, &a, &b);
        replace_factor(f, a);
        replace_factor(g, b);
    } else if (!lintmode && !poly_eq_1(common)) {
        cancel_number(f, g, common->ncoef);
    }
    free_poly(&common);
}

// ---- normal form ---------------------------------------------------------------------------------------

void move_monomial(polyptrr numer, polyptrr denom) {
    if (is_number(*denom)) return;
    poly list = clear_bads(denom, INT32_MAX, k_leaf_depth);
    if (list == nullptr) return;
    eliminate_bads(numer, list, -1);
    free_exponent_list(&list);
}

/// Multiplies numer and denom by the inverse of the leading residue of denom. Should error 85 (it is no unit)
/// come back from a pushed command level, the fraction is 0.
static void make_monic(polyptrr numer, polyptrr denom) {
    int32_t lead = leading_coef(*denom)->ncoef->lint, inverse = 0;
    if (lead == 1) return;
    mod_inverse(lead, &inverse);
    if (inverse == 0) {
        poly_set(0, numer);
        poly_set(1, denom);
        return;
    }
    mod_num_poly_mult(denom, inverse);
    mod_num_poly_mult(numer, inverse);
}

void normalise_parts(polyptrr numer, polyptrr denom, bool laur) {
    if (laur) move_monomial(numer, denom);
    if (field_depth > 0 && (!lintmode || modularmode)) {
        if (!tower_normal_fraction(numer, denom)) tolvex_error("poly invertibility failure. bad pp2");
        if (!lintmode && neg_leading_term(*denom)) {
            poly_inplace(*numer);
            poly_inplace(*denom);
        }
    } else if (modularmode) {
        if (!is_number(*denom)) make_monic(numer, denom);
    } else if (neg_leading_term(*denom)) {
        poly_inplace(*numer);
        poly_inplace(*denom);
    }
}

void settle_fraction(polyptrr numer, polyptrr denom) {
    if ((!laurent && pseudo_polynames == nullptr) || *denom == nullptr || poly_iszero(*denom) ||
        poly_iszero(*numer))
        return;
    if (modout_above_field) {  // what was reduced may have a factor in common again
        Factor top = {*numer, true}, bottom = {*denom, true};
        cancel(&top, &bottom);
        *numer = top.p;
        *denom = bottom.p;
    }
    normalise_parts(numer, denom, laurent);
}

/// Gives the parts of q to the caller; q is left without any.
static void take_parts(quoly q, polyptrr numer, polyptrr denom) {
    *numer = q->numer;
    *denom = q->denom;
    q->numer = q->denom = nullptr;
}

void check_quoly(quolyptr q, boolean q_odd) {
    if ((*q)->numb) return;
    poly numer, denom;
    take_parts(*q, &numer, &denom);
    if (denom == nullptr || poly_iszero(numer) || poly_iszero(denom)) {
        receive_fraction(q, numer, denom);
        return;
    }
    if (q_odd) move_monomial(&numer, &denom);
    Factor top = {numer, true}, bottom = {denom, true};
    cancel(&top, &bottom);
    normalise_parts(&top.p, &bottom.p, q_odd);
    receive_fraction(q, top.p, bottom.p);
}
}  // namespace tolvex
