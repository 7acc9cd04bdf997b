#pragma once
// The invariant of reductions: alpha A beta is the matrix that is left, and the inverses are inverses.
#include "matrix/products.h"
#include "matrix/reduction.h"
#include "tests/unit/matrix/matrix_support.h"
namespace tolvex::test {
inline Values values_of(const LineMatrix& m) {
    Values v;
    for (int32_t c = 0; c < m.cols; c++)
        for (int32_t r = 0; r < m.rows; r++) {
            v.push_back(nullptr);
            quoly_assign(matrix_element(m, r, c), &v.back());
        }
    return v;
}
inline Values product(Values& a, Values& b, int32_t rows, int32_t inner, int32_t cols) {
    Values c(static_cast<size_t>(rows) * static_cast<size_t>(cols), nullptr);
    matrix_mult(a.data(), b.data(), rows, inner, cols, c.data());
    return c;
}
inline void expect_equal(const Values& a, const Values& b) {
    ASSERT_EQ(a.size(), b.size());
    for (size_t k = 0; k < a.size(); k++) EXPECT_TRUE(quoly_equal(a[k], b[k])) << "element " << k;
}
inline void expect_identity(Values& a, Values& b, int32_t n) {
    Values c = product(a, b, n, n, n);
    for (int32_t k = 0; k < n * n; k++)
        EXPECT_TRUE(quoly_equal(c[static_cast<size_t>(k)], k % (n + 1) == 0 ? quol_num_1 : quol_num_0));
    free_values(c);
}

/// The invariant of the record, all four matrices being wanted.
inline void expect_invariant(const Reduction& r, Values& start) {
    int32_t m = r.m.rows, n = r.m.cols;
    Values alpha = values_of(r.aux[k_alpha]), beta = values_of(r.aux[k_beta]),
           alphinv = values_of(r.aux[k_alphinv]), betinv = values_of(r.aux[k_betinv]), now = values_of(r.m);
    Values left = product(alpha, start, m, m, n), both = product(left, beta, m, n, n);
    expect_equal(both, now);
    expect_identity(alpha, alphinv, m);
    expect_identity(beta, betinv, n);
    for (Values* v : {&alpha, &beta, &alphinv, &betinv, &now, &left, &both}) free_values(*v);
}
}  // namespace tolvex::test
