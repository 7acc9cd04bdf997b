// Fixed cases of values: forms, signs, errors, the repair of a wrong gcd, change of ring and of variables.
#include "gcd/gcd_modes.h"
#include "numbers/display_modes.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "quoly/canonical.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_display.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "quoly/quoly_scalar.h"
#include "quoly/reduce.h"
#include "storage/progress.h"
#include "tests/unit/quoly/quoly_support.h"
using namespace tolvex;
using namespace tolvex::test;

/// The text of the value of an expression in a file: no decimals.
static std::string shows(const std::string& text) {
    quoly q = value(text);
    EXPECT_TRUE(canonical(q)) << text;
    std::string s = text_of(q, false);
    free_quoly(&q);
    return s;
}
static std::string shown_and_dropped(quoly q) {
    EXPECT_TRUE(canonical(q));
    std::string s = text_of(q, false);
    free_quoly(&q);
    return s;
}
static quoly power(const std::string& text, int32_t e) {
    quoly q = value(text);
    number n = {};
    if (lintmode) {
        n.lint = e;
    } else {
        num_make_digit(&n, e);
    }
    bool failed = RAISES(raise_to_power(&q, &n));
    special_free(&n);
    if (!failed) return q;
    return nullptr;
}

TEST(Quoly, RationalNumbersAreReduced) {
    Setting setting(0, 0);
    EXPECT_EQ(shows("1/2+1/2"), " 1");
    EXPECT_EQ(shows("1/2-1/2"), " 0");
    EXPECT_EQ(shows("1/2+1/3"), " 5/6");
    EXPECT_EQ(shows("1/6+1/3"), " 1/2");
    EXPECT_EQ(shows("6/4"), " 3/2");
    EXPECT_EQ(shows("(0-6)/(0-4)"), " 3/2");
    EXPECT_EQ(shows("1/(0-4)"), " -1/4");
    EXPECT_EQ(shows("2/3*3/2"), " 1");
    EXPECT_EQ(shows("(2/3)/(4/9)"), " 3/2");
    EXPECT_EQ(shows("1/1000000007 + 1/1000000009"), " 2000000016/1000000016000000063");
    EXPECT_EQ(shows("1/1000000007 - 1/1000000007"), " 0");
    EXPECT_EQ(shows("100000000000000000000/3 * 3/100000000000000000000"), " 1");
    EXPECT_EQ(shows("5/3 - 2"), " -1/3");
    EXPECT_EQ(shows("2 - 5/3"), " 1/3");
    EXPECT_EQ(shows("0*(5/3)"), " 0");
    EXPECT_EQ(shows("0/(5/3)"), " 0");
}

TEST(Quoly, ANumberHasNoRatFlag) {
    Setting setting(0, 0);
    quoly a = value("7"), b = value("7/2"), q = nullptr;
    quoly_quot(a, b, &q, 0);  // 2: the denominator 1 must not stay
    EXPECT_TRUE(q->numb && !q->rat && q->denom == nullptr);
    EXPECT_EQ(shown_and_dropped(q), " 2");
    EXPECT_TRUE(b->rat && !b->numb);
    free_quoly(&a);
    free_quoly(&b);
}

TEST(Quoly, SameObjectGivesOne) {
    Setting setting(0, 1);
    quoly x = value("x"), q = nullptr;
    quoly_quot(x, x, &q, 0);
    EXPECT_TRUE(q->numb);
    EXPECT_EQ(shown_and_dropped(q), " 1");
    free_quoly(&x);
    quoly zero = value("0");
    EXPECT_TRUE(RAISES(quoly_quot(zero, zero, &zero, 0)));
    EXPECT_EQ(caught.code, 22);
    free_quoly(&zero);
}

