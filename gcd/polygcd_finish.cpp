// Operands, private forms of them, and the end of a call of polygcd.
#include "gcd/field_hooks.h"
#include "gcd/gcd_stash.h"
#include "gcd/num_content.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "poly/div_general.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_monic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"

#include <cstdio>
#include <utility>
namespace tolvex {
// A chain of the same terms over the same coefficients.
static poly shell_of(const polynode* p) {
    poly head = nullptr;
    polyptrr at = &head;
    for (; p != nullptr; p = p->next) {
        newpoly(at);
        **at = *p;
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}

static void free_own(poly* p, GcdOperand& side) {
    if (!side.own) return;
    if (side.shell)
        for (poly t = *p; t != nullptr;) {
            poly next = t->next;
            free_node(t);
            t = next;
        }
    else
        free_poly(p);
    *p = nullptr;
    side.own = side.shell = 0;
}

void own_chain(poly* p, GcdOperand& side) {
    if (side.own) return;
    if (side.save) {
        *p = shell_of(*p);
        side.shell = 1;
    } else {
        poly taken = nullptr;
        mini_copy(p, &taken);
        *p = taken;
    }
    side.own = 1;
}

void own_tree(poly* p, GcdOperand& side) {
    if (side.own && !side.shell) return;
    if (!side.own && !side.save) return own_chain(p, side);
    poly copy = nullptr;
    poly_assign(*p, &copy);
    replace_operand(p, side, copy);
}

void replace_operand(poly* p, GcdOperand& side, poly fresh) {
    free_own(p, side);
    *p = fresh;
    side.own = 1;
}

void check_uv(polygcd_EnvRec& env) {
    free_own(&env.u, env.us);
    free_own(&env.v, env.vs);
    env.u = env.us.orig;
    env.v = env.vs.orig;
}

void exchange_operands(polygcd_EnvRec& env) {
    std::swap(env.u, env.v);
    std::swap(env.us, env.vs);
}

poly poly_power_of_main(int32_t e) {
    poly p = nullptr;
    poly_set(1, &p);
    if (e != 0) new_term(&p, e, p);
    return p;
}

int32_t monomial_factor(const polygcd_EnvRec& env) {
    if (env.u->next == nullptr) return minn(env.u->exp, env.vs.lowest);
    if (env.v->next == nullptr) return minn(env.v->exp, env.us.lowest);
    return 0;
}

void early_form(polyptrr r) {
    poly p = poly_power_of_main(is_number(*r) ? 0 : (*r)->exp);
    if (is_number(p) && !is_number(*r)) {  // something lies in the deeper levels
        new_term(&p, 1, p);
        new_term(&p, 0, p);
    }
    free_poly(r);
    *r = p;
}

bool ring_is_composite() { return modularmode && !mod_is_prime && !finf; }

void gcd_normal_form(polyptrr g, polypt pt) {
    if (pt != nullptr && exists_field_element(*g, pt->depth))
        tower_gcd_form(g, pt);
    else
        correct_monic_form(g);
}

void correct_monic_form(polyptrr r) {
    if (modularmode)
        monic_poly(r);
    else if (!lintmode)
        poly_abs(*r);
}

static void store_in_stash(polygcd_EnvRec& env) {
    if (!env.store_new_gcd) return;
    env.store_new_gcd = 0;
    gcd_stash_store(env.gcdp, *env.r);
    if (--polygcd_stack_depth < 0) {
        printf("negative polygcd_stack_depth 1\n");
        polygcd_stack_depth = 0;
    }
}

// All exponents of the main variable times k and plus e.
static void spread_exponents(polyptrr r, int32_t k, int32_t e) {
    if (is_number(*r)) {
        if (e != 0) new_term(r, e, *r);
        return;
    }
    for (poly t = *r; t != nullptr; t = t->next) {
        if (t->numb && e != 0) {  // the constant term of a chain becomes a term over a leaf
            poly leaf;
            newpoly(&leaf);
            *leaf = *t;
            leaf->exp = 0;
            leaf->next = nullptr;
            t->numb = 0;
            t->pcoef = leaf;
        }
        t->exp = t->exp * k + e;
    }
}

bool finish_4(polygcd_EnvRec& env) {
    if (!lintmode) poly_abs(*env.r);
    if (env.store_new_gcd) store_in_stash(env);
    if (env.d != nullptr) {
        add_pad(&env.d, 1);
        poly_mult(*env.r, env.d, env.r, env.pt);
        free_poly(&env.d);
    }
    if (env.d2 != nullptr) {
        poly_mult(*env.r, env.d2, env.r, env.pt);
        free_poly(&env.d2);
    }
    if (env.gcdexp > 1 || env.comm > 0) spread_exponents(env.r, env.gcdexp, env.comm);
    correct_monic_form(env.r);
    return true;
}

bool finish_power(polygcd_EnvRec& env, int32_t e) { return alternate_finish(env, poly_power_of_main(e)); }

bool alternate_finish(polygcd_EnvRec& env, poly g) {
    free_poly(env.r);
    *env.r = g;
    return finish_4(env);
}

bool divides_both_exactly(poly u, poly v, poly g, polypt pt) {
    poly q = nullptr;
    boolean failed = 0;
    gen_poly_divide(v, g, &q, pt, &failed);
    if (!failed) gen_poly_divide(u, g, &q, pt, &failed);
    free_poly(&q);
    return !failed;
}
}  // namespace tolvex
