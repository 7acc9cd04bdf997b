// Fixed cases of the divisions.
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/number_modes.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/div_pseudo.h"
#include "poly/div_trial.h"
#include "poly/div_user.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

#include <string>
using namespace tolvex;
using namespace tolvex::test;
namespace {
struct Division : PolyTest {
    void TearDown() override {
        pos_mod = 1;
        PolyTest::TearDown();
    }
};

// "fails", or the quotient as text.
std::string quotient(const char* n, const char* m) {
    poly a = poly_of(n), b = poly_of(m), a2 = copy_of(a), b2 = copy_of(b), q = nullptr;
    boolean failed = 0;
    gen_poly_divide(a, b, &q, polynames, &failed);
    EXPECT_TRUE(poly_equal(a, a2) && poly_equal(b, b2));
    EXPECT_EQ(failed != 0, q == nullptr);
    std::string text = failed ? "fails" : text_of(q);
    free_poly(&a), free_poly(&b), free_poly(&a2), free_poly(&b2), free_poly(&q);
    return text;
}

std::string plain(const char* text) {
    poly p = poly_of(text);
    std::string s = text_of(p);
    free_poly(&p);
    return s;
}

int32_t number_operation(int32_t n, int32_t m, char which) {
    number a = {}, b = {}, c = {};
    setvalue(n, &a), setvalue(m, &b), setvalue(0, &c);
    mod_or_div(&a, &b, &c, which);
    int32_t v = lintmode ? c.lint : c.head->value;
    free_num(&a), free_num(&b), free_num(&c);
    return v;
}
}  // namespace

TEST_F(Division, zero_dividend_gives_zero) {
    EXPECT_EQ(quotient("0", "x + 1"), plain("0"));
    EXPECT_EQ(quotient("0", "7"), plain("0"));
}

TEST_F(Division, quotients_over_the_integers) {
    EXPECT_EQ(quotient("x^2 - y^2", "x - y"), plain("x + y"));
    EXPECT_EQ(quotient("6*x*y + 4*y", "2*y"), plain("3*x + 2"));
    EXPECT_EQ(quotient("6*x + 4", "2"), plain("3*x + 2"));
    EXPECT_EQ(quotient("6*x + 3", "2"), "fails");
    EXPECT_EQ(quotient("x^2 + 1", "x + 1"), "fails");
    EXPECT_EQ(quotient("x^2 + x", "2*x + 2"), "fails");
    EXPECT_EQ(quotient("x^2", "x^3"), "fails");
    EXPECT_EQ(quotient("x + y", "x"), "fails");
    EXPECT_EQ(quotient("7", "x"), "fails");
    EXPECT_EQ(quotient("x", "0"), "fails");
    EXPECT_EQ(quotient("x*y^2 - x", "y - 1"), plain("x*y + x"));
    EXPECT_EQ(quotient("x*y^2 - x", "z - 1"), "fails");
    EXPECT_EQ(quotient("x^5*y^2 - x^3*y^4", "x^3*y^2"), plain("x^2 - y^2"));
    EXPECT_EQ(quotient("288230376151711744*x^2 - 1", "536870912*x - 1"), plain("536870912*x + 1"));
}

TEST_F(Division, quotients_modulo) {
    use_ring(7);
    EXPECT_EQ(quotient("x^2 + 6", "3*x + 3"), plain("5*x + 2"));
    EXPECT_EQ(quotient("3*x + 1", "5"), plain("2*x + 3"));
    use_ring(6);
    EXPECT_EQ(quotient("2*x", "2"), "fails");
    EXPECT_EQ(quotient("5*x + 1", "5"), plain("x + 5"));
    EXPECT_EQ(quotient("x^2 + 5", "x + 1"), plain("x + 5"));
    use_ring(256, true);
    EXPECT_EQ(quotient("x^2 + y^2", "x + y"), plain("x + y"));
}

TEST_F(Division, large_dense_quotients_use_every_engine) {
    for (int32_t m : {0, 2, 32003, 2147483629}) {
        use_ring(m);
        for (const char* base : {"x + y + z + 1", "3*x^5*y + y^3 - 2*z + 900000000*t"}) {
            poly f = poly_of(base), n = nullptr, g = nullptr, one = poly_of("1"), q = nullptr;
            compute_power(&f, 7, polynames);
            poly_add(f, one, &g);
            poly_mult(f, g, &n, polynames);
            boolean failed = 1;
            gen_poly_divide(n, f, &q, polynames, &failed);
            EXPECT_TRUE(!failed && poly_equal(q, g)) << m << base;
            poly_add(n, one, &n);
            gen_poly_divide(n, f, &q, polynames, &failed);
            EXPECT_TRUE(failed);
            EXPECT_EQ(q, nullptr);
            free_poly(&f), free_poly(&n), free_poly(&g), free_poly(&one), free_poly(&q);
        }
    }
}

TEST_F(Division, trial_says_no_to_a_lower_degree_at_once) {
    poly n = poly_of("x + 1"), m = poly_of("x^2 + 1"), q = nullptr;
    EXPECT_FALSE(trial_poly_divide_noq(n, m, polynames, 0, 0));
    EXPECT_FALSE(trial_poly_divide_noq(n, m, polynames, 1, 1));
    EXPECT_FALSE(trial_poly_divide(copy_of(n), m, &q, polynames, 1, 0, 1));
    EXPECT_EQ(q, nullptr);
    free_poly(&n), free_poly(&m);
}

