// Sparse determinants against dense ones, in every ring and by every method; the choice of pivots; kept
// minors.
#include "matrix/determinant.h"
#include "matrix/sparse_determinant.h"
#include "matrix/sparse_elim.h"
#include "matrix/sparse_minors.h"
#include "matrix/sparse_pivot.h"
#include "matrix/sparse_words.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/memory.h"
#include "storage/scratch.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/matrix_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
bool composite() { return modularmode && !finf && !mod_is_prime; }

quoly random_value(Rng& rng, int kind) {
    int32_t n = random_int(rng, 1, 9);
    quoly q = number_value(modularmode ? n % modulus : n);
    if (kind == 0 || rng() % 3 == 0) return q;
    poly p = random_nonzero_poly(rng, 2, 2, 2);
    quoly f = nullptr;
    poly_to_quoly(&p, &f);
    kind == 1 ? fast_quoly_mult(&q, f) : fast_quoly_quot(&q, f, 0);
    free_quoly(&f);
    return q;
}

/// A random matrix with about `per_row` entries a row, as a chain and as dense elements.
struct Pair {
    int32_t n;
    sparseptr chain;
    std::vector<quoly> dense;
};
Pair random_pair(Rng& rng, int32_t n, int32_t per_row, int kind) {
    Pair m = {n, nullptr, std::vector<quoly>(static_cast<size_t>(n) * static_cast<size_t>(n), nullptr)};
    sparse_init(&m.chain, n);
    for (int32_t r = 0; r < n; r++)
        for (int32_t k = 0; k < per_row; k++) {
            int32_t c = k == 0 && rng() % 4 != 0 ? (r * 7 + 3) % n : random_int(rng, 0, n - 1);
            sparse_insert(m.chain, r, c + 1, random_value(rng, kind));
        }
    for (int32_t k = 0; k < n * n; k++)
        quoly_assign(spar_retrieve(m.chain, k % n + 1, k / n + 1), &m.dense[static_cast<size_t>(k)]);
    return m;
}
void release(Pair& m) {
    free_sparse(&m.chain, m.n, 1);
    for (quoly& q : m.dense) free_quoly(&q);
}

struct Switches {
    int32_t detcutoff, gauss, heuristic;
};
/// The determinant of a copy of the chain.
quoly determinant_with(const Pair& m, const Switches& s) {
    detcutoff = s.detcutoff;
    gauss_cutoff = s.gauss;
    pseudet_heur = s.heuristic;
    sparseptr copy = nullptr;
    quoly det = number_value(0);
    copy_sparse(m.chain, &copy, m.n, 0);
    sparse_determinant(copy, m.n, {}, &det);
    free_sparse(&copy, m.n, 1);
    detcutoff = -1;
    gauss_cutoff = pseudet_heur = 0;
    return det;
}
}  // namespace

PROPERTY(sparse_against_dense, 500) {
    set_up_matrices();
    use_ring(all_rings[round % all_ring_count]);
    use_variables(2);
    int kind = random_int(rng, 0, composite() ? 1 : 2);
    int32_t n = random_int(rng, 1, kind == 0 ? 14 : 5);
    Pair m = random_pair(rng, n, random_int(rng, 1, 4), kind);
    quoly expected = number_value(0);
    dense_determinant(m.dense.data(), n, &expected);
    for (Switches s : {Switches{-1, 0, 0},
                       {-1, 0, 1},
                       {-1, 0, 2},
                       {-1, 0, 3},
                       {-1, 0, 4},
                       {-1, 0, 5},
                       {0, 0, 5},
                       {20, 0, 0},
                       {0, 1, 0},
                       {-1, 1, 5}}) {
        if (s.gauss == 1 && composite() && kind == 1) continue;
        quoly det = determinant_with(m, s);
        EXPECT_TRUE(quoly_equal(det, expected)) << s.detcutoff << ' ' << s.gauss << ' ' << s.heuristic;
        free_quoly(&det);
    }
    free_quoly(&expected);
    release(m);
    use_variables(0);
    use_integers();
}

PROPERTY(larger_sparse_matrices_of_words, 60) {
    set_up_matrices();
    use_ring(all_rings[1 + round % (all_ring_count - 1)]);
    int32_t n = random_int(rng, 20, 90);
    Pair m = random_pair(rng, n, random_int(rng, 2, 5), 0);
    quoly expected = number_value(0), det = determinant_with(m, {-1, 0, 0});
    dense_determinant(m.dense.data(), n, &expected);
    EXPECT_TRUE(quoly_equal(det, expected));
    free_quoly(&det);
    free_quoly(&expected);
    release(m);
    use_integers();
}

