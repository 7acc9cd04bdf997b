#include "gcd/multivar_chinese.h"

#include "gcd/content.h"
#include "gcd/engines.h"
#include "gcd/gcd_modes.h"
#include "gcd/polygcd.h"
#include "numbers/residue.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/div_trial.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/interrupt.h"
#include "storage/polled_sort.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
namespace {
constexpr int32_t k_tries = 4;            // interpolations a round
constexpr int32_t k_division_tries = 10;  // contents that do not divide, before it is a fault
constexpr int32_t k_sure_tries = 5;       // of these before contents are taken in sure mode
constexpr int32_t k_dense_mass = 250;     // mass from which evaluation pays

/// The problem without what has been divided out or taken away.
struct ChineseEnv {
    poly x, y;           // operands of the interpolation
    bool own;            // x and y are private
    poly com;            // common content in level 2, nil: 1
    int32_t skipped;     // levels below the main one that occur in neither operand and were taken out
    polypt pt;           // variable record at the position of the main variable, `skipped` further down
    int32_t xdeg, ydeg;  // degrees in level 2
    int32_t expo;        // bound of the degree in the main variable
    poly result;
};
}  // namespace

// ---- shall this engine run ----

// The mass of the coefficients of p, added to sum; gives up above k_dense_mass.
static int64_t add_coefficient_masses(const polynode* p, int64_t sum) {
    for (; p != nullptr && sum <= k_dense_mass; p = p->next)
        sum += p->numb ? (lintmode ? 31 : 31 + 8 * int64_t{p->ncoef->size})
                       : 13 + very_simple_poly_mass(p->pcoef);
    return sum;
}

bool mod_do_Chinese(poly u, poly v, int32_t mod_deg) {
    int64_t lost = int64_t{v->exp} - mod_deg;
    if (lost > mod_method_diff || 6 * lost > v->exp) return true;
    int64_t sum = add_coefficient_masses(v, 0);
    if (sum > k_dense_mass) return true;
    if (v->exp == 1 && sum < 150) return false;
    return add_coefficient_masses(u, sum) > k_dense_mass;
}

// ---- levels ----

void swap_levels_1_2(polyptrr p) {
    struct Term {
        int32_t first, second;  // exponents in levels 1, 2
        poly c;
    };
    if (is_number(*p)) return;
    int64_t count = 0;
    for (poly t = *p; t != nullptr; t = t->next) count += t->numb ? 1 : poly_length(t->pcoef);
    ScratchMark mark = scratch_mark();
    auto* term = scratch_array<Term>(count);
    int64_t n = 0;
    poly from = *p;
    *p = nullptr;
    for (poly t = from, next; t != nullptr; t = next) {
        poll_interrupt();
        next = t->next;
        if (t->numb) {
            t->next = nullptr;
            term[n++] = {0, 0, t};
            continue;
        }
        for (poly s = t->pcoef, after; s != nullptr; s = after) {
            after = s->next;
            s->next = nullptr;
            term[n++] = {t->exp, s->exp, s->numb ? s : s->pcoef};
            if (!s->numb) free_node(s);
        }
        free_node(t);
    }
    polled_sort(term, n, [](const Term& a, const Term& b) {
        return a.second != b.second ? a.second > b.second : a.first > b.first;
    });
    poly swapped = nullptr;
    polyptrr tail = &swapped;
    for (int64_t i = 0; i < n;) {
        poly c = nullptr;
        polyptrr end = &c;
        int32_t e = term[i].second;
        for (; i < n && term[i].second == e; i++) {
            poll_every<1024>(i);
            *end = chain_node(term[i].first, term[i].c);
            end = &(*end)->next;
        }
        *end = nullptr;
        *tail = chain_node(e, c);
        tail = &(*tail)->next;
    }
    *tail = nullptr;
    *p = swapped;
    scratch_release(mark);
}

