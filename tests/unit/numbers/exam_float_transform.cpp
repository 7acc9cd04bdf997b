// Transforms in floating point: products of polynomials against the plain ones, at the largest entries, and
// the bounds that the exactness rests on.
#include "numbers/float_transform.h"
#include "tests/unit/numbers/big_support.h"

#include <cmath>
using namespace tolvex;
using namespace tolvex::test;

namespace {
using wide = __int128;
enum class Shape { random, greatest, alternating };

int64_t entry(Rng& rng, Shape shape, int64_t i, int64_t p) {
    switch (shape) {
    case Shape::greatest:
        return p / 2;
    case Shape::alternating:
        return i % 2 ? p / 2 : -(p / 2);
    default:
        return static_cast<int64_t>(rng() % static_cast<uint64_t>(p)) - p / 2;
    }
}

std::vector<double> random_entries(Rng& rng, Shape shape, int64_t n, int64_t length, int64_t p) {
    std::vector<double> a(static_cast<size_t>(length), 0.0);
    for (int64_t i = 0; i < n; i++) a[static_cast<size_t>(i)] = static_cast<double>(entry(rng, shape, i, p));
    return a;
}

/// Coefficient k of the product, 0 <= r < p.
int64_t coefficient(const std::vector<double>& a, const std::vector<double>& b, size_t k, int64_t p) {
    wide sum = 0;
    for (size_t i = 0; i <= k; i++) sum = (sum + static_cast<wide>(a[i]) * static_cast<wide>(b[k - i])) % p;
    auto r = static_cast<int64_t>(sum);
    return r < 0 ? r + p : r;
}

int64_t residue(double x, int64_t p) {
    EXPECT_EQ(x, std::nearbyint(x));
    int64_t r = static_cast<int64_t>(x) % p;
    return r < 0 ? r + p : r;
}
}  // namespace

TEST(FloatTransform, ProductsOfPolynomials) {
    Rng rng(run_seed());
    for (int32_t prime = 0; prime < k_float_primes; prime++) {
        int64_t p = k_float_prime[prime];
        for (int64_t entries :
             {1, 2, 15, 16, 17, 24, 25, 33, 48, 49, 96, 128, 200, 1024, 1500, 2048, 3072, 4000, 8192}) {
            FloatLength length = float_length(entries);
            ASSERT_GE(length.n(), entries);
            for (auto shape : {Shape::random, Shape::greatest, Shape::alternating}) {
                int64_t an = entries / 2 + 1, bn = entries + 1 - an;
                auto a = random_entries(rng, shape, an, length.n(), p);
                auto b = random_entries(rng, shape, bn, length.n(), p), x = a, y = b;
                float_values(x.data(), length, prime);
                float_values(y.data(), length, prime);
                for (double v : x) ASSERT_LE(std::fabs(v), 0.625 * static_cast<double>(p));
                float_products(x.data(), y.data(), length, prime);
                float_coefficients(x.data(), length, prime);
                size_t step = entries > 500 ? 61 : 1;
                for (size_t k = 0; k < static_cast<size_t>(length.n()); k += step) {
                    ASSERT_LE(std::fabs(x[k]), 0.625 * static_cast<double>(p)) << entries << " " << k;
                    ASSERT_EQ(residue(x[k], p), coefficient(a, b, k, p)) << entries << " " << k;
                }
            }
        }
    }
}

TEST(FloatTransform, SumsOfTwoProducts) {
    Rng rng(run_seed());
    constexpr int32_t prime = 1;
    constexpr int64_t p = k_float_prime[prime], n = 40;
    FloatLength length = float_length(2 * n);
    std::vector<double> a[4], x[4];
    for (int i = 0; i < 4; i++) {
        x[i] = a[i] = random_entries(rng, Shape::random, n, length.n(), p);
        float_values(x[i].data(), length, prime);
    }
    float_products_2(x[0].data(), x[0].data(), x[1].data(), x[2].data(), x[3].data(), length, prime);
    float_coefficients(x[0].data(), length, prime);
    for (size_t k = 0; k < 2 * n; k++)
        ASSERT_EQ(residue(x[0][k], p), (coefficient(a[0], a[1], k, p) + coefficient(a[2], a[3], k, p)) % p)
            << k;
}

TEST(FloatTransform, ResiduesOfProducts) {
    Rng rng(run_seed());
    for (int32_t prime = 0; prime < k_float_primes; prime++) {
        int64_t p = k_float_prime[prime];
        FloatModulus f = float_modulus(p);
        for (int i = 0; i < 100000; i++) {
            int64_t x = entry(rng, static_cast<Shape>(rng() % 3), i, p), y = entry(rng, Shape::random, i, p);
            int64_t expected = static_cast<int64_t>(static_cast<wide>(x) * y % p), factor = 1 + i % 8;
            expected = expected < 0 ? expected + p : expected;
            auto dx = static_cast<double>(x), dy = static_cast<double>(y);
            ASSERT_EQ(residue(float_mult(dx, dy, f), p), expected);
            double r = float_times(static_cast<double>(factor * x), float_factor(y, f), f.m);
            ASSERT_LE(std::fabs(r), f.m);
            ASSERT_EQ(residue(r, p), static_cast<int64_t>(static_cast<wide>(expected) * factor % p));
        }
    }
}
