// Fixed cases of division over a field.
#include "numbers/residue.h"
#include "poly/div_field.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
namespace tolvex::test {
namespace {
void in_ring(int32_t modulus) {
    set_up_once();
    use_ring(modulus);
    use_variables(2);
}
struct Case {
    poly n, m, q = nullptr, r = nullptr;
    Case(const char* a, const char* b) : n(poly_of(a)), m(poly_of(b)) {}
    ~Case() {
        for (poly* p : {&n, &m, &q, &r}) free_poly(p);
        use_integers();
    }
    void expect(const char* quotient, const char* rest) const {
        poly a = poly_of(quotient), b = poly_of(rest);
        EXPECT_TRUE(poly_equal(q, a)) << text_of(q);
        EXPECT_TRUE(poly_equal(r, b)) << text_of(r);
        free_poly(&a);
        free_poly(&b);
    }
};
}  // namespace

TEST(DivField, LowerDegreeIsAllRemainder) {
    in_ring(7);
    Case c("x^2 + 3", "x^3 + x + 1");
    simplest_poly_divide(c.n, c.m, &c.q, &c.r);
    c.expect("0", "x^2 + 3");
    poly m = poly_of("x^3 + x + 1");
    EXPECT_TRUE(poly_equal(c.m, m));
    free_poly(&m);
}

TEST(DivField, ZeroAndNumbers) {
    in_ring(7);
    Case zero("0", "x + 1"), number("5", "x + 1"), constant("3*x + 1", "3");
    basic_poly_divide(zero.n, zero.m, &zero.q, &zero.r, 1);
    zero.expect("0", "0");
    basic_poly_divide(number.n, number.m, &number.q, &number.r, 1);
    number.expect("0", "5");
    basic_poly_divide(constant.n, constant.m, &constant.q, &constant.r, 1);
    constant.expect("x + 5", "0");
}

TEST(DivField, OneTermDivisor) {
    in_ring(7);
    Case c("x^5 + 2*x^3 + x*y + 4", "3*x^2");
    basic_poly_divide(c.n, c.m, &c.q, &c.r, 1);
    c.expect("5*x^3 + 3*x", "x*y + 4");
}

TEST(DivField, SeveralLevelsWithANumberInFront) {
    in_ring(7);
    Case c("x^2*y^2 + x + y", "2*x - y");
    basic_poly_divide(c.n, c.m, &c.q, &c.r, 1);
    c.expect("4*x*y^2 + 2*y^3 + 4", "2*y^4 + 5*y");
}

TEST(DivField, IntegersWithUnitInFront) {
    set_up_once();
    use_integers();
    use_variables(2);
    Case c("x^3 + 5", "-x^2 + y");
    basic_poly_divide(c.n, c.m, &c.q, &c.r, 1);
    c.expect("-x", "x*y + 5");
}

TEST(DivField, IntegersWithAnotherNumberInFrontLeaveTheRest) {
    set_up_once();
    use_integers();
    use_variables(2);
    Case c("5*x^2 + 4*x + 7", "2*x + 1");
    basic_poly_divide(c.n, c.m, &c.q, &c.r, 1);
    c.expect("2*x + 1", "x^2 + 6");
}

TEST(DivField, NonUnitInFrontIsError85) {
    in_ring(6);
    Case c("x^3 + 5", "2*x + 1");
    EXPECT_TRUE(RAISES(basic_poly_divide(c.n, c.m, &c.q, &c.r, 1)));
    EXPECT_EQ(caught.code, 85);
    EXPECT_TRUE(RAISES(poly_div_no_q(c.n, c.m, &c.r)));
    EXPECT_EQ(caught.code, 85);
}

TEST(DivField, UnitInFrontOfACompositeModulus) {
    in_ring(6);
    Case c("3*x^3 + 5", "5*x + 2");
    basic_poly_divide(c.n, c.m, &c.q, &c.r, 1);
    c.expect("3*x^2", "5");
}

TEST(DivField, HugeGapsStaySparse) {
    in_ring(32003);
    Case c("x^2000000000 + x^1999999999 + 5", "x^1999999990 + 1");
    simplest_poly_divide(c.n, c.m, &c.q, &c.r);
    c.expect("x^10 + x^9", "-x^10 - x^9 + 5");
}

// Degrees 61 and 60 by 3, 9 a = 4 b and 3 a = 10 b: the borders of the methods.
TEST(DivField, BordersOfTheMethods) {
    set_up_once();
    use_ring(32003);
    use_variables(2);
    Rng rng(run_seed());
    const int32_t degrees[][2] = {{60, 3},    {61, 3},    {225, 100}, {226, 100},
                                  {333, 100}, {334, 100}, {300, 90}};
    for (auto [a, b] : degrees) {
        poly n = dense_poly(rng, a), m = dense_poly(rng, b), q = nullptr, r = nullptr, q2 = nullptr,
             r2 = nullptr;
        basic_poly_divide(n, m, &q, &r, 1);
        poly monic = copy_of(m);
        mod_num_poly_mult(&monic, mod_inverse_or_0(m->pcoef->ncoef->lint));
        fast_mod_and_div(n, monic, &r2, &q2, polynames, 1);
        mod_num_poly_mult(&q2, mod_inverse_or_0(m->pcoef->ncoef->lint));
        EXPECT_TRUE(poly_equal(q, q2) && poly_equal(r, r2)) << a << " " << b;
        EXPECT_EQ(q->exp, a - b);
        for (poly* p : {&n, &m, &monic, &q, &r, &q2, &r2}) free_poly(p);
    }
    use_integers();
}

TEST(DivField, NegativeExponentsAreCleared) {
    in_ring(7);
    laurent = 1;
    Case c("x^2 + x^-1", "x + 1");
    fast_mod_and_div(c.n, c.m, &c.r, &c.q, polynames, 0);
    c.expect("x - 1 + x^-1", "0");
    laurent = 0;
}
}  // namespace tolvex::test
