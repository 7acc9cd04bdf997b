// The engines for several variables over a field of words, against planted gcds and the remainder sequence.
#include "gcd/content.h"
#include "gcd/multivar_chinese.h"
#include "gcd/polygcd.h"
#include "poly/div_general.h"
#include "poly/poly_add.h"
#include "poly/poly_scale.h"
#include "storage/progress.h"
#include "storage/scratch.h"
#include "tests/unit/gcd/engines_support.h"

#include <algorithm>
#include <cstdio>
using namespace tolvex;
using namespace tolvex::test;
namespace {
/// A polynomial of positive degree in the main variable with about so many terms in all levels.
poly several_variables(Rng& rng, int32_t levels, int32_t terms, int32_t max_exp) {
    for (;;) {
        poly p = nullptr;
        poly_set(1, &p);
        for (int32_t i = 0; i < terms; i++) {
            int32_t e[6];
            for (int32_t& k : e) k = random_int(rng, 0, max_exp);
            best_poly_add(p, term_poly(random_int(rng, 1, 1 << 30), e, levels), &p);
        }
        if (!is_number(p) && p->exp > 0) return p;
        free_poly(&p);
    }
}

void make_primitive(PolyGuard& p) {
    PolyGuard c(content_fresh(p, polynames));
    p.p = without_content(p, c, polynames);
}

struct Tally {
    int tried = 0, found = 0, one = 0;
};

// What an engine has found is the gcd of the primitive u and v: by the driver, now and then by the sequence.
void expect_gcd(poly u, poly v, poly found, bool by_remainders) {
    PolyGuard g(copy_of(found)), w;
    EXPECT_TRUE(poly_check(g, number_polys));
    gcd_normal_form(&g.p);
    if (by_remainders)
        w.p = gcd_by_remainders(u, v, polynames);
    else
        polygcd(u, v, &w, 0, 1, 1, polynames, 1, 1, 1);
    ASSERT_TRUE(poly_equal(g, w)) << text_of(g) << " against " << text_of(w) << " of " << text_of(u)
                                  << " and " << text_of(v);
}

// One planted problem for an engine of several variables.
template <class Engine> void expect_planted(Rng& rng, int32_t levels, Tally& tally, Engine engine) {
    use_variables(levels);
    int64_t before = live_records();
    {
        bool coprime = random_int(rng, 0, 5) == 0;
        int32_t terms = coprime       ? 90
                        : levels == 2 ? 14
                                      : 9,
                most = coprime       ? levels == 2 ? 9 : 3
                       : levels == 2 ? 5
                       : levels == 3 ? 3
                                     : 2;
        PolyGuard a(several_variables(rng, levels, terms, most)),
            b(several_variables(rng, levels, terms, most)), c(several_variables(rng, levels, terms, most)), u,
            v, g;
        if (random_int(rng, 0, 4) == 0) {  // a factor free of level 2
            PolyGuard d(poly_of("x + 1")), e(poly_of("x*z + z + 1"));
            poly_mult(c, levels > 2 ? e : d, &c, polynames);
        }
        if (coprime) poly_set(1, &c);
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        make_primitive(u);
        make_primitive(v);
        if (u.p->exp == 0 || v.p->exp == 0) return;
        PolyGuard u2(copy_of(u)), v2(copy_of(v));
        tally.tried++;
        int16_t stash = lookupgcd;
        bool found = engine(u, v, &g);
        EXPECT_EQ(lookupgcd, stash);
        EXPECT_TRUE(poly_equal(u, u2) && poly_equal(v, v2));
        if (found) {
            tally.found++;
            if (is_number(g)) tally.one++;
            expect_gcd(u, v, g, levels == 2 && tally.tried % 8 == 0);
        }
    }
    EXPECT_EQ(live_records(), before);
}

// How an engine is called: with a true bound, with one that is too small, with one that is too large.
int32_t some_bound(Rng& rng, poly u, poly v) {
    int32_t bound = std::min(u->exp, v->exp);
    return random_int(rng, 0, 3) == 0 ? random_int(rng, 1, bound + 2) : bound;
}
}  // namespace

TEST(SeveralVariables, interpolation_finds_the_gcd) {
    set_up_once();
    for (const Ring& ring : field_rings) {
        use_ring(ring);
        SCOPED_TRACE(ring.name);
        Tally tally;
        for (int i = 0; i < rounds(100); i++) {
            SCOPED_TRACE(::testing::Message() << "TOLVEX_SEED=" << run_seed() << " round " << i);
            Rng rng(run_seed() * 1000003u + static_cast<uint64_t>(i));
            expect_planted(rng, i % 4 + 2, tally, [&rng](poly u, poly v, polyptrr g) {
                return mod_multivar_Chinese(u, v, g, some_bound(rng, u, v), polynames) != 0;
            });
            if (::testing::Test::HasFailure()) return use_integers();
        }
        printf("%s: %d problems, %d found, %d of them coprime\n", ring.name, tally.tried, tally.found,
               tally.one);
        if (ring.modulus > 100) {
            EXPECT_GT(tally.found, tally.tried / 2);
            EXPECT_GT(tally.one, 0);
        }
    }
    use_integers();
}

