// Algorithm C: the subresultant remainder sequence, which needs no primes and works over every domain.
// (Collins, "Subresultants and reduced polynomial remainder sequences", 1967; Brown and Traub, 1971; Knuth,
// The Art of Computer Programming 2, 4.6.1.)
//
// With A, B two members and delta their gap in degree, the next member is prem(A, B) / (g h^delta), where the
// pseudo-remainder carries all delta + 1 factors lc(B); then g := lc(B) and h := g^delta / h^(delta - 1). All
// divisions are exact.
#include "gcd/engines.h"
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/div_pseudo.h"
#include "poly/evaluate.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <cstdio>
namespace tolvex {
namespace {
/// The sequence, on copies of its own. g and h stand one level below u and v.
struct AlgorithmC {
    polygcd_EnvRec& env;
    poly u, v, g, h;
    polypt pt;
    // the change of main variable
    int32_t swaplev;  // relative level of the new one; 1: none
    polydata above;   // its record, linked in front of env.pt
    poly common;      // gcd of the contents in the new variable
};
enum class Step { go_on, found, coprime };
}  // namespace

static void exchange(poly& a, poly& b) {
    poly t = a;
    a = b;
    b = t;
}

/// n := n / m, exactly; both stand at the level of pt.
static void divide_exactly(polyptrr n, poly m, polypt pt) {
    if (poly_eq_1(m)) return;
    poly q = nullptr;
    boolean failed = 0;
    gen_poly_divide(*n, m, &q, pt, &failed);
    if (failed) tolvex_error("poly_divide failed in Alg C.");
    free_poly(n);
    *n = q;
}

/// *n := n without the content c, which stands one level below pt.
static void remove_content(polyptrr n, poly c, polypt pt) {
    poly padded = nullptr;
    poly_assign(c, &padded);
    add_pad(&padded, 1);
    divide_exactly(n, padded, pt);
    free_poly(&padded);
}

// ---- the main variable ---------------------------------------------------------------------------------

static constexpr int32_t k_worth_a_change = 30;  // terms of both operands
static constexpr int32_t k_levels_tried = 12;

/// The relative level in which the leading coefficient of v has the fewest terms.
static int32_t best_level(const AlgorithmC& c) {
    int32_t depth = c.pt->depth, best = 1, fewest = INT32_MAX;
    int32_t last = field_depth > 0 ? field_depth - depth : number_polys - depth + 1;
    if (last > k_levels_tried) last = k_levels_tried;
    for (int32_t lev = 1; lev <= last && fewest >= 3; lev++) {
        poll_interrupt();
        int32_t degree = k_no_degree, other = k_no_degree;
        max_degree(c.v, lev, &degree);
        max_degree(c.u, lev, &other);
        if (degree <= 0 || other <= 0) continue;
        poly lead = nullptr;
        extract_coef(c.v, &lead, lev - 1, degree);
        int32_t terms = poly_numterms(lead);
        free_poly(&lead);
        if (terms < fewest) {
            fewest = terms;
            best = lev;
        }
    }
    return best;
}

/// *p, one level up, with the chosen variable as the main one and without its content there, which goes to
/// *c.
static void raise_variable(AlgorithmC& a, polyptrr p, polyptrr c) {
    poly x = nullptr;
    add_pad(p, 1);
    base_poly(&x, 1);
    case_two(*p, p, static_cast<int16_t>(a.swaplev + 1), x, a.pt);
    free_poly(&x);
    take_out_content(p, c, a.pt, 1);
}

/// A small leading coefficient keeps the whole sequence small. Factors free of the new variable would be
/// lost: contents are set apart. The new level has the number below that of the old one, so that no other
/// level changes its number; an operand that stands at level 0, raised once already, is left as it is.
static void choose_main_variable(AlgorithmC& c) {
    int16_t depth = c.pt->depth;
    int32_t terms = fast_f_numterms(c.u, depth) + fast_f_numterms(c.v, depth);
    if (terms <= k_worth_a_change || c.v->exp <= 2 || depth < 1) return;
    c.swaplev = best_level(c);
    if (c.swaplev == 1) return;
    c.above.next = c.pt;
    c.above.depth = static_cast<int16_t>(depth - 1);
    c.above.polycut = c.pt->polycut;
    tok_set(c.above.let, "D");
    c.pt = &c.above;
    poly cu = nullptr, cv = nullptr;
    raise_variable(c, &c.u, &cu);
    raise_variable(c, &c.v, &cv);
    polygcd(cu, cv, &c.common, 0, 1, 0, c.pt->next, 0, 0, 0);
    free_poly(&cu);
    free_poly(&cv);
}

/// *r := the gcd in the old variables from that in the new one.
static void lower_variable(AlgorithmC& c, polyptrr r) {
    poly y = nullptr;
    add_pad(&c.common, 1);
    poly_mult(*r, c.common, r, c.pt);
    if (is_number(*r)) return;
    base_poly(&y, c.swaplev + 1);
    case_one(*r, r, y, c.pt);
    free_poly(&y);
    if (is_number(*r)) return;
    poly pad = *r;
    *r = pad->pcoef;
    free_node(pad);
}

// ---- the cost ------------------------------------------------------------------------------------------

static constexpr int32_t k_most_abandons = 4;

namespace {
struct Cost {
    int64_t estimate;
    int32_t lead_terms;  // of the leading coefficient of v
    bool too_high;
};
}  // namespace

static Cost cost_of(const AlgorithmC& c) {
    if (c.u->exp <= 2 || c.v->exp <= 1) return {0, 0, false};
    int64_t terms = (int64_t{f_poly_numterms(c.u)} + f_poly_numterms(c.v)) / 10;
    int64_t mass = (new_poly_mass(c.u, 1) + new_poly_mass(c.v, 1)) / 2;
    int64_t limit = number_polys < 10 ? 120000 : 40000;
    int64_t estimate = 0;
    if (__builtin_mul_overflow(terms * mass, int64_t{c.v->exp}, &estimate)) estimate = limit + 1;
    int32_t lead = f_poly_numterms(c.v->pcoef);
    return {estimate, lead, (estimate > limit && lead > 400) || (estimate > 200000 && lead > 5)};
}

/// The rest of the problem goes back to the driver, which chooses another engine once this has happened often
/// enough.
static void abandon(AlgorithmC& c, const Cost& cost) {
    alg_c_count++;
    if (verbose || !chinhensel)
        printf("Warning. Abandon Algorithm C. %d, %d, %d, %lli, %d\n", alg_c_count, c.u->exp, c.v->exp,
               static_cast<long long>(cost.estimate), cost.lead_terms);
    if (!chinhensel && alg_c_count < k_most_abandons) {
        printf("\n!! ** Warning. You set &O to force Algorithm C!\n\n");
        printf("*** Tolvex error. &O conflict with large GCD problem.\n");
    }
    poly r = nullptr;
    // after a change of variable it is another degree that the caller wants to know
    boolean leave_early = c.swaplev == 1 ? c.env.leave_early : 0;
    polygcd(c.u, c.v, &r, leave_early, c.env.do_fast, c.env.allcons, c.pt, 1, 1, 0);
    free_poly(&c.v);
    c.v = r;
}

/// True if the problem has been given up, c.v being the answer.
static bool given_up(AlgorithmC& c) {
    Cost cost = cost_of(c);
    if (!cost.too_high) return false;
    if (alg_c_count < k_most_abandons) {
        abandon(c, cost);
        return true;
    }
    if (verbose)
        printf("Warning. Can't abandon Algorithm C. %d, %d, %lli\n", c.u->exp, c.v->exp,
               static_cast<long long>(cost.estimate));
    return false;
}

// ---- the sequence --------------------------------------------------------------------------------------

static poly power_of(poly base, int32_t e, polypt pt) {
    poly p = nullptr;
    poly_assign(base, &p);
    if (e > 1) compute_power(&p, e, pt);
    return p;
}

/// *r := r / (g h^delta).
static void divide_remainder(AlgorithmC& c, polyptrr r, int32_t delta) {
    poly divisor = nullptr;
    polypt below = c.pt->next;
    poly_assign(c.g, &divisor);
    if (delta > 0) {
        poly power = power_of(c.h, delta, below);
        poly_mult(divisor, power, &divisor, below);
        free_poly(&power);
    }
    remove_content(r, divisor, c.pt);
    free_poly(&divisor);
}

/// h for the next step, from the new g: h for delta 0, g^delta / h^(delta - 1) otherwise.
static void next_h(AlgorithmC& c, int32_t delta) {
    if (delta == 0) return;
    polypt below = c.pt->next;
    poly power = power_of(c.g, delta, below);
    if (delta > 1) {
        poly denominator = power_of(c.h, delta - 1, below);
        divide_exactly(&power, denominator, below);
        free_poly(&denominator);
    }
    free_poly(&c.h);
    c.h = power;
}

static Step next_member(AlgorithmC& c) {
    if (is_number(c.v)) tolvex_error("v number in Alg C.");
    int32_t delta = c.u->exp - c.v->exp;
    if (given_up(c)) return Step::found;
    poly s = nullptr;
    pseudo_div_no_q(c.u, c.v, &s, c.pt, 1);
    if (poly_iszero(s) || s->exp == 0) {
        bool zero = poly_iszero(s);
        free_poly(&s);
        return zero ? Step::found : Step::coprime;
    }
    divide_remainder(c, &s, delta);
    free_poly(&c.u);
    c.u = c.v;
    c.v = s;
    free_poly(&c.g);
    c.g = coefficient_copy(c.u);
    next_h(c, delta);
    return Step::go_on;
}

void algorithm_c(polygcd_EnvRec& env) {
    AlgorithmC c = {env, nullptr, nullptr, nullptr, nullptr, env.pt, 1, {}, nullptr};
    poly_assign(env.u, &c.u);
    poly_assign(env.v, &c.v);
    poly_set(1, &c.g);
    poly_set(1, &c.h);
    poly_set(1, &c.common);
    env.height = 0;
    if (c.u->exp == c.v->exp && f_poly_numterms(c.u) < f_poly_numterms(c.v)) exchange(c.u, c.v);
    choose_main_variable(c);
    if (c.u->exp < c.v->exp) exchange(c.u, c.v);
    Step step;
    for (;;) {
        poll_interrupt();
        step = next_member(c);
        if (step != Step::go_on) break;
        env.height++;
    }
    poly r = nullptr;
    if (step == Step::coprime || c.v->exp == 0) {
        poly_set(1, &r);
    } else {
        r = c.v;
        c.v = nullptr;
        poly s = nullptr;
        take_out_content(&r, &s, c.pt, 1);
        free_poly(&s);
    }
    if (c.swaplev > 1) lower_variable(c, &r);
    gcd_normal_form(&r);
    free_poly(&c.u);
    free_poly(&c.v);
    free_poly(&c.g);
    free_poly(&c.h);
    free_poly(&c.common);
    free_poly(env.r);
    *env.r = r;
}
}  // namespace tolvex
