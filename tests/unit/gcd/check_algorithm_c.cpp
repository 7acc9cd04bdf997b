// The subresultant sequence: planted gcds in all rings, changes of the main variable, the ways of giving up.
#include "poly/div_general.h"
#include "poly/evaluate.h"
#include "poly/poly_add.h"
#include "poly/poly_vars.h"
#include "poly/size_estimates.h"
#include "storage/progress.h"
#include "tests/unit/gcd/engines_support.h"

#include <cstdio>
#include <unistd.h>
using namespace tolvex;
using namespace tolvex::test;
namespace {
const Ring sequence_rings[] = {{0, false, "Z"},           {2, false, "Z/2"},
                               {3, false, "Z/3"},         {101, false, "Z/101"},
                               {65521, false, "Z/65521"}, {2147483629, false, "Z/2147483629"},
                               {256, true, "GF(2^8)"},    {65536, true, "GF(2^16)"}};

/// The gcd of primitive operands by Algorithm C, which leaves everything else as it was.
void run_algorithm_c(poly u, poly v, polyptrr r, int16_t* steps = nullptr) {
    polygcd_EnvRec env = {};
    env.u = u;
    env.v = v;
    env.r = r;
    env.pt = polynames;
    env.do_fast = env.allcons = env.us.save = env.vs.save = 1;
    PolyGuard u2(copy_of(u)), v2(copy_of(v));
    int32_t levels = number_polys;
    algorithm_c(env);
    if (steps != nullptr) *steps = env.height;
    EXPECT_TRUE(poly_equal(u, u2) && poly_equal(v, v2));
    EXPECT_EQ(number_polys, levels);
    int16_t depth = 0;
    for (polypt pt = polynames; pt != nullptr; pt = pt->next) EXPECT_EQ(pt->depth, ++depth);
    EXPECT_EQ(depth, levels);
}

/// Both without their contents in the main variable; false if one is free of it.
bool make_primitive(polyptrr u, polyptrr v) {
    if (is_number(*u) || is_number(*v)) return false;
    PolyGuard cu(content_fresh(*u, polynames)), cv(content_fresh(*v, polynames));
    *u = without_content(*u, cu, polynames);
    *v = without_content(*v, cv, polynames);
    return !is_number(*u) && !is_number(*v) && (*u)->exp > 0 && (*v)->exp > 0;
}

/// What is printed to standard output while `run` runs.
template <class Run> std::string printed(Run run) {
    fflush(stdout);
    FILE* file = tmpfile();
    int kept = dup(1);
    dup2(fileno(file), 1);
    run();
    fflush(stdout);
    dup2(kept, 1);
    close(kept);
    std::string text;
    rewind(file);
    for (int c; (c = getc(file)) != EOF;) text += static_cast<char>(c);
    fclose(file);
    return text;
}

poly power_of_text(const char* text, int32_t e) {
    poly p = poly_of(text);
    compute_power(&p, e, polynames);
    return p;
}

void expect_planted(Rng& rng, const Shape& s) {
    PolyGuard a(random_nonzero_poly(rng, s)), b(random_nonzero_poly(rng, s)), c(random_nonzero_poly(rng, s));
    PolyGuard u, v, r, w, q;
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    if (!make_primitive(&u, &v)) return;
    run_algorithm_c(u, v, &r);
    EXPECT_TRUE(poly_check(r, number_polys));
    w.p = prs_gcd(u, v, polynames);
    gcd_normal_form(&w.p);
    ASSERT_TRUE(poly_equal(r, w)) << text_of(r) << " against " << text_of(w) << " of " << text_of(u)
                                  << " and " << text_of(v);
    boolean failed = 0;
    gen_poly_divide(u, r, &q, polynames, &failed);
    EXPECT_FALSE(failed);
}
}  // namespace

PROPERTY(algorithm_c_finds_planted_gcds, 1600) {
    const Ring& ring = sequence_rings[round % 8];
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(random_int(rng, 1, 4));
    int64_t before = live_records();
    expect_planted(rng, Shape{number_polys, random_int(rng, 2, number_polys > 2 ? 4 : 6),
                              random_int(rng, 1, number_polys > 2 ? 2 : 4)});
    alg_c_count = 0;
    EXPECT_EQ(live_records(), before);
    use_integers();
}

