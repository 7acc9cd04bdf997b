// Fixed cases of the text of polynomials: both forms, signs, line breaks, suppression, the dump, sizes.
#include "language/tokens/scanner.h"
#include "numbers/display_modes.h"
#include "poly/poly_basic.h"
#include "poly/poly_display.h"
#include "tests/unit/poly/named_variables.h"

#include <algorithm>
#include <cstdlib>
using namespace tolvex;
using namespace tolvex::test;

namespace {
struct Shown {
    std::string text;
    int32_t mylength, lines;
};

Shown display_of(const polynode* p, bool terminal, bool extra_space = false) {
    char* data = nullptr;
    size_t size = 0;
    FILE* f = open_memstream(&data, &size);
    Shown s = {"", 0, 0};
    linesuppression = 1;
    poly_display(f, terminal, p, &s.mylength, polynames, extra_space, 1, &s.lines);
    fclose(f);
    s.text.assign(data, size);
    free(data);
    return s;
}

std::string shows(const char* text, bool terminal = true) {
    poly p = poly_of(text);
    Shown s = display_of(p, terminal);
    free_poly(&p);
    return s.text;
}

/// x, y, z over the integers; every switch of the display as at the start.
class Display : public ::testing::Test {
  protected:
    void SetUp() override {
        set_up_once();
        use_integers();
        name_variables(3);
    }
    void TearDown() override {
        uglyprint = monomial_list = laurent = 0;
        alt_form_display = do_line_sup = linesuppression = 1;
        dispcutoff = 76;
        continuation = '`';
        use_integers();
    }
};
}  // namespace

TEST_F(Display, NestedForm) {
    EXPECT_EQ(shows("x + 1"), "x + 1");
    EXPECT_EQ(shows("2*x^2 - x"), "2x^2 - x");
    EXPECT_EQ(shows("-x"), "-x");
    EXPECT_EQ(shows("-x^2 + x - 1"), "-x^2 + x - 1");
    EXPECT_EQ(shows("x^2*y + x^2 - 3"), "(y + 1)x^2 - 3");
    EXPECT_EQ(shows("x^3 - x*y + x"), "x^3 + (-y + 1)x");
    EXPECT_EQ(shows("x + y + 1"), "x + (y + 1)");
    EXPECT_EQ(shows("3*x*y - y"), "(3y)x - y");
    EXPECT_EQ(shows("y"), "y");
    EXPECT_EQ(shows("y + 1"), "(y + 1)");
    EXPECT_EQ(shows("x - y"), "x - y");
    EXPECT_EQ(shows("x - y - 1"), "x + (-y - 1)");
    EXPECT_EQ(shows("x + z + 1"), "x + (z + 1)");
    EXPECT_EQ(shows("-z"), "-z");
    EXPECT_EQ(shows("y*z - 1"), "((z)y - 1)");
    EXPECT_EQ(shows("x - y*z"), "x + (-z)y");
    EXPECT_EQ(shows("5"), "5");
    EXPECT_EQ(shows("-5"), "-5");
    EXPECT_EQ(shows("0"), "0");
    EXPECT_EQ(shows("x^2 - 1000000000000*x"), "x^2 - 1000000000000x");
}

TEST_F(Display, UglyForm) {
    uglyprint = 1;
    EXPECT_EQ(shows("x + 1"), "x+1");
    EXPECT_EQ(shows("2*x^2 - x"), "2*x^2-x");
    EXPECT_EQ(shows("x^2*y + x^2 - 3"), "(y+1)*x^2-3");
    EXPECT_EQ(shows("-x^3 + 4"), "-x^3+4");
    EXPECT_EQ(shows("3*x*y - y"), "(3*y)*x-y");
    laurent = 1;
    EXPECT_EQ(shows("x^-2"), "x^(-2)");
    EXPECT_EQ(shows("x + 2*x^-1"), "x+2*x^(-1)");
}