TEST_F(Division, trial_with_consumed_dividend) {
    poly n = poly_of("x^3*y - x*y^3"), m = poly_of("x*y"), q = nullptr;
    EXPECT_TRUE(trial_poly_divide(n, m, &q, polynames, 1, 1, 1));
    EXPECT_EQ(text_of(q), plain("x^2 - y^2"));
    free_poly(&m), free_poly(&q);
}

TEST_F(Division, number_by_number_as_the_user_means_it) {
    for (int words = 0; words < 2; words++) {
        lintmode = words;
        EXPECT_EQ(number_operation(-7, -3, '|'), 2);
        EXPECT_EQ(number_operation(7, -3, '|'), 1);
        EXPECT_EQ(number_operation(-7, -3, '\\'), 2);
        EXPECT_EQ(number_operation(7, -3, '\\'), -2);
        EXPECT_EQ(number_operation(-7, 3, '\\'), -2);
        EXPECT_EQ(number_operation(-6, 3, '|'), 0);
        pos_mod = 0;
        EXPECT_EQ(number_operation(-7, 3, '|'), -1);
        EXPECT_EQ(number_operation(7, -3, '|'), 1);
        pos_mod = 1;
    }
    lintmode = 1;
    EXPECT_EQ(number_operation(INT32_MIN, -1, '\\'), INT32_MIN);
    EXPECT_EQ(number_operation(INT32_MIN, -1, '|'), 0);
    lintmode = 0;
    use_ring(7);
    EXPECT_EQ(number_operation(5, 3, '\\'), 1);
    EXPECT_EQ(number_operation(5, 3, '|'), 2);
}

TEST_F(Division, pair_of_numbers_fulfils_the_identity) {
    for (int32_t n : {-7, 7, 0, -6})
        for (int32_t m : {-3, 3, 1, -1}) {
            number a = {}, b = {}, q = {}, r = {};
            setvalue(n, &a), setvalue(m, &b);
            mod_and_div(&a, &b, &q, &r);
            EXPECT_EQ(q.head->value * m + r.head->value, n);
            EXPECT_GE(r.head->value, 0);
            free_num(&a), free_num(&b), free_num(&q), free_num(&r);
        }
}

TEST_F(Division, remainder_over_the_integers_makes_one_pass) {
    poly n = poly_of("7*x^3 + x + 1"), m = poly_of("2*x + 1"), q = nullptr, r = nullptr;
    poly_mod_and_div(n, m, &r, &q, polynames);
    EXPECT_EQ(text_of(q), plain("3*x^2 - x + 1"));
    EXPECT_EQ(text_of(r), plain("x^3 - x^2"));
    poly two = poly_of("2");
    poly_mod_or_div(n, two, &r, '|', polynames);
    EXPECT_EQ(text_of(r), plain("x^3 + x + 1"));
    poly_mod_or_div(n, two, &q, '\\', polynames);
    EXPECT_EQ(text_of(q), plain("3*x^3"));
    free_poly(&n), free_poly(&m), free_poly(&q), free_poly(&r), free_poly(&two);
}

TEST_F(Division, monic_pseudo_division_multiplies_nothing) {
    poly n = poly_of("x^4 + y*x^2 + 5"), m = poly_of("x^2 + y"), q = nullptr, r = nullptr, c = nullptr;
    num_pseudo_div(n, m, &q, &r, &c, polynames);
    EXPECT_TRUE(poly_eq_1(c));
    EXPECT_EQ(text_of(q), plain("x^2"));
    EXPECT_EQ(text_of(r), plain("5"));
    num_pseudo_div(m, n, &q, &r, &c, polynames);
    EXPECT_TRUE(poly_eq_1(c) && poly_iszero(q) && poly_equal(r, m));
    free_poly(&n), free_poly(&m), free_poly(&q), free_poly(&r), free_poly(&c);
}

TEST_F(Division, numbers_that_do_not_divide_are_reported) {
    poly n = poly_of("6*x*y + 9"), m = poly_of("3"), q = nullptr, bad = poly_of("4"), zero = poly_of("0");
    boolean success = 0;
    trial_poly_quot(n, m, &q, &success);
    EXPECT_TRUE(success);
    EXPECT_EQ(text_of(q), plain("2*x*y + 3"));
    poly_quot(n, m, &q);
    EXPECT_EQ(text_of(q), plain("2*x*y + 3"));
    trial_poly_quot(n, bad, &q, &success);
    EXPECT_FALSE(success);
    EXPECT_EQ(q, nullptr);
    trial_poly_quot(n, zero, &q, &success);
    EXPECT_FALSE(success);
    use_ring(6);
    EXPECT_TRUE(RAISES(num_poly_quot(&m, m->ncoef, 3)));
    EXPECT_EQ(caught.code, 85);
    use_integers();
    free_poly(&n), free_poly(&m), free_poly(&bad), free_poly(&zero);
}
