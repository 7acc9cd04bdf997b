// The engines of polygcd, each alone, against planted gcds and against the remainder sequence.
#include "gcd/basic_mod_method.h"
#include "gcd/emgcd.h"
#include "gcd/gcd_stash.h"
#include "numbers/num_assign.h"
#include "numbers/num_mult.h"
#include "numbers/primes.h"
#include "poly/div_general.h"
#include "poly/poly_add.h"
#include "poly/poly_scale.h"
#include "storage/memory.h"
#include "storage/progress.h"
#include "tests/unit/gcd/engines_support.h"

#include <algorithm>
#include <string>
using namespace tolvex;
using namespace tolvex::test;
namespace {
/// Puts the cutoffs back that a test has changed.
struct Cutoffs {
    int32_t size = fast_gcd_size, cut = poly_cutoff;
    ~Cutoffs() {
        fast_gcd_size = size;
        poly_cutoff = cut;
        use_integers();
    }
};

poly primitive_normal(poly g) {  // over Z: without integer content, positive
    poly p = primitive_copy(g);
    gcd_normal_form(&p);
    return p;
}

/// One variable: a polynomial of exactly this degree, dense or with few terms.
poly one_variable(Rng& rng, int32_t degree, bool sparse) {
    if (!sparse) return dense_poly(rng, degree, Coefs::digit);
    poly p = random_nonzero_poly(rng, 1, 5, degree > 0 ? degree - 1 : 0, Coefs::digit);
    best_poly_add(p, term_poly(1, &degree, 1), &p);
    return p;
}

void expect_one_variable_gcd(Rng& rng, int32_t da, int32_t db, int32_t dc, bool sparse) {
    use_variables(1);
    int64_t before = live_records();
    {
        PolyGuard a(one_variable(rng, da, sparse)), b(one_variable(rng, db, sparse)),
            c(one_variable(rng, dc, sparse));
        PolyGuard u, v, g, w, q, h;
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        if (is_number(u) || is_number(v)) return;
        PolyGuard u2(copy_of(u)), v2(copy_of(v));
        basic_poly_gcd(u, v, &g, 1, polynames);
        EXPECT_TRUE(poly_equal(u, u2) && poly_equal(v, v2));
        EXPECT_TRUE(poly_check(g, 1));
        w.p = gcd_by_remainders(u, v, polynames);
        ASSERT_TRUE(poly_equal(g, w))
            << text_of(g) << " against " << text_of(w) << " of " << text_of(u) << " and " << text_of(v);
        boolean failed = 0;
        gen_poly_divide(g, c, &q, polynames, &failed);
        EXPECT_FALSE(failed);
        basic_poly_gcd(v, u, &h, 0, polynames);
        if (!is_number(h)) monic_poly(&h);
        EXPECT_TRUE(poly_equal(g, h));
    }
    EXPECT_EQ(live_records(), before);
}
}  // namespace

PROPERTY(one_variable_on_arrays, 4000) {
    use_ring(field_rings[round % field_ring_count]);
    SCOPED_TRACE(field_rings[round % field_ring_count].name);
    expect_one_variable_gcd(rng, random_int(rng, 0, 12), random_int(rng, 0, 12), random_int(rng, 0, 12),
                            rng() & 1);
    use_integers();
}

// The array route closed: lists, half-gcds from a degree sum of 20 on.
PROPERTY(one_variable_on_lists, 6000) {
    Cutoffs saved;
    use_ring(field_rings[round % field_ring_count]);
    SCOPED_TRACE(field_rings[round % field_ring_count].name);
    fast_gcd_size = 0;
    poly_cutoff = random_int(rng, 0, 2) == 0 ? 80 : random_int(rng, 1, 16);
    int32_t most = round % 16 == 0 ? 90 : 14;
    expect_one_variable_gcd(rng, random_int(rng, 0, most), random_int(rng, 0, most), random_int(rng, 0, most),
                            rng() & 1);
}

// 19 is the last degree sum of the classical form, 20 the first of the half-gcd.
TEST(OneVariable, degree_sums_19_and_20_on_lists) {
    set_up_once();
    Cutoffs saved;
    Rng rng(run_seed());
    for (const Ring& ring : field_rings)
        for (int32_t sum = 18; sum <= 21; sum++) {
            SCOPED_TRACE(ring.name);
            use_ring(ring);
            fast_gcd_size = 0;
            expect_one_variable_gcd(rng, sum / 2 - 3, (sum + 1) / 2 - 3, 3, false);
            expect_one_variable_gcd(rng, sum - 4, 2, 1, false);
        }
}