// One interpolation alone never needs a word on sizes; what it gives must divide before it is believed.
TEST(SeveralVariables, one_interpolation) {
    set_up_once();
    for (const Ring& ring : field_rings) {
        use_ring(ring);
        SCOPED_TRACE(ring.name);
        Tally tally;
        for (int i = 0; i < rounds(60); i++) {
            SCOPED_TRACE(::testing::Message() << "TOLVEX_SEED=" << run_seed() << " round " << i);
            Rng rng(run_seed() * 1000033u + static_cast<uint64_t>(i));
            expect_planted(rng, i % 4 + 2, tally, [](poly u, poly v, polyptrr g) {
                PolyGuard cu(content_2(u, polynames)), cv(content_2(v, polynames)), com;
                polygcd(cu, cv, &com, 0, 1, 0, polynames, 1, 1, 1);
                int32_t xdeg = 0, ydeg = 0;
                for (poly t = u; t != nullptr; t = t->next)
                    if (!t->numb) xdeg = std::max(xdeg, t->pcoef->exp);
                for (poly t = v; t != nullptr; t = t->next)
                    if (!t->numb) ydeg = std::max(ydeg, t->pcoef->exp);
                if (!is_number(com) || xdeg == 0 || ydeg == 0) return false;
                if (!sub_mod_multivar_Chinese(u, v, g, std::min(u->exp, v->exp), xdeg, ydeg, polynames))
                    return false;
                if (is_number(*g)) return true;
                PolyGuard q;
                boolean failed_u = (*g)->exp == 0, failed_v = 0;
                if (!failed_u) gen_poly_divide(u, *g, &q, polynames, &failed_u);
                gen_poly_divide(v, *g, &q, polynames, &failed_v);
                return !failed_u && !failed_v;
            });
            if (::testing::Test::HasFailure()) return use_integers();
        }
        printf("%s: %d problems, %d found, %d of them coprime\n", ring.name, tally.tried, tally.found,
               tally.one);
        if (ring.modulus > 30000) {
            EXPECT_GT(tally.found, tally.tried * 3 / 4);
        }
    }
    use_integers();
}