TEST(SparsePivot, SingleColumnsAndUnits) {
    set_up_matrices();
    // rows: (2 . 3), (. 5 7), (1 . 4 8): column 2 has one entry, 4 too; the heavier one goes first
    Entries e = {{{0, 1}, 2}, {{0, 3}, 3}, {{1, 2}, 5}, {{1, 3}, 7}, {{2, 1}, 1}, {{2, 3}, 4}, {{2, 4}, 800}};
    ScratchMark mark = scratch_mark();
    sparseptr s = chain_of(e, 4);
    PivotTable t = new_pivot_table(s, 4, 4, 0, 0);
    int32_t row = -1, column = -1;
    for (pseudet_heur = 0; pseudet_heur <= 5; pseudet_heur++) {
        EXPECT_EQ(sparse_findbest(t, false, &row, &column), PivotSearch::found);
        EXPECT_EQ(row, 2);
        EXPECT_EQ(column, 4);
    }
    pseudet_heur = 0;
    EXPECT_EQ(sparse_findbest(t, true, &row, &column),
              PivotSearch::found);  // a single column comes before empty rows
    free_sparse(&s, 4, 1);
    // a 1 in a row of two is taken at once, in a row of three it is not
    Entries two = {{{0, 1}, 5}, {{0, 2}, 1}, {{1, 1}, 1}, {{1, 2}, 1}, {{1, 3}, 9}, {{2, 1}, 7}, {{2, 3}, 1}};
    s = chain_of(two, 3);
    t = new_pivot_table(s, 3, 3, 0, 0);
    EXPECT_EQ(sparse_findbest(t, false, &row, &column), PivotSearch::found);
    EXPECT_EQ(row, 0);
    EXPECT_EQ(column, 2);
    free_sparse(&s, 3, 1);
    // an empty row: nothing is found if the determinant is wanted
    Entries gap = {{{0, 1}, 5}, {{0, 2}, 2}, {{2, 1}, 7}, {{2, 2}, 3}};
    s = chain_of(gap, 3);
    t = new_pivot_table(s, 3, 2, 0, 0);
    EXPECT_EQ(sparse_findbest(t, true, &row, &column), PivotSearch::none);
    EXPECT_EQ(sparse_findbest(t, false, &row, &column), PivotSearch::found);
    EXPECT_EQ(column, 2);
    EXPECT_EQ(row, 0);
    free_sparse(&s, 3, 1);
    scratch_release(mark);
}

TEST(SparseMinors, Figures) {
    set_up_matrices();
    ScratchMark mark = scratch_mark();
    uint64_t budget = totalavailablememory;
    totalavailablememory = uint64_t{1} << 32;
    quoly det = number_value(0);
    Entries empty_column = {{{0, 1}, 5}, {{1, 1}, 2}, {{0, 3}, 1}, {{1, 3}, 4}, {{2, 1}, 7}, {{2, 3}, 3}};
    sparseptr s = chain_of(empty_column, 3);
    sparse_minors_det(sparse_entry_list(s, 3), &det);
    EXPECT_EQ(word_of(det), 0);
    EXPECT_EQ(sp_lowcnt, 1);
    free_sparse(&s, 3, 1);
    // full rows: 2 and 3 rows meet the same columns on several paths
    Entries full;
    for (int32_t k = 0; k < 49; k++) full[{k / 7, k % 7 + 1}] = k * k % 17 + 1;
    s = chain_of(full, 7);
    sparse_minors_det(sparse_entry_list(s, 7), &det);
    EXPECT_EQ(minorprime, 641);
    EXPECT_EQ(minor_total, 35 + 35 + 21);  // of 3, 4 and 5 rows of 7 columns
    EXPECT_EQ(sp_total_cnt, 0);
    free_sparse(&s, 7, 1);
    Entries two = {{{0, 1}, 2}, {{0, 2}, 3}, {{1, 1}, 4}, {{1, 2}, 5}};
    s = chain_of(two, 2);
    sparse_minors_det(sparse_entry_list(s, 2), &det);
    EXPECT_EQ(word_of(det), -2);
    EXPECT_EQ(minor_total, 0);
    totalavailablememory = budget;
    free_sparse(&s, 2, 1);
    free_quoly(&det);
    scratch_release(mark);
}

/// Memory that is always short empties the table, and the value stays.
TEST(SparseMinors, Purges) {
    set_up_matrices();
    Rng rng(run_seed());
    Pair m = random_pair(rng, 9, 12, 0);
    quoly expected = number_value(0);
    dense_determinant(m.dense.data(), 9, &expected);
    uint64_t budget = totalavailablememory;
    totalavailablememory = 1;
    quoly det = determinant_with(m, {20, 0, 0});
    totalavailablememory = budget;
    EXPECT_TRUE(quoly_equal(det, expected));
    EXPECT_GT(purged_hits, 0);
    free_quoly(&det);
    free_quoly(&expected);
    release(m);
}

TEST(SparseMinors, TooManyRows) {
    set_up_matrices();
    ScratchMark mark = scratch_mark();
    sparseptr s = nullptr;
    sparse_init(&s, k_most_minor_rows + 1);
    quoly det = number_value(0);
    EXPECT_TRUE(RAISES(sparse_minors_det(sparse_entry_list(s, k_most_minor_rows + 1), &det)));
    EXPECT_EQ(caught.code, 310);
    sp_total_cnt = 1;
    EXPECT_TRUE(RAISES(sparse_minors_det(sparse_entry_list(s, 2), &det)));
    EXPECT_EQ(caught.code, 309);
    sp_total_cnt = 0;
    free_sparse(&s, k_most_minor_rows + 1, 1);
    free_quoly(&det);
    scratch_release(mark);
}
