// Bit sets: the reversed word order, ranges, and members that do not exist.
#include "storage/bitset.h"
#include "storage/types.h"

#include <gtest/gtest.h>
using namespace tolvex;
namespace {
TEST(BitSet, TheWordOrderIsReversed) {
    PSet_BigSet s;
    PSet_Init(s, 16);
    for (uint16_t w : s) EXPECT_EQ(w, 0);
    PSet_Set(s, 16, 0);
    EXPECT_EQ(s[15], 1);
    PSet_Set(s, 16, 17);
    EXPECT_EQ(s[14], 2);
    PSet_Set(s, 16, 255);
    EXPECT_EQ(s[0], 0x8000);
}

TEST(BitSet, MembersAndNoOthers) {
    for (int32_t n : {1, 2, 5, 16}) {
        uint16_t s[16];
        PSet_Init(s, n);
        for (int32_t e = 0; e < 16 * n; e += 7) PSet_Set(s, n, e);
        for (int32_t e = -40; e < 16 * n + 40; e++)
            EXPECT_EQ(PSet_Test(s, n, e), e >= 0 && e < 16 * n && e % 7 == 0) << n << " " << e;
    }
}

TEST(BitSet, Ranges) {
    PSet_BigSet s;
    PSet_Init(s, 16);
    PSet_SetRange(s, 16, 'a', 'z');
    for (int32_t e = 0; e < 256; e++) EXPECT_EQ(PSet_Test(s, 16, e), e >= 'a' && e <= 'z');
    PSet_Init(s, 16);
    PSet_SetRange(s, 16, 5, 4);
    for (int32_t e = 0; e < 256; e++) EXPECT_FALSE(PSet_Test(s, 16, e));
    PSet_SetRange(s, 16, 255, 255);
    EXPECT_TRUE(PSet_Test(s, 16, 255));
}

TEST(Words, SmallestHelpers) {
    EXPECT_EQ(minn(-3, 2), -3);
    EXPECT_EQ(maxx(-3, 2), 2);
    EXPECT_EQ(maxx64(INT64_C(1) << 40, 7), INT64_C(1) << 40);
    EXPECT_EQ(Iminn(-5, 5), -5);
    EXPECT_FALSE(power_of_two(0));
    EXPECT_FALSE(power_of_two(6));
    for (int k = 0; k < 32; k++) EXPECT_TRUE(power_of_two(1u << k));
}
}  // namespace
