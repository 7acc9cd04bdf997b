// The gcd in one variable over Z by lifting one image modulo a word prime. Not part of the strategy of
// polygcd: a second method, which tests compare with the others.
#include "gcd/basic_mod_method.h"
#include "gcd/engines.h"
#include "gcd/gcd_modes.h"
#include "gcd/hensel.h"
#include "gcd/num_content.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "numbers/num_shift.h"
#include "numbers/num_sign.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "poly/div_general.h"
#include "poly/div_trial.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
constexpr int32_t k_primes_tried = 4;
enum class Lift { done, coprime, failed };

/// x = g h modulo p^k; symmetric residues.
struct BasicHensel {
    poly x, y;
    polypt pt;
    int32_t p;
    HenselPair pair;  // modulo p
    poly g, h;
    number power;    // p^k
    number lc;       // gcd of the leading numbers
    poly candidate;  // lc g, symmetric modulo p^k
    int64_t bits;    // lc times a factor of x has smaller coefficients than 2^bits
    poly result;
};
}  // namespace

static bool one_variable(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (!p->numb && !is_number(p->pcoef)) return false;
    return true;
}

// Modulo p: the image gcd and the pair for it. coprime: the gcd is a number; failed: no coprime pair.
static Lift open_image(BasicHensel& b) {
    Lift kind = Lift::failed;
    RingState ring = ring_save();
    ring_enter_prime(b.p);
    poly x = nullptr, y = nullptr, g = nullptr;
    poly_image(b.x, &x);
    poly_image(b.y, &y);
    if (x->exp == b.x->exp && y->exp == b.y->exp) {
        basic_poly_gcd(x, y, &g, 1, b.pt);
        if (is_number(g)) {
            kind = Lift::coprime;
        } else if (open_hensel_pair(x, g, &b.pair)) {
            kind = Lift::done;
            poly_assign(b.pair.g, &b.g);
            poly_assign(b.pair.h, &b.h);
            poly_change_from_mod_symmetric(&b.g);
            poly_change_from_mod_symmetric(&b.h);
        }
    }
    free_poly(&x);
    free_poly(&y);
    free_poly(&g);
    ring_restore(ring);
    return kind;
}

static void close_pair(BasicHensel& b) {
    RingState ring = ring_save();
    ring_enter_prime(b.p);
    close_hensel_pair(&b.pair);
    ring_restore(ring);
    free_poly(&b.g);
    free_poly(&b.h);
}

// What p^k times the corrections of g and h must give, e = (x - g h) / p^k modulo p, is solved for.
static void correct_factors(BasicHensel& b, polyptrr e) {
    poly image = nullptr, dg = nullptr, dh = nullptr;
    num_poly_quot(e, &b.power, 0);
    RingState ring = ring_save();
    ring_enter_prime(b.p);
    poly_image(*e, &image);
    solve_hensel_step(b.pair, image, &dg, &dh);
    free_poly(&image);
    poly_change_from_mod_symmetric(&dg);
    poly_change_from_mod_symmetric(&dh);
    ring_restore(ring);
    num_poly_mult(&dg, &b.power);
    num_poly_mult(&dh, &b.power);
    best_poly_add(b.g, dg, &b.g);
    best_poly_add(b.h, dh, &b.h);
}

// From modulo p^k to modulo p^(k+1). True: g h is x.
static bool lift_once(BasicHensel& b) {
    poly e = nullptr, gh = nullptr;
    poly_mult(b.g, b.h, &gh, b.pt);
    poly_sub(b.x, gh, &e);
    free_poly(&gh);
    bool exact = poly_iszero(e);
    if (!exact) correct_factors(b, &e);
    free_poly(&e);
    number p = {};
    setvalue(b.p, &p);
    fast_mult(&b.power, &p, &b.power);
    special_free(&p);
    return exact;
}

