// Values that are given back later: what waits goes back whole, in the shape that its numbers had.
#include "numbers/ring_switch.h"
#include "poly/poly_basic.h"
#include "tests/unit/quoly/quoly_support.h"

#include <vector>
using namespace tolvex;
using namespace tolvex::test;

namespace {
constexpr int32_t k_many = 700000;  // more terms than go back in one call

poly long_poly(int32_t terms) {
    poly head = nullptr;
    polyptrr at = &head;
    for (int32_t e = terms; e > 0; e--) {
        poly c = nullptr;
        poly_set(1 + e % 1000, &c);
        new_term(at, e, c);
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}
}  // namespace

TEST(Waiting, ALongPolynomialGoesBackInPieces) {
    for (int32_t ring : {0, 32003}) {
        Setting setting(ring, 1);
        Live before = value_records();
        poly p = long_poly(k_many);
        free_poly(&p);
        EXPECT_EQ(p, nullptr);
        EXPECT_NE(polywait, nullptr) << "the rest waits";
        int32_t rounds = 0;
        while (free_waiting(1000)) rounds++;
        EXPECT_GT(rounds, 100);
        EXPECT_EQ(polywait, nullptr);
        EXPECT_EQ(value_records(), before);
    }
}

TEST(Waiting, WhatWaitsIsUsedBeforeFreshMemory) {
    Setting setting(0, 1);
    poly p = long_poly(k_many);
    free_poly(&p);
    ASSERT_NE(polywait, nullptr);
    int32_t used = polystash->slugs_used;
    p = long_poly(k_many);
#ifndef TOLVEX_POOLS_DIRECT
    EXPECT_LT(polystash->slugs_used, used + 10000);
#endif
    EXPECT_EQ(polywait, nullptr);
    free_poly(&p);
    while (free_waiting(k_many)) {
    }
}

TEST(Waiting, ValuesKeepTheShapeOfTheirNumbers) {
    Live before = value_records();
    {
        Setting integers(0, 2);
        std::vector<quoly> values;
        for (int32_t i = 0; i < 40000; i++)
            values.push_back(value(i % 3 == 0   ? "x/(y + 1)"
                                   : i % 3 == 1 ? "123456789012345678901234567890"
                                                : "x^2 + 3"));
        ValueRelease release;
        for (quoly& q : values) release(&q);
        EXPECT_NE(quolywait, nullptr);
        RingState rational = ring_save();
        ring_enter_prime(32003);  // they are chains all the same
        EXPECT_TRUE(free_waiting_quolys(100));
        EXPECT_FALSE(free_waiting_quolys(INT64_MAX));
        ring_restore(rational);
    }
    EXPECT_EQ(value_records(), before);
}