// The half-gcd alone: the new pair is made of the old one by its forms, has the degrees it tells, and the
// same gcd.
PROPERTY(half_gcd_forms_give_the_pair, 3000) {
    Cutoffs saved;
    set_up_once();
    use_ring(field_rings[round % field_ring_count]);
    SCOPED_TRACE(field_rings[round % field_ring_count].name);
    use_variables(1);
    poly_cutoff = random_int(rng, 1, 30);
    int64_t before = live_records();
    {
        int32_t n = random_int(rng, 1, 60);
        PolyGuard a(one_variable(rng, n, rng() & 1)),
            b(one_variable(rng, random_int(rng, 0, n - 1), rng() & 1));
        PolyGuard u0(copy_of(a)), u1(copy_of(b));
        HalfGcdMatrix m = {};
        auto* engine = round % 3 == 0 ? emgcd_basic : round % 3 == 1 ? emgcd_fastest : emgcd_full;
        engine(&u0, &u1, &m, 1);
        int32_t half = (n + 1) / 2;
        EXPECT_GE(u0.p->exp, half);
        EXPECT_TRUE(poly_iszero(u1) || u1.p->exp < half);
        for (int i = 0; i < 2; i++) {
            PolyGuard s, t;
            poly_mult(m.w[i], a, &s, polynames);
            poly_mult(m.v[i], b, &t, polynames);
            poly_add(s, t, &s);
            EXPECT_TRUE(poly_equal(s, i == 0 ? u0 : u1)) << text_of(a) << " and " << text_of(b);
        }
        PolyGuard d0(copy_of(a)), d1(copy_of(b));
        engine(&d0, &d1, nullptr, 0);
        EXPECT_TRUE(poly_equal(d0, u0) && poly_equal(d1, u1));
        free_half_gcd_matrix(&m);
    }
    EXPECT_EQ(live_records(), before);
}

TEST(OneVariable, monomials_and_degrees_beyond_the_arrays) {
    set_up_once();
    use_variables(1);
    for (int32_t m : {65521, 65537}) {
        use_ring(m);
        PolyGuard u(poly_of("3*x^7")), v(poly_of("x^30000 + x^5")), g, h;
        basic_poly_gcd(u, v, &g, 1, polynames);
        EXPECT_EQ(text_of(g), "1*x^5");
        basic_poly_gcd(v, u, &h, 1, polynames);
        EXPECT_TRUE(poly_equal(g, h));
        PolyGuard w(poly_of("x^30000 - 1")), z(poly_of("x^25000 - 1")), d, plain(poly_of("x^5000 - 1"));
        basic_poly_gcd(w, z, &d, 1, polynames);
        EXPECT_TRUE(poly_equal(d, plain));
        PolyGuard y(poly_of("x^24999 - 1")), e;
        basic_poly_gcd(z, y, &e, 1, polynames);
        EXPECT_TRUE(poly_equal(e, PolyGuard(poly_of("x - 1"))));
        EXPECT_TRUE(RAISES(basic_poly_gcd(poly_1, v, &g, 1, polynames)));
        EXPECT_STREQ(caught.text, " number in basic_poly_gcd ");
    }
    use_integers();
}

// With the table of known gcds on, the second call finds what the first one has found; a multiple of an
// operand is the same operand.
TEST(OneVariable, known_gcds_are_found_again) {
    set_up_once();
    Cutoffs saved;
    Rng rng(run_seed());
    int64_t room = initial_memory;
    initial_memory = 1 << 24;
    use_variables(1);
    for (const Ring& ring : {field_rings[4], field_rings[6], field_rings[9]}) {
        SCOPED_TRACE(ring.name);
        use_ring(ring);
        init_gcd_stash();
        for (int32_t size : {25000, 0}) {  // arrays, lists
            fast_gcd_size = size;
            PolyGuard c(one_variable(rng, 30, false)), a(one_variable(rng, 40, false)),
                b(one_variable(rng, 30, false)), u, v, g, h, k;
            poly_mult(a, c, &u, polynames);
            poly_mult(b, c, &v, polynames);
            gcd_unproved = 0;
            basic_poly_gcd(u, v, &g, 1, polynames);
            EXPECT_FALSE(gcd_unproved);
            int64_t mass = gcdmass;
            EXPECT_GT(mass, 0);
            EXPECT_EQ(polygcd_stack_depth, 0);
            PolyGuard before(copy_of(g));
            mod_num_poly_mult(&u.p, 5);
            basic_poly_gcd(u, v, &h, 1, polynames);
            EXPECT_TRUE(gcd_unproved);
            EXPECT_EQ(gcdmass, mass);
            EXPECT_TRUE(poly_equal(g, h) && poly_equal(g, before));
            k.p = gcd_by_remainders(u, v, polynames);
            EXPECT_TRUE(poly_equal(g, k));
        }
        pop_gcd_stash();
        free_gcd_stash();
    }
    gcd_unproved = 0;
    lookupgcd = 0;
    initial_memory = room;
}