/// The record of an expression's value: 'n' a number, 'r' a rational number, 'p' a polynomial, 'f' a
/// fraction.
static char form_of(const std::string& text) {
    quoly q = value(text);
    EXPECT_TRUE(canonical(q)) << text;
    char form = q->numb ? 'n' : q->rat ? 'r' : q->denom != nullptr ? 'f' : 'p';
    EXPECT_EQ(form == 'r', !q->numb && q->denom != nullptr && q->numer->numb && q->denom->numb) << text;
    free_quoly(&q);
    return form;
}

TEST(Quoly, AValueThatBecomesANumberIsStoredAsOne) {
    Setting setting(0, 1);
    for (const char* text :
         {"1/2+1/2", "1/2-1/2", "3/2+1/2", "2/3*3/2", "(2/3)/(2/3)", "1/2-3/2", "2*(1/2)", "(1/2)^2*4",
          "x/(2x)+1/2", "(x+1)/2-x/2-1/2", "x-x", "x*(1/x)", "(1/x)/(1/x)", "(x+1)/x-1/x", "(2x+2)/(x+1)"})
        EXPECT_EQ(form_of(text), 'n') << text;
    for (const char* text : {"1/2+1/3", "x/(2x)", "(x+1)/2-x/2", "(3x+3)/(2x+2)", "(1/(2x))*x"})
        EXPECT_EQ(form_of(text), 'r') << text;
    for (const char* text : {"x/2+x/2", "x^2/x", "x+1/x-1/x"}) EXPECT_EQ(form_of(text), 'p') << text;
    EXPECT_EQ(form_of("x/2"), 'f');
}

TEST(Quoly, TheSameObjectNeedsNoGcd) {
    Setting setting(0, 1);
    quoly x = value("(x^2+1)/(x-3)"), y = copy_of(x), q = nullptr;
    alg_c_count = 7;  // the driver clears it when it begins
    quoly_quot(x, x, &q, 0);
    EXPECT_EQ(alg_c_count, 7);
    EXPECT_EQ(shown_and_dropped(q), " 1");
    q = nullptr;
    quoly_quot(x, x, &x, 0);  // the target may be the operand
    EXPECT_EQ(alg_c_count, 7);
    EXPECT_EQ(shown_and_dropped(x), " 1");
    x = copy_of(y);
    quoly t = value("x^2-9");
    quoly_mult(x, t, &q);
    EXPECT_EQ(alg_c_count, 0);
    EXPECT_EQ(shown_and_dropped(q), " x^3 + 3x^2 + x + 3");
    q = nullptr;
    quoly_quot(x, y, &q, 0);  // an equal value of another object
    EXPECT_EQ(shown_and_dropped(q), " 1");
    free_quoly(&x), free_quoly(&y), free_quoly(&t);
}

TEST(Quoly, EqualFractionsHaveEqualParts) {
    Setting setting(0, 2);
    const char* same[][2] = {{"-1/x", "1/(0-x)"},
                             {"(0-1)/x", "(x-1)/(x-x^2)"},
                             {"(x-y)/(y-2x)", "(y-x)/(2x-y)"},
                             {"-3/(6x-3y)", "1/(y-2x)"},
                             {"(0-x)/(0-2)", "x/2"}};
    for (auto& [left, right] : same) {
        quoly a = value(left), b = value(right);
        EXPECT_TRUE(canonical(a) && canonical(b)) << left;
        EXPECT_FALSE(neg_leading_term(a->denom)) << left;
        EXPECT_TRUE(poly_equal(a->numer, b->numer)) << left << " " << right;
        EXPECT_TRUE(poly_equal(a->denom, b->denom)) << left << " " << right;
        free_quoly(&a), free_quoly(&b);
    }
}

