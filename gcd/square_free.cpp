#include "gcd/square_free.h"

#include "gcd/content.h"
#include "gcd/field_hooks.h"
#include "gcd/gcd_modes.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "numbers/gf_tables.h"
#include "poly/div_general.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_deriv.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- pieces --------------------------------------------------------------------------------------------

static bool has_degree(const polynode* p) { return !is_number(p) && p->exp > 0; }

/// A gcd that stands on its own: the budgets of earlier ones do not count.
static poly fresh_gcd(poly u, poly v, polypt pt) {
    poly g = nullptr;
    alg_c_count = 0;
    original_depth = 1;
    polygcd(u, v, &g, 0, 1, 1, pt, 1, 1, 1);
    return g;
}

/// *n := n / m, exactly.
static void divide_out(polyptrr n, poly m, polypt pt) {
    if (poly_eq_1(m)) return;
    poly q = nullptr;
    boolean failed = 0;
    gen_poly_divide(*n, m, &q, pt, &failed);
    if (failed) tolvex_error(" failed in square free factor.");
    free_poly(n);
    *n = q;
}

/// The same for two polynomials whose ratio must stay: over a tower over Q the quotients are multiplied by
/// one number.
static void divide_both(polyptrr n, polyptrr m, poly g, polypt pt) {
    if (lintmode || !exists_field_element(g, pt->depth)) {
        divide_out(n, g, pt);
        divide_out(m, g, pt);
        return;
    }
    poly q = nullptr, r = nullptr;
    if (!tower_reduce(*n, *m, g, &q, &r, pt)) tolvex_error(" failed in square free factor.");
    free_poly(n);
    free_poly(m);
    *n = q;
    *m = r;
}

/// *n := n / c for its content c; over a tower over Q up to a number.
static void divide_content(polyptrr n, poly c, polypt pt) {
    poly copy = nullptr;
    if (lintmode || !exists_field_element(c, pt->depth)) {
        divide_out(n, c, pt);
        return;
    }
    poly_assign(c, &copy);
    divide_both(n, &copy, c, pt);
    free_poly(&copy);
}

/// Appends f, used up, with its multiplicity. Over Z it becomes primitive and positive: divisions may have
/// left integers.
static void add_factor(polyptrr sq, int32_t* count, poly f, int32_t multiplicity, polypt pt) {
    if (!lintmode) {
        poly c = nullptr;
        gcd_coefs(f, &c);
        num_poly_quot(&f, c->ncoef, 0);
        free_poly(&c);
    }
    gcd_normal_form(&f, pt);
    while (*sq != nullptr) sq = &(*sq)->next;
    new_term(sq, multiplicity, f);
    ++*count;
}

// ---- characteristic p ----------------------------------------------------------------------------------

/// The same for a field element below pads.
static bool take_element_root(polyptrr c, polypt pt) {
    for (; pt->depth < field_depth; pt = pt->next) c = &(*c)->pcoef;
    return tower_pth_root(c, pt);
}

/// *v := its p-th root. In Z/p every number is its own.
static void take_number_root(int32_t* v) {
    if (finf) *v = f256 ? f256sqr[*v] : f2t16sqr[*v];
}

/// *x := its p-th root, term by term. False: some coefficient has none that could be taken; *x is spoilt.
static bool take_pth_root(polyptrr x, int32_t p, polypt pt, Err* why) {
    for (poly t = *x; t != nullptr; t = t->next) {
        t->exp /= p;
        if (!t->numb && !is_number(t->pcoef)) {
            *why = finf ? Err::no_pth_root : Err::pth_root_needs_field;
            if (!is_field_element(t->pcoef, pt->depth + 1) || !take_element_root(&t->pcoef, pt->next))
                return false;
        } else {
            take_number_root(&(t->numb ? t : t->pcoef)->ncoef->lint);
        }
    }
    fix_top(x);
    return true;
}

bool poly_pth_root(polyptrr x, Err* why) {
    const int32_t p = finf ? 2 : modulus;
    if (is_number(*x)) {
        take_number_root(&(*x)->ncoef->lint);
        return true;
    }
    polypt pt = polynames;
    for (; (*x)->exp == 0 && !(*x)->numb && (*x)->next == nullptr; x = &(*x)->pcoef) pt = pt->next;
    *why = finf ? Err::no_pth_root : Err::pth_root_needs_field;
    if (field_depth > 0 && pt->depth >= field_depth) return tower_pth_root(x, pt);
    for (const polynode* t = *x; t != nullptr; t = t->next)
        if (t->exp % p != 0) return false;
    return take_pth_root(x, p, pt, why);
}

