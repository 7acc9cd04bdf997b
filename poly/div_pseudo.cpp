#include "poly/div_pseudo.h"

#include "poly/div_internal.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
/// One pseudo-division: coef n = q m + r at every step.
struct PseudoEnv {
    poly m;          // divisor, not used up
    poly lead;       // its leading coefficient as a polynomial of this level
    poly lead_bare;  // the same one level down
    poly q, r, coef;
    polypt pt;
    bool want_q, want_coef;
    bool every_step;  // the factor lead at each step, also where lead divides: Knuth's form
    int32_t factors;  // how often everything was multiplied by lead
};
}  // namespace

// x^exp c as a polynomial of this level; c is used up.
static poly shifted(poly c, int32_t exp) {
    poly t = nullptr;
    append_term(&t, exp, c);
    return t;
}

static void times_lead(PseudoEnv& env, polyptrr p) {
    if (*p != nullptr && !poly_iszero(*p)) poly_mult(*p, env.lead, p, env.pt);
}

static void multiply_all(PseudoEnv& env) {
    times_lead(env, &env.r);
    if (env.want_q) times_lead(env, &env.q);
    if (env.want_coef) times_lead(env, &env.coef);
    env.factors++;
}

static int32_t degree(const polynode* p) { return is_number(p) ? 0 : p->exp; }

// Takes the leading term off the remainder.
static void pseudo_step(PseudoEnv& env, int32_t dm) {
    int32_t e = env.r->exp;
    poly c = coefficient_copy(env.r), t = nullptr;
    bool exact =
        !env.every_step && divide_trees(c, env.lead_bare, &t, env.pt != nullptr ? env.pt->next : nullptr);
    drop_first_term(&env.r);
    if (exact) {
        free_poly(&c);
    } else {
        multiply_all(env);
        t = c;
    }
    poly factor = shifted(t, e - dm);
    poly tail = is_number(env.m) ? nullptr : env.m->next;
    if (tail != nullptr) {
        poly product = nullptr;
        poly_mult(factor, tail, &product, env.pt);
        best_poly_sub(env.r, product, &env.r);
    }
    if (env.want_q)
        best_poly_add(env.q, factor, &env.q);
    else
        free_poly(&factor);
}

static void run(PseudoEnv& env, poly n) {
    env.q = env.coef = env.r = nullptr;
    env.factors = 0;
    poly_assign(n, &env.r);
    poly_set(0, &env.q);
    poly_set(1, &env.coef);
    env.lead_bare = nullptr;
    if (is_number(env.m))
        poly_assign(env.m, &env.lead_bare);
    else
        poly_assign(env.m->pcoef, &env.lead_bare);
    poly copy = nullptr;
    poly_assign(env.lead_bare, &copy);
    env.lead = shifted(copy, 0);
    int32_t dm = degree(env.m), dn = degree(n);
    while (!poly_iszero(env.r) && degree(env.r) >= dm) {
        poll_interrupt();
        pseudo_step(env, dm);
    }
    if (env.every_step)
        while (env.factors <= dn - dm) multiply_all(env);
    free_poly(&env.lead);
    free_poly(&env.lead_bare);
}

static void deliver(polyptrr target, polyptrr fresh, bool wanted) {
    if (!wanted) {
        free_poly(fresh);
        return;
    }
    free_poly(target);
    *target = *fresh;
}

void pseudo_div_no_q(poly n, poly m, polyptrr r, polypt pp, boolean want_Knuth) {
    PseudoEnv env = {};
    env.m = m;
    env.pt = pp;
    env.every_step = want_Knuth;
    run(env, n);
    deliver(nullptr, &env.coef, false);
    deliver(nullptr, &env.q, false);
    deliver(r, &env.r, true);
}

void num_pseudo_div(poly n, poly m, polyptrr q, polyptrr r, polyptrr coef, polypt pt) {
    PseudoEnv env = {};
    env.m = m;
    env.pt = pt;
    env.want_q = env.want_coef = true;
    run(env, n);
    deliver(coef, &env.coef, true);
    deliver(q, &env.q, true);
    deliver(r, &env.r, true);
}
}  // namespace tolvex
