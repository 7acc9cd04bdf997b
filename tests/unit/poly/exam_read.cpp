// Fixed cases of reading polynomials: the grammar, every error, residues, the numeric form and the spill
// form.
#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "numbers/num_compare.h"
#include "poly/poly_basic.h"
#include "poly/poly_read.h"
#include "poly/poly_test.h"
#include "tests/unit/poly/named_variables.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
struct Read {
    poly p = nullptr;
    int32_t depth = 0;
    std::string rest;  // the token that was left current
};

Read read(const std::string& text) {
    Read r;
    std::string bytes = text + "\n";
    FILE* f = fmemopen(bytes.data(), bytes.size(), "r");
    leftover[0] = 0;
    nameptr none = nullptr;
    scanner(f, &token, &none);
    poly_readin(f, &r.p, &none, &r.depth);
    r.rest = tok_text(token);
    fclose(f);
    return r;
}

/// The value read equals the polynomial of the second text.
void same(const std::string& text, const char* expected, int32_t depth) {
    Read r = read(text);
    poly p = poly_of(expected);
    EXPECT_TRUE(poly_equal(r.p, p)) << text << " was read as " << text_of(r.p);
    EXPECT_EQ(r.depth, depth) << text;
    EXPECT_EQ(r.rest, ";") << text;
    EXPECT_TRUE(poly_check(r.p, number_polys)) << text;
    free_poly(&r.p);
    free_poly(&p);
}

int32_t refusal(const std::string& text) {
    int64_t before = live_records();
    std::string bytes = text + "\n";
    FILE* f = fmemopen(bytes.data(), bytes.size(), "r");
    leftover[0] = 0;
    nameptr none = nullptr;
    scanner(f, &token, &none);
    poly p = nullptr;
    int32_t depth = 0;
    bool raised = RAISES(poly_readin(f, &p, &none, &depth));
    EXPECT_TRUE(raised) << text;
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(live_records(), before) << text << ": the partial value was kept";
    fclose(f);
    return raised ? caught.code : 0;
}

class Reading : public ::testing::Test {
  protected:
    void SetUp() override {
        set_up_once();
        use_integers();
        name_variables(3);
        tt_flag = 1;
    }
    void TearDown() override {
        laurent = nomodpolyreadin = minus_warning = minus_warned = 0;
        use_integers();
    }
};
}  // namespace

TEST_F(Reading, SumsOfTerms) {
    same("x", "x", 1);
    same("5", "5", 0);
    same("0", "0", 0);
    same("-5", "-5", 0);
    same("x + 1", "x + 1", 1);
    same("1 + x", "x + 1", 1);
    same("2x^2 - x", "2*x^2 - x", 1);
    same("-x^2+x-1", "-x^2 + x - 1", 1);
    same("x - x", "0", 0);
    same("0x + 3", "3", 0);
    same("x^0 + y^0", "2", 0);
    same("x^3 + x^3", "2*x^3", 1);
    same("12345678901234567 x", "12345678901234567*x", 1);
    same("y", "y", 2);
    same("z + y", "y + z", 2);
}

TEST_F(Reading, NestedAndFlatCoefficients) {
    same("(y + 1)x^2 - 3", "x^2*y + x^2 - 3", 1);
    same("x^3 + (-y + 1)x", "x^3 - x*y + x", 1);
    same("(y + 1)", "y + 1", 2);
    same("(3y)x - y", "3*x*y - y", 1);
    same("((z)y + 2)x^2", "x^2*y*z + 2*x^2", 1);
    same("3x^2 y - x y + 7", "3*x^2*y - x*y + 7", 1);
    same("x y z", "x*y*z", 1);
    same("(z + 1)x y", "x*y*z + x*y", 1);
    same("(2)x", "2*x", 1);
    same("(0)x y", "0", 0);
    same("((((x))))", "x", 1);
    same("x^(3)", "x^3", 1);
}

TEST_F(Reading, StopsAtWhatFitsNothing) {
    Read r = read("x + 1, y");
    EXPECT_EQ(r.rest, ",");
    free_poly(&r.p);
    r = read("2x)");
    EXPECT_EQ(r.rest, ")");
    free_poly(&r.p);
}

TEST_F(Reading, NegativeExponents) {
    EXPECT_EQ(refusal("x^-2"), 161);
    laurent = 1;
    same("x^-2", "x^-2", 1);
    same("x^(-2) + 1", "x^-2 + 1", 1);
    same("(y^-1)x", "x*y^-1", 1);
    EXPECT_EQ(refusal("x x^-1"), 163);
}

TEST_F(Reading, Errors) {
    EXPECT_EQ(refusal("w"), 160);
    EXPECT_EQ(refusal("x + w^2"), 160);
    EXPECT_EQ(refusal("(x + 1)y"), 159);
    EXPECT_EQ(refusal("(y + 1)y"), 159);
    EXPECT_EQ(refusal("x + (y + 1)z"), 159);
    EXPECT_EQ(refusal("y x"), 163);
    EXPECT_EQ(refusal("x x"), 163);
    EXPECT_EQ(refusal("x^"), 161);
    EXPECT_EQ(refusal("x^y"), 161);
    EXPECT_EQ(refusal("x^()"), 161);
    EXPECT_EQ(refusal("x^268435456"), 161);
    EXPECT_EQ(refusal("x^99999999999999999999"), 161);
    EXPECT_EQ(refusal("x^(2"), 162);
    EXPECT_EQ(refusal("(y + 1 x"), 165);
    EXPECT_EQ(refusal("x + (y"), 165);
    EXPECT_EQ(refusal("x +"), 2);
    EXPECT_EQ(refusal(""), 2);
    EXPECT_EQ(refusal("3x + (2y + z)y"), 159);
    same("x^268435455", "x^268435455", 1);
    EXPECT_EQ(refusal(std::string(153, '(') + "x" + std::string(153, ')')), 165);
    same(std::string(152, '(') + "x" + std::string(152, ')'), "x", 1);
}

