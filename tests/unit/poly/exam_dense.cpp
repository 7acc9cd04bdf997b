// Fixed cases of the dense engine: placement of slices, borders of the methods, internal faults, conversion.
#include "poly/dense_basic.h"
#include "poly/dense_divide.h"
#include "poly/dense_gcd.h"
#include "poly/dense_internal.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "poly/dense_ntt.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

#include <vector>
namespace tolvex::test {
namespace {
using Dense = std::vector<int32_t>;
int32_t size(const Dense& x) { return static_cast<int32_t>(x.size()); }

struct InRing {
    explicit InRing(int32_t m, bool table_field = false) {
        set_up_once();
        use_ring(m, table_field);
        use_variables(2);
    }
    ~InRing() { use_integers(); }
};

Dense all_greatest(int32_t n) { return Dense(static_cast<size_t>(n), modulus - 1); }
// (m-1)^2 = 1: the product of two arrays of m-1 counts the pairs of each coefficient.
void expect_counts(int32_t an, int32_t bn) {
    Dense a = all_greatest(an), b = all_greatest(bn), c(static_cast<size_t>(an + bn - 1), -1);
    dense_mult(a.data(), an, b.data(), bn, c.data());
    for (int32_t k = 0; k < size(c); k++) {
        int32_t pairs = minn(minn(k + 1, size(c) - k), minn(an, bn));
        ASSERT_EQ(c[static_cast<size_t>(k)], pairs % modulus) << an << " " << bn << " entry " << k;
    }
}
}  // namespace

TEST(Dense, LowZerosAreClearedInTheProduct) {
    InRing ring(7);
    Dense x5 = {0, 0, 0, 0, 0, 1}, x7 = {0, 0, 0, 0, 0, 0, 0, 1}, c(13, 99);
    fast_array_onevar_mult(x5.data(), x7.data(), c.data(), 0, 5, 0, 7);
    Dense expected(13, 0);
    expected[12] = 1;
    EXPECT_EQ(c, expected);
}

TEST(Dense, ProductsAtTheBordersOfTheMethods) {
    for (int32_t m : {2, 3, 46339, 46340, 65535, 65536, 65537, 2147483629, 2147483646}) {
        InRing ring(m);
        for (int32_t an : {79, 80, 81, 159, 160, 161, 320, 359, 360, 361, 1280, 2880, 3000})
            for (int32_t bn : {1, 2, 5, 79, 80, 159, 160, 161, 359, 360, 361}) expect_counts(an, bn);
    }
}

TEST(Dense, LargestSumsDoNotOverflow) {
    for (int32_t m : {1024, 32768, 65536, 2147483646}) {
        InRing ring(m);
        expect_counts(20000, 20000);
    }
}

// Against the transforms, around the lengths where sums of products are reduced in between.
TEST(Dense, SchoolbookSumsAreExact) {
    Rng rng{run_seed()};
    for (int32_t m : {2, 3, 32003, 5931641, 5931643, 67108859, 1073741827, 2147483629, 2147483646}) {
        InRing ring(m);
        WordField f = word_field_ring();
        for (int32_t bn : {1, 15, 17, 127, 128, 129, 257, 400})
            for (int32_t an : {bn, bn + 31}) {
                std::vector<uint32_t> a(static_cast<size_t>(an), f.p / 2),
                    b(static_cast<size_t>(bn), f.p - 1 - (f.p - 1) / 2);
                if (an > bn)
                    for (auto& v : a) v = static_cast<uint32_t>(random_int(rng, 0, m - 1));
                std::vector<uint32_t> c(static_cast<size_t>(an + bn - 1), 77), d = c;
                school_mult(f, a.data(), an, b.data(), bn, c.data());
                ntt_mult(f, a.data(), an, b.data(), bn, d.data());
                ASSERT_EQ(c, d) << m << " " << an << " " << bn;
            }
    }
}

TEST(Dense, TransformsOfEveryLength) {
    InRing ring(2147483629);
    WordField f = word_field_ring();
    for (int32_t n = 1; n < 300; n++) {
        std::vector<uint32_t> a(static_cast<size_t>(n), f.p - 1), c(static_cast<size_t>(2 * n - 1));
        ntt_mult(f, a.data(), n, a.data(), n, c.data());
        for (int32_t k = 0; k < 2 * n - 1; k++)
            ASSERT_EQ(c[static_cast<size_t>(k)], static_cast<uint32_t>(minn(k + 1, 2 * n - 1 - k))) << n;
    }
}

// Entries of different lengths, none at all among them.
TEST(Dense, MatrixProductsByTransforms) {
    Rng rng{run_seed()};
    for (int32_t m : {2, 3, 32003, 1048583, 2147483629, 2147483646}) {
        InRing ring(m);
        WordField f = word_field_ring();
        constexpr int32_t n = 120;
        for (int32_t columns = 1; columns <= k_ntt_columns; columns++) {
            std::vector<uint32_t> entry[2][2 + k_ntt_columns], out[2][k_ntt_columns];
            for (auto& row : entry)
                for (auto& e : row) {
                    e.resize(static_cast<size_t>(random_int(rng, 0, n / 2)));
                    for (auto& v : e)
                        v = static_cast<uint32_t>(random_int(rng, 0, 1) ? m - 1 : random_int(rng, 0, m - 1));
                }
            NttOperand a[2][2], b[2][k_ntt_columns];
            uint32_t* c[2][k_ntt_columns];
            auto operand = [](const std::vector<uint32_t>& e) {
                return NttOperand{e.data(), static_cast<int32_t>(e.size())};
            };
            for (int i = 0; i < 2; i++) {
                for (int k = 0; k < 2; k++) a[i][k] = operand(entry[i][k]);
                for (int j = 0; j < k_ntt_columns; j++) {
                    b[i][j] = operand(entry[i][2 + j]);
                    out[i][j].assign(n, 77);
                    c[i][j] = out[i][j].data();
                }
            }
            ntt_matrix_mult(f, a, b, columns, c, n);
            for (int i = 0; i < 2; i++)
                for (int j = 0; j < columns; j++) {
                    std::vector<uint32_t> expected(n, 0), part(2 * n);
                    for (int k = 0; k < 2; k++) {
                        if (a[i][k].n == 0 || b[k][j].n == 0) continue;
                        school_mult(f, a[i][k].c, a[i][k].n, b[k][j].c, b[k][j].n, part.data());
                        row_add(f, expected.data(), part.data(), expected.data(), a[i][k].n + b[k][j].n - 1);
                    }
                    ASSERT_EQ(out[i][j], expected) << m << " " << i << " " << j;
                }
        }
    }
}

TEST(Dense, SumsOfPartsThatCancel) {
    InRing ring(32003);
    // (x^512 - 1) g: the low and the high part of the first operand add up to 0
    Dense a(1024, 0), g(700), c(1723, -1);
    for (int32_t i = 0; i < 700; i++) g[static_cast<size_t>(i)] = i + 1;
    a[1023] = 1;
    a[511] = modulus - 1;
    dense_mult(a.data(), 1024, g.data(), 700, c.data());
    for (int32_t k = 0; k < size(c); k++) {
        int32_t up = k >= 1023 ? k - 1023 + 1 : 0, down = k >= 511 && k < 511 + 700 ? k - 511 + 1 : 0;
        ASSERT_EQ(c[static_cast<size_t>(k)], mod_sub(up, down, modulus)) << k;
    }
}

TEST(Dense, InternalFaultsOfSlices) {
    InRing ring(7);
    Dense x = {0, 3, 0}, c(9, 0);
    EXPECT_TRUE(RAISES(onevar_mult(x.data(), x.data(), c.data(), 0, 2, 0, 1)));
    EXPECT_STREQ(caught.text, "0 upper value in onevar_mult.");
    EXPECT_TRUE(RAISES(onevar_mult(x.data(), x.data(), c.data(), 2, 1, 0, 1)));
    EXPECT_STREQ(caught.text, "potential 0 in onevar_mult.");
    EXPECT_TRUE(RAISES(fast_array_onevar_mult(x.data(), x.data(), c.data(), 2, 2, 0, 1)));
    EXPECT_STREQ(caught.text, "bad exps in fast_array_onevar_mult.");
}

TEST(Dense, ConversionToSparseForm) {
    InRing ring(7);
    Dense zero = {0}, number = {5}, x = {3, 0, 0, 2};
    poly p = nullptr;
    EXPECT_TRUE(RAISES(array_to_poly(zero.data(), 0, &p)));
    EXPECT_STREQ(caught.text, "bad x[0] in array_to_poly");
    for (auto [array, degree, text] : {std::tuple{&zero, -1, "0"}, {&number, 0, "5"}, {&x, 3, "2*x^3 + 3"}}) {
        poly expected = poly_of(text);
        array_to_poly(array->data(), degree, &p);  // the old p is given back
        EXPECT_TRUE(poly_equal(p, expected)) << text_of(p);
        free_poly(&expected);
    }
    free_poly(&p);
}

TEST(Dense, ConversionOfTwoLevels) {
    InRing ring(7);
    Dense rows(static_cast<size_t>(4 * k_bivariate), 0);
    rows[1] = 5;                                         // 5 y
    rows[static_cast<size_t>(3 * k_bivariate)] = 2;      // 2 x^3
    rows[static_cast<size_t>(2 * k_bivariate + 2)] = 4;  // 4 x^2 y^2
    rows[static_cast<size_t>(2 * k_bivariate)] = 1;      // x^2
    const int32_t degrees[] = {1, -1, 2, 0};
    poly p = nullptr, expected = poly_of("2*x^3 + 4*x^2*y^2 + x^2 + 5*y");
    array_to_poly2(rows.data(), 3, degrees, &p);
    EXPECT_TRUE(poly_equal(p, expected)) << text_of(p);
    array_to_poly2(rows.data(), 0, degrees, &p);
    free_poly(&expected);
    expected = poly_of("5*y");
    EXPECT_TRUE(poly_equal(p, expected)) << text_of(p);
    const int32_t none[] = {-1};
    array_to_poly2(rows.data(), 0, none, &p);
    EXPECT_TRUE(poly_iszero(p));
    free_poly(&p);
    free_poly(&expected);
}

TEST(Dense, DivisionByNonUnitIsError85) {
    InRing ring(6);
    Dense x = {1, 2, 3, 4}, y = {1, 3}, q(4);
    int32_t x_degree = 3, q_degree = 0;
    boolean zero = 0;
    EXPECT_TRUE(RAISES(onevar_array_mod(x.data(), y.data(), &x_degree, 1, &zero)));
    EXPECT_EQ(caught.code, 85);
    EXPECT_TRUE(RAISES(onevar_array_div_mod(x.data(), y.data(), q.data(), &x_degree, 1, &q_degree, &zero)));
    EXPECT_EQ(caught.code, 85);
}

TEST(Dense, GcdWithZeroAndWithNumbers) {
    InRing ring(7);
    int32_t* g = nullptr;
    int32_t d = -5;
    Dense x = {2, 4}, zero = {0, 0, 0};
    EXPECT_TRUE(dense_gcd(x.data(), 1, zero.data(), 2, &g, &d));
    EXPECT_EQ(d, 1);
    EXPECT_EQ(g[0], 4);  // 4 x + 2 = 4 (x + 4)
    EXPECT_EQ(g[1], 1);
    Dense y = {2, 4}, number = {3};
    EXPECT_TRUE(dense_gcd(y.data(), 1, number.data(), 0, &g, &d));
    EXPECT_EQ(d, 0);
    EXPECT_EQ(g[0], 1);
    Dense no = {0};
    EXPECT_TRUE(dense_gcd(zero.data(), 2, no.data(), 0, &g, &d));
    EXPECT_EQ(d, -1);
}

TEST(Dense, GcdDeclinesANonUnit) {
    InRing ring(6);
    int32_t* g = nullptr;
    int32_t d = -5;
    Dense x = {1, 0, 1}, y = {1, 2};
    EXPECT_FALSE(dense_gcd(x.data(), 2, y.data(), 1, &g, &d));
    Dense u = {4, 2}, zero = {0};  // 2 x + 4 cannot be made monic
    EXPECT_FALSE(dense_gcd(u.data(), 1, zero.data(), 0, &g, &d));
}

TEST(Dense, HalfGcdOfFarDegreesIsTheIdentity) {
    InRing ring(32003);
    std::vector<uint32_t> x(1001, 5), y(501, 3), room(4 * 600);
    DensePoly a = {x.data(), 1000}, b = {y.data(), 500};
    CofactorMatrix m;
    for (size_t i = 0; i < 4; i++) m.entry[i / 2][i % 2] = {room.data() + 600 * i, 7};
    EXPECT_TRUE(parthg(word_field_ring(), &a, &b, &m));
    EXPECT_EQ(a.c, x.data());
    EXPECT_EQ(a.degree, 1000);
    EXPECT_EQ(b.degree, 500);
    for (auto [i, j] : {std::pair{0, 0}, {1, 1}}) {
        EXPECT_EQ(m.entry[i][j].degree, 0);
        EXPECT_EQ(m.entry[i][j].c[0], 1u);
        EXPECT_EQ(m.entry[i][1 - j].degree, -1);
    }
}
}  // namespace tolvex::test