TEST(Quoly, SignsOfFractions) {
    Setting setting(0, 1);
    EXPECT_EQ(shows("-1/x"), " -1/x");
    EXPECT_EQ(shows("1/(0-x)"), " -1/x");
    EXPECT_EQ(shows("(1 - x)/(2 - x)"), " (x - 1)/(x - 2)");
    EXPECT_EQ(shows("1/(2x)"), " 1/(2x)");
    EXPECT_EQ(shows("(2x+4)/(6x)"), " (x + 2)/(3x)");
    EXPECT_EQ(shows("x/(0-3)"), " -x/3");
    EXPECT_EQ(shows("(x^2-1)/(x-1)"), " x + 1");
    EXPECT_EQ(shows("1/x - 1/x"), " 0");
    EXPECT_EQ(shows("1/x + 1/(x+1)"), " (2x + 1)/(x^2 + x)");
    EXPECT_EQ(shows("1/(x^2-1) + 1/(2x+2)"), " 1/(2x - 2)");
    EXPECT_EQ(shows("x/(x+1) + 1/(x+1)"), " 1");
    EXPECT_EQ(shows("x/2 + x/2"), " x");
    EXPECT_EQ(shows("x/2 + 1/3"), " (3x + 2)/6");
    EXPECT_EQ(shows("x/6 + x/10"), " 4x/15");
    EXPECT_EQ(shows("(x+1)*(1/(x+1))"), " 1");
    EXPECT_EQ(shows("(x+1)/x*(x/(x+1))"), " 1");
    EXPECT_EQ(shows("2/(x+1)*3/2"), " 3/(x + 1)");
}

TEST(Quoly, ConstantDenominatorsAreDividedInModularMode) {
    Setting setting(7, 1);
    EXPECT_EQ(shows("(x+1)/3"), " -2x - 2");
    EXPECT_EQ(shows("1/(2x+2)"), " -3/(x + 1)");
    EXPECT_EQ(shows("1/3"), " -2");
    EXPECT_EQ(shows("3/(0-x)"), " -3/x");
}

TEST(Quoly, NoConstantDenominatorIsKeptOfWords) {
    for (int32_t ring : {2, 3, 7, 2147483629, 256, 65536}) {
        Setting setting(ring, 1);
        quoly n = value("x+1"), m = value(ring == 3 ? "2" : "3"), q = nullptr, back = nullptr;
        quoly_quot(n, m, &q, 0);
        EXPECT_TRUE(canonical(q) && q->denom == nullptr && !q->rat && !q->numb) << ring;
        quoly_mult(q, m, &back);
        EXPECT_TRUE(quoly_equal(back, n)) << ring;
        fast_quoly_quot(&n, m, 0);
        EXPECT_TRUE(quoly_equal(n, q) && n->denom == nullptr) << ring;
        free_quoly(&n), free_quoly(&m), free_quoly(&q), free_quoly(&back);
    }
}

TEST(Quoly, WordsOutsideModularModeTruncate) {
    Setting setting(0, 0);
    lintmode = 1;
    quoly a = nullptr, b = nullptr, q = nullptr;
    quoly_set(-7, &a);
    quoly_set(2, &b);
    quoly_quot(a, b, &q, 0);
    EXPECT_EQ(q->ncoef->lint, -3);
    quoly_set(INT32_MIN, &a);
    quoly_set(-1, &b);
    quoly_quot(a, b, &q, 0);
    EXPECT_EQ(q->ncoef->lint, INT32_MIN);
    quoly_mult(a, b, &q);
    EXPECT_EQ(q->ncoef->lint, INT32_MIN);
    quoly_sub(b, a, &q);
    EXPECT_EQ(q->ncoef->lint, INT32_MAX);
    free_quoly(&a);
    free_quoly(&b);
    free_quoly(&q);
    lintmode = 0;
}

TEST(Quoly, LaurentDenominatorsHaveNoMonomials) {
    Setting setting(0, 2, true);
    quoly q = value("x/x^2");
    EXPECT_TRUE(q->denom == nullptr && !q->numb && !q->rat);
    EXPECT_EQ(q->numer->exp, -1);
    EXPECT_TRUE(poly_eq_1(q->numer->pcoef));
    EXPECT_EQ(shown_and_dropped(q), " x^-1");
    EXPECT_EQ(shows("1/(x + x^2)"), " x^-1/(x + 1)");
    EXPECT_EQ(shows("1/(x^-1 + 1)"), " x/(x + 1)");
    EXPECT_EQ(shows("1/(2x)"), " x^-1/2");
    EXPECT_EQ(shows("x*x^-1"), " 1");
    EXPECT_EQ(shows("(x^-1 + y^-1)*x*y"), " x + y");
    EXPECT_EQ(shows("1/(x*y + x)"), " x^-1/(y + 1)");
}

