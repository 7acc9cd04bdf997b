// The typed free lists, in the release build and in the checked build, which watches releases.
#include "storage/audit.h"
#include "storage/pool.h"
#include "tests/support/support.h"

#include <set>
#include <vector>
using namespace tolvex;
namespace {
/// A pool of its own for each test: the record type is the key.
template <int> struct other_record {
    int64_t value;
    other_record* next;
};

#ifndef TOLVEX_CHECKED
struct record {
    int64_t value;
    record* next;
};
record* head = nullptr;

record* take() { return pool_pop<&record::next>(head, nullptr); }

TEST(Pool, TheLastRecordGivenBackIsTheNextTaken) {
    record *a = take(), *b = take();
    pool_push<&record::next>(head, a);
    pool_push<&record::next>(head, b);
    EXPECT_EQ(take(), b);
    EXPECT_EQ(take(), a);
    EXPECT_EQ(head, nullptr);
}

TEST(Pool, AChainKeepsItsOrder) {
    record* chain[5];
    for (record*& p : chain) p = take();
    for (int i = 0; i + 1 < 5; i++) chain[i]->next = chain[i + 1];
    pool_splice<&record::next>(head, chain[0], chain[4]);
    EXPECT_EQ(head, chain[0]);
    EXPECT_EQ((pool_length<&record::next>(head, 100)), 5);
    EXPECT_EQ((pool_length<&record::next>(head, 3)), 3) << "counting stops at the cap";
    for (record* p : chain) EXPECT_EQ(take(), p);
}

TEST(Pool, RecordsWithoutAStashStandSideBySide) {
    std::set<unsigned char*> seen;
    for (size_t bytes : {24u, 40u, 41u, 1024u, 1025u, 100000u}) {
        for (int i = 0; i < 100; i++) {
            auto* p = static_cast<unsigned char*>(fresh_record(bytes));
            EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 8, 0u);
            memset(p, i, bytes);
            auto above = seen.lower_bound(p);
            EXPECT_TRUE(above == seen.end() || *above >= p + bytes);
            seen.insert(p);
        }
    }
}
#endif

TEST(Pool, RecordsComeFromTheStashGiven) {
    test::set_up_once();
    using mine = other_record<1>;
    static mine* list = nullptr;
    stash_rec* s = open_stash(sizeof(mine), "stash of a test");
    std::set<mine*> seen;
    for (int i = 0; i < 100; i++) {
        mine* p = pool_pop<&mine::next>(list, s);
        p->value = i;
        p->next = nullptr;
        EXPECT_TRUE(seen.insert(p).second) << "no record is handed out twice";
    }
#ifndef TOLVEX_POOLS_DIRECT
    EXPECT_EQ(s->slugs_used, 100);
#endif
    for (mine* p : seen) pool_push<&mine::next>(list, p);
#ifndef TOLVEX_CHECKED
    EXPECT_EQ((pool_length<&mine::next>(list, 1000)), 100);
    pool_pop<&mine::next>(list, s);
    EXPECT_EQ(s->slugs_used, 100) << "a record on the list serves before a fresh slug";
#endif
}

#ifdef TOLVEX_CHECKED
TEST(Pool, LiveRecordsAreCounted) {
    using mine = other_record<2>;
    static mine* list = nullptr;
    mine* p[3];
    for (mine*& q : p) q = pool_pop<&mine::next>(list, nullptr);
    EXPECT_EQ(pool_counters<mine>.live, 3);
    p[0]->next = p[1];
    p[1]->next = nullptr;
    pool_splice<&mine::next>(list, p[0], p[1]);
    EXPECT_EQ(pool_counters<mine>.live, 1);
    pool_push<&mine::next>(list, p[2]);
    EXPECT_EQ(pool_counters<mine>.live, 0);
}

#ifndef TOLVEX_POOLS_DIRECT
TEST(Pool, AReleasedRecordRestsBeforeItIsHandedOutAgain) {
    using mine = other_record<3>;
    static mine* list = nullptr;
    std::vector<mine*> order;
    for (int i = 0; i < k_quarantine + 10; i++) {
        mine* p = pool_pop<&mine::next>(list, nullptr);
        pool_push<&mine::next>(list, p);
        if (i < k_quarantine) {
            for (size_t j = 0; j < order.size() && j < 3; j++) ASSERT_NE(order[j], p);
        }
        order.push_back(p);
    }
    EXPECT_EQ((pool_length<&mine::next>(list, 100000)), k_quarantine > 0 ? 10 - 9 : 1);
}
#endif

#if defined(__SANITIZE_ADDRESS__) && !defined(TOLVEX_POOLS_DIRECT)
TEST(PoolDeathTest, ATouchAfterReleaseIsReported) {
    using mine = other_record<4>;
    static mine* list = nullptr;
    mine* p = pool_pop<&mine::next>(list, nullptr);
    p->value = 5;
    pool_push<&mine::next>(list, p);
    EXPECT_DEATH(p->value = 6, "use-after-poison");
}

TEST(PoolDeathTest, ASecondReleaseIsReported) {
    using mine = other_record<5>;
    static mine* list = nullptr;
    mine* p = pool_pop<&mine::next>(list, nullptr);
    pool_push<&mine::next>(list, p);
    EXPECT_DEATH((pool_push<&mine::next>(list, p)), "CHECK failed");
}
#endif

TEST(PoolDeathTest, NilIsNoRecord) {
    using mine = other_record<6>;
    static mine* list = nullptr;
    EXPECT_DEATH((pool_push<&mine::next>(list, static_cast<mine*>(nullptr))), "CHECK failed");
}

TEST(Audit, LostRecordsAreReportedOnce) {
    using mine = other_record<7>;
    static mine* list = nullptr;
    static mine* kept = nullptr;
    audit_pool<mine>("records of a test");
    audit_roots([] {
        if (kept != nullptr) audit_reach<mine>();
    });
    audit_rebase();
    EXPECT_TRUE(audit_compare("nothing"));
    kept = pool_pop<&mine::next>(list, nullptr);
    EXPECT_TRUE(audit_compare("keeping")) << "what a walker reaches is not lost";
    mine* lost = pool_pop<&mine::next>(list, nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(audit_compare("losing"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "*** leak audit: records of a test: 1 records after losing\n");
    EXPECT_TRUE(audit_compare("the report"));
    pool_push<&mine::next>(list, lost);
    audit_rebase();
    pool_push<&mine::next>(list, kept);
    kept = nullptr;
    EXPECT_TRUE(audit_compare("giving back"));
}
#endif
}  // namespace