TEST_F(Reading, Residues) {
    use_ring(7);
    same("8x + 13", "x + 6", 1);
    same("7x + 1", "1", 0);
    testing::internal::CaptureStdout();
    same("x - 1", "x + 6", 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "*** Warning. Negative value seen during poly readin in modular mode.\n"
              "    Check your data carefully.\n");
    testing::internal::CaptureStdout();
    same("-2x - 1", "5*x + 6", 1);  // once a statement
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    minus_warned = 0;
    tt_flag = 0;
    minus_warning = 1;  // once a load
    testing::internal::CaptureStdout();
    same("-2x - 1;", "5*x + 6", 1);
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    same("-2x - 1;", "5*x + 6", 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(minus_warning, 0);
}

TEST_F(Reading, WordsThatAreReducedAtTheEnd) {
    use_ring(7);
    nomodpolyreadin = 1;
    testing::internal::CaptureStdout();
    same("8x^2 - x + 15", "x^2 + 6*x + 1", 1);
    same("7x + 14", "0", 0);
    same("(7y + 1)x + 7", "x", 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(modularmode);
}

TEST_F(Reading, ManyTermsInAnyOrder) {
    std::string text;
    for (int i = 0; i < 3000; i++)
        text += (i > 0 ? " + " : "") + std::to_string(i + 1) + "x^" + std::to_string(i);
    Read up = read(text);
    std::string falling;
    for (int i = 2999; i >= 0; i--)
        falling += (i < 2999 ? " + " : "") + std::to_string(i + 1) + "x^" + std::to_string(i);
    Read down = read(falling);
    EXPECT_TRUE(poly_equal(up.p, down.p));
    EXPECT_TRUE(poly_check(up.p, number_polys));
    free_poly(&up.p);
    free_poly(&down.p);
}

// ---- the numeric form ----------------------------------------------------------------------------------

TEST_F(Reading, NumericFormOfTheDataFile) {
    FILE* kept = chdat;
    auto from = [](const char* text, poly* p) {
        chdat = fmemopen(const_cast<char*>(text), strlen(text), "r");
        bool raised = RAISES(direct_poly_read(p));
        fclose(chdat);
        return !raised;
    };
    poly p = nullptr, q = poly_of("3*x^2 + x*y - 5");
    EXPECT_TRUE(from("2 1 3\n1 0 1 1 1 2147483647\n0 1 -5 2147483647\n", &p));
    EXPECT_TRUE(poly_equal(p, q)) << text_of(p);
    free_poly(&q);
    q = poly_of("268435461*x");  // 2^28 + 5
    EXPECT_TRUE(from("1 2 1 5 2147483647", &p));
    EXPECT_TRUE(poly_equal(p, q));
    free_poly(&q);
    q = poly_of("9");
    EXPECT_TRUE(from("0 1 9 2147483647", &p));
    EXPECT_TRUE(poly_equal(p, q) && is_number(p));
    free_poly(&q);
    for (const char* bad : {"", "2 1", "2 1 3", "2 -1 3 2147483647", "2 1 268435456 2147483647", "2 x"}) {
        EXPECT_FALSE(from(bad, &p)) << bad;
        EXPECT_STREQ(caught.text, "chdat file is damaged.");
    }
    use_ring(7);
    free_poly(&p);
    q = poly_of("3*x^2 + 2");
    EXPECT_TRUE(from("2 1 10 1 1 7 0 1 -5 2147483647", &p));
    EXPECT_TRUE(poly_equal(p, q)) << text_of(p);
    free_poly(&p);
    free_poly(&q);
    chdat = fmemopen(const_cast<char*>("2 1 5"), 5, "r");
    number n = {};
    direct_number_read(&n);
    EXPECT_EQ(n.lint, 268435461 % 7);
    fclose(chdat);
    chdat = kept;
}

TEST_F(Reading, SpillFormThereAndBack) {
    for (int32_t ring : {0, 7, 2147483629}) {
        if (ring == 0) {
            use_integers();
        } else {
            use_ring(ring);
        }
        for (const char* text : {"0", "5", "x^2*y - 3*x + 1000000000000", "-x*z^3 + y"}) {
            poly p = poly_of(text), q = nullptr;
            FILE* f = tmpfile();
            put_poly_disk(f, p);
            put_poly_disk(f, p);
            rewind(f);
            EXPECT_TRUE(get_poly_disk(f, &q));
            EXPECT_TRUE(poly_equal(p, q)) << text;
            EXPECT_TRUE(get_poly_disk(f, &q));
            EXPECT_TRUE(poly_equal(p, q)) << text;
            EXPECT_FALSE(get_poly_disk(f, &q));  // the end
            EXPECT_EQ(q, nullptr);
            fclose(f);
            free_poly(&p);
        }
    }
}
