#include "gcd/hensel.h"

#include "gcd/gcd_modes.h"
#include "numbers/residue.h"
#include "poly/div_field.h"
#include "poly/div_trial.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "poly/word_field.h"
#include "storage/interrupt.h"
namespace tolvex {
// Below it chance is no argument: nothing is spared.
static constexpr int32_t k_small_modulus = 1000;

static poly product(poly a, poly b) {
    poly p = nullptr;
    poly_mult(a, b, &p, nullptr);
    return p;
}

// The remainder sequence of g and h with the cofactor of h alone: a = (..) g + s h at each step.
bool rev_euclid(poly g, poly h, polyptrr s) {
    poly a = nullptr, b = nullptr, sa = nullptr, sb = nullptr;
    poly_assign(g, &a);
    poly_div_no_q(h, g, &b);
    poly_set(0, &sa);
    poly_set(1, &sb);
    while (!is_number(b)) {
        poll_interrupt();
        poly q = nullptr, r = nullptr, t = nullptr;
        simplest_poly_divide(a, b, &q, &r);
        free_poly(&a);
        a = b;
        b = r;
        best_poly_sub(sa, product(q, sb), &t);
        free_poly(&q);
        sa = sb;
        sb = t;
    }
    bool coprime = !poly_iszero(b);
    if (coprime) {
        mod_num_poly_mult(&sb, imod_inverse(b->ncoef->lint));
        free_poly(s);
        *s = sb;
        sb = nullptr;
    }
    free_poly(&a);
    free_poly(&b);
    free_poly(&sa);
    free_poly(&sb);
    return coprime;
}

bool open_hensel_pair(poly x, poly g, HenselPair* pair) {
    *pair = {};
    poly r = nullptr;
    simplest_poly_divide(x, g, &pair->h, &r);
    bool exact = poly_iszero(r);
    free_poly(&r);
    poly_assign(g, &pair->g);
    if (exact && rev_euclid(pair->g, pair->h, &pair->inverse)) return true;
    close_hensel_pair(pair);
    return false;
}

void close_hensel_pair(HenselPair* pair) {
    free_poly(&pair->g);
    free_poly(&pair->h);
    free_poly(&pair->inverse);
}

void solve_hensel_step(const HenselPair& pair, poly e, polyptrr dg, polyptrr dh) {
    poly t = product(e, pair.inverse), r = nullptr, rest = nullptr;
    poly_div_no_q(t, pair.g, dg);
    free_poly(&t);
    poly_sub(e, t = product(*dg, pair.h), &rest);
    simplest_poly_divide(rest, pair.g, dh, &r);
    free_poly(&t);
    free_poly(&rest);
    free_poly(&r);
}

bool testarg(poly x, poly y, poly candidate, polypt pt) {
    if (!trial_poly_divide_noq(y, candidate, pt, 1, 1)) return false;
    bool small_field = modularmode && modulus < k_small_modulus;
    if (!hen_check && !small_field && wf_random_below(3) != 0) {
        gcd_unproved = 1;
        return true;
    }
    return trial_poly_divide_noq(x, candidate, pt, 1, 1);
}
}  // namespace tolvex