TEST_F(Display, NegativeExponents) {
    laurent = 1;
    EXPECT_EQ(shows("x^-2"), "x^-2");
    EXPECT_EQ(shows("5 + x^-1"), "5 + x^-1");
    EXPECT_EQ(shows("x - 5 - x^-1"), "x - 5 - x^-1");
    EXPECT_EQ(shows("x*y + 2*x + x*y^-1"), "(y + 2 + y^-1)x");
    EXPECT_EQ(shows("x + 2 + y^-1"), "x + (2 + y^-1)");
}

TEST_F(Display, Residues) {
    use_ring(7);
    EXPECT_EQ(shows("6*x"), "-x");
    EXPECT_EQ(shows("5*x^2"), "-2x^2");
    EXPECT_EQ(shows("x + 6"), "x - 1");
    EXPECT_EQ(shows("4*x + 3"), "-3x + 3");
    alt_form_display = 0;
    EXPECT_EQ(shows("6*x"), "6x");
    EXPECT_EQ(shows("x + 6"), "x + 6");
    alt_form_display = 1;
    use_ring(2);
    EXPECT_EQ(shows("x + 1"), "x + 1");
    use_ring(256, true);
    EXPECT_EQ(shows("x + 255"), "x + 255");
    EXPECT_EQ(shows("255*x + 1"), "255x + 1");
}

TEST_F(Display, BlankAfterALeadingMinus) {
    poly p = poly_of("-x^2 - 3*x");
    EXPECT_EQ(display_of(p, true, true).text, "- x^2 - 3x");
    uglyprint = 1;
    EXPECT_EQ(display_of(p, true, true).text, "-x^2-3*x");
    free_poly(&p);
}

TEST_F(Display, ListOfMonomials) {
    monomial_list = 1;
    EXPECT_EQ(shows("3*x^2*y - x*y + 7"), "3x^2 y - x y + 7");
    EXPECT_EQ(shows("x*y + x - y - 1"), "x y + x - y - 1");
    EXPECT_EQ(shows("y + 1"), "y + 1");
    EXPECT_EQ(shows("5"), "5");
    EXPECT_EQ(shows("-x*y*z"), "-x y z");
    uglyprint = 1;
    EXPECT_EQ(shows("3*x^2*y - x*y + 7"), "3*x^2*y-x*y+7");
    laurent = 1;
    EXPECT_EQ(shows("2*x^-1*y"), "2*x^(-1)*y");
    uglyprint = 0;
    name_variables(1);  // one variable: the nested form is the list
    EXPECT_EQ(shows("3*x^2 - x + 7"), "3x^2 - x + 7");
}

TEST_F(Display, FullLinesAreEndedAfterATerm) {
    dispcutoff = 10;
    EXPECT_EQ(shows("x^3 + 22*x^2 + 3*x + 4"), "x^3 + 22x^2 `\n + 3x + 4");
    EXPECT_EQ(shows("x^3 + 22*x^2 + 3*x + 4", false), "x^3 + 22x^2\n + 3x + 4");
    uglyprint = 1;
    EXPECT_EQ(shows("1000*x^3 + 22*x^2 + 3*x + 4"), "1000*x^3+22*x^2`\n+3*x+4");
    EXPECT_EQ(shows("1000*x^3 + 22*x^2 + 3*x + 4", false), "1000*x^3+22*x^2`\n+3*x+4");
    uglyprint = 0;
    // The last term ends a full line too; then the line is closed.
    poly p = poly_of("12345*x^3 + 22");
    Shown s = display_of(p, true);
    EXPECT_EQ(s.text, "12345x^3 + 22 `\n");
    EXPECT_EQ(s.mylength, 0);
    EXPECT_EQ(s.lines, 1);
    free_poly(&p);
    dispcutoff = 0;  // no limit
    EXPECT_EQ(shows("12345*x^3 + 12345*x^2 + 12345*x + 22"), "12345x^3 + 12345x^2 + 12345x + 22");
}