TEST(Quoly, DivisionByZero) {
    for (int32_t ring : {0, 7, 6, 256}) {
        Setting setting(ring, 1);
        quoly x = value("x"), zero = value("0"), q = nullptr;
        EXPECT_TRUE(RAISES(quoly_quot(x, zero, &q, 0)));
        EXPECT_EQ(caught.code, 22);
        EXPECT_TRUE(RAISES(quoly_reciprocal(&zero)));
        EXPECT_EQ(caught.code, 22);
        EXPECT_TRUE(RAISES(quoly_mod_or_div(x, zero, &q, '|')));
        EXPECT_EQ(caught.code, 22);
        EXPECT_EQ(power("0", -1), nullptr);
        EXPECT_EQ(caught.code, 22);
        EXPECT_EQ(q, nullptr);
        EXPECT_EQ(text_of(x), " x");  // nothing has changed
        free_quoly(&x);
        free_quoly(&zero);
    }
}

TEST(Quoly, NonUnitsModuloAComposite) {
    Setting setting(6, 1);
    quoly one = value("1"), two = value("2"), x = value("2x+1"), q = nullptr;
    EXPECT_TRUE(RAISES(quoly_quot(one, two, &q, 0)));
    EXPECT_EQ(caught.code, 85);
    EXPECT_TRUE(RAISES(quoly_quot(one, x, &q, 0)));
    EXPECT_EQ(caught.code, 85);
    EXPECT_EQ(shows("1/5"), " -1");
    EXPECT_EQ(shows("(x^2-1)/(x-1)"), " x + 1");
    EXPECT_EQ(shows("2*3"), " 0");
    EXPECT_EQ(shows("(2x)*(3x)"), " 0");
    EXPECT_EQ(shows("(2x+2)/(x+1)*3"), " 0");
    free_quoly(&one);
    free_quoly(&two);
    free_quoly(&x);
}

