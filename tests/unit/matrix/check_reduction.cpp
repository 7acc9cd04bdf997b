// Reductions: alpha A beta is the matrix that is left, and the inverses are inverses, after steps at random
// and after every reduction, dense and sparse, in several rings.
#include "matrix/products.h"
#include "matrix/row_reduce.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "tests/unit/matrix/matrix_support.h"

#include <climits>
using namespace tolvex;
using namespace tolvex::test;

namespace {
using Values = std::vector<quoly>;  // by columns

Values values_of(const LineMatrix& m) {
    Values v;
    for (int32_t c = 0; c < m.cols; c++)
        for (int32_t r = 0; r < m.rows; r++) {
            v.push_back(nullptr);
            quoly_assign(matrix_element(m, r, c), &v.back());
        }
    return v;
}
void free_values(Values& v) {
    for (quoly& q : v) free_quoly(&q);
}
Values product(Values& a, Values& b, int32_t rows, int32_t inner, int32_t cols) {
    Values c(static_cast<size_t>(rows) * static_cast<size_t>(cols), nullptr);
    matrix_mult(a.data(), b.data(), rows, inner, cols, c.data());
    return c;
}
void expect_equal(const Values& a, const Values& b) {
    ASSERT_EQ(a.size(), b.size());
    for (size_t k = 0; k < a.size(); k++) EXPECT_TRUE(quoly_equal(a[k], b[k])) << "element " << k;
}
void expect_identity(Values& a, Values& b, int32_t n) {
    Values c = product(a, b, n, n, n);
    for (int32_t k = 0; k < n * n; k++)
        EXPECT_TRUE(quoly_equal(c[static_cast<size_t>(k)], k % (n + 1) == 0 ? quol_num_1 : quol_num_0));
    free_values(c);
}

/// The invariant of the record, all four matrices being wanted.
void expect_invariant(const Reduction& r, Values& start) {
    int32_t m = r.m.rows, n = r.m.cols;
    Values alpha = values_of(r.aux[k_alpha]), beta = values_of(r.aux[k_beta]),
           alphinv = values_of(r.aux[k_alphinv]), betinv = values_of(r.aux[k_betinv]), now = values_of(r.m);
    Values left = product(alpha, start, m, m, n), both = product(left, beta, m, n, n);
    expect_equal(both, now);
    expect_identity(alpha, alphinv, m);
    expect_identity(beta, betinv, n);
    for (Values* v : {&alpha, &beta, &alphinv, &betinv, &now, &left, &both}) free_values(*v);
}

int32_t in_ring(int32_t n) { return modularmode ? (n % modulus + modulus) % modulus : n; }

LineMatrix random_matrix(Rng& rng, int32_t rows, int32_t cols, bool sparse) {
    LineMatrix m = sparse ? new_sparse_matrix(rows, cols) : new_dense_matrix(rows, cols);
    uint32_t zeros = 1 + static_cast<uint32_t>(rng() % 4);
    for (int32_t r = 0; r < rows; r++)
        for (int32_t c = 0; c < cols; c++)
            if (rng() % 5 >= zeros) {
                auto value = static_cast<int32_t>(rng() % 11) - 5;
                set_matrix_element(m, r, c, number_value(in_ring(value)));
            }
    return m;
}

constexpr bool k_all[k_aux_matrices] = {true, true, true, true};

void random_step(Rng& rng, Reduction& r) {
    auto below = [&](int32_t n) { return static_cast<int32_t>(rng() % static_cast<uint32_t>(n)); };
    bool rows = rng() % 2 == 0;
    int32_t n = rows ? r.m.rows : r.m.cols, i = below(n), j = below(n);
    auto value = static_cast<int32_t>(rng() % 7) - 3;
    quoly f = number_value(in_ring(value));
    switch (rng() % 4) {
    case 0:
        if (i != j) (rows ? reduction_add_row : reduction_add_column)(r, i, f, j);
        break;
    case 1:
        (rows ? reduction_exchange_rows : reduction_exchange_columns)(r, i, j);
        break;
    case 2:
        if (!quoly_iszero(f)) (rows ? reduction_scale_row : reduction_scale_column)(r, i, f);
        break;
    default:
        (rows ? reduction_negate_row : reduction_negate_column)(r, i);
    }
    free_quoly(&f);
}

/// The ring of a round: the integers, or residues modulo a prime.
void enter_ring_of(int round) {
    static constexpr int32_t primes[] = {0, 2, 7, 32003};
    set_up_matrices();
    if (int32_t p = primes[round / 2 % 4]; p != 0) ring_enter_prime(p);
}

using Reducer = void (*)(Reduction* r, const ReductionOptions* options);

/// The reduced matrix has the shape that its reduction promises.
void expect_form(const Reduction& r, Reducer reduce) {
    for (int32_t i = 0; i < r.m.rows; i++)
        for (int32_t c = 0; c < r.m.cols; c++) {
            bool must_be_zero = reduce == rowreduce     ? i >= r.rank || c < i
                                : reduce == colreduce   ? c >= r.rank || c > i
                                : reduce == red_row_ech ? i >= r.rank
                                                        : i != c || i >= r.rank;
            quoly e = matrix_element(r.m, i, c);
            EXPECT_TRUE(!must_be_zero || quoly_iszero(e));
            EXPECT_TRUE(reduce != normalize || must_be_zero || quoly_equal(e, quol_num_1));
        }
}
}  // namespace

PROPERTY(steps_keep_the_invariant, 120) {
    RingState ring = ring_save();
    enter_ring_of(round);
    Reduction r = {};
    r.m = random_matrix(rng, 1 + static_cast<int32_t>(rng() % 5), 1 + static_cast<int32_t>(rng() % 5),
                        round % 2 == 1);
    Values start = values_of(r.m);
    begin_reduction(&r, k_all);
    for (int32_t k = 0; k < 12; k++) random_step(rng, r);
    expect_invariant(r, start);
    if (rng() % 2 == 0) {
        transpose_reduction(&r);
        for (int32_t k = 0; k < 6; k++) random_step(rng, r);
        transpose_reduction(&r);
    }
    settle_reduction(&r);
    expect_invariant(r, start);
    free_values(start);
    drop_reduction(&r);
    ring_restore(ring);
}

PROPERTY(forms_and_transformations, 240) {
    RingState ring = ring_save();
    enter_ring_of(round);
    int32_t rows = 1 + static_cast<int32_t>(rng() % 6), cols = 1 + static_cast<int32_t>(rng() % 6);
    LineMatrix first = random_matrix(rng, rows, cols, round % 2 == 1);
    Values start = values_of(first);
    int32_t rank = -1;
    for (Reducer reduce : {rowreduce, colreduce, red_row_ech, normalize}) {
        Reduction r = {};
        r.m = round % 2 == 1 ? new_sparse_matrix(rows, cols) : new_dense_matrix(rows, cols);
        for (int32_t k = 0; k < rows * cols; k++) {
            quoly copy = nullptr;
            quoly_assign(start[static_cast<size_t>(k)], &copy);
            set_matrix_element(r.m, k % rows, k / rows, copy);
        }
        begin_reduction(&r, k_all);
        ReductionOptions options = {INT32_MAX, nullptr, false};
        reduce(&r, &options);
        settle_reduction(&r);
        EXPECT_FALSE(r.failed);
        if (rank < 0) rank = r.rank;
        EXPECT_EQ(r.rank, rank);
        expect_form(r, reduce);
        expect_invariant(r, start);
        drop_reduction(&r);
    }
    free_values(start);
    drop_matrix(&first);
    ring_restore(ring);
}
