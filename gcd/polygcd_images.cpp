// Steps of polygcd that look at the problem through images: one prime, one point, a trial division by points.
#include "gcd/content.h"
#include "gcd/engines.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "poly/div_trial.h"
#include "poly/evaluate.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "poly/size_estimates.h"
#include "poly/word_field.h"
namespace tolvex {
static constexpr int16_t k_image_primes = 10;  // primes of the list that one image tries
static constexpr int16_t k_no_images = 16384;  // a tripval above every size: images do not nest
static constexpr int32_t k_most_counted = 200000;

// ---- one image modulo a prime --------------------------------------------------------------------------

bool allow_images(polygcd_EnvRec& env) {
    env.modular_ok = !lintmode;
    return false;
}

// The first of the primes that divides neither leading number; 0: none.
static int32_t image_prime(poly n, poly m, int16_t count) {
    const number *a = leading_coef(n)->ncoef, *b = leading_coef(m)->ncoef;
    for (int16_t k = 0; k < count; k++) {
        auto p = static_cast<uint32_t>(prime[k].lint);
        if (chain_mod_word(a, p) != 0 && chain_mod_word(b, p) != 0) return prime[k].lint;
    }
    return 0;
}

static void gcd_of_images(poly n, poly m, polyptrr g, polypt pt) {
    poly u = nullptr, v = nullptr;
    poly_image(n, &u);
    poly_image(m, &v);
    if (height_is_1(u) && height_is_1(v)) {
        basic_poly_gcd(u, v, g, 0, pt);
    } else {
        alg_c_count = 0;
        gcd_call(u, v, g, 1, 1, 1, pt, 0, 0, 1);
    }
    free_poly(&u);
    free_poly(&v);
}

void use_modular(poly n, poly m, boolean* success, boolean* isnumb, polypt pt, int16_t prime_number,
                 int32_t* expon) {
    *success = *isnumb = 0;
    int32_t p = image_prime(n, m, prime_number);
    if (p == 0) return;
    GcdCounters counters = gcd_counters_save();
    RingState ring = ring_save();
    ring_enter_prime(p);
    lookupgcd = -1000;
    poly g = nullptr;
    gcd_of_images(n, m, &g, pt);
    *expon = g->exp;
    *success = *expon == 0;
    *isnumb = is_number(g);
    free_poly(&g);
    ring_restore(ring);
    gcd_counters_restore(counters);
}

// The gcd lies in the coefficients: their gcd times what the operands share of the main variable.
static bool gcd_of_coefficients(polygcd_EnvRec& env) {
    int32_t e = monomial_factor(env);
    if (env.leave_early)
        env.d = poly_power_of_main(1);
    else
        dual_content(env.u, env.v, &env.d, env.pt, is_outermost(), env.allcons, keeps_tree(env.us),
                     keeps_tree(env.vs));
    return finish_power(env, e);
}

bool one_image(polygcd_EnvRec& env) {
    if (!env.modular_ok || env.uvsize <= tripval) return false;
    boolean success, isnumb;
    int32_t expo = -1;
    use_modular(env.u, env.v, &success, &isnumb, env.pt, k_image_primes, &expo);
    if (expo < 0) return false;  // no prime
    env.expo = minn(env.expo, expo);
    if (success && isnumb) {
        poly_set(1, &env.d);
        common_content(env.u, env.v, env.d->ncoef);
        return finish_power(env, monomial_factor(env));
    }
    if (success) return gcd_of_coefficients(env);
    if (env.leave_early) return finish_power(env, expo);
    if (env.v->exp == expo) env.allcons = 0;  // v may well be the gcd
    env.tried_use_modular = 1;
    return false;
}

// ---- v as the gcd, by points ---------------------------------------------------------------------------

// Over Z: true if the integer contents forbid that v divides u; *scale: v's content times it is that of u.
static bool contents_forbid(poly u, poly v, imptr scale) {
    number cu = {}, cv = {}, rest = {};
    setvalue(1, scale);
    find_gcdcoefs(v, &cv);
    bool forbid = false;
    if (!is_longint(&cv, 1)) {
        find_gcdcoefs(u, &cu);
        trunc_divide(&cu, &cv, scale, &rest);
        forbid = !iszero(&rest);
    }
    special_free(&cu);
    special_free(&cv);
    special_free(&rest);
    return forbid;
}

/// Measures the operands; a small v is tried as divisor of u, which reduce and the check find out if it was
/// wrong.
bool try_small_divisor(polygcd_EnvRec& env) {
    env.uvsize = big_node_total(env.u) + big_node_total(env.v);
    if (node_total(env.v) >= 50 || node_total(env.u) <= 20) return false;
    bool yes_check = rat_yes && !gcd_sure, divides;
    if (lintmode) {
        divides = trial_poly_divide_noq(env.u, env.v, env.pt, 1, yes_check);
    } else {
        number scale = {};
        bool forbid = contents_forbid(env.u, env.v, &scale);
        poly scaled = nullptr;
        if (!forbid && yes_check && !is_longint(&scale, 1)) {
            poly_assign(env.v, &scaled);
            num_poly_mult(&scaled, &scale);  // the tests see proportional contents
        }
        special_free(&scale);
        divides =
            !forbid && trial_poly_divide_noq(env.u, scaled != nullptr ? scaled : env.v, env.pt, 1, yes_check);
        free_poly(&scaled);
    }
    if (!divides) return false;
    poly g = nullptr;
    poly_assign(env.v, &g);
    return alternate_finish(env, g);
}

bool adjust_allcons(polygcd_EnvRec& env) {
    if (modularmode && env.uvsize > 2000 && c_cntcount < k_most_counted) env.allcons = 1;
    if (!env.allcons) return false;
    if ((c_cntcount == 0 || env.pt->depth == c_cntdepth) && depth_only_2(env.u)) env.allcons = 0;
    if (g_cntcount > g_cutoff) env.allcons = 0;
    return false;
}

// ---- levels --------------------------------------------------------------------------------------------

// Levels from the top of p, a polynomial, down to the deepest that occurs.
static int16_t levels_in_use(const polynode* p) {
    int16_t deepest = 1;
    for (; p != nullptr; p = p->next) {
        if (p->numb || is_number(p->pcoef)) continue;
        auto below = static_cast<int16_t>(1 + levels_in_use(p->pcoef));
        if (below > deepest) deepest = below;
    }
    return deepest;
}

static void assign_operand_levels(const polynode* p, GcdOperand& side, const polygcd_EnvRec& env) {
    side.in_field = is_number(p) ? int16_t{1} : levels_in_use(p);
    side.levels = static_cast<int16_t>(side.in_field - 1);
    if (field_depth > 0)
        side.in_field = Iminn(side.in_field, static_cast<int16_t>(field_depth - env.pt->depth));
}

bool assign_levels(polygcd_EnvRec& env) {
    assign_operand_levels(env.u, env.us, env);
    assign_operand_levels(env.v, env.vs, env);
    env.field_level = static_cast<int16_t>(maxx(env.us.in_field, env.vs.in_field));
    env.level = env.field_level;
    return false;
}

// ---- evaluation tests ----------------------------------------------------------------------------------

// Pairs of digits to the base 3 in an order that meets small points first: values of the two levels next
// below the main variable.
static constexpr int32_t base_3_list[] = {0, 4, 1, 3, 8, 5, 2};

// Chance in the choice of points; the user's random values do not change.
static int32_t chance(uint32_t n) { return static_cast<int32_t>(wf_random_below(n)); }

static int32_t clamp_index(int32_t k) { return maxx(0, minn(k, k_small_primes - 1)); }

// A value for the next level up, in front of the list; -1: the level is kept.
static void push_value(polyptrr values, int32_t value) {
    poly node;
    newpoly(&node);
    if (value >= 0) {
        init_poly_node(node);
        setvalue(value, node->ncoef);
    } else {
        node->numb = 0;
        node->exp = 0;
        node->pcoef = nullptr;
    }
    node->next = *values;
    *values = node;
}

// The value of the level j + 1 below the main one in test i.
static int32_t test_value(int16_t i, int32_t j, const polygcd_EnvRec& env) {
    if (modularmode) return residue_of_int(global_list[(3 * (j + 2) + chance(3)) % k_global_list]);
    if (env.field_level == 2) return i;
    if (j >= 2) return i / 3;
    return j == 1 ? base_3_list[i] / 3 % 3 : base_3_list[i] % 3;
}

// g := p at the first `levels` of the values; false: the degree has been lost.
static bool image_at(poly p, poly values, int32_t levels, poly* g) {
    if (levels <= 0) {
        poly_assign(p, g);
        return true;
    }
    all_poly_eval(&p, values, g, 2);
    return !is_number(*g) && (*g)->exp == p->exp;
}

static void gcd_of_test(poly g, poly h, polyptrr t, const polygcd_EnvRec& env) {
    if (modularmode && mod_is_prime && height_is_1(g) && height_is_1(h)) {
        basic_poly_gcd(g, h, t, 0, env.pt);
        return;
    }
    int16_t saved = tripval;
    tripval = k_no_images;
    gcd_call(g, h, t, 1, 1, 0, env.pt, 1, 1, 0);
    tripval = saved;
}

bool fast_test_2(int16_t i, int32_t* expo, bool* valid, polygcd_EnvRec& env) {
    *expo = 1;
    *valid = false;
    poly values = nullptr, g = nullptr, h = nullptr, t = nullptr;
    for (int32_t j = env.field_level - 2; j >= 0; j--) push_value(&values, test_value(i, j, env));
    bool proved = false;
    if (image_at(env.u, values, env.us.in_field - 1, &g) &&
        image_at(env.v, values, env.vs.in_field - 1, &h)) {
        gcd_of_test(g, h, &t, env);
        *valid = true;
        *expo = t->exp;
        proved = is_number(t);
        free_poly(&t);
    }
    free_poly(&values);
    free_poly(&g);
    free_poly(&h);
    return proved;
}

/// Modular: up to three points with images of full degree wanted.
bool first_evaluation_tests(polygcd_EnvRec& env) {
    env.delta = 1;
    if (!env.do_fast || !modularmode || env.level <= 1) return false;
    int32_t expo = 1;
    bool valid = false;
    for (int16_t tries = 1; tries <= 3 && !valid; tries++)
        if (fast_test_2(1, &expo, &valid, env)) return gcd_of_coefficients(env);
    env.delta = valid ? maxx(1, expo) : env.v->exp;
    if (valid) env.expo = minn(env.expo, expo);
    return env.leave_early && finish_power(env, maxx(1, expo));
}

// ---- variables that only one operand has ---------------------------------------------------------------

// Values for the levels that are not common, by level below the main one, -1: kept. Entries of small_prime
// from a random place on, distinct as long as the table and the modulus allow. False: the modulus is too
// small for them.
static bool draw_missing_values(const bool* differs, int32_t levels, int32_t* value) {
    int32_t base = 238 + chance(15);
    while (base >= -15 && modulus <= small_prime[clamp_index(base + levels)]) base -= 23;
    if (base < -15) return false;
    int32_t offset = base;
    for (int32_t j = 0; j < levels; j++) {
        value[j] = -1;
        if (!differs[j]) continue;
        value[j] = small_prime[clamp_index(j + 1 + offset)] % modulus;
        if (value[j] == 0) value[j] = 1;
        offset -= offset >= 31 ? 1 + chance(19) : offset > 12 ? 1 + chance(3) : 1;
    }
    return true;
}

static bool evaluate_operand(poly* p, GcdOperand& side, poly values) {
    poly g = nullptr;
    all_poly_eval(p, values, &g, 2);
    bool kept = !is_number(g) && g->exp == (*p)->exp;
    if (kept)
        replace_operand(p, side, g);
    else
        free_poly(&g);
    return kept;
}

/// Modular: a variable of one operand cannot occur in the gcd; a point in its place keeps the gcd or makes it
/// too large.
bool missing_variables(polygcd_EnvRec& env) {
    if (!modularmode || gcd_sure || gcd_attempt > 0 || env.level <= 1 || env.uvsize <= 40) return false;
    int32_t nu = fast_numterms(env.u), nv = fast_numterms(env.v);
    if (nu <= 5 || nv <= 5 || nu + nv < 30) return false;
    int32_t levels = (field_depth > 0 ? field_depth - 1 : number_polys) - env.pt->depth, count = 0;
    int16_t in_u[k_levels] = {}, in_v[k_levels] = {};
    poly_vars(env.u, 0, in_u);
    poly_vars(env.v, 0, in_v);
    bool differs[k_levels];
    for (int32_t j = 0; j < levels; j++) {
        differs[j] = (in_u[j + 2] != 0) != (in_v[j + 2] != 0);
        count += differs[j];
    }
    int32_t value[k_levels];
    if (count <= 2 || !draw_missing_values(differs, levels, value)) return false;
    poly values = nullptr;
    for (int32_t j = levels - 1; j >= 0; j--) push_value(&values, value[j]);
    bool kept_u = evaluate_operand(&env.u, env.us, values);
    bool kept_v = evaluate_operand(&env.v, env.vs, values);
    free_poly(&values);
    if (kept_u || kept_v) gcd_unproved = 1;
    return assign_levels(env);
}
}  // namespace tolvex