// ---- over the integers ----
namespace {
void expect_integer_gcd(poly u, poly v, bool must_succeed) {
    PolyGuard u2(copy_of(u)), v2(copy_of(v)), g, w;
    boolean success = 0;
    int16_t stash = lookupgcd;
    basic_mod_method(u, v, &g, &success, polynames);
    EXPECT_EQ(lookupgcd, stash);
    EXPECT_TRUE(poly_equal(u, u2) && poly_equal(v, v2));
    EXPECT_FALSE(modularmode || lintmode);
    if (must_succeed) {
        ASSERT_TRUE(success) << text_of(u) << " and " << text_of(v);
    }
    if (!success) return;
    EXPECT_TRUE(poly_check(g, number_polys));
    w.p = gcd_by_remainders(u, v, polynames);
    PolyGuard a(primitive_normal(g)), b(primitive_normal(w));
    ASSERT_TRUE(poly_equal(a, b)) << text_of(g) << " against " << text_of(w) << " of " << text_of(u)
                                  << " and " << text_of(v);
}
}  // namespace

PROPERTY(many_primes_over_the_integers, 3000) {
    use_integers();
    const Coefs styles[] = {Coefs::small, Coefs::digit, Coefs::two_digits, Coefs::huge, Coefs::ones};
    Shape s{};
    s.levels = round % 5 + 1;
    s.terms = random_int(rng, 1, s.levels > 2 ? 3 : 6);
    s.max_exp = random_int(rng, 1, s.levels == 1 ? 9 : 2);
    s.coefs = styles[random_int(rng, 0, 4)];
    use_variables(s.levels);
    int64_t before = live_records();
    {
        PolyGuard a(random_nonzero_poly(rng, s)), b(random_nonzero_poly(rng, s)),
            c(random_nonzero_poly(rng, s)), u, v;
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        if (!is_number(u) && !is_number(v)) expect_integer_gcd(u, v, true);
    }
    EXPECT_EQ(live_records(), before);
}

// Every third prime of the table divides the difference of the cofactors: images modulo it have a factor too
// many, be they the first or later ones.
PROPERTY(unlucky_primes_are_noticed, 400) {
    use_integers();
    use_variables(1);
    verbose = windy = 1;
    ::testing::internal::CaptureStdout();
    {
        number product = {}, one = {}, scale = {};
        setvalue(1, &product);
        for (int32_t i = 11 + round % 3; i < 160; i += 3) {
            spec_num_assign(&prime[i - 1], &one);
            fast_mult(&product, &one, &product);
        }
        random_number(rng, Coefs::huge, &scale);
        PolyGuard a(one_variable(rng, 2, false)), b(copy_of(a)), c(one_variable(rng, 3, false)), unlucky, u,
            v, t;
        scalar_to_poly(&product, &unlucky);
        scalar_to_poly(&scale, &t);
        poly_mult(c, t, &c, polynames);
        best_poly_add(c, one_variable(rng, 3, false), &c.p);
        poly_add(b, unlucky, &b);
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        expect_integer_gcd(u, v, true);
        special_free(&product);
        special_free(&one);
        special_free(&scale);
    }
    std::string said = ::testing::internal::GetCapturedStdout();
    verbose = windy = 0;
    static int firsts = 0, laters = 0;
    if (said.find(" *** ALERT. spurious first factor in gcd. ") != std::string::npos) firsts++;
    if (said.find(" *** Alert. spurious factor in gcd. ") != std::string::npos) laters++;
    if (round == 399) {
        EXPECT_GT(firsts, 20);
        EXPECT_GT(laters, 20);
    }
}

