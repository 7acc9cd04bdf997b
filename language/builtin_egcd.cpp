// Egcd: the gcd of two values with its cofactors.
#include "language/builtin_parts.h"
#include "language/builtin_table.h"
#include "numbers/num_compare.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "quoly/quoly_scalar.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
/// One line of Euclid's scheme: r = s a + t b for some t.
struct Line {
    quoly r, s;
};
}  // namespace

/// x := x - f y.
static void subtract_multiple(quolyptr x, quoly f, quoly y) {
    quoly product = nullptr;
    quoly_mult(f, y, &product);
    best_quoly_sub(x, product);
}

/// x -= f y in both parts of a line.
static void reduce_line(Line* x, quoly f, const Line* y) {
    subtract_multiple(&x->r, f, y->r);
    subtract_multiple(&x->s, f, y->s);
}

static void free_line(Line* x) {
    free_quoly(&x->r);
    free_quoly(&x->s);
}

// ---- numbers -------------------------------------------------------------------------------------------

/// Euclid's algorithm on the absolute values of two integers, by the quotient that the language has.
static void egcd_nums(Line* x, Line* y) {
    while (!quoly_iszero(y->r)) {
        poll_interrupt();
        quoly q = nullptr;
        quoly_mod_or_div(x->r, y->r, &q, '\\');
        reduce_line(x, q, y);
        free_quoly(&q);
        Line t = *x;
        *x = *y;
        *y = t;
    }
    if (!lintmode && chain_sign(x->r->ncoef) < 0) {
        quoly_inplace(x->r);
        quoly_inplace(x->s);
    }
}

/// Modulo a composite the gcd of two residues is that with the modulus too: u and v with u x + v y = g.
static int64_t egcd_words(int64_t x, int64_t y, int64_t* u, int64_t* v) {
    int64_t a = 1, b = 0, c = 0, d = 1;
    while (y != 0) {
        int64_t q = x / y, t = x - q * y;
        x = y;
        y = t;
        t = a - q * c;
        a = c;
        c = t;
        t = b - q * d;
        b = d;
        d = t;
    }
    *u = a;
    *v = b;
    return x;
}

static void egcd_residues(int32_t a, int32_t b, quolyptr g, quolyptr c, quolyptr d) {
    int64_t u = 0, v = 0, w = 0, z = 0;
    int64_t h = egcd_words(a, b, &u, &v);
    int64_t e = egcd_words(h, modulus, &w, &z);
    auto scaled = [w](int64_t factor) {
        return modmult(static_cast<uint32_t>(residue_of_int(w)),
                       static_cast<uint32_t>(residue_of_int(factor)));
    };
    quoly_set(residue_of_int(e), g);
    quoly_set(scaled(u), c);
    quoly_set(scaled(v), d);
}

// ---- polynomials ---------------------------------------------------------------------------------------

/// The exponent of the leading term of p in the variable `down` levels below.
static int32_t degree_below(const polynode* p, int32_t down) {
    if (down == 0) return p->numb ? 0 : p->exp;
    int32_t degree = 0;
    for (; p != nullptr; p = p->next)
        if (!p->numb) degree = maxx(degree, degree_below(p->pcoef, down - 1));
    return degree;
}

static int32_t degree_in(const quolynode* q, int32_t level) {
    return q->numb ? 0 : degree_below(q->numer, level - 1);
}

/// The line is multiplied by the denominator of r, which is free of the variable.
static void clear_denominator(Line* x) {
    if (x->r->numb || x->r->denom == nullptr) return;
    poly p = nullptr;
    quoly factor = nullptr;
    poly_assign(x->r->denom, &p);
    poly_to_quoly(&p, &factor);
    fast_quoly_mult(&x->s, factor);
    free_quoly(&factor);
    free_poly(&x->r->denom);
    x->r->rat = 0;
    settle(x->r);
}

/// *n := lc(q) / lc(m) in the variable of `level`.
static void leading_quotient(const quolynode* q, const quolynode* m, int32_t level, quolyptr n) {
    quoly below = nullptr;
    quoly_assign(q, n);
    quoly_assign(m, &below);
    take_coefficient(n, level, degree_in(q, level));
    take_coefficient(&below, level, degree_in(m, level));
    fast_quoly_quot(n, below, 0);
    free_quoly(&below);
}

