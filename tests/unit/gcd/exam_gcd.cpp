// Fixed cases of the gcd.
#include "gcd/content.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "numbers/num_compare.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

#include <string>
using namespace tolvex;
using namespace tolvex::test;
namespace {
using Gcd = PolyTest;

std::string gcd_of(const char* u, const char* v) {
    poly a = poly_of(u), b = poly_of(v), a2 = copy_of(a), b2 = copy_of(b), g = nullptr;
    Lpolygcd(a, b, &g, 1, polynames);
    EXPECT_TRUE(poly_equal(a, a2) && poly_equal(b, b2));
    std::string text = text_of(g);
    free_poly(&a), free_poly(&b), free_poly(&a2), free_poly(&b2), free_poly(&g);
    return text;
}

std::string plain(const char* text) {
    poly p = poly_of(text);
    std::string s = text_of(p);
    free_poly(&p);
    return s;
}

void expect_gcd(const char* u, const char* v, const char* g) {
    EXPECT_EQ(gcd_of(u, v), plain(g)) << u << " and " << v;
    EXPECT_EQ(gcd_of(v, u), plain(g)) << v << " and " << u;
}
}  // namespace

TEST_F(Gcd, numbers_and_contents_over_the_integers) {
    expect_gcd("4*x", "6*x", "2*x");
    expect_gcd("12", "18", "6");
    expect_gcd("12", "18*x + 8", "2");
    expect_gcd("6*x + 6", "9*x + 9", "3*x + 3");
    expect_gcd("6*x + 6", "9*y + 9", "3");
    expect_gcd("-x - 1", "-x^2 - x", "x + 1");
    EXPECT_EQ(gcd_of("0", "6*x + 9"), plain("3"));
}

TEST_F(Gcd, monomials) {
    expect_gcd("x^2*y", "x^3*y", "x^2*y");
    expect_gcd("x^2*y", "x*z", "x");
    expect_gcd("6*x^2*y", "4*x*y^2 + 2*x^3", "2*x");
    expect_gcd("x^3*y + x^2*y", "x^2*y^2 + x*y^2", "x^2*y + x*y");
    expect_gcd("z", "x + z", "1");
    expect_gcd("y*z + z", "x*z^2 + z", "z");
}

TEST_F(Gcd, variables_in_one_operand_only) {
    expect_gcd("x*y + y", "y^2 - y", "y");
    expect_gcd("x*y + x + y^2 + y", "y + 1", "y + 1");
    expect_gcd("x*y + x + y^2 + y", "z*y + z", "y + 1");
    expect_gcd("x + z", "x + 5", "1");
    expect_gcd("x^2*z - z", "x*t + t", "x + 1");
}

TEST_F(Gcd, deep_levels) {
    expect_gcd("u^2 - v^2", "u^2 + 2*u*v + v^2", "u + v");
    expect_gcd("x*u + x*v", "x^2*u - x*v", "x");
    expect_gcd("t^2 - 1", "t^3 - 1", "t - 1");
}

TEST_F(Gcd, equal_and_dividing_operands) {
    expect_gcd("x^2 + y", "x^2 + y", "x^2 + y");
    expect_gcd("x^2 + y", "3*x^2 + 3*y", "x^2 + y");
    expect_gcd("x^2 + y", "-x^2 - y", "x^2 + y");
    expect_gcd("x^4 - y^2", "x^2 + y", "x^2 + y");
    expect_gcd("2*x^4 - 2*y^2", "4*x^2 + 4*y", "2*x^2 + 2*y");
}

TEST_F(Gcd, leading_numbers_that_scale) {
    expect_gcd("4*x^2 - 1", "4*x^2 + 4*x + 1", "2*x + 1");
    expect_gcd("6*x^2*y + 5*x*y + y", "4*x^2 + 4*x + 1", "2*x + 1");
    expect_gcd("1000000007*x^2*y - 1000000009*x", "1000000007*x*y^2 - 1000000009*y",
               "1000000007*x*y - 1000000009");
}

