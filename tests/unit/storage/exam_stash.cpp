// The slug allocator, the memory figures, and the bump allocator.
#include "storage/checked.h"
#include "storage/memory.h"
#include "storage/stash.h"
#include "tests/support/support.h"

#include <cstring>
#include <set>
#include <string>
#include <vector>
using namespace tolvex;
namespace {
class Stash : public ::testing::Test {
  protected:
    void SetUp() override { test::set_up_once(); }
    stash_rec* open(int32_t size) { return opened_.emplace_back(open_stash(size, "stash of a test")); }
    void TearDown() override {
        for (stash_rec* s : opened_) endof_stash(s);
    }
    std::vector<stash_rec*> opened_;
};

TEST_F(Stash, SlugSizesAreRoundedUp) {
    EXPECT_EQ(open(1)->slug_size, 8);
    EXPECT_EQ(open(0)->slug_size, 8);
    EXPECT_EQ(open(8)->slug_size, 8);
    EXPECT_EQ(open(24)->slug_size, 24);
    EXPECT_EQ(open(25)->slug_size, 32);
}

TEST_F(Stash, TheFiveStashesOfTheProgram) {
    const std::vector<std::pair<const stash_rec*, int32_t>> sizes = {
        {polystash, 24}, {quolystash, 40}, {numstash, 16}, {imagstash, 32}, {colmstash, 24}};
    for (auto [s, size] : sizes) EXPECT_EQ(s->slug_size, size);
    EXPECT_STREQ(polystash->name, "stash of polynodes");
    EXPECT_STREQ(quolystash->name, "stash of quolynodes");
    EXPECT_STREQ(numstash->name, "stash of numnodes");
    EXPECT_STREQ(imagstash->name, "stash of numbers");
    EXPECT_STREQ(colmstash->name, "stash of colms");
    EXPECT_STREQ(primal_stash.name, "storage allocator");
    EXPECT_EQ(primal_stash.slug_size, 56);
}

int64_t stashes_in_ring() {
    int64_t count = 0;
    for (stash_rec* p = primal_stash.next; p != &primal_stash; p = p->next) count++;
    return count;
}

TEST_F(Stash, ANewStashStandsNextToTheAnchorOfTheRing) {
    int64_t before = stashes_in_ring();
    stash_rec* s = open(24);
    EXPECT_EQ(primal_stash.next, s);
    EXPECT_EQ(s->prev, &primal_stash);
    EXPECT_EQ(s->next->prev, s);
    EXPECT_EQ(s->n_blocks, 0);
    EXPECT_EQ(s->n_slugs, 0);
    EXPECT_EQ(s->slugs_used, 0);
    EXPECT_EQ(stashes_in_ring(), before + 1);
}

TEST_F(Stash, ABlockGivesAsManySlugsAsFit) {
    for (int32_t size : {8, 16, 24, 32, 40, 56, 1000, k_block_bytes}) {
        stash_rec* s = open(size);
        auto* first = static_cast<unsigned char*>(get_slug(s));
        int32_t count = k_block_bytes / s->slug_size;
        EXPECT_EQ(s->n_slugs, count) << size;
        EXPECT_EQ(s->n_blocks, 1);
        EXPECT_EQ(first, s->blocks->space + (count - 1) * s->slug_size) << "at the last offset that fits";
    }
#ifndef TOLVEX_SMALL_LIMITS
    stash_rec* s = open(24);
    get_slug(s);
    EXPECT_EQ(s->n_slugs, 21845);
#endif
}

TEST_F(Stash, AddressesOfAFreshBlockGoDown) {
    stash_rec* s = open(24);
    auto* previous = static_cast<unsigned char*>(get_slug(s));
    for (int32_t i = 1; i < k_block_bytes / 24; i++) {
        auto* next = static_cast<unsigned char*>(fresh_slug(s));
        ASSERT_EQ(next, previous - 24);
        previous = next;
    }
    EXPECT_EQ(previous, s->blocks->space);
    EXPECT_EQ(s->slugs_used, s->n_slugs);
    get_slug(s);
    EXPECT_EQ(s->n_blocks, 2) << "a full block is followed by another";
}

TEST_F(Stash, AReturnedSlugIsTheNextOneHandedOut) {
    stash_rec* s = open(16);
    void* a = get_slug(s);
    void* b = get_slug(s);
    EXPECT_EQ(s->slugs_used, 2);
    free_slug(s, a);
    EXPECT_EQ(s->slugs_used, 1);
    EXPECT_EQ(get_slug(s), a);
    free_slug(s, b);
    EXPECT_EQ(fresh_slug(s), b);
}

TEST_F(Stash, ANilStashGivesNil) { EXPECT_EQ(get_slug(nullptr), nullptr); }

TEST_F(Stash, SpareBlocksAreTakenFirst) {
    EXPECT_EQ(more_mem(), 1);
    stashblock* spare = extra_blocks;
    stash_rec* s = open(24);
    get_slug(s);
    EXPECT_EQ(s->blocks, spare);
    EXPECT_NE(extra_blocks, spare);
}

TEST_F(Stash, AClosedStashLeavesItsBlocks) {
    stash_rec* s = open_stash(24, "short-lived");
    stash_rec* neighbour = s->next;
    for (int32_t i = 0; i <= k_block_bytes / 24; i++) get_slug(s);
    ASSERT_EQ(s->n_blocks, 2);
    int64_t spare = 0, after = 0;
    for (stashblock* b = extra_blocks; b != nullptr; b = b->pblock) spare++;
    int32_t records = primal_stash.slugs_used;
    endof_stash(s);
    for (stashblock* b = extra_blocks; b != nullptr; b = b->pblock) after++;
    EXPECT_EQ(after, spare + 2);
    EXPECT_EQ(primal_stash.slugs_used, records - 1);
    EXPECT_EQ(primal_stash.next, neighbour);
    EXPECT_EQ(neighbour->prev, &primal_stash);
}

TEST_F(Stash, ASlugThatFitsNoBlockEndsTheStatement) {
    stash_rec* s = open(k_block_bytes + 8);
    testing::internal::CaptureStdout();
    EXPECT_TRUE(RAISES(get_slug(s)));
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "out of memory while trying to accesss stash stash of a test\n"
              "STASH NAME: number of blocks, number of slugs, slugs_used, slug_size\n");
    EXPECT_EQ(s->n_blocks, 0);
}

