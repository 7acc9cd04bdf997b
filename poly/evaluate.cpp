#include "poly/evaluate.h"

#include "numbers/num_mult.h"
#include "poly/div_internal.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- all variables replaced by numbers -----------------------------------------------------------------

/// Up to here a gap is cheaper to raise to than to reduce.
static constexpr int32_t k_gap_reduced = 16;

static int32_t residue_times_power(int32_t t, int32_t value, int32_t gap) {
    if (t == 0 || gap == 0) return t;
    if (gap >= k_gap_reduced && mod_is_prime) gap %= modulus - 1;  // Fermat: value is not 0
    int32_t power = value;
    if (gap != 1) mod_number_power(value, gap, &power);
    return modmult(static_cast<uint32_t>(t), static_cast<uint32_t>(power));
}

/// False, *ans undefined, if the list ends before the variables of q do.
static bool residue_at(const polynode* q, const polynode* arg, int32_t* ans) {
    if (is_number(q)) {
        *ans = q->ncoef->lint;
        return true;
    }
    if (arg == nullptr) return false;
    int32_t value = arg->ncoef->lint, t = 0;
    if (value == 0) {  // the constant term alone
        while (q->next != nullptr) q = q->next;
        if (q->exp == 0 && !q->numb) return residue_at(q->pcoef, arg->next, ans);
        *ans = q->exp == 0 ? q->ncoef->lint : 0;
        return true;
    }
    for (;; q = q->next) {
        int32_t c = 0;
        if (q->numb)
            c = q->ncoef->lint;
        else if (!residue_at(q->pcoef, arg->next, &c))
            return false;
        t = mod_add(t, c, modulus);
        t = residue_times_power(t, value, q->next == nullptr ? q->exp : q->exp - q->next->exp);
        if (q->next == nullptr) break;
    }
    *ans = t;
    return true;
}

void mod_all_poly_eval(const polynode* q, const polynode* arg, int32_t* ans) {
    if (arg != nullptr && arg->exp == 1) tolvex_error("arg->exp = 1 in mod_all_poly_eval. ");
    if (!residue_at(q, arg, ans)) tolvex_error("arg is NULL but q not number in mod_all_poly_eval. ");
}

/// t := t value^gap.
static void number_times_power(imptr t, const number* value, int32_t gap) {
    if (gap == 0 || iszero(t)) return;
    number power = {};
    num_assign(value, &power);
    if (gap > 1) number_power(&power, gap);
    int_mult(t, &power, t);
    free_num(&power);
}

/// *ans, which may have any value, := q at arg; false if the list ends early.
static bool number_at(const polynode* q, const polynode* arg, imptr ans) {
    if (is_number(q)) {
        num_assign(q->ncoef, ans);
        return true;
    }
    if (arg == nullptr) return false;
    number t = {}, c = {};
    setvalue(0, &t);
    bool complete = true;
    for (; q != nullptr && complete; q = q->next) {
        poll_interrupt();
        if (q->numb)
            num_assign(q->ncoef, &c);
        else
            complete = number_at(q->pcoef, arg->next, &c);
        if (!complete) break;
        leaf_add(&t, &c);
        number_times_power(&t, arg->ncoef, q->next == nullptr ? q->exp : q->exp - q->next->exp);
    }
    if (complete) num_assign(&t, ans);
    free_num(&t);
    free_num(&c);
    return complete;
}

void rat_all_poly_eval(const polynode* q, const polynode* arg, imptr ans) {
    if (!number_at(q, arg, ans)) tolvex_error("arg is NULL but q not number in rat_all_poly_eval. ");
}

// ---- one level -----------------------------------------------------------------------------------------

/// *t := *t value^gap; pt: the level of t.
static void times_power(polyptrr t, poly value, int32_t gap, polypt pt) {
    if (gap == 0 || poly_iszero(*t)) return;
    if (gap == 1) {
        poly_mult(*t, value, t, pt);
        return;
    }
    poly power = nullptr;
    poly_assign(value, &power);
    compute_power(&power, gap, pt);
    poly_mult(*t, power, t, pt);
    free_poly(&power);
}