TEST(Quoly, Powers) {
    {
        Setting setting(0, 1);
        EXPECT_EQ(shown_and_dropped(power("0", 0)), " 1");
        EXPECT_EQ(shown_and_dropped(power("x+1", 0)), " 1");
        EXPECT_EQ(shown_and_dropped(power("2/3", 3)), " 8/27");
        EXPECT_EQ(shown_and_dropped(power("2/3", -3)), " 27/8");
        EXPECT_EQ(shown_and_dropped(power("-2", -3)), " -1/8");
        EXPECT_EQ(shown_and_dropped(power("-1", -3)), " -1");
        EXPECT_EQ(shown_and_dropped(power("-1", k_max_digit)), " -1");
        EXPECT_EQ(shown_and_dropped(power("x/(x+1)", 2)), " x^2/(x^2 + 2x + 1)");
        EXPECT_EQ(shown_and_dropped(power("x", -2)), " 1/x^2");
        EXPECT_EQ(shown_and_dropped(power("-x", -3)), " -1/x^3");
        quoly q = value("x");
        number long_exponent = {};
        num_make_digit(&long_exponent, 1);
        numptr d = newnum();
        d->value = 0;
        d->next = nullptr;
        long_exponent.tail->next = d;
        long_exponent.tail = d;
        long_exponent.size = 2;
        EXPECT_TRUE(RAISES(raise_to_power(&q, &long_exponent)));
        EXPECT_EQ(caught.code, 32);
        special_free(&long_exponent);
        free_quoly(&q);
    }
    {
        Setting setting(7, 0);
        EXPECT_EQ(shown_and_dropped(power("3", 6)), " 1");
        EXPECT_EQ(shown_and_dropped(power("3", -1)), " -2");
        EXPECT_EQ(shown_and_dropped(power("3", 1000000007)), " -2");  // 1000000007 = 5 mod 6
        EXPECT_EQ(shown_and_dropped(power("0", 0)), " 1");
        EXPECT_EQ(shown_and_dropped(power("0", 5)), " 0");
        EXPECT_EQ(shown_and_dropped(power("3", INT32_MIN)), " -3");
    }
    {
        Setting setting(9, 0);  // exponents stand as they are: 2^-2 = 1/4 = 7
        EXPECT_EQ(shown_and_dropped(power("2", -2)), " -2");
        EXPECT_EQ(shown_and_dropped(power("3", 2)), " 0");
        EXPECT_EQ(shown_and_dropped(power("2", INT32_MIN)), " -2");  // the order of 2 is 6
        EXPECT_EQ(power("3", -1), nullptr);
        EXPECT_EQ(caught.code, 85);
    }
    {
        Setting setting(9, 1, true);
        EXPECT_EQ(shown_and_dropped(power("0", 0)), " 1");
        EXPECT_EQ(shown_and_dropped(power("3x", 0)), " 1");
    }
    {
        Setting setting(256, 0);
        EXPECT_EQ(shown_and_dropped(power("0", 0)), " 1");
        EXPECT_EQ(shown_and_dropped(power("3", 255)), " 1");
        EXPECT_EQ(shown_and_dropped(power("3", 256)), " 3");
    }
}

TEST(Quoly, RemainderAndQuotient) {
    auto op = [](const std::string& a, const std::string& b, char which) {
        quoly n = value(a), m = value(b), q = nullptr;
        bool failed = RAISES(quoly_mod_or_div(n, m, &q, which));
        free_quoly(&n);
        free_quoly(&m);
        return failed ? "error " + std::to_string(caught.code) : shown_and_dropped(q);
    };
    Setting setting(0, 1);
    EXPECT_EQ(op("-7", "-3", '|'), " 2");
    EXPECT_EQ(op("7", "-3", '|'), " 1");
    EXPECT_EQ(op("-7", "-3", '\\'), " 2");
    EXPECT_EQ(op("7", "-3", '\\'), " -2");
    EXPECT_EQ(op("7/2", "3", '|'), " 1/2");
    EXPECT_EQ(op("1/3", "3", '|'), "error 210");
    EXPECT_EQ(op("1/3", "1/2", '|'), "error 205");
    EXPECT_EQ(op("x^2+1", "x", '|'), " 1");
    EXPECT_EQ(op("x^2+1", "x", '\\'), " x");
    EXPECT_EQ(op("5", "x", '|'), " 5");
    EXPECT_EQ(op("(x+1)/(x^2+x+1)", "x", '|'), " 1");
}

TEST(Quoly, Floor) {
    auto floor = [](const std::string& text) {
        quoly q = value(text);
        quoly_great_int(&q);
        return shown_and_dropped(q);
    };
    Setting setting(0, 1);
    EXPECT_EQ(floor("-1/2"), " -1");
    EXPECT_EQ(floor("7/2"), " 3");
    EXPECT_EQ(floor("-7/2"), " -4");
    EXPECT_EQ(floor("5"), " 5");
    EXPECT_EQ(floor("x^3/(x+1)"), " x^2 - x + 1");
    EXPECT_EQ(floor("x+1"), " x + 1");
}

