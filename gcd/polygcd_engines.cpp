// Steps of polygcd that commit to an engine, and the tests and the stash in front of each.
#include "gcd/engines.h"
#include "gcd/gcd_stash.h"
#include "gcd/num_content.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "gcd/word_lane.h"
#include "poly/div_field.h"
#include "poly/div_trial.h"
#include "poly/poly_basic.h"
#include "poly/poly_monic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
namespace tolvex {
static bool finish_with_v(polygcd_EnvRec& env) {
    poly g = nullptr;
    poly_assign(env.v, &g);
    return alternate_finish(env, g);
}

// Does v divide u, by a real division?
static bool v_divides(polygcd_EnvRec& env) { return trial_poly_divide_noq(env.u, env.v, env.pt, 0, 0); }

// In sure mode what an engine has found must divide both operands.
static bool accept(polygcd_EnvRec& env, poly g) {
    return !gcd_sure || is_number(g) || divides_both_exactly(env.u, env.v, g, env.pt);
}

static bool multi_prime(polygcd_EnvRec& env) {
    poly g = nullptr;
    boolean success = 0;
    basic_mod_method(env.u, env.v, &g, &success, env.pt);
    if (success && accept(env, g)) return alternate_finish(env, g);
    free_poly(&g);
    return false;
}

/// Over Z with coefficients that are not too long: v as divisor of u.
bool try_divisor_early(polygcd_EnvRec& env) {
    constexpr int32_t k_long_coefficient = 35;
    if (lintmode || (env.v->exp != 1 && env.uvsize <= trial_cutoff)) return false;
    if (max_digits(env.u) >= k_long_coefficient || !v_divides(env)) return false;
    return finish_with_v(env);
}

// ---- the stash -----------------------------------------------------------------------------------------

// Canonical forms, so that associated pairs meet in one slot: positive leading numbers, or monic.
static void canonical_operand(poly* p, GcdOperand& side) {
    if (modularmode ? leading_coef(*p)->ncoef->lint == 1 : !neg_leading_term(*p)) return;
    own_tree(p, side);
    if (modularmode)
        monic_poly(p);
    else
        poly_inplace(*p);
}

// True: a stored gcd has been taken. Otherwise there may be an open slot that waits for the result, if the
// table has room. What is stored may rest on a check that is still due.
static bool look_up(polygcd_EnvRec& env, int32_t least_degree) {
    bool failed_before = gcd_attempt > 0 && modulus == gcd_retry_ring && lookupgcd < 0;
    if (env.store_new_gcd || (lookupgcd <= 0 && !failed_before) || env.uvsize <= gcd_stash_cutoff ||
        env.v->exp < least_degree)
        return false;
    canonical_operand(&env.u, env.us);
    canonical_operand(&env.v, env.vs);
    if (lookupgcd <= 0) {
        gcd_stash_forget(env.u, env.v, env.pt);
        return false;
    }
    if (poly known = gcd_stash_known(env.u, env.v, env.pt); known != nullptr) {
        poly g = nullptr;
        poly_assign(known, &g);
        gcd_unproved = 1;
        return alternate_finish(env, g);
    }
    if (!gcd_stash_has_room()) purge_gcd_stash(-1);  // a result may have filled it, with a slot open
    if (!gcd_stash_has_room()) return false;
    gcdhash(env.u, env.v, &env.gcdp, env.pt);
    polygcd_stack_depth++;
    env.store_new_gcd = 1;
    return false;
}

/// Images modulo many primes, where the gcd promises to be small beside v or the coefficients are heavy.
bool multi_prime_first(polygcd_EnvRec& env) {
    if (lintmode || env.uvsize <= tripval || !env.balanced) return false;
    if (!do_mod_method_now(env.u, env.v, env.expo)) return false;
    return look_up(env, 3) || multi_prime(env);
}

bool stash_lookup(polygcd_EnvRec& env) { return look_up(env, 2); }

// ---- evaluation tests ----------------------------------------------------------------------------------

bool second_evaluation_tests(polygcd_EnvRec& env) {
    if (!env.do_fast || !modularmode || env.found_something || env.level < 2)
        env.delta = 1;
    else
        env.height = 0;  // tested before
    if (!env.do_fast || (lintmode && !env.found_something) || env.level <= 1 || !env.balanced) return false;
    for (int16_t i = 1; i <= env.height; i++) {
        int32_t expo;
        bool valid;
        if (fast_test_2(i, &expo, &valid, env)) return finish_power(env, 0);
        env.delta = maxx(env.delta, expo);
        if (valid) env.expo = minn(env.expo, expo);
    }
    return false;
}

bool early_degree(polygcd_EnvRec& env) {
    return env.leave_early && modularmode && finish_power(env, env.delta);
}

// ---- the engines ---------------------------------------------------------------------------------------

bool try_over_integers(polygcd_EnvRec& env) {
    if (lintmode) return false;
    if ((env.v->exp == 1 || env.uvsize > trial_cutoff) && v_divides(env)) return finish_with_v(env);
    return env.uvsize > trial_cutoff && do_mod_method_now(env.u, env.v, env.expo) && multi_prime(env);
}

// Evaluation and interpolation. A field with fewer elements than the gcd may have degrees is not tried: its
// points come from an extension at once.
static bool interpolate(polygcd_EnvRec& env) {
    poly g = nullptr;
    bool found = points_are_few() && gcd_over_enlarged_field(env.u, env.v, &g, env.pt);
    if (!found && (!points_are_few() || env.delta < modulus))
        found = mod_multivar_Chinese(env.u, env.v, &g, env.delta, env.pt) && accept(env, g);
    if (found) return alternate_finish(env, g);
    free_poly(&g);
    return false;
}

bool try_modular(polygcd_EnvRec& env) {
    if (!modularmode) return false;
    bool trial =
        env.v->exp == 1 || (env.uvsize > trial_cutoff && (!is_number(env.v->pcoef) || env.level > 2));
    if (trial && trial_poly_divide_noq(env.u, env.v, env.pt, 1, 0)) return finish_with_v(env);
    if (env.level <= 1 || !chinhensel || env.usparse || !mod_do_Chinese(env.u, env.v, env.delta))
        return false;
    return interpolate(env);
}

/// Algorithm C: right everywhere, and what remains.
bool remainder_sequence(polygcd_EnvRec& env) {
    algorithm_c(env);
    if (is_number(*env.r) || (*env.r)->exp == 0) {
        poly_set(1, env.r);
    } else if (!env.leave_early) {
        poly c = nullptr;
        take_out_content(env.r, &c, env.pt, 0);
        free_poly(&c);
    }
    return finish_4(env);
}
}  // namespace tolvex
