#include "quoly/quoly_add.h"

#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "numbers/limbs.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/residue.h"
#include "poly/div_general.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "quoly/quoly_internal.h"
#include "quoly/quoly_rats.h"
#include "quoly/reduce.h"
namespace tolvex {
// ---- numbers -------------------------------------------------------------------------------------------

/// The word of lintmode that n + m or n - m is; plain words wrap.
static inline int32_t add_lints(int32_t n, int32_t m, bool subtract) {
    if (modularmode) return subtract ? mod_sub(n, m, modulus) : mod_add(n, m, modulus);
    auto a = static_cast<uint32_t>(n), b = static_cast<uint32_t>(m);
    return static_cast<int32_t>(subtract ? a - b : a + b);
}

static void add_numbers(const quolynode* n, const quolynode* m, quolyptr p, bool subtract) {
    const number *a = n->ncoef, *b = m->ncoef;
    if (lintmode) {
        int32_t v = add_lints(a->lint, b->lint, subtract);
        numb_target(p)->lint = v;
        return;
    }
    if (a->size == 1 && b->size == 1) {
        int32_t v = b->head->value;
        v = a->head->value + (subtract ? -v : v);
        chain_set_int64(numb_target(p), v);
        return;
    }
    if (*p == n && n != m) {  // in place
        imptr t = numb_target(p);
        if (subtract) {
            fastdiff(t, b);
        } else {
            fastsum(t, b);
        }
        return;
    }
    imptr t;
    newimag(&t);
    if (subtract) {
        meddiff(a->size, b->size, a->head, b->head, t);
    } else {
        medsum(a->size, b->size, a->head, b->head, t);
    }
    receive_number(p, t);
}

// ---- polynomials ---------------------------------------------------------------------------------------

static poly combine(poly n, poly m, bool subtract) {
    poly r = nullptr;
    if (subtract) {
        poly_sub(n, m, &r);
    } else {
        poly_add(n, m, &r);
    }
    return r;
}

/// n and m are used up.
static poly best_combine(poly n, poly m, bool subtract) {
    poly r = nullptr;
    if (subtract) {
        best_poly_sub(n, m, &r);
    } else {
        best_poly_add(n, m, &r);
    }
    return r;
}

/// The numerator of q as a tree of its own: taken from q if that may be used up.
static poly numerator_of(quoly q, const QuolyView& view, bool may_take) {
    poly r = nullptr;
    if (may_take && !q->numb) {
        r = q->numer;
        q->numer = nullptr;
    } else {
        poly_assign(view.numer, &r);
    }
    return r;
}

/// Neither has a denominator.
static void add_polys(quoly n, quoly m, quolyptr p, bool subtract, uint32_t uses) {
    QuolyView a(n), b(m);
    poly r = nullptr;
    bool take_n = (uses & k_use_n) && !n->numb, take_m = (uses & k_use_m) && !m->numb;
    if (take_n && take_m) {
        n->numer = m->numer = nullptr;
        r = best_combine(a.numer, b.numer, subtract);
    } else if (take_n) {
        n->numer = nullptr;
        if (subtract) {
            better_poly_sub(a.numer, b.numer, &r);
        } else {
            better_poly_add(a.numer, b.numer, &r);
        }
    } else if (take_m && !subtract) {
        m->numer = nullptr;
        better_poly_add(b.numer, a.numer, &r);
    } else {
        r = combine(a.numer, b.numer, subtract);
    }
    drop_used(n, m, p, uses);
    receive_poly(p, r);
}

/// One denominator d: r +- s/d = (r d +- s)/d. A polynomial plus a reduced fraction is reduced.
static void no_denom(quoly n, quoly m, quolyptr p, bool subtract, uint32_t uses) {
    QuolyView a(n), b(m);
    bool n_is_fraction = a.denom != nullptr;
    quoly fraction = n_is_fraction ? n : m;
    bool may_take = (uses & (n_is_fraction ? k_use_n : k_use_m)) != 0;
    poly product = nullptr, denom = nullptr;
    poly_mult(n_is_fraction ? b.numer : a.numer, fraction->denom, &product, polynames);
    if (may_take) {
        denom = fraction->denom;
        fraction->denom = nullptr;
    } else {
        poly_assign(fraction->denom, &denom);
    }
    poly numer = numerator_of(fraction, n_is_fraction ? a : b, may_take);
    poly sum =
        n_is_fraction ? best_combine(numer, product, subtract) : best_combine(product, numer, subtract);
    drop_used(n, m, p, uses);
    if (modout_above_field) settle_fraction(&sum, &denom);
    receive_fraction(p, sum, denom);
}

// ---- fractions -----------------------------------------------------------------------------------------

/// The denominators of a sum: d1 : d2 = n1 : n2. Unless coprime, when n1, n2 stand for d1, d2 themselves,
/// down n1 common = up d1 with positive leaves up, down; nil is 1.
struct Denominators {
    poly common;
    poly n1, n2;
    bool coprime;
    poly up, down;
};

/// Over a tower over Q quotients by a gcd have denominators, and reduce() has multiplied n1 and n2 by the
/// same number: finds it by the contents of d1 and n1 common.
static void find_scale(Denominators* s, poly d1) {
    poly product = nullptr;
    poly_mult(s->n1, s->common, &product, polynames);
    gcd_coefs(product, &s->up);
    gcd_coefs(d1, &s->down);
    free_poly(&product);
}

static Denominators split_denominators(poly d1, poly d2) {
    Denominators s = {nullptr, nullptr, nullptr, false, nullptr, nullptr};
    Factor a = borrowed(d1), b = borrowed(d2);
    if (lintmode && !modularmode) {
        s.coprime = true;
    } else if (!is_number(d1) && !is_number(d2)) {
        Lpolygcd(d1, d2, &s.common, laurent, polynames);
        if (!is_number(s.common)) {
            reduce(d1, d2, &s.common, &s.n1, &s.n2);
            if (!lintmode && exists_field_element(s.common, 1)) find_scale(&s, d1);
        } else if (!lintmode && !poly_eq_1(s.common)) {
            poly_quot(d1, s.common, &s.n1);
            poly_quot(d2, s.common, &s.n2);
        } else {
            s.coprime = true;
        }
    } else {
        // One is a number: what cancels is that part of it which the contents share.
        cancel(&a, &b);
        s.coprime = !a.fresh;
        if (a.fresh) {
            s.n1 = a.p;
            s.n2 = b.p;
            poly_quot(is_number(d1) ? d1 : d2, is_number(d1) ? s.n1 : s.n2, &s.common);
        }
    }
    if (s.coprime) {
        free_poly(&s.common);
        s.n1 = d1;
        s.n2 = d2;
    }
    return s;
}

/// Both have denominators, n/d1 and m/d2: Henrici's sum with two gcds, the second of them small, since only
/// the common part of the denominators can cancel.
static void general_quoly_add(quoly n, quoly m, quolyptr p, bool subtract, uint32_t uses) {
    poly numer = nullptr, denom = nullptr;
    if (poly_equal(n->denom, m->denom)) {
        Factor top = {combine(n->numer, m->numer, subtract), true}, bottom = borrowed(m->denom);
        if (!poly_iszero(top.p)) cancel(&top, &bottom);
        numer = factor_taken(&top);
        denom = factor_taken(&bottom);
    } else {
        Denominators s = split_denominators(n->denom, m->denom);
        poly left = nullptr, right = nullptr;
        poly_mult(n->numer, s.n2, &left, polynames);
        poly_mult(m->numer, s.n1, &right, polynames);
        Factor top = {best_combine(left, right, subtract), true};
        if (s.coprime) {
            poly_mult(s.n1, s.n2, &denom, polynames);
        } else {
            if (s.up != nullptr) num_poly_mult(&top.p, s.up->ncoef);
            if (s.down != nullptr) num_poly_mult(&s.common, s.down->ncoef);
            Factor bottom = {s.common, true};
            if (!poly_iszero(top.p)) cancel(&top, &bottom);
            denom = factor_taken(&bottom);
            poly_mult(denom, s.n1, &denom, polynames);
            poly_mult(denom, s.n2, &denom, polynames);
            free_poly(&s.n1);
            free_poly(&s.n2);
            free_poly(&s.up);
            free_poly(&s.down);
        }
        numer = factor_taken(&top);
    }
    drop_used(n, m, p, uses);
    settle_fraction(&numer, &denom);
    receive_fraction(p, numer, denom);
}

// ---- dispatch ------------------------------------------------------------------------------------------

/// *p := n + m or n - m; what `uses` names is used up.
static void add_or_sub(quoly n, quoly m, quolyptr p, bool subtract, uint32_t uses) {
    if (n->numb && m->numb) {
        add_numbers(n, m, p, subtract);
        drop_used(n, m, p, uses);
    } else if (!lintmode && is_rational(n) && is_rational(m)) {
        add_rats(n, m, p, subtract);
        drop_used(n, m, p, uses);
    } else if (n->denom == nullptr && m->denom == nullptr) {
        add_polys(n, m, p, subtract, uses);
    } else if (n->denom == nullptr || m->denom == nullptr) {
        no_denom(n, m, p, subtract, uses);
    } else {
        general_quoly_add(n, m, p, subtract, uses);
    }
}

void quoly_add(quoly n, quoly m, quolyptr p) { add_or_sub(n, m, p, false, k_keep); }
void quoly_sub(quoly n, quoly m, quolyptr p) { add_or_sub(n, m, p, true, k_keep); }
void better_quoly_add(quoly n, quoly m, quolyptr p) { add_or_sub(n, m, p, false, k_use_n); }
void better_quoly_sub(quoly n, quoly m, quolyptr p) { add_or_sub(n, m, p, true, k_use_n); }
void best_quoly_add(quolyptr n, quoly m) { add_or_sub(*n, m, n, false, k_use_both); }
void best_quoly_sub(quolyptr n, quoly m) { add_or_sub(*n, m, n, true, k_use_both); }
// The same object as both operands is legal here, since both are kept: nothing of it may be taken then.
void fast_quoly_add(quolyptr n, quoly m) { add_or_sub(*n, m, n, false, *n == m ? k_keep : k_use_n); }
void fast_quoly_sub(quolyptr n, quoly m) { add_or_sub(*n, m, n, true, *n == m ? k_keep : k_use_n); }
}  // namespace tolvex
