#include "quoly/quoly_mult.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_fraction.h"
#include "quoly/quoly_internal.h"
#include "quoly/quoly_rats.h"
#include "storage/failure.h"
namespace tolvex {
// ---- products ------------------------------------------------------------------------------------------

static bool is_one(const Factor* f) { return f->p == nullptr || poly_eq_1(f->p); }

/// a b for factors of which either may be nil (1); both are used up. A 1 on the right side is not taken.
static poly product_of(Factor* a, Factor* b) {
    poly r = nullptr;
    if (is_one(b) && a->p != nullptr) {
        r = factor_taken(a);
    } else if (is_one(a)) {
        if (b->p != nullptr) r = factor_taken(b);
    } else {
        poly_mult(a->p, b->p, &r, polynames);
    }
    drop_factor(a);
    drop_factor(b);
    return r;
}

void fraction_product(Fraction a, Fraction b, poly* numer, poly* denom) {
    Factor n1 = {a.numer, false, a.lent}, n2 = {b.numer, false, b.lent && b.numer != poly_1},
           d1 = {a.denom, false, a.lent}, d2 = {b.denom, false, b.lent};
    // With one denominator in common nothing can cancel across: it is coprime to both numerators.
    bool same = d1.p != nullptr && d2.p != nullptr && poly_equal(d1.p, d2.p);
    if (!same) {
        cancel(&n1, &d2);
        cancel(&n2, &d1);
    }
    *numer = product_of(&n1, &n2);
    *denom = product_of(&d1, &d2);
}

void let_parts_go(quoly q, const polynode* numer, const polynode* denom) {
    if (q->numb) return;
    if (q->numer == numer || q->numer == denom) q->numer = nullptr;
    if (q->denom != nullptr && (q->denom == numer || q->denom == denom)) q->denom = nullptr;
}

/// One operand at least is no number.
static void multiply_fractions(quoly n, quoly m, quolyptr p) {
    QuolyView a(n), b(m);
    poly numer = nullptr, denom = nullptr;
    if (n == m) {  // a square stays in lowest terms
        poly_mult(a.numer, a.numer, &numer, polynames);
        if (a.denom != nullptr) poly_mult(a.denom, a.denom, &denom, polynames);
    } else {
        fraction_product({a.numer, a.denom}, {b.numer, b.denom}, &numer, &denom);
    }
    settle_fraction(&numer, &denom);
    receive_fraction(p, numer, denom);
}

static void multiply_numbers(const quolynode* n, const quolynode* m, quolyptr p) {
    const number *a = n->ncoef, *b = m->ncoef;
    if (lintmode) {
        int32_t v =
            modularmode
                ? modmult(static_cast<uint32_t>(a->lint), static_cast<uint32_t>(b->lint))
                : static_cast<int32_t>(static_cast<uint32_t>(a->lint) * static_cast<uint32_t>(b->lint));
        numb_target(p)->lint = v;
    } else if (a->size == 1 && b->size == 1) {
        int64_t v = static_cast<int64_t>(a->head->value) * b->head->value;
        setvalue_any(v, numb_target(p));
    } else if (*p != nullptr && (*p)->numb) {
        fast_mult(a, b, numb_target(p));
    } else {
        imptr t;
        newimag(&t);
        fast_mult(a, b, t);
        receive_number(p, t);
    }
}

void quoly_mult(quoly n, quoly m, quolyptr p) {
    if (n->numb && m->numb) {
        multiply_numbers(n, m, p);
    } else if (quoly_iszero(n) || quoly_iszero(m)) {
        quoly_set(0, p);
    } else if (!lintmode && is_rational(n) && is_rational(m)) {
        mult_rats(n, m, p);
    } else {
        multiply_fractions(n, m, p);
    }
}

void fast_quoly_mult(quolyptr n, quoly m) { quoly_mult(*n, m, n); }

void best_quoly_mult(quolyptr n, quoly m) {
    if ((*n)->numb && !m->numb && m->denom == nullptr && !quoly_iszero(*n)) {
        poly numer = m->numer, denom = nullptr;
        m->numer = nullptr;
        mult_num(&numer, (*n)->ncoef);
        settle_fraction(&numer, &denom);
        receive_fraction(n, numer, denom);
    } else {
        quoly_mult(*n, m, n);
    }
    free_quoly(&m);
}

// ---- powers --------------------------------------------------------------------------------------------

void quoly_compute_power(quolyptr q, int32_t expont) {
    if (expont < 1) tolvex_error("negative exponent");
    quoly v = *q;
    forget_marks(v);
    if (v->numb) {
        number_power(v->ncoef, expont);
        return;
    }
    if (v->rat) {  // coprime parts stay coprime
        number_power(v->numer->ncoef, expont);
        number_power(v->denom->ncoef, expont);
        return;
    }
    compute_power(&v->numer, expont, polynames);
    if (v->denom != nullptr) compute_power(&v->denom, expont, polynames);
    poly numer = v->numer, denom = v->denom;
    v->numer = v->denom = nullptr;
    settle_fraction(&numer, &denom);
    receive_fraction(q, numer, denom);  // a zero divisor may have vanished
}

/// The exponent as a word; error 32 for a chain of more than one digit.
static bool exponent_word(const number* n2, int64_t* e) {
    if (lintmode) {
        *e = n2->lint;
    } else {
        if (n2->size > 1) {
            error(Err::exponent_too_long);
            return false;
        }
        *e = n2->head->value;
    }
    return true;
}

/// n^e for e >= 1 that may be one more than a word holds.
static void wide_power(quolyptr n, int64_t e) {
    if (e <= INT32_MAX) {
        quoly_compute_power(n, static_cast<int32_t>(e));
        return;
    }
    quoly_compute_power(n, static_cast<int32_t>(e / 2));
    fast_quoly_mult(n, *n);
}

void raise_to_power(quolyptr n, const number* n2) {
    int64_t e = 0;
    if (!exponent_word(n2, &e)) {
        quoly_set(0, n);
        return;
    }
    if (modularmode && mod_is_prime && (*n)->numb && !quoly_iszero(*n)) {
        e %= modulus - 1;  // the order of a unit divides it
        if (e < 0) e += modulus - 1;
    }
    if (e == 0) {
        quoly_set(1, n);
    } else if (e > 0) {
        wide_power(n, e);
    } else {
        quoly_reciprocal(n);
        wide_power(n, -e);
    }
}

// ---- reciprocals ---------------------------------------------------------------------------------------

static void reciprocal_of_lint(imptr x) {
    if (modularmode) {
        int32_t inverse;
        mod_inverse(x->lint, &inverse);
        x->lint = inverse;
    } else {
        x->lint = x->lint == 1 || x->lint == -1 ? x->lint : 0;  // truncated
    }
}

void quoly_reciprocal(quolyptr n) {
    quoly q = *n;
    if (quoly_iszero(q)) {
        error(Err::division_by_zero);
        quoly_set(quotient_by_zero, n);
        return;
    }
    forget_marks(q);
    if (q->numb && lintmode) {
        reciprocal_of_lint(q->ncoef);
        return;
    }
    if (q->numb) {
        boolean minus = 0;
        if (equal_to_pm1(q->ncoef, &minus)) return;
        quoly one = nullptr;
        quoly_set(1, &one);
        quot_rats(one, q, n);
        free_quoly(&one);
        return;
    }
    poly numer = q->denom, denom = q->numer;
    q->numer = q->denom = nullptr;
    if (numer == nullptr) poly_set(1, &numer);
    normalise_parts(&numer, &denom, laurent);
    receive_fraction(n, numer, denom);
}
}  // namespace tolvex
