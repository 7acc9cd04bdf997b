// Identities of the divisions in every ground ring.
#include "numbers/num_compare.h"
#include "numbers/number_modes.h"
#include "numbers/residue.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/div_pseudo.h"
#include "poly/div_trial.h"
#include "poly/div_user.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

#include <string>
using namespace tolvex;
using namespace tolvex::test;
namespace {
bool domain() { return !modularmode || mod_is_prime || finf; }

Shape random_shape(Rng& rng) {
    Shape s{};
    s.levels = random_int(rng, 1, 4);
    bool sparse = rng() & 1;
    s.terms = random_int(rng, 1, sparse ? 8 : 30);
    s.max_exp = sparse ? random_int(rng, 1, 60) : random_int(rng, 1, 4);
    const Coefs styles[] = {Coefs::small, Coefs::digit, Coefs::two_digits,
                            Coefs::huge,  Coefs::ones,  Coefs::corners};
    s.coefs = styles[random_int(rng, 0, 5)];
    return s;
}
}  // namespace

PROPERTY(exact_quotient_gives_the_factor_back, 800) {
    SCOPED_TRACE(pick_ring(round).name);
    int64_t before = live_records();
    if (domain()) {
        PolyGuard a, b, n, q, a2, b2;
        a.p = random_poly(rng, random_shape(rng));
        b.p = random_nonzero_poly(rng, random_shape(rng));
        poly_assign(b, &b2);
        poly_mult(a, b, &n, polynames);
        PolyGuard n2;
        poly_assign(n, &n2);
        boolean failed = 1;
        gen_poly_divide(n, b, &q, polynames, &failed);
        ASSERT_FALSE(failed) << text_of(n) << " by " << text_of(b);
        EXPECT_TRUE(poly_equal(q, a)) << text_of(n) << " by " << text_of(b) << " gives " << text_of(q);
        EXPECT_TRUE(poly_check(q, number_polys));
        EXPECT_TRUE(poly_equal(n, n2) && poly_equal(b, b2));
        EXPECT_TRUE(trial_poly_divide_noq(n, b, polynames, 1, 0));
        EXPECT_TRUE(trial_poly_divide_noq(n, b, polynames, 1, 1));
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

// Any modulus: a divisor whose leading number is a unit divides its multiples, and leaves a remainder that is
// smaller in the main variable or keeps n = q m + r.
PROPERTY(divisors_with_a_unit_in_front, 800) {
    SCOPED_TRACE(pick_ring(round).name);
    int64_t before = live_records();
    {
        PolyGuard a, b, n, q, r, back;
        Shape s = random_shape(rng);
        s.terms = minn(s.terms, 12);
        s.max_exp = minn(s.max_exp, 8);
        a.p = random_poly(rng, s);
        b.p = random_poly(rng, s);
        int32_t unit = modularmode ? random_int(rng, 1, modulus - 1) : 1, e[6] = {};
        while (modularmode && mod_inverse_or_0(unit) == 0) unit = random_int(rng, 1, modulus - 1);
        for (int32_t i = 0; i < s.levels; i++) e[i] = s.max_exp + 1;
        best_poly_add(b.p, term_poly(unit, e, s.levels), &b.p);
        poly_mult(a, b, &n, polynames);
        boolean failed = 1;
        gen_poly_divide(n, b, &q, polynames, &failed);
        ASSERT_FALSE(failed) << text_of(n) << " by " << text_of(b);
        EXPECT_TRUE(poly_equal(q, a)) << text_of(n) << " by " << text_of(b) << " gives " << text_of(q);
        EXPECT_TRUE(poly_check(q, number_polys));
        EXPECT_TRUE(trial_poly_divide_noq(n, b, polynames, 1, 0));
        // No multiple any more: a remainder of lower degree.
        PolyGuard rest;
        rest.p = random_poly(rng, s);
        poly_add(n, rest, &n);
        poly_mod_and_div(n, b, &r, &q, polynames);
        EXPECT_TRUE(poly_check(q, number_polys) && poly_check(r, number_polys));
        poly_mult(q, b, &back, polynames);
        poly_add(back, r, &back);
        EXPECT_TRUE(poly_equal(back, n)) << text_of(n) << " by " << text_of(b);
        EXPECT_TRUE(poly_equal(q, a) && poly_equal(r, rest)) << text_of(n) << " by " << text_of(b);
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

// Arrays and trees are two independent methods; they must agree on yes, no and quotient.
PROPERTY(packed_division_agrees_with_the_recursive_one, 800) {
    SCOPED_TRACE(pick_ring(round).name);
    int64_t before = live_records();
    if (domain()) {
        Shape s = random_shape(rng);
        s.terms = random_int(rng, 2, 8);
        PolyGuard a, b, n, q, q2;
        a.p = random_nonzero_poly(rng, s);
        b.p = random_nonzero_poly(rng, s);
        poly_mult(a, b, &n, polynames);
        if (rng() & 1) {  // mostly no multiple any more
            PolyGuard extra;
            extra.p = random_poly(rng, 4, 1, 5);
            poly_add(n, extra, &n);
        }
        if (!is_number(n) && !is_number(b)) {
            Packed verdict = divide_packed(n, b, &q);
            bool divides = divide_trees(n, b, &q2, polynames);
            if (verdict != Packed::declined) {
                EXPECT_EQ(verdict == Packed::yes, divides) << text_of(n) << " by " << text_of(b);
                if (divides) {
                    EXPECT_TRUE(poly_equal(q, q2)) << text_of(n) << " by " << text_of(b);
                }
            }
        }
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

PROPERTY(user_division_with_remainder, 500) {
    const Ring& ring = pick_ring(round);
    SCOPED_TRACE(ring.name);
    if (domain()) {
        pos_mod = rng() & 1;
        PolyGuard n, m, q, r, back;
        Shape s = random_shape(rng);
        s.max_exp = minn(s.max_exp, 6);
        n.p = random_poly(rng, s);
        m.p = random_nonzero_poly(rng, s);
        poly_mod_and_div(n, m, &r, &q, polynames);
        poly_mult(q, m, &back, polynames);
        poly_add(back, r, &back);
        EXPECT_TRUE(poly_equal(back, n))
            << text_of(n) << " by " << text_of(m) << ": " << text_of(q) << ", " << text_of(r);
        EXPECT_TRUE(poly_check(q, number_polys) && poly_check(r, number_polys));
        PolyGuard r2;
        poly_mod_or_div(n, m, &r2, '|', polynames);
        EXPECT_TRUE(poly_equal(r, r2));
        pos_mod = 1;
    }
    use_integers();
}

PROPERTY(pseudo_division_keeps_its_identity, 400) {
    SCOPED_TRACE(pick_ring(round).name);
    if (domain()) {
        PolyGuard n, m, q, r, coef, left, right, knuth;
        Shape s = random_shape(rng);
        s.terms = minn(s.terms, 6);
        s.max_exp = minn(s.max_exp, 4);
        s.levels = minn(s.levels, 3);
        n.p = random_nonzero_poly(rng, s);
        m.p = random_nonzero_poly(rng, s);
        num_pseudo_div(n, m, &q, &r, &coef, polynames);
        poly_mult(coef, n, &left, polynames);
        poly_mult(q, m, &right, polynames);
        poly_add(right, r, &right);
        EXPECT_TRUE(poly_equal(left, right)) << text_of(n) << " by " << text_of(m);
        int32_t dn = is_number(n) ? 0 : n.p->exp, dm = is_number(m) ? 0 : m.p->exp;
        EXPECT_TRUE(poly_iszero(r) || dm == 0 || (is_number(r) ? 0 : r.p->exp) < dm);
        // Knuth's form is the remainder of lc^(dn - dm + 1) n.
        if (dm > 0 && dn >= dm) {
            PolyGuard power, lead, plain;
            append_term(&lead, 0, coefficient_copy(m));
            poly_assign(lead, &power);
            compute_power(&power, dn - dm + 1, polynames);
            poly_mult(power, n, &power, polynames);
            pseudo_div_no_q(n, m, &knuth, polynames, 1);
            poly_sub(power, knuth, &power);
            boolean failed = 0;
            gen_poly_divide(power, m, &plain, polynames, &failed);
            EXPECT_FALSE(failed) << text_of(n) << " by " << text_of(m);
        }
    }
    use_integers();
}

PROPERTY(laurent_quotient_gives_the_factor_back, 200) {
    SCOPED_TRACE(pick_ring(round).name);
    if (domain()) {
        laurent = 1;
        Shape s = random_shape(rng);
        s.terms = minn(s.terms, 10);
        s.min_exp = -3;
        PolyGuard a, b, n, q;
        a.p = random_nonzero_poly(rng, s);
        b.p = random_nonzero_poly(rng, s);
        poly_mult(a, b, &n, polynames);
        boolean failed = 1;
        Lpoly_divide(n, b, &q, polynames, &failed);
        ASSERT_FALSE(failed) << text_of(n) << " by " << text_of(b);
        EXPECT_TRUE(poly_equal(q, a)) << text_of(n) << " by " << text_of(b) << " gives " << text_of(q);
        laurent = 0;
    }
    use_integers();
}