/// Separates the factors of x whose multiplicity m is no multiple of p; they are listed with m * mult. What
/// is left is the p-th power that comes back; x is kept, its derivative d is not 0.
static poly separate(poly x, poly d, polyptrr sq, int32_t* count, int32_t p, int32_t mult, polypt pt) {
    poly c = fresh_gcd(d, x, pt), w = nullptr;
    poly_assign(x, &w);
    divide_out(&w, c, pt);
    for (int32_t i = 1; has_degree(w); i++) {
        poll_interrupt();
        if (i % p == 0) {  // every factor of w occurs more often than that
            divide_out(&c, w, pt);
            i++;
        }
        poly y = fresh_gcd(w, c, pt), f = w;
        divide_out(&f, y, pt);
        if (has_degree(f))
            add_factor(sq, count, f, i * mult, pt);
        else
            free_poly(&f);
        w = y;
        if (!is_number(y)) divide_out(&c, y, pt);
    }
    free_poly(&w);
    return c;
}

void square_free_factor(poly x, polyptrr sq, int32_t* count, polypt pt) {
    int32_t p = finf ? 2 : modulus;
    poly rest = nullptr;
    poly_assign(x, &rest);
    for (int32_t mult = 1; has_degree(rest);) {
        poly d = nullptr;
        poly_differentiate(rest, &d, 1);
        if (!poly_iszero(d)) {
            poly c = separate(rest, d, sq, count, p, mult, pt);
            free_poly(&rest);
            rest = c;
        }
        free_poly(&d);
        if (!has_degree(rest)) break;
        Err why = Err::no_pth_root;
        if (!take_pth_root(&rest, p, pt, &why)) {
            error(why);
            break;
        }
        mult *= p;
    }
    free_poly(&rest);
}

// ---- characteristic 0 ----------------------------------------------------------------------------------

/// c - b'.
static poly yun_difference(poly c, poly b) {
    poly db = nullptr, d = nullptr;
    poly_differentiate(b, &db, 1);
    poly_sub(c, db, &d);
    free_poly(&db);
    return d;
}

void rat_sq_free_factor(polyptrr x, polyptrr sq, int32_t* count, polypt pt) {
    poly b = nullptr, c = nullptr;
    poly_assign(*x, &b);
    poly_differentiate(b, &c, 1);
    poly g = fresh_gcd(c, b, pt);
    if (is_number(g)) {
        free_poly(&g);
        free_poly(&c);
        add_factor(sq, count, b, 1, pt);
        return;
    }
    divide_both(&b, &c, g, pt);
    free_poly(&g);
    int32_t i = 0;
    // b: the product of the factors that occur more than i times
    for (poly d = yun_difference(c, b);; d = yun_difference(c, b)) {
        poll_interrupt();
        free_poly(&c);
        if (poly_iszero(d)) {
            free_poly(&d);
            break;
        }
        i++;
        c = d;
        if (is_number(d)) continue;
        g = fresh_gcd(b, d, pt);
        if (is_number(g)) {
            free_poly(&g);
            continue;
        }
        divide_both(&b, &c, g, pt);
        add_factor(sq, count, g, i, pt);
    }
    add_factor(sq, count, b, i + 1, pt);
}

// ---- all levels ----------------------------------------------------------------------------------------

void total_sq_free(polyptrr x, polyptrr sq, int32_t* count, boolean first, polypt pt) {
    if (first) {
        *count = 0;
        if (modularmode) gcd_normal_form(x, pt);
    }
    if (is_number(*x)) return;
    poly c = nullptr, below = nullptr;
    content(*x, &c, pt, 0, 1, 1);
    if (is_number(c)) {
        if (!lintmode) num_poly_quot(x, c->ncoef, 0);
    } else {
        poly padded = nullptr;
        poly_assign(c, &padded);
        add_pad(&padded, 1);
        divide_content(x, padded, pt);
        free_poly(&padded);
        total_sq_free(&c, &below, count, 0, pt->next);
        for (poly f = below; f != nullptr; f = f->next) add_pad(&f->pcoef, 1);
    }
    free_poly(&c);
    if (has_degree(*x)) {
        if (modularmode)
            square_free_factor(*x, sq, count, pt);
        else
            rat_sq_free_factor(x, sq, count, pt);
    }
    while (*sq != nullptr) sq = &(*sq)->next;
    *sq = below;
}

void free_factor_list(polyptrr sq) { free_poly(sq); }
}  // namespace tolvex