// Levels between the main one and the next that occurs are left out and come back.
PROPERTY(absent_levels, 300) {
    use_variables(5);
    const Ring& ring = field_rings[2 + round % (field_ring_count - 2)];
    use_ring(ring);
    SCOPED_TRACE(ring.name);
    int64_t before = live_records();
    {
        int32_t absent = random_int(rng, 1, 3);
        auto part = [&] {
            poly p = nullptr;
            poly_set(1, &p);
            for (int i = 0; i < 12; i++) {
                int32_t e[5] = {random_int(rng, 0, 4)};
                for (int32_t k = 1 + absent; k < 5; k++) e[k] = random_int(rng, 0, absent == 3 ? 6 : 2);
                best_poly_add(p, term_poly(random_int(rng, 1, 50), e, 5), &p);
            }
            return p;
        };
        PolyGuard a(part()), b(part()), c(part()), u, v, g;
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        if (!is_number(u) && !is_number(v)) {
            make_primitive(u);
            make_primitive(v);
        }
        if (!is_number(u) && !is_number(v) && u.p->exp > 0 && v.p->exp > 0) {
            PolyGuard u2(copy_of(u)), v2(copy_of(v));
            polypt second = polynames->next;
            int32_t levels = number_polys, depth = second->depth;
            if (mod_multivar_Chinese(u, v, &g, std::min(u.p->exp, v.p->exp), polynames))
                expect_gcd(u, v, g, false);
            EXPECT_TRUE(poly_equal(u, u2) && poly_equal(v, v2));
            EXPECT_EQ(polynames->next, second);
            EXPECT_EQ(number_polys, levels);
            EXPECT_EQ(second->depth, depth);
        }
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

TEST(SeveralVariables, nothing_below_the_main_variable) {
    set_up_once();
    use_variables(2);
    use_ring(32003);
    Rng rng(run_seed());
    PolyGuard u(dense_poly(rng, 60)), v(dense_poly(rng, 50)), g;
    EXPECT_FALSE(mod_multivar_Chinese(u, v, &g, 50, polynames));
    verbose = 1;
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(mod_multivar_Chinese(u, v, &g, 50, polynames));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              " *** Tolvex Warning. Early exit from mod_multivar_Chinese.\n");
    verbose = 0;
    EXPECT_EQ(g.p, nullptr);
    PolyGuard w(poly_of("y^3 + y + 1"));
    EXPECT_TRUE(RAISES(mod_multivar_Chinese(w, u, &g, 1, polynames)));
    EXPECT_STREQ(caught.text, "Chinese 0 exponent, x.");
    EXPECT_TRUE(RAISES(mod_multivar_Chinese(u, w, &g, 1, polynames)));
    EXPECT_STREQ(caught.text, "Chinese 0 exponent, y.");
    use_integers();
}

// A field with fewer elements than points are needed: an answer that there is none, not a wrong one.
TEST(SeveralVariables, too_few_points) {
    set_up_once();
    use_variables(3);
    for (const Ring& ring : field_rings) {
        use_ring(ring);
        SCOPED_TRACE(ring.name);
        PolyGuard c(poly_of("x^6*y + x^6 + y*z + z + x*y^2")), a(poly_of("x^2 + y + z")),
            b(poly_of("x^2*y + z + 1")), u, v, g;
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        bool found = false;  // a first point may be unlucky
        for (int tries = 0; tries < 10 && !found; tries++)
            found = sub_mod_multivar_Chinese(u, v, &g, 8, 3, 3, polynames);
        EXPECT_EQ(found, ring.modulus > 10);
        EXPECT_FALSE(sub_mod_multivar_Chinese(u, v, &g, 0, 3, 3, polynames));
    }
    use_integers();
}

// At most points of the field the degree in level 2 falls: these are passed over, and the others suffice.
TEST(SeveralVariables, points_that_lower_the_degree_in_level_two) {
    set_up_once();
    use_variables(2);
    use_ring(101);
    PolyGuard lead(poly_of("1")), c(poly_of("x*y + 3*x + y^2 + 5")), a(poly_of("x + 2*y + 1")),
        b(poly_of("x^2 + y + 7")), top(poly_of("y^3")), u, v, g;
    for (int32_t i = 0; i < 50; i++) {
        PolyGuard factor(poly_of(("x - " + std::to_string(i)).c_str()));
        poly_mult(lead, factor, &lead, polynames);
    }
    poly_mult(top, lead, &top, polynames);
    poly_add(c, top, &c);
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    ASSERT_TRUE(mod_multivar_Chinese(u, v, &g, 51, polynames));
    expect_gcd(u, v, g, true);
    EXPECT_EQ(g.p->exp, 50);
    use_integers();
}

// The same problem many times: other points, the same result.
TEST(SeveralVariables, results_do_not_depend_on_the_points) {
    set_up_once();
    use_variables(3);
    for (int32_t p : {101, 65521, 2147483629}) {
        use_ring(p);
        Rng rng(run_seed());
        PolyGuard a(several_variables(rng, 3, 20, 3)), b(several_variables(rng, 3, 20, 3)),
            c(several_variables(rng, 3, 20, 3)), u, v, first;
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        make_primitive(u);
        make_primitive(v);
        for (int i = 0; i < 20; i++) {
            PolyGuard g;
            ASSERT_TRUE(mod_multivar_Chinese(u, v, &g, std::min(u.p->exp, v.p->exp), polynames));
            gcd_normal_form(&g.p);
            if (i == 0) first.p = copy_of(g);
            ASSERT_TRUE(poly_equal(g, first));
        }
    }
    use_integers();
}

// What the retries say: a bound that is too small, and a field without points enough.
namespace {
std::string told(int32_t p, int32_t bound, bool found) {
    use_ring(p);
    PolyGuard c(poly_of("x^5*y + x^4*z + y*z + z^2 + x*y^2 + 1")),
        a(poly_of("x^2*y^2 + y + z + x*y*z^3 + 3*x^2*z + 2")),
        b(poly_of("x^2*y + z + 1 + x*y^3*z + x^2*y^2*z^2 + 2*y*z")), u, v, g;
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    verbose = windy = 1;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(mod_multivar_Chinese(u, v, &g, bound, polynames), found);
    verbose = windy = 0;
    if (found) {
        EXPECT_TRUE(poly_equal(g, c)) << text_of(g);
    }
    return ::testing::internal::GetCapturedStdout();
}
}  // namespace

TEST(SeveralVariables, retries_are_told) {
    set_up_once();
    use_variables(3);
    EXPECT_EQ(told(65521, 1, true), "sub_mod_multivar_Chinese retry, 1 A, 1\n");
    EXPECT_EQ(told(5, 5, false),
              "sub_mod_multivar_Chinese retry, 1 B, 1\nsub_mod_multivar_Chinese retry, 1 B, 2\n"
              "sub_mod_multivar_Chinese retry, 1 B, 3\nsub_mod_multivar_Chinese retry, 1 B, 4\n"
              "sub_mod_multivar_Chinese retry, swap levels \n"
              "sub_mod_multivar_Chinese retry, 2 B, 1\nsub_mod_multivar_Chinese retry, 2 B, 2\n"
              "sub_mod_multivar_Chinese retry, 2 B, 3\nsub_mod_multivar_Chinese retry, 2 B, 4\n"
              "mod_multivar_Chinese gave up 4\n");
    use_integers();
}

// A common factor free of level 2 of degree `bound` in the main variable leaves a bound of 1 at least.
TEST(SeveralVariables, content_in_level_two_of_the_full_degree) {
    set_up_once();
    use_variables(3);
    use_ring(32003);
    PolyGuard com(poly_of("x^3*z + x + z + 1")),
        a(poly_of("x^4*y^3 + x^2*y*z + y^2 + z + 3*x*y^3 + 7*x^3*z^2*y + 5")),
        b(poly_of("x^4*y^2 + x*y*z + y^3 + 2*z + 8*x^3*y^3*z + x^2*y + 9")), u, v, g;
    poly_mult(a, com, &u, polynames);
    poly_mult(b, com, &v, polynames);
    ASSERT_TRUE(mod_multivar_Chinese(u, v, &g, 3, polynames));
    expect_gcd(u, v, g, true);
    use_integers();
}

PROPERTY(exchange_of_levels, 1000) {
    use_variables(4);
    use_ring(field_rings[round % field_ring_count]);
    int64_t before = live_records();
    {
        PolyGuard p(random_poly(rng, 4, 12, 4)), q(copy_of(p)), sum, a(random_poly(rng, 4, 12, 4)), s;
        swap_levels_1_2(&q);
        EXPECT_TRUE(poly_check(q, 4));
        poly_mult(p, a, &s, polynames);
        poly_mult(q, a, &sum, polynames);
        swap_levels_1_2(&a);
        swap_levels_1_2(&s);
        poly_mult(q, a, &sum, polynames);
        EXPECT_TRUE(poly_equal(s, sum));  // a homomorphism
        swap_levels_1_2(&q);
        EXPECT_TRUE(poly_equal(p, q));
    }
    EXPECT_EQ(live_records(), before);
    PolyGuard x(poly_of("x^3*z + x*y^2 + y*z + 3")), y(poly_of("y^3*z + y*x^2 + x*z + 3"));
    swap_levels_1_2(&x);
    EXPECT_TRUE(poly_equal(x, y));
    use_integers();
}

PROPERTY(values_interpolate_to_the_polynomial, 1000) {
    use_variables(4);
    const Ring& ring = field_rings[round % field_ring_count];
    use_ring(ring);
    int64_t before = live_records();
    {
        WordField f = word_field_ring();
        PolyGuard p(random_poly(rng, 4, 12, 5));
        auto n = static_cast<int32_t>(std::min<uint32_t>(6 + static_cast<uint32_t>(round % 3), f.p));
        if (!is_number(p) && p.p->exp >= n) return use_integers();
        ScratchMark mark = scratch_mark();
        MainRows rows = main_rows(p);
        poly image[8];
        uint32_t point[8];
        for (int32_t i = 0; i < n; i++) {
            do point[i] = static_cast<uint32_t>(rng() % f.p);
            while (std::find(point, point + i, point[i]) != point + i);
            image[i] = main_rows_at(f, rows, point[i]);
            EXPECT_TRUE(poly_check(image[i], 3));
        }
        PolyGuard q(interpolate_main(f, image, point, n));
        EXPECT_TRUE(poly_check(q, 4));
        EXPECT_TRUE(poly_equal(p, q)) << text_of(p) << " against " << text_of(q);
        for (int32_t i = 0; i < n; i++) free_poly(&image[i]);
        free_poly(&rows.tree);
        scratch_release(mark);
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

TEST(SeveralVariables, when_interpolation_is_asked_for) {
    set_up_once();
    use_variables(2);
    use_ring(101);
    PolyGuard small(poly_of("x^7*y + 1")), linear(poly_of("x*y + y + 1")), large(poly_of("1"));
    Rng rng(run_seed());
    for (int i = 0; i < 5; i++) best_poly_add(large, several_variables(rng, 2, 30, 6), &large.p);
    EXPECT_FALSE(mod_do_Chinese(small, small, 7));
    EXPECT_TRUE(mod_do_Chinese(small, small, 0));   // degree 7 lost: more than mod_method_diff
    EXPECT_TRUE(mod_do_Chinese(small, small, 5));   // 6 * 2 > 7
    EXPECT_FALSE(mod_do_Chinese(small, small, 6));  // 6 * 1 < 7
    EXPECT_TRUE(mod_do_Chinese(small, large, large.p->exp));
    EXPECT_TRUE(mod_do_Chinese(large, small, 7));
    EXPECT_FALSE(mod_do_Chinese(large, linear, 1));  // a small linear operand: divide instead
    use_integers();
}