/// Horner's scheme: the sum of the coefficients of the chain q, at the level of pt, times powers of value.
/// The chain is fresh and used up.
static poly horner(poly q, poly value, polypt pt) {
    poly t = zero_leaf();
    while (q != nullptr) {
        poll_interrupt();
        poly rest = q->next, c = q;
        int32_t gap = rest == nullptr ? q->exp : q->exp - rest->exp;
        q->next = nullptr;
        if (!q->numb) {
            c = q->pcoef;
            free_node(q);
        }
        best_poly_add(t, c, &t);
        times_power(&t, value, gap, pt);
        q = rest;
    }
    return t;
}

static void give(polyptrr p, poly fresh) {
    free_poly(p);
    *p = fresh;
}

void poly_at_numb(polyptrr p, poly q, poly n2, polypt pol, boolean addpad) {
    poly t = nullptr;
    poly_assign(q, &t);
    if (!is_number(t)) {
        t = horner(t, n2, pol == nullptr ? nullptr : pol->next);
        if (addpad) add_pad(&t, 1);
    }
    give(p, t);
}

// ---- a list of values ----------------------------------------------------------------------------------

static bool has_value(const polynode* arg) { return arg->numb || arg->pcoef != nullptr; }

static bool all_numbers(const polynode* arg) {
    for (; arg != nullptr; arg = arg->next)
        if (!arg->numb) return false;
    return true;
}

/// The number that c becomes at the list of numbers arg, which begins at its level; nil if the list ends
/// early.
static poly number_value(const polynode* c, const polynode* arg) {
    poly n = zero_leaf();
    if (modularmode ? residue_at(c, arg, &n->ncoef->lint) : number_at(c, arg, n->ncoef)) return n;
    free_poly(&n);
    return nullptr;
}

/// p, which stands at the level of pt and of the head of arg, with the values put in; fresh.
static poly value_at(const polynode* p, const polynode* arg, polypt pt, bool numbers);

/// The chain p with its coefficients evaluated at the list arg, which begins one level down: the terms that
/// do not vanish, nil if none is left.
static poly values_of_coefficients(const polynode* p, const polynode* arg, polypt pt, bool numbers) {
    poly head = nullptr;
    polyptrr tail = &head;
    polypt below = pt == nullptr ? nullptr : pt->next;
    for (; p != nullptr; p = p->next) {
        poll_interrupt();
        if (p->numb) {
            node_assign(p, tail);
            tail = &(*tail)->next;
            continue;
        }
        poly c = numbers ? number_value(p->pcoef, arg) : nullptr;
        if (c == nullptr) c = value_at(p->pcoef, arg, below, numbers);
        if (poly_iszero(c))
            free_poly(&c);
        else
            tail = append_term(tail, p->exp, c);
    }
    return head;
}

static poly value_at(const polynode* p, const polynode* arg, polypt pt, bool numbers) {
    if (arg == nullptr || is_number(p)) {
        poly copy = nullptr;
        poly_assign(p, &copy);
        return copy;
    }
    poly chain = values_of_coefficients(p, arg->next, pt, numbers);
    if (!has_value(arg)) {
        fix_top(&chain);
        return chain;
    }
    polynode leaf = leaf_alone(arg);
    poly value = arg->numb ? &leaf : arg->pcoef;
    poly t = horner(chain, value, pt == nullptr ? nullptr : pt->next);
    add_pad(&t, 1);
    return t;
}

/// The variable of that level; nil where no table stands.
static polypt variable_of_level(int32_t level) {
    polypt pt = polynames;
    while (pt != nullptr && --level > 0) pt = pt->next;
    return pt;
}

void all_poly_eval(polyptrr q, poly arg, polyptrr ans, int16_t level) {
    poly chain = nullptr;
    if (is_number(*q))
        poly_assign(*q, &chain);
    else
        chain = values_of_coefficients(*q, arg, variable_of_level(level), all_numbers(arg));
    fix_top(&chain);
    give(ans, chain);
}

void old_all_poly_eval(polyptrr q, poly arg, int16_t level) { all_poly_eval(q, arg, q, level); }
}  // namespace tolvex
