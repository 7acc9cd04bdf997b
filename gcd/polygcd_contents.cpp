// Steps of polygcd that take contents out: in the main variable, and with respect to several levels.
#include "gcd/content.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_monic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/failure.h"
namespace tolvex {
// A nested gcd was wrong: what follows relies on nothing unproved.
static GcdCounters begin_sure() {
    GcdCounters saved = gcd_counters_save();
    gcd_sure = 1;
    lookupgcd = -1000;
    return saved;
}

// ---- contents in the main variable ---------------------------------------------------------------------

// *q := p / s, for s of p's own level.
static bool quotient(poly p, poly s, polyptrr q, polypt pt) {
    boolean failed = 0;
    gen_poly_divide(p, s, q, pt, &failed);
    return !failed;
}

// *p := *p / c, c one level down. False: it does not divide.
static bool divide_out(polyptrr p, const polynode* c, polypt pt) {
    poly padded = nullptr, q = nullptr;
    poly_assign(c, &padded);
    add_pad(&padded, 1);
    bool divides = quotient(*p, padded, &q, pt);
    free_poly(&padded);
    if (!divides) return false;
    free_poly(p);
    *p = q;
    return true;
}

void take_out_content(polyptrr p, polyptrr c, polypt pt, boolean allcons) {
    content(*p, c, pt, 0, allcons, 1);
    if (poly_eq_1(*c) || divide_out(p, *c, pt)) return;
    GcdCounters saved = begin_sure();
    content(*p, c, pt, 0, 0, 1);
    gcd_counters_restore(saved);
    if (!divide_out(p, *c, pt)) tolvex_error("content does not divide in polygcd.");
}

// *p := *p / s, s one level down and not 1. False: it does not divide, so it is no content.
static bool divide_by_content(poly* p, GcdOperand& side, poly s, polypt pt) {
    if (is_number(s)) {
        own_tree(p, side);
        if (!lintmode) num_poly_quot(p, s->ncoef, 0);
        return true;
    }
    poly padded = nullptr, q = nullptr;
    poly_assign(s, &padded);
    add_pad(&padded, 1);
    bool divides = quotient(*p, padded, &q, pt);
    free_poly(&padded);
    if (divides) replace_operand(p, side, q);
    return divides;
}

// s := the content of *p, divided out unless an operand is one term. A content that does not divide rests on
// a gcd that was wrong: then it is computed again, relying on nothing.
static void take_content(poly* p, GcdOperand& side, polyptrr s, bool divide_out, const polygcd_EnvRec& env) {
    content(*p, s, env.pt, 0, env.allcons, 1);
    if (!divide_out || poly_eq_1(*s)) return;
    if (!divide_by_content(p, side, *s, env.pt)) {
        GcdCounters saved = begin_sure();
        content(*p, s, env.pt, 0, 0, 1);
        gcd_counters_restore(saved);
        if (!divide_by_content(p, side, *s, env.pt)) tolvex_error("content does not divide in polygcd.");
    }
    if (!is_number(*s)) side.levels = -1;
}

bool main_contents(polygcd_EnvRec& env) {
    poly s = nullptr, t = nullptr;
    bool divide_out = env.u->next != nullptr && env.v->next != nullptr;
    take_content(&env.u, env.us, &s, divide_out, env);
    take_content(&env.v, env.vs, &t, divide_out, env);
    gcd_call(s, t, &env.d, 0, 1, env.allcons, env.pt->next, 0, 0, 1);
    free_poly(&s);
    free_poly(&t);
    if (poly_eq_1(env.d)) free_poly(&env.d);
    return false;
}

// ---- operands of one term, associated operands ---------------------------------------------------------

static bool one_term(polygcd_EnvRec& env) {
    if (env.u->next == nullptr) {
        int32_t v_low = env.v->next == nullptr ? env.v->exp : lastnode(env.v)->exp;
        return finish_power(env, minn(env.u->exp, env.vs.lowest + v_low));
    }
    if (env.v->next == nullptr)
        return finish_power(env, minn(env.v->exp, env.us.lowest + lastnode(env.u)->exp));
    return false;
}

bool one_term_or_equal(polygcd_EnvRec& env) {
    if (one_term(env)) return true;
    if (!essentially_equal(env.u, env.v)) return false;
    poly g = nullptr;
    poly_assign(env.u, &g);
    return alternate_finish(env, g);
}

// ---- contents in several levels ------------------------------------------------------------------------

namespace {
/// What the loop over the levels has found and spent.
struct LevelContents {
    int32_t new_g_cutoff;
    int64_t spent;       // sum of the sizes of all contents
    int64_t total_size;  // the same, for the running average
    int64_t most;        // sizes after which the loop stops
};
/// The content of one operand at one level.
struct LevelContent {
    poly s;
    boolean whole;  // the operand is its own content
    int64_t size;
};
}  // namespace

static void multiply_into(polyptrr d, poly g, polypt pt) {
    if (poly_eq_1(g)) return;
    if (*d == nullptr)
        poly_assign(g, d);
    else
        poly_mult(*d, g, d, pt);
}

static bool divide_level_content(poly* p, GcdOperand& side, poly s, polypt pt) {
    if (is_number(s)) {
        own_tree(p, side);
        if (!lintmode) num_poly_quot(p, s->ncoef, 0);
        return true;
    }
    poly q = nullptr;
    if (!quotient(*p, s, &q, pt)) return false;
    replace_operand(p, side, q);
    return true;
}

// The content of *p at the level, divided out.
static LevelContent take_level_content(poly* p, GcdOperand& side, int16_t level, polygcd_EnvRec& env) {
    LevelContent c = {nullptr, 0, 0};
    general_content(*p, level, &c.s, env.pt, &c.whole, 0);
    if (!c.whole && !poly_eq_1(c.s) && !divide_level_content(p, side, c.s, env.pt)) {
        GcdCounters saved = begin_sure();
        general_content(*p, level, &c.s, env.pt, &c.whole, 0);
        gcd_counters_restore(saved);
        if (!c.whole && !divide_level_content(p, side, c.s, env.pt))
            tolvex_error("content does not divide in polygcd.");
    }
    if (!is_number(c.s) && c.s->exp > 0) env.found_something = 1;
    c.size = is_number(c.s) ? 0 : fast_numterms(c.s) - 1;
    return c;
}

// g := gcd(s, v), divided out of v: the large content s of u against the whole of v.
static void gcd_with_large_content(poly s, polyptrr g, polygcd_EnvRec& env) {
    gcd_call(s, env.v, g, 0, 1, 0, env.pt, 1, 1, 0);
    if (poly_eq_1(*g) || divide_level_content(&env.v, env.vs, *g, env.pt)) return;
    GcdCounters saved = begin_sure();
    gcd_call(s, env.v, g, 0, 1, 0, env.pt, 1, 1, 0);
    gcd_counters_restore(saved);
    if (!divide_level_content(&env.v, env.vs, *g, env.pt)) tolvex_error("gcd does not divide in polygcd.");
}

// g := what the contents at the level have in common; what is found is divided out of u and v.
static void common_level_content(int16_t level, LevelContents& loop, polygcd_EnvRec& env) {
    constexpr int64_t k_large_content = 12;
    LevelContent s = take_level_content(&env.u, env.us, level, env), t = {nullptr, 0, 0};
    poly g = nullptr;
    g_cntcount++;
    if (s.size < k_large_content) {
        t = take_level_content(&env.v, env.vs, level, env);
        if (s.whole && t.whole)
            poly_set(1, &g);
        else
            gcd_call(s.whole ? env.u : s.s, t.whole ? env.v : t.s, &g, 0, 1, 0, env.pt, 1, 1, 0);
    } else {
        gcd_with_large_content(s.s, &g, env);
        t.size = is_number(g) ? 0 : fast_numterms(g) - 1;
    }
    int64_t size_u = s.whole ? fast_numterms(env.u) : s.size,
            size_v = t.whole ? fast_numterms(env.v) : t.size;
    loop.new_g_cutoff = static_cast<int32_t>(maxx64(size_u + size_v, g_cutoff));
    loop.spent += s.size + t.size;
    loop.total_size += s.size + t.size;
    multiply_into(&env.d2, g, env.pt);
    if (!is_number(g) && g->exp > 0) env.found_something = 1;
    free_poly(&s.s);
    free_poly(&t.s);
    free_poly(&g);
}

// Operands that have lost the main variable, or all but one term: the rest is a smaller problem.
static bool ended_by_contents(polygcd_EnvRec& env) {
    if (is_number(env.u) || is_number(env.v)) return finish_power(env, 0);
    if (env.u->exp != 0 && env.v->exp != 0) return one_term(env);
    poly g = nullptr;
    gcd_call(env.u, env.v, &g, env.leave_early, env.do_fast, 0, env.pt, keeps_tree(env.us),
             keeps_tree(env.vs), 0);
    return alternate_finish(env, g);
}

static bool wants_levels(const polygcd_EnvRec& env) {
    int32_t nu = poly_nodes(env.u), nv = poly_nodes(env.v);
    return env.allcons && nu > 3 && nv > 3 && (nu > 40 || nv > 40);
}

static LevelContents open_loop(polygcd_EnvRec& env, int32_t* start, int32_t* limit) {
    if (env.us.levels < 0) env.us.levels = static_cast<int16_t>(quick_depth_below(env.u, env.pt->depth));
    if (env.vs.levels < 0) env.vs.levels = static_cast<int16_t>(quick_depth_below(env.v, env.pt->depth));
    int32_t size = bigg_node_total(env.u) + bigg_node_total(env.v), box = 0;
    poly_level_depth(env.us.levels, env.vs.levels, size, start, limit);
    if (field_depth > 0) *limit = minn(*limit, field_depth - env.pt->depth);
    int32_t nodes = maxx(1, expon_node_total(env.u, env.pt->depth, 1, &box));
    int32_t ratio = box / nodes;
    int32_t total_u = big_node_total(env.u), total_v = big_node_total(env.v);
    bool lopsided = total_u + total_v >= 501 && maxx(total_u, total_v) > 8 * minn(total_u, total_v);
    return {ratio > 20000  ? maxx(100, g_cutoff)
            : ratio > 6000 ? maxx(50, g_cutoff)
                           : g_cutoff,
            0, 0, lopsided ? 30 : 18};
}

/// Factors that are free of deeper variables are contents when those variables are taken as the main ones.
bool contents_in_levels(polygcd_EnvRec& env) {
    env.allcons = wants_levels(env);
    if (!env.allcons) return false;
    int32_t start, limit;
    LevelContents loop = open_loop(env, &start, &limit);
    for (int32_t i = start; i <= limit; i++) {
        g_cutoff = loop.new_g_cutoff;
        common_level_content(static_cast<int16_t>(i), loop, env);
        if (loop.total_size / (i - start + 1) > 3 * static_cast<int64_t>(g_cutoff))
            g_cutoff = 3 * g_cutoff + 2;
        if (ended_by_contents(env)) return true;
        if (g_cntcount >= g_cutoff || loop.spent >= loop.most) break;
    }
    if (env.u->exp < env.v->exp) {
        exchange_operands(env);
        env.us.levels = env.vs.levels = -1;
    }
    return false;
}
}  // namespace tolvex