// Dense in the first variable with long leading coefficients, monic in another one: the main variable
// changes.
PROPERTY(algorithm_c_changes_the_main_variable, 400) {
    const Ring& ring = sequence_rings[round % 8];
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(3);
    int64_t before = live_records();
    {
        PolyGuard u, v, r, w;
        poly* operand[2] = {&u.p, &v.p};
        PolyGuard g(random_nonzero_poly(rng, Shape{3, 4, 1})),
            apart(random_nonzero_poly(rng, Shape{2, 3, 2}));
        for (poly* p : operand) {
            PolyGuard body(random_nonzero_poly(rng, Shape{3, 12, 3})), lead(poly_of("z^4"));
            poly_add(body, lead, &body);  // monic in z
            poly_mult(body, g, p, polynames);
            poly_mult(*p, apart, p, polynames);  // free of z: a content there
            PolyGuard more(random_nonzero_poly(rng, Shape{2, 3, 1}));
            poly_mult(*p, more, p, polynames);
        }
        if (make_primitive(&u, &v) && u.p->exp > 2 && v.p->exp > 2) {
            run_algorithm_c(u, v, &r);
            w.p = gcd_by_remainders(u, v, polynames);
            EXPECT_TRUE(poly_equal(r, w))
                << text_of(r) << " against " << text_of(w) << " of " << text_of(u) << " and " << text_of(v);
        }
        alg_c_count = 0;
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

TEST(AlgorithmC, a_common_factor_free_of_the_new_variable_is_kept) {
    set_up_once();
    use_integers();
    use_variables(3);
    PolyGuard g(poly_of("x + 1")), h(poly_of("x y + z")), u, v, r, gh;
    PolyGuard a(poly_of("x^3 y^2 + x^3 y + x^3 z + x^2 y^2 + 3 x z^2 + x y z + 7 y + z + z^3 + 5"));
    PolyGuard b(poly_of("x^3 y^2 + 2 x^3 y - x^3 z + x^2 y z + 3 x z^2 + 5 x y z + 2 y + z^3 - 1"));
    poly_mult(g, h, &gh, polynames);
    poly_mult(a, gh, &u, polynames);
    poly_mult(b, gh, &v, polynames);
    run_algorithm_c(u, v, &r);
    EXPECT_TRUE(poly_equal(r, gh)) << text_of(r);
    // "coprime" in the new variable as well
    poly_mult(a, g, &u, polynames);
    poly_mult(b, g, &v, polynames);
    run_algorithm_c(u, v, &r);
    EXPECT_TRUE(poly_equal(r, g)) << text_of(r);
    alg_c_count = 0;
}

TEST(AlgorithmC, remainders_free_of_the_main_variable_mean_coprime) {
    set_up_once();
    use_integers();
    use_variables(2);
    PolyGuard u(poly_of("x^2 + y")), v(poly_of("x + y^3")), r;
    int16_t steps = -1;
    run_algorithm_c(u, v, &r, &steps);
    EXPECT_TRUE(poly_eq_1(r));
    EXPECT_EQ(steps, 0);
    PolyGuard same(poly_of("x^2 y + x + y"));  // equal degrees: delta is 0
    run_algorithm_c(same, same, &r, &steps);
    EXPECT_TRUE(poly_equal(r, same));
    PolyGuard w(poly_of("x^4 y + x^3 + x y^2 + 2 x + y")), z(poly_of("x^4 + x^2 y + x + 3 y^2"));
    run_algorithm_c(w, z, &r, &steps);
    EXPECT_TRUE(poly_eq_1(r));
    EXPECT_GE(steps, 2);
}

TEST(AlgorithmC, costly_problems_go_back_to_the_driver) {
    set_up_once();
    use_ring(65521);
    use_variables(3);
    PolyGuard a(power_of_text("x y + 2 x z + 3 x + y + 5 z + 7", 7)),
        b(power_of_text("2 x y - x z + x + 4 y + z + 1", 7));
    PolyGuard c(poly_of("x^2 y + x z^2 + 3 y + 1")), u, v, r, w;
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    ASSERT_TRUE(make_primitive(&u, &v));
    poly_mult(c, poly_1, &w, polynames);
    PolyGuard content_of_c(content_fresh(c, polynames));
    w.p = without_content(w.p, content_of_c, polynames);
    gcd_normal_form(&w.p);
    alg_c_count = 0;
    verbose = 1;
    std::string text = printed([&] { run_algorithm_c(u, v, &r); });
    verbose = 0;
    EXPECT_EQ(text.rfind("Warning. Abandon Algorithm C. 1, ", 0), 0u) << text;
    EXPECT_EQ(alg_c_count, 1);
    EXPECT_TRUE(poly_equal(r, w));
    // forced by &O: a note, and the right answer all the same
    chinhensel = 0;
    text = printed([&] { run_algorithm_c(u, v, &r); });
    chinhensel = 1;
    EXPECT_NE(text.find("\n\n!! ** Warning. You set &O to force Algorithm C!\n\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("&O conflict with large GCD problem.\n"), std::string::npos) << text;
    EXPECT_TRUE(poly_equal(r, w));
    alg_c_count = 0;
    use_integers();
}

TEST(AlgorithmC, the_fifth_abandon_is_refused) {
    set_up_once();
    use_ring(101);
    use_variables(2);
    PolyGuard a(power_of_text("x y^3 + 2 x y + x + y^2 + 7", 7)),
        b(power_of_text("x y^3 + 2 x y^2 + y^2 - x + 1", 7));
    PolyGuard c(power_of_text("x y^3 + y + 2 x + 1", 3)), u, v, r, w;
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    ASSERT_TRUE(make_primitive(&u, &v));
    alg_c_count = 4;
    verbose = 1;
    std::string text = printed([&] { run_algorithm_c(u, v, &r); });
    verbose = 0;
    EXPECT_EQ(text.rfind("Warning. Can't abandon Algorithm C. ", 0), 0u) << text;
    EXPECT_EQ(alg_c_count, 4);
    w.p = prs_gcd(u, v, polynames);
    gcd_normal_form(&w.p);
    EXPECT_TRUE(poly_equal(r, w));
    alg_c_count = 0;
    use_integers();
}

TEST(AlgorithmC, numbers_are_faults) {
    set_up_once();
    use_integers();
    use_variables(2);
    PolyGuard u(poly_of("x^2 + y")), r;
    polygcd_EnvRec env = {};
    env.u = u;
    env.v = poly_1;
    env.r = &r;
    env.pt = polynames;
    EXPECT_TRUE(RAISES(algorithm_c(env)));
    EXPECT_STREQ(caught.text, "v number in Alg C.");
}