TEST_F(Gcd, monic_modulo_a_prime) {
    use_ring(7);
    expect_gcd("3*x + 3", "2*x^2 + 5", "x + 1");
    expect_gcd("4", "6", "1");
    expect_gcd("5*x*y", "3*x", "x");
    use_ring(2);
    expect_gcd("x^2 + y^2", "x*z + y*z", "x + y");
    expect_gcd("x*y*z + x*y + z + 1", "x*y*z + z + x*y*t + t", "x*y + 1");
    expect_gcd("x^2 + x", "x*y + y + x + 1", "x + 1");
    use_ring(256, true);
    expect_gcd("x^2*z + y^2*z", "x*t + y*t", "x + y");
    use_ring(65536, true);
    expect_gcd("x^2*z + y^2*z", "x*t + y*t", "x + y");
}

// Products over all points of a small plane vanish at every point of Z/2 and Z/3: no evaluation in the field
// itself tells them from 0.
TEST_F(Gcd, operands_that_vanish_at_every_point_of_the_field) {
    use_ring(2);
    expect_gcd("x^2*y + x*y + x*y^2 + x^2*y^2", "x^2*y + x*y", "x^2*y + x*y");
    expect_gcd("x^2*z + x*z + y", "x^2*z^2 + x*z^2 + y*z", "x^2*z + x*z + y");
    use_ring(3);
    expect_gcd("x^3*y + 2*x*y", "x^3*z + 2*x*z + x^3 + 2*x", "x^3 + 2*x");
}

TEST_F(Gcd, composite_modulus) {
    use_ring(6);
    expect_gcd("x^2 + 5", "x^2 + 2*x + 1", "1");  // the remainder 4x + 4 has no unit in front
    expect_gcd("x^2 + 5", "x + 1", "x + 1");
    poly a = poly_of("2*x"), b = poly_of("4"), zero = poly_of("0"), g = nullptr;
    Lpolygcd2(a, b, &g, polynames);
    EXPECT_EQ(text_of(g), plain("2"));
    Lpolygcd2(zero, zero, &g, polynames);
    EXPECT_TRUE(poly_iszero(g));
    free_poly(&a), free_poly(&b), free_poly(&zero), free_poly(&g);
    use_ring(15);
    expect_gcd("x^2*y + 14*y", "x*y + y", "x*y + y");
}

TEST_F(Gcd, monomials_are_units_under_laurent) {
    laurent = 1;
    expect_gcd("x^-1 + 1", "x^2 - 1", "x + 1");
    expect_gcd("x", "x^2", "1");
    expect_gcd("x^-2*y - x^-1", "y^2 - x^2", "x - y");
}

TEST_F(Gcd, sparse_and_high_degrees) {
    expect_gcd("x^1000 - 1", "x^600 - 1", "x^200 - 1");
    expect_gcd("x^100000*y - x^100000", "y^2 - 1", "y - 1");
    expect_gcd("x^3000*y + 1", "y^4000*x + 1", "1");
}

TEST_F(Gcd, long_coefficients) {
    poly a = poly_of("x*y + 3*z - 7"), b = poly_of("5*x - y*z + 11"), c = poly_of("2*y + 9*x*z - 1"),
         g = nullptr;
    compute_power(&a, 9, polynames);
    compute_power(&b, 5, polynames);
    compute_power(&c, 7, polynames);
    poly_mult(a, b, &b, polynames);
    poly_mult(a, c, &c, polynames);
    Lpolygcd(b, c, &g, 0, polynames);
    EXPECT_TRUE(poly_equal(g, a));
    free_poly(&a), free_poly(&b), free_poly(&c), free_poly(&g);
}

TEST_F(Gcd, content_in_the_main_variable) {
    poly p = poly_of("6*x^2*y + 6*x^2 - 4*x*y^2 + 4*x"), c = nullptr, q = nullptr;
    content(p, &c, polynames, 0, 1, 1);
    EXPECT_EQ(text_of(c), plain("2*x + 2"));  // one level down: its x is the y of p
    gcd_coefs(p, &q);
    EXPECT_EQ(text_of(q), plain("2"));
    content(p, &c, polynames, 0, 1, 0);
    EXPECT_EQ(text_of(c), plain("2*x + 2"));
    poly one_term = poly_of("-3*x*y");
    content(one_term, &c, polynames, 0, 1, 0);
    EXPECT_EQ(text_of(c), plain("3*x"));
    free_poly(&c), free_poly(&q), free_poly(&p), free_poly(&one_term);
}
