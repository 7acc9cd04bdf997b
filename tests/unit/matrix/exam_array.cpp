// Fixed cases of named arrays: the compact store, shadowing, aliases, shapes, the array of arrays, errors.
#include "tests/unit/matrix/matrix_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
class Arrays : public ::testing::Test {
  protected:
    void SetUp() override { set_up_matrices(); }
    void TearDown() override {
        for (arrptr bucket : arr_store) ASSERT_EQ(bucket, nullptr);
        EXPECT_EQ(endarr, -1);
    }
};

void fill(arrptr a, int32_t first) {
    for (int32_t k = 0; k < a->sizearr; k++) quoly_set(first + k, dense_slot(a, k));
}
void expect_filled(arrptr a, int32_t first) {
    for (int32_t k = 0; k < a->sizearr; k++) EXPECT_EQ(word_of(*dense_slot(a, k)), first + k);
}
}  // namespace

TEST_F(Arrays, CancellingTheFirstOfThreeMovesTheOthers) {
    arrptr a = insertarr(name_of("a"), 700, 3, false);
    arrptr b = insertarr(name_of("b"), 1500, 1, true);
    arrptr c = insertarr(name_of("c"), 2, 2, false);
    fill(a, 0);
    fill(b, 10000);
    fill(c, 20000);
    EXPECT_EQ(b->start, 2100);
    EXPECT_EQ(c->stop, 3603);
    free_array(a);
    EXPECT_EQ(b->start, 0);
    EXPECT_EQ(c->start, 1500);
    expect_filled(b, 10000);
    expect_filled(c, 20000);
    EXPECT_EQ(endarr, 1503);
    EXPECT_EQ(*arp_slot(1504), nullptr);
    free_array(c);
    free_array(b);
}

TEST_F(Arrays, HolesOfManyAreClosedAtOnce) {
    arrptr a[7];
    const char* names[] = {"a", "b", "c", "d", "e", "f", "g"};
    for (int32_t i = 0; i < 7; i++) {
        a[i] = i == 3 ? sparse_create(name_of(names[i]), 9, 9, false, nullptr)
                      : insertarr(name_of(names[i]), 500 + i, 3, false);
        if (i != 3) fill(a[i], 10000 * i);
    }
    for (int32_t i : {5, 0, 2}) free_array_of_many(a[i]);
    close_holes();
    EXPECT_EQ(a[1]->start, 0);
    EXPECT_EQ(a[4]->start, 501 * 3);
    EXPECT_EQ(a[6]->start, 501 * 3 + 504 * 3);
    EXPECT_EQ(a[6]->stop, endarr);
    EXPECT_EQ(endarr, (501 + 504 + 506) * 3 - 1);
    EXPECT_EQ(*arp_slot(endarr + 1), nullptr);
    for (int32_t i : {1, 4, 6}) expect_filled(a[i], 10000 * i);
    for (int32_t i : {1, 3, 4, 6}) free_array_of_many(a[i]);
    close_holes();
}

TEST_F(Arrays, ANewerArrayHidesAnOlderOne) {
    arrptr first = insertarr(name_of("a"), 2, 1, true);
    arrptr second = insertarr(name_of("a"), 3, 1, true);
    tokentipe name = name_of("a");
    arrptr found = nullptr;
    EXPECT_EQ(fastestlookup(name, &found), 2);
    EXPECT_EQ(found, second);
    EXPECT_EQ(name.address, hash(name.name, k_variable_buckets));
    free_array(second);
    EXPECT_EQ(fastestlookup(name, &found), 0);
    EXPECT_EQ(found, first);
    free_array(first);
    EXPECT_EQ(fastestlookup(name, &found), -1);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(ERRORS_OF(EXPECT_FALSE(array_seek(name, &found))), 1);
    EXPECT_EQ(caught.code, 28);
}

TEST_F(Arrays, Subscripts) {
    arrptr a = insertarr(name_of("a"), 2, 3, false);
    tokentipe name = name_of("a");
    int64_t index = -1;
    EXPECT_TRUE(find_place(a, 2, 3, true, name, &index));
    EXPECT_EQ(index, 5);
    EXPECT_TRUE(find_place(a, 4, 1, false, name, &index));
    EXPECT_EQ(index, 3);
    const int64_t far = INT64_MAX / 4;
    const int64_t bad[][3] = {{3, 1, 1}, {1, 4, 1},  {0, 1, 1},   {1, 0, 1},   {7, 1, 0},
                              {0, 1, 0}, {-5, 1, 0}, {far, 1, 0}, {1, far, 1}, {far, far, 1}};
    for (const auto& s : bad) {
        EXPECT_EQ(ERRORS_OF(EXPECT_FALSE(find_place(a, s[0], s[1], s[2] != 0, name, &index))), 1);
        EXPECT_EQ(caught.code, 27);
    }
    addresser = 0;
    EXPECT_TRUE(find_place(a, 0, 0, true, name, &index));
    EXPECT_EQ(index, 0);
    addresser = 1;
    free_array(a);
}