/// *n := *n times the power k of the variable of `level`.
static void times_power(quolyptr n, int32_t level, int32_t k) {
    if (k == 0) return;
    poly p = nullptr;
    quoly power = nullptr;
    base_poly(&p, level);
    poly_to_quoly(&p, &power);
    quoly_compute_power(&power, k);
    fast_quoly_mult(n, power);
    free_quoly(&power);
}

/// Euclid's algorithm in the variable of `level` over the fractions of the others. x ends as the last line
/// that is not 0.
static void egcd_polys(Line* x, Line* y, int32_t level) {
    for (;;) {
        while (!quoly_iszero(x->r) && degree_in(x->r, level) >= degree_in(y->r, level)) {
            poll_interrupt();
            quoly f = nullptr;
            leading_quotient(x->r, y->r, level, &f);
            times_power(&f, level, degree_in(x->r, level) - degree_in(y->r, level));
            reduce_line(x, f, y);
            free_quoly(&f);
            clear_denominator(x);
        }
        Line t = *x;
        *x = *y;
        *y = t;
        if (quoly_iszero(y->r)) return;
    }
}

// ---- the function --------------------------------------------------------------------------------------

static int32_t main_level_of(const quolynode* q) { return q->numb ? k_max_polys + 1 : main_level(q->numer); }

/// *g := gcd(a, b), *c a + *d b = *g. Neither is a quotient, a is not 0.
static void extended_gcd(quoly a, quoly b, quolyptr g, quolyptr c, quolyptr d) {
    if (a->numb && b->numb && modularmode && !mod_is_prime) {
        egcd_residues(a->ncoef->lint, b->ncoef->lint, g, c, d);
        return;
    }
    Line x = {nullptr, nullptr}, y = {nullptr, nullptr};
    quoly_assign(a, &x.r);
    quoly_assign(b, &y.r);
    quoly_set(1, &x.s);
    quoly_set(0, &y.s);
    if (a->numb && b->numb && !modularmode) {
        egcd_nums(&x, &y);
        quoly_assign(x.r, g);
    } else {
        int32_t level = minn(main_level_of(a), main_level_of(b));
        if (!quoly_iszero(b)) egcd_polys(&x, &y, minn(level, k_max_polys));
        gcd_of_values(a, b, g);
        quoly scale = nullptr;
        quoly_quot(*g, x.r, &scale, 0);
        fast_quoly_mult(&x.s, scale);
        free_quoly(&scale);
    }
    // what is left of g is a multiple of b
    quoly_assign(*g, d);
    subtract_multiple(d, x.s, a);
    if (quoly_iszero(b))
        quoly_set(0, d);
    else
        fast_quoly_quot(d, b, 0);
    *c = x.s;
    x.s = nullptr;
    free_line(&x);
    free_line(&y);
}

static bool is_fraction(const quolynode* q) { return !q->numb && q->denom != nullptr; }

static bool is_laurent(const quolynode* q) { return laurent && !q->numb && has_negative_exponent(q->numer); }

/// Egcd(a, b), Egcd(a, b, c, d): the gcd g in normal form; c and d take cofactors with c a + d b = g.
void builtin_Egcd(BuiltinCall& call) {
    Value a, b;
    open_with_two(call, &a, &b);
    ResultPlace at_c = {}, at_d = {};
    if (next_argument(call)) read_result_place(call, &at_c);
    if (tok_char(at_c.name) != 0 && next_argument(call)) read_result_place(call, &at_d);
    close_call(call);
    quoly c = nullptr, d = nullptr;
    const quolynode *x = value_of(&a), *y = value_of(&b);
    if (is_fraction(x) || is_fraction(y)) {
        error(Err::egcd_fraction);
        quoly_set(0, call.n);
    } else if (is_laurent(x) || is_laurent(y)) {
        error(Err::negative_powers);
        quoly_set(0, call.n);
    } else if (quoly_iszero(x) && quoly_iszero(y)) {
        quoly_set(0, call.n);
    } else if (quoly_iszero(x)) {
        extended_gcd(value_of(&b), value_of(&a), call.n, &d, &c);
    } else {
        extended_gcd(value_of(&a), value_of(&b), call.n, &c, &d);
    }
    if (c == nullptr) quoly_set(0, &c);
    if (d == nullptr) quoly_set(0, &d);
    drop_data(&b);
    drop_data(&a);
    set_quotient(&at_c, &c);
    set_quotient(&at_d, &d);
}
}  // namespace tolvex
