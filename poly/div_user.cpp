#include "poly/div_user.h"

#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "poly/div_field.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
#include "storage/interrupt.h"

#include <initializer_list>
namespace tolvex {
// Quotient truncated towards 0 and remainder by |b| in 64 bits, where no pair of words overflows.
static void word_divide(int64_t a, int64_t b, bool positive, bool keep_identity, int32_t* q, int32_t* r) {
    int64_t quotient = a / b, rest = a % b;
    if (positive && rest < 0) {
        rest += b < 0 ? -b : b;
        if (keep_identity) quotient += b < 0 ? 1 : -1;
    }
    *q = static_cast<int32_t>(static_cast<uint32_t>(quotient));
    *r = static_cast<int32_t>(rest);
}

// q and r are fresh. positive: a negative remainder gets |m| added; keep_identity: and q is corrected, so
// that n = q m + r with the r that is returned.
static void divide_numbers(const number* n, const number* m, bool positive, bool keep_identity, imptr q,
                           imptr r) {
    if (iszero(m)) {
        error(Err::division_by_zero);
        setvalue(0, q);
        setvalue(0, r);
        return;
    }
    if (lintmode) {
        word_divide(n->lint, m->lint, positive, keep_identity, &q->lint, &r->lint);
        return;
    }
    trunc_divide(n, m, q, r);
    if (!positive || chain_sign(r) >= 0) return;
    if (chain_sign(m) > 0) {
        fastsum(r, m);
        if (keep_identity) fastdiff(q, &number_1);
    } else {
        fastdiff(r, m);
        if (keep_identity) fastsum(q, &number_1);
    }
}

static void take_number(imptr target, number* fresh) {
    if (lintmode) {
        target->lint = fresh->lint;
        return;
    }
    special_free(target);
    target->head = fresh->head;
    target->tail = fresh->tail;
    target->size = fresh->size;
    fresh->size = 0;
}

void mod_or_div(const number* n, const number* m, imptr p, char which) {
    number q = {}, r = {};
    divide_numbers(n, m, pos_mod, false, &q, &r);
    take_number(p, which == '|' ? &r : &q);
    special_free(&q);
    special_free(&r);
}

void mod_and_div(const number* n, const number* m, imptr q, imptr r) {
    number q2 = {}, r2 = {};
    divide_numbers(n, m, pos_mod, true, &q2, &r2);
    take_number(q, &q2);
    take_number(r, &r2);
}

namespace {
/// How numbers are divided in the pass below.
enum class Rule { truncate, user, pair };
}  // namespace

static bool divide_pass(poly n, poly m, polyptrr q, polyptrr r, Rule rule, polypt pt);

// m is a number: every coefficient apart.
static void divide_coefficients(poly n, poly m, polyptrr q, polyptrr r, Rule rule) {
    poly q_head = nullptr, r_head = nullptr;
    polyptrr q_tail = &q_head, r_tail = &r_head;
    for (poly t = n; t != nullptr; t = t->next) {
        poll_interrupt();
        poly qc = nullptr, rc = nullptr;
        if (t->numb) {
            poly_set(0, &qc);
            poly_set(0, &rc);
            number q2 = {}, r2 = {};
            divide_numbers(t->ncoef, m->ncoef, pos_mod && rule != Rule::truncate, rule == Rule::pair, &q2,
                           &r2);
            take_number(qc->ncoef, &q2);
            take_number(rc->ncoef, &r2);
        } else {
            divide_coefficients(t->pcoef, m, &qc, &rc, rule);
        }
        if (poly_iszero(qc))
            free_poly(&qc);
        else
            q_tail = append_term(q_tail, t->exp, qc);
        if (poly_iszero(rc))
            free_poly(&rc);
        else
            r_tail = append_term(r_tail, t->exp, rc);
    }
    fix_top(&q_head);
    fix_top(&r_head);
    *q = q_head;
    *r = r_head;
}

static void both_zero(polyptrr q, polyptrr r) {
    poly_set(0, q);
    poly_set(0, r);
}

// False after error 85, which may come back from a pushed command level.
static bool is_unit(const number* residue) {
    if (residue->lint == 0 || mod_inverse_or_0(residue->lint) != 0)
        return true;  // 0 is a fault of the caller
    error(Err::not_invertible);
    return false;
}

// One pass over the exponents from deg n down to deg m. What the leading coefficient of m leaves at an
// exponent stays in the remainder, so the pass ends over Z too and n = q m + r holds.
static bool divide_over_exponents(poly n, poly m, polyptrr q, polyptrr r, polypt pt) {
    poly q_head = nullptr, kept = nullptr, rest = nullptr;
    polyptrr q_tail = &q_head, kept_tail = &kept;
    poly_assign(n, &rest);
    while (rest != nullptr && !poly_iszero(rest) && rest->exp >= m->exp) {
        poll_interrupt();
        int32_t e = rest->exp;
        poly c = coefficient_copy(rest), t = nullptr, ignored = nullptr;
        bool divided = divide_pass(c, m->pcoef, &t, &ignored, Rule::truncate, pt->next);
        free_poly(&c);
        free_poly(&ignored);
        if (!divided) {
            for (poly* p : {&t, &q_head, &kept, &rest}) free_poly(p);
            both_zero(q, r);
            return false;
        }
        if (!poly_iszero(t)) {
            poly factor = nullptr, product = nullptr, copy = nullptr;
            poly_assign(t, &copy);
            append_term(&factor, e - m->exp, copy);
            q_tail = append_term(q_tail, e - m->exp, t);
            poly_mult(factor, m, &product, pt);
            free_poly(&factor);
            best_poly_sub(rest, product, &rest);
        } else {
            free_poly(&t);
        }
        if (!poly_iszero(rest) && rest->exp == e) {  // what is left at e goes to the remainder
            *kept_tail = rest;
            kept_tail = &rest->next;
            rest = rest->next;
            *kept_tail = nullptr;
        }
    }
    if (rest != nullptr && poly_iszero(rest)) free_poly(&rest);
    *kept_tail = rest;
    fix_top(&q_head);
    fix_top(&kept);
    *q = q_head;
    *r = kept;
    return true;
}

// The leading coefficient of m, or m itself, is a field element and no number.
static bool has_element_as_lead(const polynode* m, polypt pt) {
    if (is_field_element(m, pt->depth)) return true;
    return m->exp > 0 && !is_number(m->pcoef) && is_field_element(m->pcoef, pt->depth + 1);
}

// q and r are fresh. False, with both 0, after an error that came back from a pushed command level.
static bool divide_pass(poly n, poly m, polyptrr q, polyptrr r, Rule rule, polypt pt) {
    if (is_number(m)) {
        if (!modularmode) {
            divide_coefficients(n, m, q, r, rule);
            return true;
        }
        bool unit = is_unit(m->ncoef);
        both_zero(q, r);
        if (unit) poly_quot(n, m, q);
        return unit;
    }
    if ((is_number(n) && (m->exp > 0 || node_iszero(n))) || n->exp < m->exp) {
        poly_set(0, q);
        poly_assign(n, r);
        return true;
    }
    if (modularmode && field_depth > 0 && has_element_as_lead(m, pt)) {
        tower_div_rem(n, m, q, r, pt);
        return true;
    }
    if (modularmode && m->exp > 0 && is_number(m->pcoef)) {
        bool unit = is_unit(m->pcoef->ncoef);
        both_zero(q, r);
        if (unit) basic_poly_divide(n, m, q, r, 1, pt);
        return unit;
    }
    return divide_over_exponents(n, m, q, r, pt);
}

static void divide_checked(poly n, poly m, polyptrr q, polyptrr r, Rule rule, polypt pt) {
    poly q2 = nullptr, r2 = nullptr;
    if (laurent && (has_negative_exponent(n) || has_negative_exponent(m))) {
        boolean failed = 0;
        clear_and_operate(n, m, &q2, &r2, 0, pt, &failed);
    } else {
        divide_pass(n, m, &q2, &r2, rule, pt);
    }
    free_poly(q);
    free_poly(r);
    *q = q2;
    *r = r2;
}

void poly_mod_and_div(poly n, poly m, polyptrr r, polyptrr qt, polypt pt) {
    divide_checked(n, m, qt, r, Rule::pair, pt);
}

void poly_mod_or_div(poly n, poly m, polyptrr p, char which, polypt pt) {
    poly q = nullptr, r = nullptr;
    divide_checked(n, m, &q, &r, Rule::user, pt);
    if (which == '|') {
        free_poly(&q);
        q = r;
    } else {
        free_poly(&r);
    }
    free_poly(p);
    *p = q;
}
}  // namespace tolvex
