#include "poly/div_field.h"

#include "numbers/residue.h"
#include "poly/dense_basic.h"
#include "poly/dense_divide.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/div_user.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
namespace {
/// Quotient and remainder before they take the place of old results.
struct Division {
    poly q, r;
};
}  // namespace

static int32_t top_degree(const polynode* p) { return is_number(p) ? 0 : p->exp; }
static bool only_numbers(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (!p->numb && !is_number(p->pcoef)) return false;
    return true;
}

static void store(Division d, polyptrr q, polyptrr r) {
    free_poly(q);
    free_poly(r);
    *q = d.q;
    *r = d.r;
}

// deg n < deg m: nothing to divide.
static Division all_remainder(poly n) {
    Division d = {};
    poly_set(0, &d.q);
    poly_assign(n, &d.r);
    return d;
}

// What is left when error 85 has come back from a pushed command level.
static Division undefined() {
    Division d = {};
    poly_set(0, &d.q);
    poly_set(0, &d.r);
    return d;
}

// The inverse of the leading number of m; 0 after error 85. Over Z, where it is 1 or -1, the number itself.
static int32_t lead_inverse(poly m) {
    poly lead = is_number(m) ? m : m->pcoef;
    if (!modularmode) return poly_eq_1(lead) ? 1 : -1;
    int32_t inverse = mod_inverse_or_0(lead->ncoef->lint), ignored = 0;
    if (inverse == 0) mod_inverse(lead->ncoef->lint, &ignored);  // for its error
    return inverse;
}

// *p := p times what lead_inverse gave, which is not 0.
static void times_inverse(polyptrr p, int32_t inverse) {
    if (modularmode)
        mod_num_poly_mult(p, inverse);
    else if (inverse < 0)
        poly_inplace(*p);
}

static Division divide_by_constant(poly n, poly m) {
    int32_t inverse = lead_inverse(m);
    if (inverse == 0) return undefined();
    Division d = {};
    poly_assign(n, &d.q);
    times_inverse(&d.q, inverse);
    poly_set(0, &d.r);
    return d;
}

// Arrays pay unless there are huge gaps: then most of the time would go into entries that stay 0.
static bool arrays_fit(const polynode* n, const polynode* m) {
    constexpr int32_t always = 4 * k_dense_entries, most = 1 << 27, gap = 64;
    if (n->exp <= always) return true;
    return n->exp <= most && n->exp / gap <= int64_t{poly_length(n)} + poly_length(m);
}

// One level, modular, deg n >= deg m >= 1. want_q false: d.q stays nil.
static Division divide_in_arrays(poly n, poly m, bool want_q) {
    int32_t inverse = lead_inverse(m);
    if (inverse == 0) return undefined();
    Division d = {};
    ScratchMark mark = scratch_mark();
    int32_t q_degree = n->exp - m->exp;
    auto* x = scratch_array<int32_t>(int64_t{n->exp} + 1);
    auto* y = scratch_array<int32_t>(int64_t{m->exp} + 1);
    auto* q = want_q ? scratch_array<int32_t>(int64_t{q_degree} + 1) : nullptr;
    fill_poly_array(n, x);
    fill_poly_array(m, y);
    int32_t r_degree =
        wf_div_mod(word_field_ring(), reinterpret_cast<uint32_t*>(x), n->exp, reinterpret_cast<uint32_t*>(y),
                   m->exp, static_cast<uint32_t>(inverse), reinterpret_cast<uint32_t*>(q));
    if (want_q) array_to_poly(q, q_degree, &d.q);
    array_to_poly(x, r_degree, &d.r);
    scratch_release(mark);
    return d;
}

// One step of the classical loop on *r: the leading term of the quotient is appended at *q_tail, and its
// product with m subtracted. The leading terms cancel by construction and are not computed.
static polyptrr divide_leading_term(polyptrr r, poly m, int32_t inverse, polyptrr q_tail, polypt pt) {
    int32_t e = (*r)->exp - m->exp;
    poly t = coefficient_copy(*r), factor = nullptr, copy = nullptr, product = nullptr;
    times_inverse(&t, inverse);
    poly_assign(t, &copy);
    append_term(&factor, e, copy);
    q_tail = append_term(q_tail, e, t);
    drop_first_term(r);
    if (m->next != nullptr) {
        poly_mult(factor, m->next, &product, pt);
        best_poly_sub(*r, product, r);
    }
    free_poly(&factor);
    return q_tail;
}