TEST_F(Stash, Statistics) {
    stash_rec* s = open(24);
    get_slug(s);
    testing::internal::CaptureStdout();
    print_stash_stats(nullptr);
    print_stash_stats(s);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "stash of a test: \t1, \t" + std::to_string(k_block_bytes / 24) + ", \t1, \t24\n");
}

// ---- memory figures ------------------------------------------------------------------------------------

class Memory : public Stash {
  protected:
    void TearDown() override {
        totalavailablememory = 0;
        Stash::TearDown();
    }
};

uint64_t bytes_in_use() {
    uint64_t sum = 0;
    for (const stash_rec* s : {polystash, quolystash, numstash, imagstash, colmstash})
        sum += static_cast<uint64_t>(s->slugs_used) * static_cast<uint64_t>(s->slug_size);
    return sum;
}

TEST_F(Memory, AvailableMemoryIsTheBudgetLessTheSlugsInUse) {
    totalavailablememory = 0;
    EXPECT_EQ(memavail(), 0u) << "no budget has been read yet";
    totalavailablememory = 900000000;
    EXPECT_EQ(memavail(), 900000000 - bytes_in_use());
    void* p = get_slug(quolystash);
    EXPECT_EQ(memavail(), 900000000 - bytes_in_use());
    totalavailablememory = bytes_in_use();
    EXPECT_EQ(memavail(), 0u);
    totalavailablememory = bytes_in_use() + 1;
    EXPECT_EQ(memavail(), 1u);
    totalavailablememory = bytes_in_use() / 2;
    EXPECT_EQ(memavail(), 0u) << "never below 0";
    free_slug(quolystash, p);
}

TEST_F(Memory, FiguresExceed32Bits) {
    int32_t used = polystash->slugs_used;
    polystash->slugs_used = 2000000000;
    totalavailablememory = UINT64_C(100) << 30;
    EXPECT_EQ(memavail(), totalavailablememory - bytes_in_use());
    EXPECT_GE(bytes_in_use(), UINT64_C(48000000000));
    polystash->slugs_used = used;
}

TEST_F(Memory, TheFallbackBudget) {
    for (uint64_t budget : {0u, 1u, 9u}) {
        totalavailablememory = budget;
        EXPECT_EQ(find_total_available_memory(), 4294967296u);
        EXPECT_EQ(totalavailablememory, 4294967296u);
    }
    totalavailablememory = 10;
    EXPECT_EQ(find_total_available_memory(), 10u);
}

TEST_F(Memory, AnEmptyRequestIsNoFailure) {
    void* p = checked_malloc(0);
    EXPECT_NE(p, nullptr);
    free(p);
}

#ifndef TOLVEX_CHECKED  // the sanitizer would end the process at such a request
TEST_F(Memory, ARefusedRequestEndsTheStatement) {
    EXPECT_TRUE(RAISES(checked_malloc(SIZE_MAX / 4)));
    EXPECT_EQ(test::caught.code, -1000);
}
#endif

// ---- small words ---------------------------------------------------------------------------------------

/// Words that are never given back, kept where the leak check finds them.
int32_t* small_words(int32_t count) {
    static int32_t* kept[16];
    static size_t calls = 0;
    return kept[calls++ % std::size(kept)] = get_small(count);
}

TEST_F(Stash, SmallWordsAreHandedOutInARow) {
    int32_t* full = small_words(131072);
    memset(full, 1, 131072 * sizeof(int32_t));
    int32_t* a = small_words(10);
    EXPECT_TRUE(a < full || a >= full + 131072);
    EXPECT_EQ(small_words(20), a + 10);
    EXPECT_EQ(small_words(131072 - 30), a + 30) << "a chunk is used to its end";
    a = small_words(131000);
    int32_t* b = small_words(73);
    EXPECT_NE(b, a + 131000) << "a rest that is too small is abandoned";
    EXPECT_EQ(small_words(1), b + 73);
    EXPECT_EQ(small_words(0), small_words(0));
}
}  // namespace