TEST(Quoly, GcdOfNumbers) {
    auto gcd_of = [](const std::string& a, const std::string& b) {
        quoly n = value(a), m = value(b);
        gcdnum(&n, &m);
        EXPECT_EQ(m, nullptr);
        return shown_and_dropped(n);
    };
    {
        Setting setting(0, 0);
        EXPECT_EQ(gcd_of("12", "-18"), " 6");
        EXPECT_EQ(gcd_of("0", "-18"), " 18");
        EXPECT_EQ(gcd_of("0", "0"), " 0");
        EXPECT_EQ(gcd_of("4/5", "6/7"), " 2");
    }
    {
        Setting setting(7, 0);
        EXPECT_EQ(gcd_of("4", "6"), " 1");
        EXPECT_EQ(gcd_of("0", "0"), " 0");
    }
    {
        Setting setting(6, 0);
        EXPECT_EQ(gcd_of("2", "4"), " 2");
    }
    {
        Setting setting(256, 0);
        EXPECT_EQ(gcd_of("2", "4"), " 1");
    }
    Setting setting(0, 0);
    quoly q = value("1229");
    nth_prime(&q);
    EXPECT_EQ(text_of(q), " 9973");
    EXPECT_TRUE(RAISES(nth_prime(&q)));
    EXPECT_EQ(caught.code, 346);
    free_quoly(&q);
}

TEST(Quoly, ComparisonOfValues) {
    Setting setting(0, 2);
    auto equal = [](const std::string& a, const std::string& b) {
        quoly p = value(a), q = value(b), minus = nullptr;
        bool same = quoly_equal(p, q);
        quoly_makeneg(q, &minus);
        EXPECT_EQ(quoly_negtive(p, minus) != 0, same) << a << " and " << b;
        free_quoly(&p), free_quoly(&q), free_quoly(&minus);
        return same;
    };
    EXPECT_TRUE(equal("2/3", "4/6"));
    EXPECT_FALSE(equal("2/3", "3/2"));
    EXPECT_FALSE(equal("2", "2/3"));
    EXPECT_FALSE(equal("x", "2/3"));
    EXPECT_TRUE(equal("x/y", "x^2/(x*y)"));
    EXPECT_FALSE(equal("x/y", "y/x"));
    EXPECT_FALSE(equal("x/y", "x"));
    EXPECT_FALSE(equal("x", "y"));
}

// ---- a gcd that is wrong -------------------------------------------------------------------------------

static poly poly_of(const std::string& text) {
    quoly q = value(text);
    poly p = nullptr;
    quoly_consume(&q, &p);
    return p;
}
static std::string text_of_poly(poly p) {
    quoly q = nullptr;
    poly_to_quoly(&p, &q);
    return shown_and_dropped(q);
}

TEST(Reduce, AWrongGcdIsRepairedAndTurnsTheFastTestsOff) {
    Setting setting(0, 1);
    Live before = value_records();
    verbose = 1;
    try_rat = rat_yes = 1;
    poly n = poly_of("x^2-1"), m = poly_of("x^2+2x+1"), wrong = poly_of("x+5"), a = nullptr, b = nullptr;
    testing::internal::CaptureStdout();
    reduce(n, m, &wrong, &a, &b);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " Warning 1. A fast probabilistic test for exact poly division has been turned off (&_t).\n");
    EXPECT_FALSE(try_rat);
    EXPECT_TRUE(rat_yes);
    EXPECT_EQ(text_of_poly(a), " x - 1");
    EXPECT_EQ(text_of_poly(b), " x + 1");
    EXPECT_EQ(text_of_poly(wrong), " x + 1");
    EXPECT_EQ(shows("(x^2-1)/(x^2+2x+1) + 1/(x^2-4)"),  // what follows is right without the test
              " (x^3 - x^2 - 3x + 5)/(x^3 + x^2 - 4x - 4)");
    EXPECT_FALSE(try_rat);
    a = b = nullptr;
    wrong = poly_of("x-1");  // divides n, not m
    testing::internal::CaptureStdout();
    reduce(n, m, &wrong, &a, &b);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " Warning 4. Another fast probabilistic test for exact poly division has been turned off.\n");
    EXPECT_FALSE(rat_yes);
    free_poly(&a);
    free_poly(&b);
    free_poly(&wrong);
    wrong = poly_of("2x+2");
    testing::internal::CaptureStdout();
    reduce(n, m, &wrong, &a, &b);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " *** Warning 5. A  fast probabilistic gcd algorithm is being retried.\n");
    EXPECT_EQ(text_of_poly(a), " x - 1");
    free_poly(&b);
    free_poly(&wrong);
    // The targets may be the operands.
    wrong = poly_of("x+1");
    reduce(n, m, &wrong, &n, &m);
    EXPECT_EQ(text_of_poly(n), " x - 1");
    EXPECT_EQ(text_of_poly(m), " x + 1");
    free_poly(&wrong);
    verbose = 0;
    try_rat = rat_yes = 1;
    EXPECT_TRUE(value_records() == before);
}