// n is used up. The leading number of m is a unit, over Z 1 or -1.
static Division divide_classically(poly n, poly m, polypt pt) {
    int32_t inverse = lead_inverse(m);
    if (inverse == 0) {
        free_poly(&n);
        return undefined();
    }
    poly q_head = nullptr, r = n;
    polyptrr q_tail = &q_head;
    while (!is_number(r) && r->exp >= m->exp) {
        poll_interrupt();
        q_tail = divide_leading_term(&r, m, inverse, q_tail, pt);
    }
    fix_top(&q_head);
    return {q_head, r};
}

// *top := n div x^s, *low := n mod x^s; n is used up.
static void split_at(poly n, int32_t s, polyptrr top, polyptrr low) {
    polyptrr at = &n;
    while (*at != nullptr && (*at)->exp >= s) at = &(*at)->next;
    *low = *at;
    *at = nullptr;
    *top = n;
    fix_top(low);
    fix_top(top);
    if (!poly_iszero(*top)) sub_expons(top, s);
}

// *p := x^e *p + low; low is used up.
static void join_at(polyptrr p, int32_t e, poly low) {
    if (!poly_iszero(*p)) sub_expons(p, -e);
    best_poly_add(*p, low, p);
}

static Division divide_monic(poly n, poly m, polypt pt);

// deg n <= 9/4 deg m. m = m1 x^k + m0; each round divides the top of n by m1 and corrects by the product of
// the quotient with m0; at most three rounds.
static Division karat_mod_and_div(poly n, poly m, polypt pt) {
    int32_t b = m->exp, k = b / 2;
    if (b < div_poly_cutoff || top_degree(n) - b < 2) return divide_classically(n, m, pt);
    poly copy = nullptr, m1 = nullptr, m0 = nullptr;
    poly_assign(m, &copy);
    split_at(copy, k, &m1, &m0);
    Division d = {nullptr, n};
    poly_set(0, &d.q);
    while (top_degree(d.r) >= b) {
        poll_interrupt();
        int32_t e = top_degree(d.r) - b >= k ? k : 0;
        poly top = nullptr, low = nullptr, product = nullptr;
        split_at(d.r, e + k, &top, &low), d.r = USED_UP;
        Division part = divide_monic(top, m1, pt);
        poly_mult(part.q, m0, &product, pt);
        if (!poly_iszero(product)) sub_expons(&product, -e);
        join_at(&part.r, e + k, low);
        best_poly_sub(part.r, product, &d.r);
        join_at(&part.q, e, d.q);
        d.q = part.q;
    }
    free_poly(&m1);
    free_poly(&m0);
    return d;
}

// Divides the part of n from x^s on and leaves x^s times its remainder plus the rest of n; the quotient times
// x^s is added to d->q.
static void divide_top(Division* d, int32_t s, poly m, polypt pt) {
    poly top = nullptr, low = nullptr;
    split_at(d->r, s, &top, &low);
    Division part = divide_monic(top, m, pt);
    join_at(&part.r, s, low);
    d->r = part.r;
    join_at(&part.q, s, d->q);
    d->q = part.q;
}

// 9/4 deg m < deg n < 10/3 deg m: two halves of the quotient, each within reach of the step above.
static Division three_case(poly n, poly m, polypt pt) {
    int32_t b = m->exp;
    if (b < div_poly_cutoff) return divide_classically(n, m, pt);
    Division d = {nullptr, n};
    poly_set(0, &d.q);
    divide_top(&d, (n->exp - b) / 2, m, pt);
    divide_top(&d, 0, m, pt);
    return d;
}