TEST_F(Arrays, ASparseArrayBeyondAWord) {
    arrptr s = sparse_create(name_of("s"), 3000, INT32_MAX, false, nullptr);
    EXPECT_EQ(s->sizearr, int64_t{3000} * INT32_MAX);
    EXPECT_EQ(columns_of(s), INT32_MAX);
    tokentipe name = name_of("s");
    int64_t index;
    EXPECT_TRUE(find_place(s, 3000, INT32_MAX, true, name, &index));
    EXPECT_EQ(index, s->sizearr - 1);
    EXPECT_EQ(row_of_place(s, index), 2999);
    EXPECT_EQ(column_of_place(s, index), INT32_MAX);
    EXPECT_EQ(place_slot(s, index), nullptr);
    EXPECT_EQ(s->start, 0);
    EXPECT_EQ(s->stop, -1);
    free_array(s);
}

TEST_F(Arrays, LimitsOfCreation) {
    const int64_t bad[][3] = {{0, 1, 27}, {1, 0, 27}, {-1, 5, 27}, {1001, 1000, 43}, {1000001, 1, 43}};
    for (const auto& s : bad) {
        EXPECT_EQ(ERRORS_OF(EXPECT_EQ(insertarr(name_of("a"), s[0], s[1], false), nullptr)), 1);
        EXPECT_EQ(caught.code, s[2]);
    }
    arrptr big[5];
    for (arrptr& a : big) a = insertarr(name_of("a"), 1000, 1000, false);
    EXPECT_EQ(ERRORS_OF(EXPECT_EQ(insertarr(name_of("b"), 120001, 1, true), nullptr)), 1);
    EXPECT_EQ(caught.code, 26);
    arrptr last = insertarr(name_of("b"), 120000, 1, true);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(endarr, k_greatest_position);
    quoly_set(5, dense_slot(last, 119999));
    free_array(big[2]);
    EXPECT_EQ(word_of(*dense_slot(last, 119999)), 5);
    for (int i : {0, 1, 3, 4}) free_array(big[i]);
    free_array(last);
}

TEST_F(Arrays, FillSparseDropsNilAndZeroAndClosesTheHole) {
    arrptr a = insertarr(name_of("a"), 2100, 2, false);
    arrptr b = insertarr(name_of("b"), 3, 1, true);
    fill(b, 7);
    quoly_set(0, dense_slot(a, 0));
    quoly_set(4, dense_slot(a, 2099));
    quoly_set(5, dense_slot(a, 2100 + 2099));
    fill_sparse(a);
    EXPECT_EQ(entries_of(a->spar, 2100), (Entries{{{2099, 1}, 4}, {{2099, 2}, 5}}));
    EXPECT_EQ(a->stop, -1);
    EXPECT_EQ(b->start, 0);
    expect_filled(b, 7);
    free_array(a);
    EXPECT_EQ(b->start, 0);
    free_array(b);
}

TEST_F(Arrays, AReshapedArrayGoesToTheEnd) {
    arrptr a = insertarr(name_of("a"), 5, 1, true);
    arrptr b = insertarr(name_of("b"), 4, 1, true);
    fill(b, 100);
    free_elements(a);
    reshape_array(a, 2, 3, false, nullptr);
    EXPECT_EQ(b->start, 0);
    EXPECT_EQ(a->start, 4);
    EXPECT_EQ(a->stop, 9);
    EXPECT_GT(a->time, b->time);
    fill(a, 200);
    expect_filled(b, 100);
    free_elements(a);
    reshape_array(a, 3, 3, false, chain_of({{{2, 3}, 9}}, 3));
    EXPECT_EQ(word_of(*place_slot(a, 8)), 9);
    EXPECT_EQ(endarr, 3);
    free_elements(a);
    reshape_array(a, 1, 1, true, nullptr);
    EXPECT_EQ(a->start, 4);
    free_array(b);
    EXPECT_EQ(a->start, 0);
    free_array(a);
}

TEST_F(Arrays, AliasesAndPlaces) {
    arrptr a = insertarr(name_of("a"), 2, 2, false);
    arrptr p = new_alias(name_of("p"), a);
    arrptr q = new_alias(name_of("q"), p);
    EXPECT_TRUE(is_alias(q));
    EXPECT_EQ(array_itself(q), a);
    EXPECT_EQ(a->aliases, 2);
    EXPECT_EQ(p->time, -a->time);
    free_alias(p);
    free_alias(q);
    EXPECT_TRUE(set_arr_arr(0, a));
    EXPECT_TRUE(set_arr_arr(k_array_places - 1, a));
    EXPECT_EQ(get_arr_arr(0), a);
    EXPECT_EQ(ERRORS_OF(EXPECT_FALSE(set_arr_arr(k_array_places, a))), 1);
    EXPECT_EQ(caught.code, 221);
    EXPECT_EQ(ERRORS_OF(EXPECT_EQ(get_arr_arr(-1), nullptr)), 1);
    free_array(a);
    EXPECT_EQ(get_arr_arr(0), nullptr);
    EXPECT_EQ(get_arr_arr(k_array_places - 1), nullptr);
}

TEST(Work, TwentyArraysAndNoMore) {
    set_up_matrices();
    int32_t p = 0;
    for (int32_t i = 1; i <= k_work_arrays; i++) {
        EXPECT_TRUE(new_worknode(&p));
        EXPECT_EQ(p, i);
        ASSERT_NE(workhead[p - 1], nullptr);
    }
    EXPECT_EQ(ERRORS_OF(EXPECT_FALSE(new_worknode(&p))), 1);
    EXPECT_EQ(caught.code, 88);
    workptr last = workhead[k_work_arrays - 1];
    for (int32_t i = 0; i < k_work_arrays; i++) free_work();
    EXPECT_EQ(first_available, 1);
    EXPECT_EQ(workhead[k_work_arrays - 1], last);
}
