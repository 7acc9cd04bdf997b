// Sizes of values in fixed cases, and what pivots are compared by: a value weighs less than one that contains
// it.
#include "quoly/quoly_mass.h"
#include "tests/unit/quoly/quoly_support.h"
using namespace tolvex;
using namespace tolvex::test;
namespace {
int32_t mass(const std::string& text) {
    quoly q = value(text);
    int32_t m = quoly_mass(q);
    free_quoly(&q);
    return m;
}
int32_t better_mass(const std::string& text) {
    quoly q = value(text);
    int32_t m = better_quoly_mass(q);
    free_quoly(&q);
    return m;
}
int64_t terms(const std::string& text) {
    quoly q = value(text);
    int64_t n = numterms(q);
    EXPECT_EQ(f_numterms(q), n) << text;  // without a tower there is no element of one
    free_quoly(&q);
    return n;
}
}  // namespace

TEST(QuolyMass, numbers_weigh_their_digits) {
    Setting over_z(0, 3);
    EXPECT_EQ(mass("0"), 1);
    EXPECT_EQ(mass("-7"), 1);
    EXPECT_EQ(mass("2^28"), 2);
    EXPECT_EQ(mass("2^100"), 4);
    EXPECT_EQ(mass("5/7"), 2);
    EXPECT_EQ(mass("2^100/(2^60 - 1)"), 7);
    EXPECT_EQ(better_mass("5/7"), 2);
}

TEST(QuolyMass, residues_weigh_1) {
    Setting modular(101, 3);
    EXPECT_EQ(mass("77"), 1);
    EXPECT_EQ(mass("5/7"), 1);
    EXPECT_EQ(mass("77 x"), 2);
}

// The leading exponent counts twice (depthnum), exponents of level k count k times.
TEST(QuolyMass, terms_weigh_their_exponents) {
    Setting over_z(0, 3);
    EXPECT_EQ(mass("x"), 2);
    EXPECT_EQ(mass("x^3"), 6);
    EXPECT_EQ(mass("x^3 + x^2 + 1"), 9);
    EXPECT_EQ(mass("y^3"), 6);
    EXPECT_EQ(mass("x y"), 4);
    EXPECT_EQ(mass("x^2 y^3"), 24);
    EXPECT_EQ(better_mass("x^3"), 1 + 4 * 2);  // 1 more for each term, that of the leaf included
    EXPECT_EQ(better_mass("x"), 1 + 2 * 2);
}

TEST(QuolyMass, denominators_weigh_massnum_times) {
    Setting over_z(0, 3);
    EXPECT_EQ(mass("3/(x + 1)"), 1 + 3 * 3);
    EXPECT_EQ(mass("(x + 1)/6"), 3 + 1);
    EXPECT_EQ(mass("(x + 1)/2^30"), 3 + 1 + 10);
    massnum = 5;
    depthnum = 1;
    EXPECT_EQ(mass("3/(x + 1)"), 1 + 5 * 2);
    massnum = 3;
    depthnum = 2;
}

TEST(QuolyMass, saturates) {
    Setting over_z(0, 3);
    EXPECT_EQ(mass("x^2000000000 y^2000000000"), 33554430);
    EXPECT_EQ(mass("1/(x^2000000000 y^2000000000 + 1)"), 1 + 3 * 33554430);
    EXPECT_EQ(better_mass("1/(x^2000000000 y^2000000000 + 1)"), INT32_MAX);
}

TEST(QuolyMass, terms_are_counted_to_the_end) {
    Setting over_z(0, 3);
    EXPECT_EQ(terms("12"), 1);
    EXPECT_EQ(terms("5/7"), 2);
    EXPECT_EQ(terms("x + y"), 2);
    EXPECT_EQ(terms("(x + y)/(x - y)"), 4);
    EXPECT_EQ(terms("(x + y + z + 1)^9"), 220);
}

PROPERTY(masses_are_positive_and_keep_their_caps, 2000) {
    const int32_t rings[] = {0, 7, 65521, 256};
    Setting ring(rings[round % 4], 3, round % 8 >= 4);
    quoly q = random_value(rng, 3, 6);
    EXPECT_GT(quoly_mass(q), 0);
    EXPECT_GT(better_quoly_mass(q), 0);
    EXPECT_GT(numterms(q), 0);
    EXPECT_LE(f_numterms(q), numterms(q));
    free_quoly(&q);
}
