// Quotients that do not exist, when the error comes back from a pushed command level: one report, and the
// value is 0 in canonical form. A denominator that cannot be made monic was reported a second time, as being
// 0.
#include "poly/poly_test.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/support/returned_errors.h"
#include "tests/unit/quoly/quoly_support.h"
using namespace tolvex;
using namespace tolvex::test;

TEST(UndefinedQuotients, NonUnitsModuloAComposite) {
    for (int32_t m : {6, 2147483646}) {
        Setting setting(m, 2);
        const char* pairs[][2] = {{"1", "2"}, {"x + 1", "2"}, {"x", "2*x + 1"}, {"5", "2*x*y + x"}};
        for (auto& pair : pairs) {
            quoly n = value(pair[0]), d = value(pair[1]), q = nullptr;
            EXPECT_EQ(ERRORS_OF(quoly_quot(n, d, &q, 0)), 1) << pair[0] << " by " << pair[1];
            EXPECT_EQ(caught.code, 85);
            EXPECT_TRUE(quoly_iszero(q) && q->numb && canonical(q)) << text_of(q);
            EXPECT_EQ(ERRORS_OF(quoly_reciprocal(&d)), 1) << pair[1];
            EXPECT_EQ(caught.code, 85);
            EXPECT_TRUE(quoly_iszero(d) && d->numb && canonical(d)) << text_of(d);
            free_quoly(&n), free_quoly(&d), free_quoly(&q);
        }
    }
}

TEST(UndefinedQuotients, DivisionByZero) {
    for (int32_t m : {0, 7, 6, 256}) {
        Setting setting(m, 1);
        quoly zero = value("0"), q = nullptr;
        for (const char* text : {"1", "x + 1"}) {
            quoly n = value(text);
            EXPECT_EQ(ERRORS_OF(quoly_quot(n, zero, &q, 0)), 1);
            EXPECT_EQ(caught.code, 22);
            EXPECT_TRUE(canonical(q));
            for (char which : {'\\', '|'}) {
                EXPECT_EQ(ERRORS_OF(quoly_mod_or_div(n, zero, &q, which)), 1);
                EXPECT_EQ(caught.code, 22);
                EXPECT_TRUE(quoly_iszero(q) && canonical(q));
            }
            free_quoly(&n);
        }
        free_quoly(&zero), free_quoly(&q);
    }
}

TEST(UndefinedQuotients, RemaindersModuloAComposite) {
    Setting setting(6, 2);
    quoly n = value("x^3*y + x^2 + 1"), q = nullptr;
    for (const char* text : {"2*x + 1", "2*x*y + 1", "3*y*x + x"}) {
        quoly m = value(text);
        for (char which : {'\\', '|'}) {
            EXPECT_EQ(ERRORS_OF(quoly_mod_or_div(n, m, &q, which)), 1) << text;
            EXPECT_EQ(caught.code, 85);
            EXPECT_TRUE(quoly_iszero(q) && canonical(q)) << text_of(q);
        }
        free_quoly(&m);
    }
    free_quoly(&n), free_quoly(&q);
}