// n is used up; m is monic of degree at least 1. Long n are eaten by blocks of degree 2 deg m.
static Division divide_monic(poly n, poly m, polypt pt) {
    int64_t b = m->exp, a = top_degree(n);
    Division d = {nullptr, n};
    poly_set(0, &d.q);
    if (a < b) return d;
    for (; 3 * a >= 10 * b; a = top_degree(d.r)) {
        poll_interrupt();
        divide_top(&d, static_cast<int32_t>(a - 2 * b), m, pt);
    }
    if (a < b) return d;
    Division rest = 4 * a <= 9 * b ? karat_mod_and_div(d.r, m, pt) : three_case(d.r, m, pt);
    best_poly_add(rest.q, d.q, &d.q);
    d.r = rest.r;
    return d;
}

void fast_mod_and_div(poly n, poly m, polyptrr r, polyptrr qt, polypt pt, boolean from_basic) {
    if (laurent && !from_basic && (has_negative_exponent(n) || has_negative_exponent(m))) {
        boolean failed = 0;
        clear_and_operate(n, m, qt, r, 0, pt, &failed);
        return;
    }
    Division d = {};
    if (is_number(m)) {
        d = divide_by_constant(n, m);
    } else {
        poly copy = nullptr;
        poly_assign(n, &copy);
        d = divide_monic(copy, m, pt);
    }
    store(d, qt, r);
}

// m is scaled once, outside the recursion.
static Division divide_by_scaled(poly n, poly m, polypt pt) {
    int32_t inverse = lead_inverse(m);
    if (inverse == 0) return undefined();
    Division d = {};
    poly monic = nullptr;
    poly_assign(m, &monic);
    mod_num_poly_mult(&monic, inverse);
    fast_mod_and_div(n, monic, &d.r, &d.q, pt, 1);
    mod_num_poly_mult(&d.q, inverse);
    free_poly(&monic);
    return d;
}

// Not a number, and deg n >= deg m.
static Division divide_levels(poly n, poly m, bool cancall, polypt pt) {
    int64_t a = n->exp, b = m->exp;
    if (cancall && mod_is_prime && (b > poly_cutoff || (b > 2 && a > 20 * b)))
        return divide_by_scaled(n, m, pt);
    poly copy = nullptr;
    poly_assign(n, &copy);
    return divide_classically(copy, m, pt);
}

static Division divide_one_level(poly n, poly m, bool want_q) {
    const polypt pt = nullptr;  // no coefficient has a variable
    if (is_number(m)) return divide_by_constant(n, m);
    if (top_degree(n) < m->exp) return all_remainder(n);
    if (arrays_fit(n, m)) return divide_in_arrays(n, m, want_q);
    poly copy = nullptr;
    poly_assign(n, &copy);
    return divide_classically(copy, m, pt);
}

void simplest_poly_divide(poly n, poly m, polyptrr q, polyptrr r) {
    store(divide_one_level(n, m, true), q, r);
}

static bool one_level_modular(const polynode* n, const polynode* m) {
    return modularmode && only_numbers(n) && only_numbers(m);
}

void basic_poly_divide(poly n, poly m, polyptrr q, polyptrr r, boolean cancall, polypt pt) {
    bool constant = is_number(m);
    if (!modularmode && !poly_eq_pm1(constant ? m : m->pcoef)) {
        poly_mod_and_div(n, m, r, q, pt);
        return;
    }
    if (constant)
        store(divide_by_constant(n, m), q, r);
    else if (top_degree(n) < m->exp)
        store(all_remainder(n), q, r);
    else if (one_level_modular(n, m))
        store(divide_one_level(n, m, true), q, r);
    else
        store(divide_levels(n, m, cancall != 0, pt), q, r);
}

void poly_div_no_q(poly n, poly m, polyptrr r, polypt pt) {
    if (one_level_modular(n, m)) {
        Division d = divide_one_level(n, m, false);
        free_poly(&d.q);
        free_poly(r);
        *r = d.r;
        return;
    }
    poly q = nullptr;
    basic_poly_divide(n, m, &q, r, 1, pt);
    free_poly(&q);
}
}  // namespace tolvex
