// Sizes of values in fixed cases, and what pivots are compared by: a value weighs less than one that contains
// it.
#include "quoly/quoly_mass.h"
#include "tests/unit/quoly/quoly_support.h"
using namespace tolvex;
using namespace tolvex::test;
namespace {
template <class Measure> int64_t measured(const std::string& text, Measure measure) {
    quoly q = value(text);
    int64_t m = measure(q);
    free_quoly(&q);
    return m;
}
struct Sized {
    const char* text;
    int64_t size;
};
void expect_masses(std::initializer_list<Sized> values) {
    for (const Sized& v : values) EXPECT_EQ(measured(v.text, quoly_mass), v.size) << v.text;
}
void expect_better_masses(std::initializer_list<Sized> values) {
    for (const Sized& v : values) EXPECT_EQ(measured(v.text, better_quoly_mass), v.size) << v.text;
}
}  // namespace

TEST(QuolyMass, numbers_weigh_their_digits) {
    Setting over_z(0, 3);
    expect_masses({{"0", 1}, {"-7", 1}, {"2^28", 2}, {"2^100", 4}, {"5/7", 2}, {"2^100/(2^60 - 1)", 7}});
    expect_better_masses({{"5/7", 2}});
}

TEST(QuolyMass, residues_weigh_1) {
    Setting modular(101, 3);
    expect_masses({{"77", 1}, {"5/7", 1}, {"77 x", 2}});
}

// The leading exponent counts twice (depthnum), exponents of level k count k times; the better mass has 1
// more for each term, that of the leaf included.
TEST(QuolyMass, terms_weigh_their_exponents) {
    Setting over_z(0, 3);
    expect_masses({{"x", 2}, {"x^3", 6}, {"x^3 + x^2 + 1", 9}, {"y^3", 6}, {"x y", 4}, {"x^2 y^3", 24}});
    expect_better_masses({{"x^3", 1 + 4 * 2}, {"x", 1 + 2 * 2}});
}

TEST(QuolyMass, denominators_weigh_massnum_times) {
    Setting over_z(0, 3);
    expect_masses({{"3/(x + 1)", 1 + 3 * 3}, {"(x + 1)/6", 3 + 1}, {"(x + 1)/2^30", 3 + 1 + 10}});
    massnum = 5;
    depthnum = 1;
    expect_masses({{"3/(x + 1)", 1 + 5 * 2}});
    massnum = 3;
    depthnum = 2;
}

TEST(QuolyMass, saturates) {
    Setting over_z(0, 3);
    expect_masses(
        {{"x^2000000000 y^2000000000", 33554430}, {"1/(x^2000000000 y^2000000000 + 1)", 1 + 3 * 33554430}});
    expect_better_masses({{"1/(x^2000000000 y^2000000000 + 1)", INT32_MAX}});
}

TEST(QuolyMass, terms_are_counted_to_the_end) {
    Setting over_z(0, 3);
    const Sized values[] = {
        {"12", 1}, {"5/7", 2}, {"x + y", 2}, {"(x + y)/(x - y)", 4}, {"(x + y + z + 1)^9", 220}};
    for (const Sized& v : values) {
        EXPECT_EQ(measured(v.text, numterms), v.size) << v.text;
        EXPECT_EQ(measured(v.text, f_numterms), v.size)
            << v.text;  // without a tower there is no element of one
    }
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
