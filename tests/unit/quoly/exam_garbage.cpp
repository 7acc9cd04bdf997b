// The measures of the free lists and the report over them.
#include "poly/poly.h"
#include "quoly/garbage.h"
#include "storage/memory.h"
#include "storage/stash.h"
#include "tests/support/random_poly.h"

#include <string>
#include <vector>
using namespace tolvex;
namespace {
std::string report(int32_t x) {
    testing::internal::CaptureStdout();
    garbage(x);
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

/// What the memory figures are before and after records of each kind are taken and given back.
class Garbage : public ::testing::Test {
  protected:
    void SetUp() override {
        test::set_up_once();
        saved_ = {numhead, imhead, polygarb, quolygarb};
        numhead = nullptr, imhead = nullptr, polygarb = nullptr, quolygarb = nullptr;
    }
    void TearDown() override {
        numhead = saved_.num, imhead = saved_.im, polygarb = saved_.p, quolygarb = saved_.q;
        totalavailablememory = 0;
    }
    struct Lists {
        numptr num;
        imptr im;
        poly p;
        quoly q;
    } saved_;
};

/// A list of `count` records that belong to this test.
template <auto link, class R> R* list_of(std::vector<R>& records, size_t count) {
    records.resize(count);
    for (size_t i = 0; i < count; i++) records[i].*link = i + 1 < count ? &records[i + 1] : nullptr;
    return count > 0 ? records.data() : nullptr;
}

TEST_F(Garbage, EmptyListsHoldNothing) {
    EXPECT_EQ(garbsize(), 0);
    EXPECT_EQ(fast_garbsize(), 0);
    EXPECT_EQ(med_garbsize(), 0);
    EXPECT_EQ(big_garbsize(), 0);
}

TEST_F(Garbage, EachMeasureHasItsCaps) {
    std::vector<numnode> nums;
    std::vector<number> ims;
    std::vector<polynode> polys;
    std::vector<quolynode> quolys;
    auto measure = [&](int64_t (*size)(), size_t n, size_t i, size_t p, size_t q) {
        numhead = list_of<&numnode::next>(nums, n);
        imhead = list_of<&number::imag>(ims, i);
        polygarb = list_of<&polynode::next>(polys, p);
        quolygarb = list_of<&quolynode::next>(quolys, q);
        return size();
    };
    EXPECT_EQ(measure(garbsize, 10, 20, 30, 40), 10 * 16 + 20 * 32 + 30 * 24 + 40 * 40);
    EXPECT_EQ(measure(garbsize, 1000005, 0, 0, 200000), 1000005 * 16 + 200000 * 40);
    EXPECT_EQ(measure(fast_garbsize, 60000, 0, 0, 0), 60000 * 16);
    EXPECT_EQ(measure(fast_garbsize, 70000, 0, 0, 0), 60001 * 16);
    EXPECT_EQ(measure(fast_garbsize, 0, 100005, 100005, 0), 100001 * (32 + 24));
    EXPECT_EQ(measure(fast_garbsize, 0, 0, 0, 40000), 1200040);
    EXPECT_EQ(measure(med_garbsize, 1000005, 0, 0, 0), 1000001 * 16);
    EXPECT_EQ(measure(med_garbsize, 0, 1000000, 1000005, 0), 1000000 * 32 + 1000001 * 24);
    EXPECT_EQ(measure(med_garbsize, 0, 0, 0, 100005), 4000040);
    EXPECT_EQ(measure(big_garbsize, 1000005, 0, 0, 100005), 1000001 * 16) << "quolynodes are not counted";
    EXPECT_EQ(measure(big_garbsize, 0, 0, 1000005, 0), 1000005 * 24);
}

TEST_F(Garbage, FreedRecordsAreGarbageAndStayUsed) {
    totalavailablememory = UINT64_C(1) << 40;
    constexpr int k_records = 5000;  // more than a quarantine holds
    std::vector<poly> taken(k_records);
    for (poly& p : taken) newpoly(&p);
    uint64_t available = memavail();
    int64_t free_before = garbsize();
    for (poly p : taken) free_node(p);
    EXPECT_EQ(memavail(), available) << "a freed record does not go back to its stash";
#ifndef TOLVEX_POOLS_DIRECT
    EXPECT_GT(garbsize(), free_before);
#endif
}

#if !defined(TOLVEX_CHECKED)  // there, freed records rest before they are garbage
TEST_F(Garbage, AFreedPolynomialIsGarbageAndStaysUsed) {
    totalavailablememory = UINT64_C(1) << 40;
    test::use_integers();
    std::mt19937_64 rng(3);
    int64_t garbage_before = garbsize();
    uint64_t all = memavail();
    poly p = test::dense_poly(rng, 99, test::Coefs::digit);
    uint64_t available = memavail();
    EXPECT_EQ(all - available, 199u * 24 + 100 * (32 + 16)) << "99 terms over leaves and a last leaf";
    EXPECT_EQ(garbsize(), garbage_before);
    free_poly(&p);
    EXPECT_EQ(memavail(), available);
    EXPECT_EQ(garbsize(), garbage_before + static_cast<int64_t>(all - available));
}
#endif

TEST_F(Garbage, NilIsFreedWithoutHarm) {
    poly p = nullptr;
    quoly q = nullptr;
    free_poly(&p);
    free_quoly(&q);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(q, nullptr);
}

TEST_F(Garbage, TheReport) {
    std::vector<numnode> nums;
    std::vector<number> ims;
    std::vector<polynode> polys;
    std::vector<quolynode> quolys;
    numhead = list_of<&numnode::next>(nums, 2);
    imhead = list_of<&number::imag>(ims, 1);
    polygarb = list_of<&polynode::next>(polys, 3);
    quolygarb = list_of<&quolynode::next>(quolys, 4);
    nums[0].value = 17, nums[1].value = -3;
    for (int i = 0; i < 3; i++) polys[static_cast<size_t>(i)].exp = 9 - i;
    nameptr names = name_garb;
    polypt variables = pt_garb;
    name_garb = nullptr, pt_garb = nullptr;
    int64_t tables = size_data_strucs;
    size_data_strucs = 1000;

    const std::string head = "num count: 2, 16\nim count: 1, 32\n",
                      middle = "poly count: 3, 24\nquoly count: 4, 40\n";
    EXPECT_EQ(report('g'), head + middle + "total garbage: 296\nsystem data size: 1000\ntotal size: 1296\n");
    EXPECT_EQ(report('G'), "17\n-3\n" + head + "9\n8\n7\n" + middle +
                               "total garbage: 296\nsystem data size: 1000\ntotal size: 1296\n");

    garbage_provide(GarbageRow::vars, {[]() -> int64_t { return 5; }, 10, [] { puts("x"); }});
    garbage_provide(GarbageRow::arrays, {[]() -> int64_t { return 2; }, 104, nullptr});
    garbage_provide(GarbageRow::conds, {[]() -> int64_t { return 0; }, 8, nullptr});
    garbage_provide(GarbageRow::work_arrays, {[]() -> int64_t { return 3; }, 0, nullptr});
    garbage_provide_gcd_stash([]() -> int64_t { return 500; });
    EXPECT_EQ(report('g'), head + "var count: 5\narray count: 2, 104\n" + middle +
                               "work arrays: 2, 4000000\ntotal garbage: 8000554\n"
                               "system data size: 1500\ntotal size: 8002054\n");
    EXPECT_NE(report('G').find("32\nx\nvar count: 5\n"), std::string::npos);

    for (auto row : {GarbageRow::vars, GarbageRow::arrays, GarbageRow::conds, GarbageRow::work_arrays})
        garbage_provide(row, {});
    garbage_provide_gcd_stash(nullptr);
    name_garb = names, pt_garb = variables;
    size_data_strucs = tables;
}
}  // namespace
