// Products of integers and fractions, in words and in limbs, against sums of values.
#include "matrix/products.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/matrix_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
/// Values beside the bounds of words: 2^31 and, as sums, 2^63.
quoly near_a_bound(Rng& rng, int32_t powers, bool fraction) {
    quoly q = number_value(static_cast<int32_t>(rng() % 5) - 2), two = number_value(2);
    if (rng() % 3 != 0) {
        quoly power = number_value(1);
        for (int32_t k = 0; k < powers; k++) fast_quoly_mult(&power, two);
        best_quoly_add(&q, power);
        if (rng() % 2 == 0) quoly_inplace(q);
    }
    if (fraction) {
        quoly below = number_value(static_cast<int32_t>(rng() % 6) + 1);
        fast_quoly_quot(&q, below, false);
        free_quoly(&below);
    }
    free_quoly(&two);
    return q;
}
}  // namespace

PROPERTY(products_of_integers_and_fractions, 200) {
    set_up_matrices();
    use_integers();
    constexpr int32_t k_powers[] = {3, 30, 31, 32, 63, 64, 200};
    auto size = [&] { return static_cast<int32_t>(rng() % 6) + 1; };
    int32_t rows = size(), inner = size(), cols = size(), powers = k_powers[rng() % std::size(k_powers)];
    Values a, b, c(static_cast<size_t>(rows * cols), nullptr);
    for (int32_t k = 0; k < rows * inner; k++) a.push_back(near_a_bound(rng, powers, round % 3 == 0));
    for (int32_t k = 0; k < inner * cols; k++) b.push_back(near_a_bound(rng, powers, round % 2 == 0));
    matrix_mult(a.data(), b.data(), rows, inner, cols, c.data());
    for (int32_t i = 0; i < rows; i++)
        for (int32_t j = 0; j < cols; j++) {
            quoly sum = number_value(0);
            for (int32_t k = 0; k < inner; k++) {
                quoly term = nullptr;
                quoly_mult(a[static_cast<size_t>(i + k * rows)], b[static_cast<size_t>(k + j * inner)],
                           &term);
                best_quoly_add(&sum, term);
            }
            EXPECT_TRUE(quoly_equal(c[static_cast<size_t>(i + j * rows)], sum));
            free_quoly(&sum);
        }
    for (Values* v : {&a, &b, &c}) free_values(*v);
}