poly leading_coef_level_two(poly x, int32_t xdeg) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (poly t = x; t != nullptr; t = t->next)
        if (!t->numb && t->pcoef->exp == xdeg) tail = append_term(tail, t->exp, coefficient_copy(t->pcoef));
    return head;
}

static bool has_level_two(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (!p->numb) {
            const polynode* c = p->pcoef;
            if (!is_number(c)) return true;
        }
    return false;
}

// A fresh p without level 2, which does not occur: the main variable stands one level further down.
static poly without_level_two(poly p) {
    poly head = nullptr, c;
    polyptrr tail = &head;
    for (poly t = p; t != nullptr; t = t->next) {
        if (t->numb || is_number(t->pcoef))
            c = coefficient_copy(t);
        else
            poly_assign(t->pcoef->pcoef, &(c = nullptr));
        tail = append_term(tail, t->exp, c);
    }
    return head;
}

// Puts a dummy for level 2 under every coefficient of p.
static void insert_level_two(poly p) {
    for (; p != nullptr; p = p->next)
        if (!p->numb) add_pad(&p->pcoef, 1);
}

// ---- common content in level 2 ----

static bool divide_content(poly x, poly com, polyptrr q, polypt pt) {
    boolean failed = 0;
    gen_poly_divide(x, com, q, pt, &failed);
    return !failed;
}

// com := gcd(content_2(x), content_2(y)); x and y are divided by it.
static void take_common_content(ChineseEnv& env) {
    boolean sure = gcd_sure;
    for (int32_t tries = 1;; tries++) {
        poly cx = content_2(env.x, env.pt), cy = content_2(env.y, env.pt), com = nullptr, x = nullptr,
             y = nullptr;
        polygcd(cx, cy, &com, 0, 1, 0, env.pt, 0, 0, 1);
        free_poly(&cx);
        free_poly(&cy);
        if (is_number(com)) {
            free_poly(&com);
            break;
        }
        if (divide_content(env.x, com, &x, env.pt) && divide_content(env.y, com, &y, env.pt)) {
            if (env.own) {
                free_poly(&env.x);
                free_poly(&env.y);
            }
            env.expo = maxx(1, env.expo - com->exp);
            env.x = x;
            env.y = y;
            env.own = true;
            env.com = com;
            break;
        }
        free_poly(&x);
        free_poly(&y);
        free_poly(&com);
        if (tries > k_division_tries) tolvex_error(" too many failures, mod_multivar_Chinese.");
        if (verbose) printf("mod multivar poly_divide retry\n");
        if (tries >= k_sure_tries) gcd_sure = 1;
    }
    gcd_sure = sure;
}

// ---- the two rounds ----

// A candidate must divide both operands, the larger one first; what is free of the main variable cannot be
// the gcd.
static bool candidate_divides(const ChineseEnv& env, poly r) {
    if (r->exp == 0) return false;
    bool x_first = env.x->exp > env.y->exp;
    poly first = x_first ? env.x : env.y, second = x_first ? env.y : env.x;
    return trial_poly_divide_noq(first, r, env.pt, 1, 1) && trial_poly_divide_noq(second, r, env.pt, 1, 1);
}

static void tell(const char* text, int32_t n) {
    if (verbose && windy) dumpitt(text, n, 1, 0, 0);
}

// Interpolations until one gives the gcd. on_failure, on_wrong: what a try without or with a wrong result
// adds to the bound after the second try. The first wrong result shows that the bound was a guess: then the
// degrees bound.
static bool one_round(ChineseEnv& env, const char* no_result, const char* wrong, int32_t on_failure,
                      int32_t on_wrong) {
    for (int32_t tries = 1; tries <= k_tries; tries++) {
        poll_interrupt();
        poly r = nullptr;
        if (sub_mod_multivar_Chinese(env.x, env.y, &r, env.expo, env.xdeg, env.ydeg, env.pt)) {
            if (is_number(r) || candidate_divides(env, r)) {
                env.result = r;
                return true;
            }
            tell(wrong, tries);
            if (tries == 1)
                env.expo = maxx(env.expo, minn(env.x->exp, env.y->exp));
            else if (tries == 2)
                env.expo += on_wrong;
        } else {
            tell(no_result, tries);
            if (tries == 2) env.expo += on_failure;
        }
        free_poly(&r);
    }
    return false;
}