TEST(Reduce, NegativeExponentsNeverTouchTheSwitches) {
    Setting setting(0, 1, true);
    verbose = 1;
    try_rat = rat_yes = 1;
    poly n = poly_of("x - x^-1"), m = poly_of("x + 2 + x^-1"), wrong = poly_of("x+5"), a = nullptr,
         b = nullptr;
    testing::internal::CaptureStdout();
    reduce(n, m, &wrong, &a, &b);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " *** Warning 5. A  fast probabilistic gcd algorithm is being retried.\n");
    EXPECT_TRUE(try_rat && rat_yes);
    free_poly(&a), free_poly(&b), free_poly(&wrong);
    wrong = poly_of("x-1");  // divides n, not m
    testing::internal::CaptureStdout();
    reduce(n, m, &wrong, &a, &b);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " *** Warning 6. A  fast probabilistic gcd algorithm is being retried.\n");
    EXPECT_TRUE(try_rat && rat_yes);
    verbose = 0;
    quoly q = nullptr, r = nullptr;
    poly_to_quoly(&a, &q);
    poly_to_quoly(&b, &r);
    fast_quoly_quot(&q, r, 0);
    EXPECT_EQ(text_of(q), " (x - 1)/(x + 1)");
    free_quoly(&q), free_quoly(&r);
    free_poly(&n), free_poly(&m), free_poly(&wrong);
}

// ---- change of ring and of variables -------------------------------------------------------------------

/// What the text, read over Z, becomes modulo m; back: and then over Z again.
static std::string converted(const std::string& text, int32_t m, bool flags_on, bool back = false) {
    quoly q = nullptr;
    {
        Setting integers(0, 2);
        q = value(text);
    }
    std::string result;
    {
        Setting setting(m, 2);
        bool table_field = finf;
        if (table_field) set_modulus(2);
        modularmode = lintmode = flags_on;
        quoly_change_to_mod(&q);
        EXPECT_EQ(modularmode, flags_on);
        modularmode = lintmode = 1;
        if (table_field) set_modulus(m);
        EXPECT_TRUE(canonical(q)) << text;
        if (!back) {
            result = text_of(q);
        } else {
            modularmode = lintmode = flags_on;
            quoly_change_from_mod(&q);
            modularmode = lintmode = 1;
        }
        if (!back) free_quoly(&q);
    }
    if (!back) return result;
    Setting integers(0, 2);
    return shown_and_dropped(q);
}

