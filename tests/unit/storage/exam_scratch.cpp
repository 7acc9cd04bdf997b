// The stack of scratch memory: alignment, marks, large blocks, reuse.
#include "storage/checked.h"
#include "storage/scratch.h"
#include "tests/support/support.h"

#include <cstring>
#include <vector>
using namespace tolvex;
namespace {
constexpr int64_t k_mib = 1 << 20;

TEST(Scratch, ArraysAreAlignedAndDisjoint) {
    ScratchMark mark = scratch_mark();
    std::vector<std::pair<unsigned char*, int64_t>> arrays;
    for (int64_t n : {0, 1, 63, 64, 65, 1000, 100000}) {
        auto* p = scratch_array<unsigned char>(n);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u);
        memset(p, static_cast<int>(arrays.size() + 1), static_cast<size_t>(n));
        arrays.emplace_back(p, n);
    }
    for (size_t i = 0; i < arrays.size(); i++)
        for (int64_t j = 0; j < arrays[i].second; j++) ASSERT_EQ(arrays[i].first[j], i + 1);
    scratch_release(mark);
}

TEST(Scratch, ReleasedMemoryIsTakenAgain) {
    scratch_array<int>(1);
    ScratchMark mark = scratch_mark();
    int* a = scratch_array<int>(100);
    ScratchMark inner = scratch_mark();
    scratch_array<int>(1000);
    scratch_release(inner);
    int* b = scratch_array<int>(7);
    scratch_release(mark);
    EXPECT_NE(a, b);
    EXPECT_EQ(scratch_array<int>(100), a);
    scratch_release(mark);
}

TEST(Scratch, AddressesStayWhereTheyAreWhenTheStackGrows) {
    ScratchMark mark = scratch_mark();
    std::vector<int64_t*> arrays;
    for (int64_t i = 0; i < 60; i++) {
        arrays.push_back(scratch_array<int64_t>(k_mib / 8));
        arrays.back()[0] = arrays.back()[k_mib / 8 - 1] = i;
    }
    for (int64_t i = 0; i < 60; i++) {
        ASSERT_EQ(arrays[static_cast<size_t>(i)][0], i);
        ASSERT_EQ(arrays[static_cast<size_t>(i)][k_mib / 8 - 1], i);
    }
    scratch_release(mark);
}

TEST(Scratch, ReleaseCrossesSeveralBlocks) {
    scratch_array<char>(1);
    ScratchMark mark = scratch_mark();
    char* first = scratch_array<char>(10);
    for (int round = 0; round < 3; round++) {
        scratch_release(mark);
        EXPECT_EQ(scratch_array<char>(10), first);
        for (int64_t size : {5, 11, 23, 60}) {
            char* p = scratch_array<char>(size * k_mib);
            p[0] = p[size * k_mib - 1] = 1;
        }
    }
    scratch_release(mark);
}

TEST(Scratch, AKeptBlockThatIsTooSmallIsReplacedWithThoseAboveIt) {
    ScratchMark mark = scratch_mark();
    scratch_array<char>(9 * k_mib);
    scratch_array<char>(20 * k_mib);
    scratch_release(mark);
    char* p = scratch_array<char>(100 * k_mib);  // larger than the kept block: the leak check watches
    p[0] = p[100 * k_mib - 1] = 1;
    scratch_release(mark);
}

TEST(Scratch, VeryLargeBlocksGoBack) {
    ScratchMark mark = scratch_mark();
    for (int i = 0; i < 3; i++) {
        char* p = scratch_array<char>(300 * k_mib);
        p[0] = p[300 * k_mib - 1] = 1;
        char* q = scratch_array<char>(10);
        q[0] = 2;
        scratch_release(mark);
    }
    EXPECT_NE(scratch_array<char>(10), nullptr);
    scratch_release(mark);
}

TEST(Scratch, AMarkOfTheEmptyStackReleasesAll) {
    scratch_array<char>(8 * k_mib);
    scratch_release({nullptr, 0});
    char* a = scratch_array<char>(8);
    scratch_release({nullptr, 0});
    EXPECT_EQ(scratch_array<char>(8), a);
    scratch_release({nullptr, 0});
}

#if defined(TOLVEX_CHECKED) && defined(__SANITIZE_ADDRESS__)
TEST(ScratchDeathTest, ATouchAfterReleaseIsReported) {
    ScratchMark mark = scratch_mark();
    char* p = scratch_array<char>(100);
    p[99] = 1;
    scratch_release(mark);
    EXPECT_DEATH(p[50] = 1, "use-after-poison");
}
#endif
}  // namespace