static bool round_with_main_variable_exchanged(ChineseEnv& env) {
    if (!env.own) {
        poly x = nullptr, y = nullptr;
        poly_assign(env.x, &x);
        poly_assign(env.y, &y);
        env.x = x;
        env.y = y;
        env.own = true;
    }
    env.xdeg = env.x->exp;
    env.ydeg = env.y->exp;
    swap_levels_1_2(&env.x);
    swap_levels_1_2(&env.y);
    env.expo = minn(env.x->exp, env.y->exp);
    if (verbose && windy) printf("sub_mod_multivar_Chinese retry, swap levels \n");
    if (!one_round(env, "sub_mod_multivar_Chinese retry, 2 B, ", "Sub_mod_multivar_Chinese retry, 2 A, ", 0,
                   -1))
        return false;
    swap_levels_1_2(&env.result);
    return true;
}

// Takes out level 2 while neither operand has it. False: nothing stands below the main variable.
static bool skip_absent_levels(ChineseEnv& env) {
    for (;;) {
        env.xdeg = env.ydeg = k_no_degree;
        max_degree(env.x, 2, &env.xdeg);
        max_degree(env.y, 2, &env.ydeg);
        if (env.xdeg != 0 || env.ydeg != 0) return true;
        if (!has_level_two(env.x) && !has_level_two(env.y)) {
            if (verbose) printf(" *** Tolvex Warning. Early exit from mod_multivar_Chinese.\n");
            return false;
        }
        poly x = without_level_two(env.x), y = without_level_two(env.y);
        if (env.own) {
            free_poly(&env.x);
            free_poly(&env.y);
        }
        env.x = x;
        env.y = y;
        env.own = true;
        env.skipped++;
        env.pt = env.pt->next;
    }
}

// The gcd of env.x and env.y, in env.result.
static bool find_gcd(ChineseEnv& env) {
    take_common_content(env);
    if (env.x->exp == 0 || env.y->exp == 0 || env.xdeg == 0 || env.ydeg == 0) {
        poly_set(1, &env.result);
        return true;
    }
    if (one_round(env, "sub_mod_multivar_Chinese retry, 1 B, ", "sub_mod_multivar_Chinese retry, 1 A, ", 1,
                  1) ||
        round_with_main_variable_exchanged(env))
        return true;
    if (verbose) dumpitt("mod_multivar_Chinese gave up ", k_tries, 1, 0, 0);
    return false;
}

boolean mod_multivar_Chinese(poly x, poly y, polyptrr r, int32_t expo, polypt pt) {
    if (x->exp == 0) tolvex_error("Chinese 0 exponent, x.");
    if (y->exp == 0) tolvex_error("Chinese 0 exponent, y.");
    int32_t xsize = new_node_total(x), ysize = new_node_total(y);
    if (xsize + ysize < 80 || (xsize < 30 && ysize < 30)) return 0;
    ChineseEnv env = {x, y, false, nullptr, 0, pt, 0, 0, expo, nullptr};
    bool found = skip_absent_levels(env) && find_gcd(env);
    if (found) {
        if (env.com != nullptr) poly_mult(env.result, env.com, &env.result, env.pt);
        for (; env.skipped > 0; env.skipped--) insert_level_two(env.result);
        free_poly(r);
        *r = env.result;
    }
    free_poly(&env.com);
    if (env.own) {
        free_poly(&env.x);
        free_poly(&env.y);
    }
    return found;
}
}  // namespace tolvex