// The same problem has the same result whatever primes it meets.
TEST(ManyPrimes, results_do_not_depend_on_the_primes) {
    set_up_once();
    use_integers();
    use_variables(3);
    Rng rng(run_seed());
    PolyGuard a(random_nonzero_poly(rng, 3, 6, 3)), b(random_nonzero_poly(rng, 3, 6, 3)),
        c(random_nonzero_poly(rng, 3, 6, 3, Coefs::huge)), u, v, first;
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    for (int i = 0; i < 50; i++) {
        PolyGuard g;
        boolean success = 0;
        basic_mod_method(u, v, &g, &success, polynames);
        ASSERT_TRUE(success);
        gcd_normal_form(&g.p);
        if (i == 0) first.p = copy_of(g);
        ASSERT_TRUE(poly_equal(g, first));
    }
}

// Primes that divide a leading number: of both operands, or of one of them.
TEST(ManyPrimes, primes_that_divide_leading_numbers) {
    set_up_once();
    use_integers();
    use_variables(1);
    Rng rng(run_seed());
    for (int32_t both = 0; both < 2; both++)
        for (int32_t from = 11; from < 90; from += 13) {
            number product = {}, one = {};
            setvalue(1, &product);
            for (int32_t i = from; i < 200; i += 2) {
                spec_num_assign(&prime[i - 1], &one);
                fast_mult(&product, &one, &product);
            }
            PolyGuard lead, x(poly_of("x^4")), a(one_variable(rng, 2, false)), b(one_variable(rng, 2, false)),
                c(one_variable(rng, 3, false)), u, v;
            scalar_to_poly(&product, &lead);
            poly_mult(lead, x, &lead, polynames);
            poly_add(both ? c : a, lead, both ? &c : &a);
            poly_mult(a, c, &u, polynames);
            poly_mult(b, c, &v, polynames);
            expect_integer_gcd(u, v, true);
            special_free(&product);
            special_free(&one);
        }
}

TEST(ManyPrimes, select_prime_starts_at_random_and_passes_divisors) {
    set_up_once();
    use_integers();
    use_variables(1);
    PolyGuard u(poly_of("6*x + 1")), v(poly_of("x + 1"));
    int32_t least = k_primes, most = 0;
    for (int i = 0; i < 2000; i++) {
        int32_t k = select_prime(u, v, 530, 64, k_primes, prime);
        least = std::min(least, k);
        most = std::max(most, k);
    }
    EXPECT_EQ(least, 11);
    EXPECT_EQ(most, 74);
    for (int i = 0; i < 100; i++) {
        int32_t k = select_prime(u, v, 5, 3, 8, prime);  // a short list: from 1 to 3
        EXPECT_TRUE(k >= 1 && k <= 3) << k;
        EXPECT_EQ(select_prime(u, v, 50, 3, 8, prime), 1);  // clipped to the list
    }
    PolyGuard w, x(poly_of("x"));  // all of a short list divide the leading number: one beyond it
    number product = {}, one = {};
    setvalue(1, &product);
    for (int32_t i = 0; i < 8; i++) {
        spec_num_assign(&prime[i], &one);
        fast_mult(&product, &one, &product);
    }
    scalar_to_poly(&product, &w);
    poly_mult(w, x, &w, polynames);
    EXPECT_EQ(select_prime(w, v, 5, 3, 8, prime), 9);
    EXPECT_EQ(select_prime(v, w, 5, 3, 8, prime), 9);
    special_free(&product);
    special_free(&one);
}

// A leading number beyond the first prime: no trial division of the first image, the combination has to
// settle.
TEST(ManyPrimes, large_common_leading_number) {
    set_up_once();
    use_integers();
    use_variables(2);
    PolyGuard a(poly_of("x + 1")), b(poly_of("x + y")), c(poly_of("123456789012*x^2*y + 98765*x + 7")), u, v;
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    expect_integer_gcd(u, v, true);
    PolyGuard k(poly_of("999999999999")), d(poly_of("x^2 + 1")), e(poly_of("x^2 + 3"));
    poly_mult(d, k, &d, polynames);
    poly_mult(e, k, &e, polynames);
    expect_integer_gcd(d, e, true);
}
