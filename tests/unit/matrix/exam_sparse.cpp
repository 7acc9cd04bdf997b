// Fixed cases of sparse matrices: blocks of 2048 rows, single entries, predicates.
#include "poly/poly_basic.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_quot.h"
#include "tests/unit/matrix/matrix_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
quoly variable(int32_t level) {
    poly p = nullptr;
    quoly q = nullptr;
    base_poly(&p, level);
    poly_to_quoly(&p, &q);
    return q;
}

class Predicates : public ::testing::Test {
  protected:
    void SetUp() override {
        set_up_matrices();
        for (const char* name : {"y", "x"}) {  // x in front of y
            tokentipe t = name_of(name);
            insert_poly_name(t, false);
        }
        sparse_init(&s, 3);
    }
    void TearDown() override {
        free_sparse(&s, 3, 1);
        delete_poly_name(1);
        delete_poly_name(1);
    }
    sparseptr s = nullptr;
};
}  // namespace

TEST(Sparse, TwoBlocks) {
    set_up_matrices();
    sparseptr s = nullptr;
    sparse_init(&s, 2049);
    ASSERT_NE(s->next, nullptr);
    EXPECT_EQ(s->next->next, nullptr);
    sparse_insert(s, 2048, 3, number_value(7));
    EXPECT_EQ(s->next->indx[0]->coord, 3);
    EXPECT_EQ(sparse_row(s, 2048), &s->next->indx[0]);
    EXPECT_EQ(sparse_row(s, 2047), &s->indx[2047]);
    SparseWalk w = walk_sparse(s, 2049);
    int32_t rows = 0, entries = 0;
    while (colm_ptrptr t = next_row(w)) {
        EXPECT_EQ(w.row, rows++);
        entries += *t != nullptr;
        EXPECT_EQ(w.block, w.row < 2048 ? s : s->next);
    }
    EXPECT_EQ(rows, 2049);
    EXPECT_EQ(entries, 1);
    free_sparse(&s, 2049, 1);
    EXPECT_EQ(s, nullptr);
}

TEST(Sparse, EntriesAreReplacedAndZeroIsNone) {
    set_up_matrices();
    sparseptr s = nullptr;
    sparse_init(&s, 2);
    sparse_insert(s, 1, 5, number_value(3));
    sparse_insert(s, 1, 2, number_value(4));
    sparse_insert(s, 1, 9, number_value(0));
    EXPECT_EQ(entries_of(s, 2), (Entries{{{1, 2}, 4}, {{1, 5}, 3}}));
    sparse_insert(s, 1, 5, number_value(8));
    EXPECT_EQ(word_of(spar_retrieve(s, 2, 5)), 8);
    EXPECT_EQ(spar_retrieve(s, 2, 4), quol_num_0);
    EXPECT_EQ(spar_retrieve(s, 1, 1), quol_num_0);
    sparse_insert(s, 1, 2, number_value(0));
    EXPECT_EQ(entries_of(s, 2), (Entries{{{1, 5}, 8}}));
    EXPECT_EQ(sparse_entries(s, 2), 1);
    EXPECT_FALSE(sparse_iszero(s, 2));
    free_sparse_data(s, 2);
    EXPECT_TRUE(sparse_iszero(s, 2));
    free_sparse(&s, 2, 1);
}

TEST(Sparse, ABorrowedChainIsNotFreed) {
    set_up_matrices();
    sparseptr s = chain_of({{{0, 1}, 5}}, 1), borrowed = s;
    free_sparse(&borrowed, 1, 0);
    EXPECT_EQ(borrowed, nullptr);
    EXPECT_EQ(word_of(spar_retrieve(s, 1, 1)), 5);
    free_sparse(&s, 1, 1);
}

TEST_F(Predicates, NumbersOnly) {
    sparse_insert(s, 0, 1, number_value(4));
    bool numbers = false;
    EXPECT_TRUE(sparse_allpolys(s, 3, &numbers));
    EXPECT_TRUE(numbers);
    EXPECT_TRUE(sparse_allnumbs(s, 3));
    EXPECT_EQ(sparse_polydepth(s, 3), k_no_variable_depth);
    EXPECT_TRUE(sparse_one_var_polys(s, 3));
}

TEST_F(Predicates, OneVariable) {
    quoly q = variable(2);
    best_quoly_add(&q, number_value(3));
    sparse_insert(s, 0, 1, q);
    sparse_insert(s, 2, 2, number_value(4));
    bool numbers = true;
    EXPECT_TRUE(sparse_allpolys(s, 3, &numbers));
    EXPECT_FALSE(numbers);
    EXPECT_FALSE(sparse_allnumbs(s, 3));
    EXPECT_EQ(sparse_polydepth(s, 3), 2);
    EXPECT_TRUE(sparse_one_var_polys(s, 3));
    EXPECT_FALSE(sparse_negexponents(s, 3));
    sparse_insert(s, 1, 1, variable(1));
    EXPECT_EQ(sparse_polydepth(s, 3), 1);
    EXPECT_FALSE(sparse_one_var_polys(s, 3));
}

TEST_F(Predicates, TwoVariablesInOneEntry) {
    quoly q = variable(1);
    best_quoly_add(&q, variable(2));
    sparse_insert(s, 1, 7, q);
    EXPECT_FALSE(sparse_one_var_polys(s, 3));
    EXPECT_EQ(sparse_polydepth(s, 3), 1);
}

TEST_F(Predicates, Denominators) {
    quoly x = variable(1), q = nullptr;
    quoly_quot(quol_num_1, x, &q, 0);
    free_quoly(&x);
    sparse_insert(s, 1, 7, q);
    bool numbers;
    EXPECT_FALSE(sparse_allpolys(s, 3, &numbers));
    EXPECT_FALSE(sparse_one_var_polys(s, 3));
}