TEST(Convert, ToAResidueRingAndBack) {
    Live before = value_records();
    for (bool flags : {false, true}) {
        EXPECT_EQ(converted("-1", 7, flags), " -1");
        EXPECT_EQ(converted("1/2", 7, flags), " -3");
        EXPECT_EQ(converted("1/7", 7, flags), " 0");
        EXPECT_EQ(converted("1/2", 6, flags), " 0");
        EXPECT_EQ(converted("100000000000000000000000", 1000003, flags), " 300009");
        EXPECT_EQ(converted("7x + 8", 7, flags), " 1");
        EXPECT_EQ(converted("7x/(y+1)", 7, flags), " 0");
        EXPECT_EQ(converted("(x+1)/(7y)", 7, flags), " 0");
        EXPECT_EQ(converted("(x+1)/(7y+1)", 7, flags), " x + 1");
        EXPECT_EQ(converted("(x+1)/(x+8)", 7, flags), " 1");
        EXPECT_EQ(converted("1/(2x+1)", 7, flags), " -3/(x - 3)");
        EXPECT_EQ(converted("1/(2x+1)", 6, flags), " 0");
        EXPECT_EQ(converted("3x + 2", 256, flags), " x");
        EXPECT_EQ(converted("6", 7, flags, true), " -1");
        EXPECT_EQ(converted("3", 7, flags, true), " 3");
        EXPECT_EQ(converted("6x + 4", 7, flags, true), " -x - 3");
        EXPECT_EQ(converted("x/(x+6)", 7, flags, true), " x/(x - 1)");
        EXPECT_EQ(converted("5x + 1", 65536, flags, true), " x + 1");
    }
    alt_form_display = 0;
    EXPECT_EQ(converted("-1", 7, false, true), " -1");  // the setting in converted() has switched it on again
    EXPECT_TRUE(value_records() == before);
}

TEST(Convert, PlainResiduesWithoutTheSymmetricDisplay) {
    quoly q = nullptr;
    {
        Setting setting(7, 1);
        alt_form_display = 0;
        q = value("6x + 4");
        quoly_change_from_mod(&q);
    }
    Setting setting(0, 1);
    EXPECT_EQ(shown_and_dropped(q), " 6x + 4");
}

static std::string with_number(const std::string& text, int32_t level, const std::string& number_text,
                               bool good) {
    quoly q = value(text), v = value(number_text);
    EXPECT_EQ(quoly_put_number(&q, level, v), good) << text;
    EXPECT_FALSE(quoly_contains_level(q, level));
    free_quoly(&v);
    return shown_and_dropped(q);
}

TEST(Convert, NumbersForVariables) {
    Live before = value_records();
    {
        Setting setting(0, 3);
        EXPECT_EQ(with_number("x^2 + 1", 1, "3", true), " 10");
        EXPECT_EQ(with_number("x^2 y + x + z", 1, "3", true), " (9y + (z + 3))");
        EXPECT_EQ(with_number("x^2 y + x + z", 2, "-1", true), " -x^2 + x + z");
        EXPECT_EQ(with_number("x z^2 + y z + 1", 3, "2", true), " 4x + (2y + 1)");
        EXPECT_EQ(with_number("x z^2 + y z + 1", 3, "0", true), " 1");
        EXPECT_EQ(with_number("y/(x-1)", 1, "3", true), " y/2");
        EXPECT_EQ(with_number("y/(x-1)", 1, "1", false), " 1");
        EXPECT_EQ(with_number("(x^2-y)/(x-1)", 2, "1", true), " x + 1");
        EXPECT_EQ(with_number("x+y", 3, "1", true), " x + y");
        EXPECT_EQ(with_number("x^2", 1, "1/2", true), " 1/4");
    }
    {
        Setting setting(0, 2, true);
        EXPECT_EQ(with_number("x^-2 + 1 + x", 1, "2", true), " 13/4");
        EXPECT_EQ(with_number("x^-2 + y", 1, "0", false), " 1");
    }
    {
        Setting setting(6, 2);
        EXPECT_EQ(with_number("y/(x+1)", 1, "1", false), " 1");
    }
    EXPECT_TRUE(value_records() == before);
}

TEST(Convert, LevelsComeAndGo) {
    Setting setting(0, 3);
    quoly q = value("(x+1)/(x-1)");
    quoly_insert_level(q, 1);
    EXPECT_EQ(text_of(q), " (y + 1)/(y - 1)");
    EXPECT_TRUE(quoly_contains_level(q, 2));
    EXPECT_FALSE(quoly_contains_level(q, 1));
    quoly_remove_level(q, 1);
    EXPECT_EQ(text_of(q), " (x + 1)/(x - 1)");
    free_quoly(&q);
}