TEST_F(Display, ListBreaksBeforeTermsAndFactors) {
    monomial_list = 1;
    dispcutoff = 20;
    EXPECT_EQ(shows("11*x^2*y + 22*x*y + 33"), "11x^2 y + 22x y `\n + 33");
    EXPECT_EQ(shows("1234567890123456*x^2*y"), "1234567890123456 `\nx^2 y");
    EXPECT_EQ(shows("12345678901*x*y^12*z"), "12345678901x y^12 `\n z");
    EXPECT_EQ(shows("1234567890123456*x^2*y", false), "1234567890123456\nx^2 y");
}

TEST_F(Display, TheTerminalStopsAfter150Lines) {
    dispcutoff = 10;
    name_variables(1);
    Rng rng(1);
    poly p = dense_poly(rng, 2000);
    Shown s = display_of(p, true);
    EXPECT_EQ(s.lines, 151);
    EXPECT_FALSE(linesuppression);
    EXPECT_EQ(std::count(s.text.begin(), s.text.end(), '\n'), 152);
    std::string note = "   ... more output suppressed ... \n";
    EXPECT_EQ(s.text.substr(s.text.size() - note.size()), note);
    // Neither a file nor a terminal without the switch is stopped.
    Shown file = display_of(p, false);
    EXPECT_TRUE(linesuppression);
    EXPECT_GT(file.lines, 151);
    EXPECT_EQ(file.text.find("suppressed"), std::string::npos);
    do_line_sup = 0;
    EXPECT_EQ(display_of(p, true).lines, file.lines);
    free_poly(&p);
}

TEST_F(Display, MalformedPolynomialsAreFaults) {
    FILE* sink = fopen("/dev/null", "w");
    auto text = [sink](poly p) {
        int32_t length = 0, lines = 0;
        EXPECT_TRUE(RAISES(poly_display(sink, 1, p, &length, polynames, 0, 1, &lines)));
        std::string s = caught.text;
        free_poly(&p);
        return s;
    };
    poly leaf = poly_of("5"), extra = nullptr;
    new_term(&extra, 0, leaf);
    EXPECT_EQ(text(extra), " Warning! extra 0-exponent node in this polynomial. Trash it.");
    poly p = poly_of("5");
    p->next = poly_of("x");
    EXPECT_EQ(text(p), " Warning! numb next not nil in this polynomial.");
    poly deep = poly_of("x*y");
    name_variables(1);
    EXPECT_EQ(text(deep), " q = NULL at start of poly_display.");
    fclose(sink);
}

TEST_F(Display, Dump) {
    auto dump = [](const polynode* p, polypt q) {
        char* data = nullptr;
        size_t size = 0;
        FILE* f = open_memstream(&data, &size);
        crude_poly_disp(f, p, 0, q);
        fclose(f);
        std::string s(data, size);
        free(data);
        return s;
    };
    poly p = poly_of("x^2*y + 3");
    EXPECT_EQ(dump(p, polynames), "x^2\n  y^1\n    1\n3\n");
    EXPECT_EQ(dump(p, nullptr), "level 1^2\n  level 2^1\n    1\n3\n");
    free_poly(&p);
    p = poly_of("5");
    p->next = poly_of("7");  // malformed: shown as it is
    EXPECT_EQ(dump(p, polynames), "5*\n7\n");
    free_poly(&p);
}

TEST_F(Display, Sizes) {
    poly p = poly_of("x^2*y + 3");
    // 3 nodes down to the leaf 1 and the leaf 3, two numbers of one digit.
    EXPECT_EQ(sizepoly(p), 4 * polynodesize + 2 * (numbersize + numnodesize));
    free_poly(&p);
    use_ring(7);
    p = poly_of("x^2*y + 3");
    EXPECT_EQ(sizepoly(p), 4 * polynodesize + 2 * numbersize);
    free_poly(&p);
}
