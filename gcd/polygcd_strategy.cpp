// Steps of polygcd that choose the engine: measurements and hand-set bounds, none of which bears on the
// result.
#include "gcd/engines.h"
#include "gcd/num_content.h"
#include "gcd/polygcd_env.h"
#include "poly/div_general.h"
#include "poly/size_estimates.h"
namespace tolvex {
// ---- sparse or dense -----------------------------------------------------------------------------------

// Nodes of p and the size of its exponent box per node.
static int64_t measure_box(poly p, int64_t* nodes, const polygcd_EnvRec& env) {
    int32_t box = 0;
    *nodes = maxx(1, expon_node_total(p, env.pt->depth, 1, &box));
    return box / *nodes;
}

// Operands of many variables and high degrees that are dense all the same in the sum of their degrees.
static bool degrees_forbid_sparse(const polygcd_EnvRec& env) {
    int32_t there = maxx(polys_there(env.u, env.pt->depth), polys_there(env.v, env.pt->depth));
    if (env.u->exp <= 5 || env.v->exp <= 5 || there <= 6) return false;
    return sum_degrees(env.u, env.pt->depth, 10 * there) + sum_degrees(env.v, env.pt->depth, 10 * there) >
           8 * there;
}

bool sparse_or_dense(polygcd_EnvRec& env) {
    constexpr int64_t k_sparse_box = 2300, k_small = 1600;
    int64_t box_u = measure_box(env.u, &env.ssize, env), box_v = measure_box(env.v, &env.tsize, env);
    bool vsparse = box_v > k_sparse_box;
    env.usparse = box_u > k_sparse_box;
    env.avsize = (box_u + box_v) / 2;
    if (!env.usparse && vsparse)
        env.usparse = env.ssize < k_small;
    else if (env.usparse && !vsparse)
        env.usparse = env.tsize <= k_small;
    if (env.usparse && env.v->exp > 1) {
        int32_t terms = qpoly_numterms(env.v, 0);
        if (terms > 1000 || (terms > 50 && qpoly_numterms(env.u, 0) > 1000)) env.usparse = 0;
    }
    if (env.usparse && degrees_forbid_sparse(env)) env.usparse = 0;
    return false;
}

// ---- what Algorithm C may cost -------------------------------------------------------------------------

namespace {
/// Sizes the budget is judged by.
struct Weights {
    int64_t a, b;    // nodes of u, v
    int64_t s;       // exponent box per node
    int32_t du, dv;  // degrees in the main variable
};
}  // namespace

// Rungs from the top: a rung that fails passes to the next one down. The size of u limits how high one
// enters.
static bool staircase(const Weights& w) {
    static constexpr struct {
        int64_t least_a, least_b;
        int32_t du, dv;
        int64_t s;
    } rungs[] = {{301, 901, 4, 3, 0},
                 {221, 851, 5, 4, 0},
                 {201, 201, 8, 8, 200001},
                 {101, 101, 13, 13, 400001},
                 {51, 51, 15, 15, 800001}};
    for (const auto& rung : rungs)
        if (w.a >= rung.least_a && w.b >= rung.least_b && w.du >= rung.du && w.dv >= rung.dv && w.s >= rung.s)
            return true;
    return false;
}

static bool heavy(const Weights& w) {
    if (w.a >= 2301 && w.b >= 901 && w.du + w.dv >= 10) return true;
    if (w.s < 3000 && w.du + w.dv < 6) return true;
    if (w.a >= 1801 && w.b >= 351 && w.du >= 4 && w.dv >= 3) return true;
    if (w.a >= 2001 && w.b >= 181 && w.du >= 5 && w.dv >= 4) return true;
    return staircase(w);
}

// Sparse operands: may they go to Algorithm C at once?
static bool sequence_is_affordable(const polygcd_EnvRec& env) {
    Weights w = {env.ssize, env.tsize, env.avsize, env.u->exp, env.v->exp};
    int64_t terms = int64_t{f_poly_numterms(env.u)} + f_poly_numterms(env.v);
    if ((w.s < 25000 && terms < 1100) || (w.s < 60000 && terms < 1600 && w.du > 2)) return false;
    if (w.s >= 30000 && qpoly_numterms(env.u, 0) <= 400 && qpoly_numterms(env.v, 0) <= 400 &&
        (w.du < 8 || w.dv < 8))
        return true;
    if (heavy(w)) return false;
    int64_t lead_weight = poly_weight(env.v->pcoef, 1);
    if (w.a >= 1501 && w.b >= 1501 && lead_weight >= 200001) return false;
    if (w.a < 1001) return true;
    if (w.a >= 2001 && w.b > 120 && lead_weight > 1000000) return false;
    return w.b < 1001 || lead_weight < 1000001 || w.s < 70001 || w.du < 3 || w.dv < 3;
}

bool budget_of_algorithm_c(polygcd_EnvRec& env) {
    if (alg_c_count >= 3)
        env.usparse = 0;
    else if (env.usparse)
        env.usparse = sequence_is_affordable(env);
    env.uvsize = env.ssize + env.tsize;
    if (c_cntcount > 100000 && env.uvsize < 300) env.usparse = 1;
    env.balanced = env.ssize >= env.tsize / 20 && env.tsize >= env.ssize / 20;
    return false;
}

// ---- the multi-prime method ----------------------------------------------------------------------------

// Sum of the masses of the terms of p, counted until it exceeds the bound.
static int64_t mass_up_to(const polynode* p, int64_t bound) {
    int64_t mass = 0;
    for (; p != nullptr && mass <= bound; p = p->next) {
        const polynode* c = p->numb ? p : p->pcoef;
        if (!p->numb && !is_number(c))
            mass += 13 + more_simple_poly_mass(p->pcoef);
        else
            mass += lintmode ? 31 : 31 + 8 * c->ncoef->size;
    }
    return mass;
}

bool do_mod_method_now(poly u, poly v, int32_t expo) {
    constexpr int64_t k_heavy = 350, k_heavy_total = 281, k_light = 200;
    int32_t drop = v->exp - expo;
    if (drop > mod_method_diff || 6 * int64_t{drop} > v->exp) return true;
    int64_t mass = mass_up_to(v, k_heavy);
    if (mass >= k_heavy_total) return true;
    if (v->exp == 1 && mass < k_light) return false;
    return mass_up_to(u, k_heavy) > k_heavy;
}

// ---- how many evaluation tests -------------------------------------------------------------------------

bool number_of_tests(polygcd_EnvRec& env) {
    env.height = 0;
    if (!env.do_fast) return false;
    if (fast_poly_length(env.u, 5) + fast_poly_length(env.v, 5) < 8)
        env.height = modularmode ? 1 : env.uvsize > 12 ? 3 : 2;
    else
        env.height = modularmode ? (env.uvsize > 25 ? 3 : 2) : 4;
    if (env.tried_use_modular)
        env.height = env.us.lowest == 0 || env.vs.lowest == 0 ? -1 : Iminn(env.height, 3);
    if (env.field_level != 2) return false;
    int32_t most = modularmode ? (modulus == 2 ? 1 : modulus - 1) : 6;
    env.height = static_cast<int16_t>(minn(env.height, most));
    return false;
}
}  // namespace tolvex
