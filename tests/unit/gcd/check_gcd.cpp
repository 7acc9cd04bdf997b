// Identities of the gcd in every ground ring, and the engines compared with the remainder sequence.
#include "gcd/content.h"
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "numbers/num_compare.h"
#include "numbers/number_modes.h"
#include "poly/div_general.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
#include "tests/unit/gcd/remainder_gcd.h"

#include <algorithm>
#include <string>
using namespace tolvex;
using namespace tolvex::test;
namespace {
bool composite() { return ring_is_composite(); }

Shape random_shape(Rng& rng, bool sparse) {
    Shape s{};
    s.levels = random_int(rng, 1, 4);
    s.terms = random_int(rng, 1, sparse ? 6 : 12);
    s.max_exp = sparse ? random_int(rng, 1, 12) : random_int(rng, 1, 3);
    const Coefs styles[] = {Coefs::small, Coefs::digit, Coefs::two_digits,
                            Coefs::huge,  Coefs::ones,  Coefs::corners};
    s.coefs = styles[random_int(rng, 0, 5)];
    return s;
}

// A gcd over a domain in normal form.
void expect_normal(poly g) {
    if (modularmode) {
        EXPECT_EQ(leading_coef(g)->ncoef->lint, 1);
    } else {
        EXPECT_EQ(chain_sign(leading_coef(g)->ncoef), 1);
    }
}
}  // namespace

PROPERTY(gcd_divides_both_and_cofactors_are_coprime, 600) {
    const Ring& ring = pick_ring(round);
    SCOPED_TRACE(ring.name);
    int64_t before = live_records();
    {
        Shape s = random_shape(rng, rng() & 1);
        PolyGuard a, b, c, u, v, g, qa, qb, h;
        a.p = random_nonzero_poly(rng, s);
        b.p = random_nonzero_poly(rng, s);
        c.p = random_nonzero_poly(rng, s);
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        if (poly_iszero(u) || poly_iszero(v)) return use_integers();  // zero divisors
        SCOPED_TRACE("u = " + text_of(u) + "   v = " + text_of(v));
        Lpolygcd(u, v, &g, 0, polynames);
        SCOPED_TRACE("g = " + text_of(g));
        EXPECT_TRUE(poly_check(g, number_polys));
        boolean failed = 0;
        gen_poly_divide(u, g, &qa, polynames, &failed);
        ASSERT_FALSE(failed);
        gen_poly_divide(v, g, &qb, polynames, &failed);
        ASSERT_FALSE(failed);
        if (!composite()) {
            expect_normal(g);
            EXPECT_TRUE(divides(c, g));
            Lpolygcd(qa, qb, &h, 0, polynames);
            EXPECT_TRUE(poly_eq_1(h)) << text_of(h);
        }
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

PROPERTY(gcd_is_homogeneous_and_symmetric, 300) {
    const Ring& ring = pick_ring(round);
    SCOPED_TRACE(ring.name);
    if (!composite()) {
        Shape s = random_shape(rng, rng() & 1);
        PolyGuard a, b, c, u, v, g, g2, h;
        a.p = random_nonzero_poly(rng, s);
        b.p = random_nonzero_poly(rng, s);
        c.p = random_nonzero_poly(rng, s);
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        Lpolygcd(a, b, &h, 0, polynames);
        poly_mult(h, c, &h, polynames);
        gcd_normal_form(&h.p);
        Lpolygcd(u, v, &g, 0, polynames);
        Lpolygcd(v, u, &g2, 0, polynames);
        EXPECT_TRUE(poly_equal(g, h)) << text_of(g) << "  against  " << text_of(h);
        EXPECT_TRUE(poly_equal(g, g2));
    }
    use_integers();
}

// The remainder sequence on its own against the driver.
PROPERTY(engines_agree_with_the_remainder_sequence, 300) {
    const Ring& ring = pick_ring(round);
    SCOPED_TRACE(ring.name);
    if (!composite()) {
        Shape s{};
        s.levels = random_int(rng, 1, 3);
        s.terms = 5;
        s.max_exp = 2;
        PolyGuard a, b, c, u, v, g, w, cu, cv;
        a.p = random_nonzero_poly(rng, s);
        b.p = random_nonzero_poly(rng, s);
        c.p = random_nonzero_poly(rng, s);
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        if (!is_number(u) && !is_number(v) && u.p->exp > 0 && v.p->exp > 0) {
            cu.p = content_fresh(u, polynames);
            cv.p = content_fresh(v, polynames);
            u.p = without_content(u, cu, polynames);
            v.p = without_content(v, cv, polynames);
            w.p = prs_gcd(u, v, polynames);
            gcd_normal_form(&w.p);
            Lpolygcd(u, v, &g, 0, polynames);
            EXPECT_TRUE(poly_equal(g, w))
                << text_of(g) << "  against  " << text_of(w) << " of " << text_of(u) << " and " << text_of(v);
        }
    }
    use_integers();
}

PROPERTY(content_divides_and_leaves_a_primitive_part, 200) {
    const Ring& ring = pick_ring(round);
    SCOPED_TRACE(ring.name);
    if (!composite()) {
        PolyGuard p, c, q, rest;
        p.p = random_nonzero_poly(rng, random_shape(rng, false));
        if (!is_number(p)) {
            content(p, &c, polynames, 0, 1, 1);
            add_pad(&c, 1);
            boolean failed = 0;
            gen_poly_divide(p, c, &q, polynames, &failed);
            ASSERT_FALSE(failed);
            content(q, &rest, polynames, 0, 1, 1);
            EXPECT_TRUE(poly_eq_1(rest)) << text_of(p) << " over " << text_of(c);
        }
    }
    use_integers();
}

// Variables that only the cofactors have are set to points; the gcd must not notice.
PROPERTY(gcd_in_fewer_variables_than_the_operands, 300) {
    const Ring& ring = pick_ring(round);
    SCOPED_TRACE(ring.name);
    if (!composite()) {
        int32_t order[6] = {0, 1, 2, 3, 4, 5};
        std::shuffle(order, order + 6, rng);
        auto part = [&](int32_t from, int32_t to) {  // a polynomial in the variables order[from..to-1]
            poly p = nullptr;
            poly_set(0, &p);
            for (int i = 0; i < 5; i++) {
                int32_t e[6] = {};
                for (int32_t k = from; k < to; k++) e[order[k]] = random_int(rng, 0, 3);
                best_poly_add(p, term_poly(random_int(rng, 1, 50), e, 6), &p);
            }
            if (poly_iszero(p)) poly_set(1, &p);
            return p;
        };
        PolyGuard a, b, c, u, v, g, h;
        a.p = part(0, 4);
        b.p = part(1, 5);
        c.p = part(2, 4);
        Lpolygcd(a, b, &h, 0, polynames);
        poly_mult(h, c, &h, polynames);
        gcd_normal_form(&h.p);
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        Lpolygcd(u, v, &g, 0, polynames);
        EXPECT_TRUE(poly_equal(g, h))
            << text_of(g) << "  against  " << text_of(h) << " of " << text_of(u) << " and " << text_of(v);
    }
    use_integers();
}
