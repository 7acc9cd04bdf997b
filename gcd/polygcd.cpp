// The driver of the gcd: the order of the steps, and those that come before any work on the coefficients.
#include "gcd/polygcd.h"

#include "gcd/content.h"
#include "gcd/engines.h"
#include "gcd/field_hooks.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "gcd/word_lane.h"
#include "numbers/num_gcd.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_monic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/interrupt.h"
namespace tolvex {
static constexpr int32_t k_most_counted = 200000;  // steps of content after which contents are a side issue
static constexpr int32_t k_g_cutoff = 10;
static constexpr int32_t k_most_frames = 3000;  // frames of polygcd; the stack is good for more

// ---- operands that tell the gcd at once ----------------------------------------------------------------

static poly poly_one() {
    poly p = nullptr;
    poly_set(1, &p);
    return p;
}

/// One operand at least is a number: the gcd of all numeric coefficients, 1 in word arithmetic.
bool one_is_number(polygcd_EnvRec& env) {
    if (!is_number(env.u) && !is_number(env.v)) {
        if (env.pt == nullptr) tolvex_error("pt nil in polygcd.");
        return false;
    }
    *env.r = poly_one();
    poly first = is_number(env.u) ? env.u : env.v;
    common_content(first, first == env.u ? env.v : env.u, (*env.r)->ncoef);
    return true;
}

/// Above a field tower an operand that lies in it is a unit: only the integer contents count.
bool field_units(polygcd_EnvRec& env) {
    if (c_cntcount > k_most_counted) env.allcons = 0;
    if (!is_field_element(env.u, env.pt->depth) && !is_field_element(env.v, env.pt->depth)) return false;
    *env.r = poly_one();
    common_content(env.u, env.v, (*env.r)->ncoef);
    return true;
}

/// Elements of a field tower in the operands: the layer of towers has its own engines. What comes after this
/// step sees plain polynomials, whose gcd is the same over a tower.
bool tower_operands(polygcd_EnvRec& env) {
    if (field_depth == 0 || both_above_field_depth(env.u, env.v, env.pt->depth)) return false;
    tower_gcd(env.u, env.v, env.r, env.pt);
    return true;
}

bool same_operands(polygcd_EnvRec& env) {
    if (ring_is_composite() && !has_unit_lead(env.u)) return false;
    if (env.u != env.v && !poly_equal(env.u, env.v)) return false;
    poly_assign(env.u, env.r);
    correct_monic_form(env.r);
    return true;
}

/// A composite modulus: what units allow. Words that wrap: nothing is known of them.
bool not_a_domain(polygcd_EnvRec& env) {
    if (lintmode && !modularmode) {
        *env.r = poly_one();
        return true;
    }
    if (!ring_is_composite()) return false;
    composite_gcd(env.u, env.v, env.r, env.pt);
    return true;
}

// ---- levels that do not occur --------------------------------------------------------------------------

static void reset_at_origin(const polygcd_EnvRec& env) {
    c_cntcount = a_cntcount = d_cntcount = 0;
    if (!env.canreset || !env.allcons) return;
    g_cntcount = 0;
    g_cutoff = k_g_cutoff;
}

/// Neither operand has the main variable: the gcd is that of the coefficients, some levels down.
bool both_free_of_main(polygcd_EnvRec& env) {
    if (env.u->exp != 0 || env.v->exp != 0) return false;
    poly u = env.u, v = env.v;
    polypt pt = env.pt;
    int32_t pads = 0;
    for (; u->exp == 0 && v->exp == 0 && !is_number(u) && !is_number(v); pads++) {
        if (pt->depth == original_depth) {
            reset_at_origin(env);
            if (env.canreset && env.allcons) original_depth = pt->depth + 1;
        }
        u = u->pcoef;
        v = v->pcoef;
        pt = pt->next;
    }
    gcd_call(u, v, env.r, env.leave_early, env.do_fast, env.allcons, pt, env.us.save, env.vs.save, 1);
    add_pad(env.r, pads);
    return true;
}

/// The engines on word arrays, which settle most problems; they decline what is too wide for them.
bool word_lane(polygcd_EnvRec& env) {
    if (!word_engines) return false;
    bool raw = !gcd_sure && !env.leave_early;
    return word_gcd(env.u, env.v, env.r, env.pt, raw);
}

bool one_variable(polygcd_EnvRec& env) {
    if (!modularmode || !mod_is_prime || !height_is_1(env.u) || !height_is_1(env.v)) return false;
    basic_poly_gcd(env.u, env.v, env.r, 1, env.pt);
    return true;
}

/// Exactly one operand is free of the main variable: the gcd of it and of the coefficients of the other.
bool one_free_of_main(polygcd_EnvRec& env) {
    if (env.u->exp != 0 && env.v->exp != 0) return false;
    if (env.u->exp != 0) exchange_operands(env);
    aux_content(env.u, env.v, env.r, env.pt, is_outermost(), env.allcons, env.us.save, env.vs.save);
    add_pad(env.r, 1);
    return true;
}

bool reset_counters(polygcd_EnvRec& env) {
    int32_t depth = env.pt->depth;
    if (env.allcons && depth < original_depth) original_depth = depth;
    if (depth <= original_depth) reset_at_origin(env);
    return false;
}

// ---- exponents of the main variable --------------------------------------------------------------------

// Subtracts e from the exponents of a private chain. What becomes the constant term is a leaf of the chain.
static void lower_exponents(poly p, int32_t e, bool shell) {
    for (; p != nullptr; p = p->next) {
        p->exp -= e;
        if (p->exp != 0 || p->numb || !is_number(p->pcoef)) continue;
        poly leaf = p->pcoef;
        p->numb = 1;
        p->ncoef = leaf->ncoef;
        if (!shell) free_node(leaf);
    }
}

static void strip_operand(poly* p, GcdOperand& side) {
    side.has_terms = (*p)->next != nullptr;
    side.lowest = side.has_terms ? lastnode(*p)->exp : 0;
    if (side.lowest == 0) return;
    own_chain(p, side);
    lower_exponents(*p, side.lowest, side.shell);
}

/// Powers of the main variable; one-term operands keep theirs, the rule for one term counts them.
bool strip_powers(polygcd_EnvRec& env) {
    strip_operand(&env.u, env.us);
    strip_operand(&env.v, env.vs);
    env.comm = minn(env.us.lowest, env.vs.lowest);
    if (env.comm == 0 || !env.leave_early) return false;
    *env.r = poly_power_of_main(env.comm);
    return true;
}

static int32_t gcd_of_gaps(const polynode* p, int32_t g) {
    for (; p->next != nullptr && g != 1; p = p->next) g = smallgcd(g, p->exp - p->next->exp);
    return g;
}

static void divide_chain(poly* p, GcdOperand& side, int32_t k) {
    own_chain(p, side);
    for (poly t = *p; t != nullptr; t = t->next) t->exp /= k;
}

/// Modular: polynomials in x^k are taken as polynomials in x.
bool divide_exponents(polygcd_EnvRec& env) {
    if (!modularmode || !env.us.has_terms || !env.vs.has_terms) return false;
    env.gcdexp = gcd_of_gaps(env.v, gcd_of_gaps(env.u, 0));
    if (env.gcdexp <= 1) return false;
    divide_chain(&env.u, env.us, env.gcdexp);
    divide_chain(&env.v, env.vs, env.gcdexp);
    return false;
}

bool larger_degree_first(polygcd_EnvRec& env) {
    if (env.u->exp < env.v->exp) exchange_operands(env);
    env.expo = env.v->exp;
    return false;
}

// ---- the order of the steps ----------------------------------------------------------------------------

namespace {
struct NamedStep {
    GcdStep* run;
    const char* name;
};
}  // namespace

static constexpr NamedStep steps[] = {
    {one_is_number, "one_is_number"},
    {field_units, "field_units"},
    {tower_operands, "tower_operands"},
    {same_operands, "same_operands"},
    {not_a_domain, "not_a_domain"},
    {both_free_of_main, "both_free_of_main"},
    {word_lane, "word_lane"},
    {one_variable, "one_variable"},
    {one_free_of_main, "one_free_of_main"},
    {reset_counters, "reset_counters"},
    // From here on an operand may have a private form, and finish_4 puts back what has been stripped.
    {strip_powers, "strip_powers"},
    {divide_exponents, "divide_exponents"},
    {larger_degree_first, "larger_degree_first"},
    {allow_images, "allow_images"},
    {try_small_divisor, "try_small_divisor"},
    {adjust_allcons, "adjust_allcons"},
    {one_image, "one_image"},
    {assign_levels, "assign_levels"},
    {first_evaluation_tests, "first_evaluation_tests"},
    {missing_variables, "missing_variables"},
    {main_contents, "main_contents"},
    {one_term_or_equal, "one_term_or_equal"},
    {contents_in_levels, "contents_in_levels"},
    {sparse_or_dense, "sparse_or_dense"},
    {budget_of_algorithm_c, "budget_of_algorithm_c"},
    {assign_levels, "assign_levels"},
    {try_divisor_early, "try_divisor_early"},
    {multi_prime_first, "multi_prime_first"},
    {number_of_tests, "number_of_tests"},
    {second_evaluation_tests, "second_evaluation_tests"},
    {early_degree, "early_degree"},
    {stash_lookup, "stash_lookup"},
    {try_over_integers, "try_over_integers"},
    {try_modular, "try_modular"},
    {remainder_sequence, "remainder_sequence"},
};
static_assert(sizeof steps / sizeof steps[0] == k_gcd_steps);

const char* gcd_step_name(int32_t step) { return steps[step].name; }

static void run_steps(polygcd_EnvRec& env) {
    int32_t i = 0;
    while (!steps[i].run(env)) i++;  // the last step always ends the call
    gcd_ended_by[i]++;
}

void gcd_call(poly u, poly v, polyptrr r, boolean leave_early, boolean do_fast, boolean allcons, polypt pt,
              boolean usave, boolean vsave, boolean canreset) {
    poll_interrupt();
    if (gcd_nesting - gcd_outer >= k_most_frames) tolvex_error("The gcd is nested too deeply.");
    gcd_nesting++;
    poly result = nullptr;
    polygcd_EnvRec env = {};
    env.u = env.us.orig = u;
    env.v = env.vs.orig = v;
    env.us.save = usave;
    env.vs.save = vsave;
    env.us.levels = env.vs.levels = -1;
    env.r = &result;
    env.pt = pt;
    env.leave_early = leave_early;
    env.do_fast = do_fast;
    env.allcons = allcons;
    env.canreset = canreset;
    env.gcdexp = 1;
    run_steps(env);
    check_uv(env);
    if (gcd_fault != nullptr && !gcd_sure) gcd_fault(&result, pt);
    if (leave_early) early_form(&result);
    free_poly(r);
    *r = result;
    gcd_nesting--;
}
}  // namespace tolvex
