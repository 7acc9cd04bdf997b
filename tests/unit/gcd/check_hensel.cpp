// The lifting gcds, second methods beside the engines of the strategy.
#include "gcd/hensel.h"
#include "numbers/residue.h"
#include "poly/div_field.h"
#include "poly/div_general.h"
#include "poly/poly_add.h"
#include "tests/unit/gcd/engines_support.h"

#include <cstdio>
using namespace tolvex;
using namespace tolvex::test;
namespace {
poly positive_degree(Rng& rng, int32_t levels, int32_t terms, int32_t max_exp, Coefs coefs) {
    for (;;) {
        poly p = random_nonzero_poly(rng, levels, terms, max_exp, coefs);
        if (!is_number(p) && p->exp > 0) return p;
        free_poly(&p);
    }
}

struct Tally {
    int tried = 0, found = 0, too_large = 0;
};

template <class Engine>
void expect_planted(Rng& rng, int32_t levels, Coefs coefs, int32_t max_exp, Tally& tally, Engine engine) {
    use_variables(levels);
    int64_t before = live_records();
    {
        PolyGuard a(positive_degree(rng, levels, 6, max_exp, coefs)),
            b(positive_degree(rng, levels, 6, max_exp, coefs)),
            c(positive_degree(rng, levels, 6, max_exp, coefs)), u, v, g;
        if (random_int(rng, 0, 5) == 0) poly_set(1, &c);
        if (random_int(rng, 0, 7) == 0) poly_mult(c, a, &c, polynames);  // repeated factors
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        if (levels > 1) {
            PolyGuard cu(content_fresh(u, polynames)), cv(content_fresh(v, polynames));
            u.p = without_content(u, cu, polynames);
            v.p = without_content(v, cv, polynames);
        }
        if (u.p->exp == 0 || v.p->exp == 0) return;
        PolyGuard u2(copy_of(u)), v2(copy_of(v));
        hen_check = random_int(rng, 0, 3) != 0;
        tally.tried++;
        gcd_unproved = 0;
        bool found = engine(u, v, &g);
        EXPECT_TRUE(!gcd_unproved || !hen_check);
        bool unproved = gcd_unproved;
        hen_check = 1;
        gcd_unproved = 0;
        EXPECT_TRUE(poly_equal(u, u2) && poly_equal(v, v2));
        if (found) {
            tally.found++;
            EXPECT_TRUE(poly_check(g, levels));
            PolyGuard w(gcd_by_remainders(u, v, polynames)), h(copy_of(g)), k;
            if (!modularmode) {
                free_poly(&h);
                h.p = primitive_copy(g);
                k.p = primitive_copy(w);
                gcd_normal_form(&k.p);
                std::swap(w.p, k.p);
            }
            gcd_normal_form(&h.p);
            if (unproved && !poly_equal(h, w)) {  // never too small
                PolyGuard q;
                boolean failed = 0;
                gen_poly_divide(h, w, &q, polynames, &failed);
                EXPECT_FALSE(failed);
                tally.too_large++;
                return;
            }
            ASSERT_TRUE(poly_equal(h, w))
                << text_of(h) << " against " << text_of(w) << " of " << text_of(u) << " and " << text_of(v);
        }
    }
    EXPECT_EQ(live_records(), before);
}
}  // namespace

PROPERTY(bezout_pair_solves_a_step, 2000) {
    use_ring(field_rings[round % field_ring_count]);
    SCOPED_TRACE(field_rings[round % field_ring_count].name);
    use_variables(1);
    int64_t before = live_records();
    {
        PolyGuard g(positive_degree(rng, 1, 6, 8, Coefs::digit)), h(random_nonzero_poly(rng, 1, 6, 8)), x;
        monic_poly(&g.p);
        poly_mult(g, h, &x, polynames);
        PolyGuard d(gcd_by_remainders(g, h, polynames));
        HenselPair pair;
        bool coprime = is_number(h) || is_number(d);
        ASSERT_EQ(open_hensel_pair(x, g, &pair), coprime) << text_of(g) << " and " << text_of(h);
        if (coprime) {
            PolyGuard e(random_poly(rng, 1, 6, x.p->exp)), dg, dh, s, t;
            EXPECT_TRUE(poly_equal(pair.h, h));
            solve_hensel_step(pair, e, &dg, &dh);
            EXPECT_TRUE(poly_iszero(dg) || dg.p->exp < g.p->exp);
            poly_mult(dg, h, &s, polynames);
            poly_mult(dh, g, &t, polynames);
            poly_add(s, t, &s);
            EXPECT_TRUE(poly_equal(s, e)) << text_of(s) << " against " << text_of(e);
            close_hensel_pair(&pair);
        }
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

TEST(Hensel, two_variables_against_the_remainder_sequence) {
    set_up_once();
    for (const Ring& ring : field_rings) {
        use_ring(ring);
        SCOPED_TRACE(ring.name);
        Tally tally;
        for (int i = 0; i < rounds(200); i++) {
            SCOPED_TRACE(::testing::Message() << "TOLVEX_SEED=" << run_seed() << " round " << i);
            Rng rng(run_seed() * 1000003u + static_cast<uint64_t>(i));
            expect_planted(rng, 2, Coefs::digit, 3, tally,
                           [](poly u, poly v, polyptrr g) { return mod_hensel_2(u, v, g, polynames) != 0; });
            if (::testing::Test::HasFailure()) return use_integers();
        }
        printf("%s: %d problems, %d found\n", ring.name, tally.tried, tally.found);
        if (ring.modulus > 100) {
            EXPECT_GT(tally.found, tally.tried * 3 / 4);
        }
    }
    use_integers();
}

TEST(Hensel, integers_against_the_remainder_sequence) {
    set_up_once();
    use_integers();
    Tally tally;
    const Coefs styles[] = {Coefs::small, Coefs::digit, Coefs::two_digits, Coefs::huge, Coefs::ones};
    for (int i = 0; i < rounds(2000); i++) {
        SCOPED_TRACE(::testing::Message() << "TOLVEX_SEED=" << run_seed() << " round " << i);
        Rng rng(run_seed() * 1000003u + static_cast<uint64_t>(i));
        expect_planted(rng, 1, styles[i % 5], i % 7 == 0 ? 12 : 4, tally, [](poly u, poly v, polyptrr g) {
            boolean success = 0;
            basic_hensel(u, v, g, &success, polynames);
            return success != 0;
        });
        if (::testing::Test::HasFailure()) return;
    }
    printf("Z: %d problems, %d found\n", tally.tried, tally.found);
    EXPECT_EQ(tally.too_large, 0);
    EXPECT_GT(tally.found, tally.tried * 3 / 4);
}

TEST(Hensel, several_variables_are_left_to_others) {
    set_up_once();
    use_variables(3);
    use_ring(101);
    PolyGuard u(poly_of("x*y*z + x + 1")), g;
    EXPECT_FALSE(mod_hensel_2(u, u, &g, polynames));
    use_integers();
    PolyGuard v(poly_of("x*y + x + 1"));
    boolean success = 1;
    basic_hensel(v, v, &g, &success, polynames);
    EXPECT_FALSE(success);
    EXPECT_EQ(g.p, nullptr);
}
