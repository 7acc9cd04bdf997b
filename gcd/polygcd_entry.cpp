// The ways into the driver: who asks for a checked gcd gets one, whatever the steps have relied on.
#include "gcd/polygcd.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "numbers/num_gcd.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "storage/progress.h"

#include <cstdio>
namespace tolvex {
// ---- a gcd that proves wrong ---------------------------------------------------------------------------

void note_wrong_gcd(int which, bool negative_exponents) {
    if (try_rat && !negative_exponents) {
        try_rat = 0;
        if (verbose)
            printf(
                " Warning %d. A fast probabilistic test for exact poly division has been turned off (&_t).\n",
                1 + which);
    } else if (rat_yes && !negative_exponents) {
        rat_yes = 0;
        if (verbose)
            printf(
                " Warning %d. Another fast probabilistic test for exact poly division has been turned off.\n",
                3 + which);
    } else if (verbose) {
        printf(" *** Warning %d. A  fast probabilistic gcd algorithm is being retried.\n", 5 + which);
    }
}

static GcdCounters begin_retry(int attempt) {
    GcdCounters saved = gcd_counters_save();
    lookupgcd = -1000;
    gcd_attempt = attempt;
    gcd_retry_ring = modulus;
    gcd_sure = attempt >= k_sure_attempt;
    alg_c_count = 0;
    return saved;
}

// True if g divides u and v; *which tells the operand that it does not divide.
static bool proved_by_division(poly u, poly v, poly g, polypt pt, int* which) {
    poly q = nullptr;
    boolean failed = 0;
    *which = 0;
    gen_poly_divide(u, g, &q, pt, &failed);
    if (!failed) {
        *which = 1;
        gen_poly_divide(v, g, &q, pt, &failed);
    }
    free_poly(&q);
    return !failed;
}

// Variables above a field that are modded out are plain ones inside a gcd (plain_above_field).

// The outermost call that promises a right result. Operands stay until both divisions have succeeded; the
// last attempt relies on nothing unproved.
static void checked_gcd(poly u, poly v, polyptrr r, boolean leave_early, boolean do_fast, boolean allcons,
                        polypt pt, boolean canreset) {
    poly g = nullptr;
    boolean plain = plain_above_field;
    plain_above_field = 1;
    gcd_unproved = 0;
    gcd_call(u, v, &g, leave_early, do_fast, allcons, pt, 1, 1, canreset);
    for (int attempt = 1; attempt <= k_sure_attempt; attempt++) {
        int which;
        if (!gcd_unproved || leave_early || is_number(g) || proved_by_division(u, v, g, pt, &which)) break;
        note_wrong_gcd(which, false);
        GcdCounters saved = begin_retry(attempt);
        gcd_unproved = 0;
        gcd_call(u, v, &g, leave_early, do_fast, allcons, pt, 1, 1, canreset);
        boolean unproved = gcd_unproved;
        gcd_counters_restore(saved);
        gcd_unproved = unproved;
    }
    gcd_unproved = 0;
    plain_above_field = plain;
    free_poly(r);
    *r = g;
}

void polygcd(poly u, poly v, polyptrr r, boolean leave_early, boolean do_fast, boolean allcons, polypt pt,
             boolean usave, boolean vsave, boolean canreset) {
    if (gcd_nesting > gcd_outer)
        gcd_call(u, v, r, leave_early, do_fast, allcons, pt, usave, vsave, canreset);
    else
        checked_gcd(u, v, r, leave_early, do_fast, allcons, pt, canreset);
}

// ---- entries -------------------------------------------------------------------------------------------

enum class Promise { raw, checked };

static void fresh_computation(poly u, poly v, polyptrr r, polypt pt, Promise promise) {
    alg_c_count = 0;
    original_depth = 1;
    if (promise == Promise::checked) {
        checked_gcd(u, v, r, 0, 1, 1, pt, 1);
        return;
    }
    boolean plain = plain_above_field;
    plain_above_field = 1;
    gcd_unproved = 0;
    gcd_call(u, v, r, 0, 1, 1, pt, 1, 1, 1);
    plain_above_field = plain;
}

// Monomials are units under laurent: both operands lose their lowest exponents, and the result has none.
static void computation(poly u, poly v, polyptrr r, polypt pt, Promise promise) {
    if (!laurent) {
        fresh_computation(u, v, r, pt, promise);
        return;
    }
    poly u2 = nullptr, v2 = nullptr;
    poly_assign(u, &u2);
    poly_assign(v, &v2);
    poly u_shift = clear_bads(&u2, INT32_MAX, k_leaf_depth),
         v_shift = clear_bads(&v2, INT32_MAX, k_leaf_depth);
    free_exponent_list(&u_shift);
    free_exponent_list(&v_shift);
    fresh_computation(u2, v2, r, pt, promise);
    free_poly(&u2);
    free_poly(&v2);
}

void Lpolygcd(poly u, poly v, polyptrr r, boolean, polypt pt) { computation(u, v, r, pt, Promise::raw); }

void retry_polygcd(poly u, poly v, polyptrr r, int attempt) {
    GcdCounters saved = begin_retry(attempt);
    computation(u, v, r, polynames, Promise::raw);
    gcd_counters_restore(saved);
}

// The gcd of g and all residues of p, as integers.
static int32_t residue_content(const polynode* p, int32_t g) {
    for (; p != nullptr && g != 1; p = p->next)
        g = p->numb ? smallgcd(g, p->ncoef->lint) : residue_content(p->pcoef, g);
    return g;
}

void Lpolygcd2(poly u, poly v, polyptrr r, polypt pt) {
    if (!ring_is_composite() || (!is_number(u) && !is_number(v))) {
        computation(u, v, r, pt, Promise::checked);
        return;
    }
    int32_t g = residue_content(v, residue_content(u, modulus));
    poly_set(g == modulus ? 0 : g, r);  // both 0
}

void Lpolygcd3(poly u, polyptrr r, polypt pt) { Lpolygcd2(u, u, r, pt); }
}  // namespace tolvex
