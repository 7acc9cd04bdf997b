// Fixed cases of the text of values: the blank, decimals, parentheses of fractions, the open line.
#include "numbers/decimal_io.h"
#include "numbers/display_modes.h"
#include "poly/poly_modes.h"
#include "quoly/quoly_mult.h"
#include "tests/unit/quoly/quoly_support.h"

#include <algorithm>
using namespace tolvex;
using namespace tolvex::test;

static std::string shows(const std::string& text, bool terminal = true, bool* open = nullptr) {
    quoly q = value(text);
    std::string s = text_of(q, terminal, open);
    free_quoly(&q);
    return s;
}

TEST(ValueText, Numbers) {
    Setting setting(0, 0);
    bool open = false;
    EXPECT_EQ(shows("5", true, &open), " 5");
    EXPECT_TRUE(open);
    EXPECT_EQ(shows("-5"), " -5");
    EXPECT_EQ(shows("0"), " 0");
}

TEST(ValueText, RationalNumbersWithDecimals) {
    Setting setting(0, 0);
    set_disp_size(5);
    EXPECT_EQ(shows("1/3"), " 1/3;  .3333333333333333333333333333333333333333");
    EXPECT_EQ(shows("7/2"), " 7/2;  3.5000000000000000000000000000000000000000");
    EXPECT_EQ(shows("-1/4"), " -1/4;  -.2500000000000000000000000000000000000000");
    set_disp_size(1);
    EXPECT_EQ(shows("3/7"), " 3/7;  .42857142");
    EXPECT_EQ(shows("3/7", false), " 3/7");
    set_disp_size(2);
    EXPECT_EQ(shows("1/3000000000"), " 1/3000000000;  .00000000 03333333");
    set_disp_size(0);
    EXPECT_EQ(shows("3/7"), " 3/7");
    set_disp_size(5);
    uglyprint = 1;
    EXPECT_EQ(shows("1/3"), " 1/3");
}

TEST(ValueText, ParenthesesOfFractions) {
    Setting setting(0, 3);
    EXPECT_EQ(shows("1/x"), " 1/x");
    EXPECT_EQ(shows("(x + 1)/(x - 1)"), " (x + 1)/(x - 1)");
    EXPECT_EQ(shows("1/(2*x)"), " 1/(2x)");
    EXPECT_EQ(shows("1/x^2"), " 1/x^2");
    EXPECT_EQ(shows("3/(x + 1)"), " 3/(x + 1)");
    EXPECT_EQ(shows("x/2"), " x/2");
    EXPECT_EQ(shows("(x + 1)/2"), " (x + 1)/2");
    EXPECT_EQ(shows("-x/y"), " -x/y");
    EXPECT_EQ(shows("x/(y + 1)"), " x/(y + 1)");  // no level above y is shown
    EXPECT_EQ(shows("(y + 1)/x"), " (y + 1)/x");
    EXPECT_EQ(shows("(y + 1)/z"), " (y + 1)/z");
    EXPECT_EQ(shows("x*y/z"), " (y)x/z");
    EXPECT_EQ(shows("1/(x*y)"), " 1/((y)x)");
    EXPECT_EQ(shows("(x*y + x)/z^2"), " (y + 1)x/z^2");
    EXPECT_EQ(shows("-1/(y - z)"), " -1/(y - z)");
    monomial_list = 1;
    EXPECT_EQ(shows("(x*y + x)/z^2"), " (x y + x)/z^2");
    EXPECT_EQ(shows("x*y/z"), " x y/z");
    EXPECT_EQ(shows("1/(x*y)"), " 1/(x y)");
    monomial_list = 0;
    uglyprint = 1;
    EXPECT_EQ(shows("1/(2*x)"), " 1/(2*x)");
    EXPECT_EQ(shows("(x + 1)/(x - 1)"), " (x+1)/(x-1)");
}

TEST(ValueText, AFullLineLeavesNoOpenLine) {
    Setting setting(0, 1);
    dispcutoff = 6;
    bool open = true;
    EXPECT_EQ(shows("x + 22", true, &open), " x + 22 `\n");
    EXPECT_FALSE(open);
    EXPECT_EQ(shows("x + 2", true, &open), " x + 2 `\n");
    EXPECT_FALSE(open);
    dispcutoff = 7;
    EXPECT_EQ(shows("x + 2", true, &open), " x + 2");
    EXPECT_TRUE(open);
    EXPECT_EQ(shows("(x + 22)/(x - 1)", false, &open), " (x + 22\n)/(x - 1\n)");
    EXPECT_TRUE(open);
}

TEST(ValueText, NothingFollowsTheNoteOfSuppression) {
    Setting setting(32003, 1);
    quoly q = value("x + 1"), x = value("x");
    quoly_compute_power(&q, 1500);
    quoly inverse = copy_of(x);
    quoly_reciprocal(&inverse);
    fast_quoly_mult(&q, inverse);
    bool open = true;
    std::string s = text_of(q, true, &open), note = "   ... more output suppressed ... \n";
    EXPECT_FALSE(open);
    EXPECT_EQ(s.substr(s.size() - note.size()), note);
    EXPECT_EQ(text_of(x), " x");  // the next value is shown again
    EXPECT_EQ(text_of(q, false).find("suppressed"), std::string::npos);
    free_quoly(&q), free_quoly(&x), free_quoly(&inverse);
}

/// The lines that long coefficients fill are not counted, only the breaks after terms.
TEST(ValueText, LongNumbersAloneAreNotSuppressed) {
    Setting setting(0, 1);
    quoly q = value("x + 1");
    quoly_compute_power(&q, 400);
    bool open = false;
    std::string s = text_of(q, true, &open);
    EXPECT_TRUE(open);
    EXPECT_GT(std::count(s.begin(), s.end(), '\n'), 151);
    EXPECT_EQ(s.find("suppressed"), std::string::npos);
    EXPECT_EQ(s.substr(s.size() - 8), "400x + 1");
    free_quoly(&q);
}
