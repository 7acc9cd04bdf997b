// An error that comes back from a pushed command level: it is raised once, and what the routine leaves is 0
// in normal form. Divisions went on with the inverse 0 and left terms with coefficient 0.
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "poly/dense_divide.h"
#include "poly/div_field.h"
#include "poly/div_general.h"
#include "poly/div_user.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
#include "tests/support/returned_errors.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
class ReturnedErrors : public ::testing::Test {
  protected:
    void SetUp() override {
        set_up_once();
        use_variables(3);
        use_ring(6);
        before = live_records();
    }
    void TearDown() override {
        EXPECT_EQ(live_records(), before);
        use_integers();
    }
    int64_t before = 0;
};
}  // namespace

TEST_F(ReturnedErrors, DivisionByANumberThatIsNoUnit) {
    poly n = poly_of("x^2*y + 5*x + 1"), two = poly_of("2"), q = nullptr;
    EXPECT_EQ(ERRORS_OF(poly_quot(n, two, &q)), 1);
    EXPECT_EQ(caught.code, 85);
    EXPECT_TRUE(poly_iszero(q)) << text_of(q);
    EXPECT_EQ(ERRORS_OF(num_poly_quot(&n, two->ncoef, 2)), 1);
    EXPECT_TRUE(poly_iszero(n)) << text_of(n);
    for (poly* p : {&n, &two, &q}) free_poly(p);
}

TEST_F(ReturnedErrors, QuotientAndRemainder) {
    const char* divisors[] = {"2", "2*x + 1", "3*x*y + z", "2*x*y*z + x + 1"};
    for (const char* text : divisors) {
        poly n = poly_of("x^3*y^2*z + x^2*y*z + 5*x*y*z^2 + 1"), m = poly_of(text), q = nullptr, r = nullptr;
        EXPECT_EQ(ERRORS_OF(poly_mod_and_div(n, m, &r, &q, polynames)), 1) << text;
        EXPECT_EQ(caught.code, 85);
        EXPECT_TRUE(poly_iszero(q) && poly_iszero(r)) << text << ": " << text_of(q) << ", " << text_of(r);
        for (char which : {'\\', '|'}) {
            EXPECT_EQ(ERRORS_OF(poly_mod_or_div(n, m, &q, which, polynames)), 1) << text;
            EXPECT_TRUE(poly_iszero(q)) << text << ": " << text_of(q);
        }
        for (poly* p : {&n, &m, &q, &r}) free_poly(p);
    }
}

TEST_F(ReturnedErrors, DivisionOverAField) {
    for (const char* text : {"4", "2*x + 1", "2*x^2 + y"}) {
        poly n = poly_of("x^3 + x*y + 5"), m = poly_of(text), q = nullptr, r = nullptr;
        EXPECT_EQ(ERRORS_OF(basic_poly_divide(n, m, &q, &r, 1)), 1) << text;
        EXPECT_EQ(caught.code, 85);
        EXPECT_TRUE(poly_iszero(q) && poly_iszero(r)) << text << ": " << text_of(q) << ", " << text_of(r);
        for (poly* p : {&n, &m, &q, &r}) free_poly(p);
    }
}

// Terms whose exponent did not fit got the exponent 0, at any place of the chain.
TEST_F(ReturnedErrors, ExponentsBeyondAWord) {
    for (int32_t m : {0, 7, 6}) {
        use_ring(m);
        laurent = 1;
        for (const char* text : {"x^2000000000 + x + 1", "x^2000000000*y + x*z + x", "x^2000000000*y",
                                 "x^2 + x + 1 + x^-2000000000", "y*x^-2000000000 + z*x^-2000000000"}) {
            poly n = poly_of(text), p = nullptr, q = copy_of(n);
            EXPECT_EQ(ERRORS_OF(poly_mult(n, n, &p, polynames)), 1) << text;
            EXPECT_EQ(caught.code, 32);
            EXPECT_TRUE(poly_iszero(p)) << text << ": " << text_of(p);
            EXPECT_EQ(ERRORS_OF(poly_mult(n, q, &p, polynames)), 1) << text;
            EXPECT_TRUE(poly_iszero(p)) << text << ": " << text_of(p);
            for (int32_t k : {2, 7, 100}) {
                poly power = copy_of(n);
                EXPECT_EQ(ERRORS_OF(compute_power(&power, k, polynames)), 1) << text << " to the " << k;
                EXPECT_TRUE(poly_iszero(power)) << text << " to the " << k << ": " << text_of(power);
                free_poly(&power);
            }
            for (poly* t : {&n, &p, &q}) free_poly(t);
        }
        for (const char* text :
             {"x*y^2000000000 + x^2*y + 1", "x*y^2000000000 + x^2*z^3*y + y^2000000000*t"}) {
            poly n = poly_of(text), p = nullptr;  // one level down: what is left is in normal form
            EXPECT_GE(ERRORS_OF(poly_mult(n, n, &p, polynames)), 1) << text;
            EXPECT_EQ(caught.code, 32);
            EXPECT_TRUE(poly_check(p, 6)) << text << ": " << text_of(p);
            free_poly(&n), free_poly(&p);
        }
        laurent = 0;
    }
}

TEST_F(ReturnedErrors, DivisionOfArrays) {
    int32_t x[] = {1, 2, 3, 4}, z[] = {1, 2, 3, 4}, q[] = {9, 9, 9}, y[] = {1, 3};
    int32_t x_degree = 3, z_degree = 3, q_degree = 7;
    boolean zero = 0;
    EXPECT_EQ(ERRORS_OF(onevar_array_div_mod(x, y, q, &x_degree, 1, &q_degree, &zero)), 1);
    EXPECT_EQ(caught.code, 85);
    EXPECT_TRUE(zero && x_degree == -1 && q_degree == -1);
    EXPECT_TRUE(x[0] == 0 && x[3] == 0 && q[0] == 0 && q[2] == 0);
    EXPECT_EQ(ERRORS_OF(onevar_array_mod(z, y, &z_degree, 1, &zero)), 1);
    EXPECT_TRUE(zero && z_degree == -1 && z[0] == 0);
}

TEST_F(ReturnedErrors, NumbersByZero) {
    use_integers();
    for (int words = 0; words < 2; words++) {
        lintmode = words;
        number n = {}, zero = {}, q = {}, r = {};
        setvalue(17, &n), setvalue(0, &zero);
        for (char which : {'\\', '|'}) {
            EXPECT_EQ(ERRORS_OF(mod_or_div(&n, &zero, &q, which)), 1);
            EXPECT_EQ(caught.code, 22);
            EXPECT_TRUE(tolvex::iszero(&q));
        }
        EXPECT_EQ(ERRORS_OF(mod_and_div(&n, &zero, &q, &r)), 1);
        EXPECT_TRUE(tolvex::iszero(&q) && tolvex::iszero(&r));
        EXPECT_TRUE(words || (num_check(&q) && num_check(&r)));
        for (number* x : {&n, &zero, &q, &r}) special_free(x);
    }
    lintmode = 0;
}