// The leaves of the chain, symmetric modulo m; nil if all vanish.
static void symmetric_leaves(polyptrr at, const number* m, const number* half) {
    while (*at != nullptr) {
        poly t = *at, leaf = t->numb ? t : t->pcoef;
        number* c = leaf->ncoef;
        trunc_divide(c, m, nullptr, c);
        if (int_abs_bigger(c, half, 0)) {
            if (chain_sign(c) > 0)
                fastdiff(c, m);
            else
                fastsum(c, m);
        }
        if (!iszero(c)) {
            at = &t->next;
            continue;
        }
        *at = t->next;
        t->next = nullptr;
        free_poly(&t);
    }
}

// The candidate of this step. True: it is that of the step before.
static bool next_candidate(BasicHensel& b) {
    poly c = nullptr;
    number half = {};
    poly_assign(b.g, &c);
    num_poly_mult(&c, &b.lc);
    divide(&b.power, &number_2, &half, nullptr);
    symmetric_leaves(&c, &b.power, &half);
    special_free(&half);
    if (c == nullptr) tolvex_error(" Hensel. r is nil.");
    bool same = b.candidate != nullptr && poly_equal(c, b.candidate);
    free_poly(&b.candidate);
    b.candidate = c;
    return same;
}

// The primitive part of the candidate, if it divides.
static bool accept_candidate(BasicHensel& b) {
    number c = {};
    poly r = nullptr;
    poly_assign(b.candidate, &r);
    find_gcdcoefs(r, &c);
    num_poly_quot(&r, &c, 0);
    special_free(&c);
    if (testarg(b.x, b.y, r, b.pt)) {
        b.result = r;
        return true;
    }
    free_poly(&r);
    return false;
}

// Lifts until a candidate is the gcd, or has had more room than any factor of x needs.
static bool lift_to_the_end(BasicHensel& b) {
    for (;;) {
        poll_interrupt();
        bool exact = lift_once(b), same = next_candidate(b), enough = logg2(&b.power) > b.bits + 1;
        if ((exact || same || enough) && accept_candidate(b)) return true;
        if (enough) return false;
    }
}

static Lift lift_operand(BasicHensel& b) {
    special_free(&b.power);
    setvalue(b.p, &b.power);
    // A factor of x has coefficients below 2^deg x times the Euclidean norm of x (Mignotte).
    b.bits = int64_t{b.x->exp} + max_digits(b.x) + logg2(&b.lc) + word_top_bit(b.x->exp + 1) + 1;
    Lift kind = open_image(b);
    if (kind != Lift::done) return kind;
    if (!lift_to_the_end(b)) kind = Lift::failed;
    close_pair(b);
    free_poly(&b.candidate);
    return kind;
}

static void set_lc(BasicHensel& b) {
    number n = {}, m = {};
    abs_val_num(leading_coef(b.x)->ncoef, &n);
    abs_val_num(leading_coef(b.y)->ncoef, &m);
    binary_gcd(&n, &m, &b.lc);
    special_free(&n);
    special_free(&m);
}

void basic_hensel(poly x, poly y, polyptrr r, boolean* success, polypt pt) {
    *success = 0;
    if (is_number(x) || is_number(y) || !one_variable(x) || !one_variable(y)) return;
    BasicHensel b = {};
    bool x_smaller = x->exp <= y->exp;
    b.pt = pt;
    b.x = x;
    b.y = y;
    set_lc(b);
    Lift kind = Lift::failed;
    for (int32_t i = 0; i < k_primes_tried && kind == Lift::failed; i++) {
        int32_t place = select_prime(x, y, 252, 5, k_primes, prime);
        if (place > k_primes) break;
        b.p = prime[place - 1].lint;
        for (int32_t side = 0; side < 2 && kind == Lift::failed; side++) {
            b.x = x_smaller == (side == 0) ? x : y;
            b.y = b.x == x ? y : x;
            kind = lift_operand(b);
        }
    }
    if (kind == Lift::coprime) poly_set(1, &b.result);
    if (kind != Lift::failed) {
        free_poly(r);
        *r = b.result;
        *success = 1;
    }
    special_free(&b.power);
    special_free(&b.lc);
}
}  // namespace tolvex
