// Binomial coefficients, in each form that a number has. Declared in numbers/residue.h.
#include "numbers/data_files.h"
#include "numbers/limb_product.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_divide.h"
#include "numbers/num_mult.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <bit>
namespace tolvex {
namespace {
/// A product of integers in Z/m whose factors in the primes of m are counted apart, so that it can be divided
/// by another one.
struct SplitProduct {
    uint32_t unit;         // the part prime to m
    int64_t exponent[16];  // of each prime of m
};

void multiply_in(SplitProduct* product, int64_t factor, const int64_t* primes_of_m, int32_t count,
                 int32_t step) {
    for (int32_t i = 0; i < count; i++) {
        while (factor % primes_of_m[i] == 0) {
            factor /= primes_of_m[i];
            product->exponent[i] += step;
        }
    }
    product->unit = residue_mult(product->unit, static_cast<uint32_t>(factor % modulus));
}

/// C(a, b) modulo any modulus, b <= a - b, in b steps.
int32_t binom_by_steps(int32_t a, int32_t b) {
    int64_t primes_of_m[16];
    int32_t count = prime_factors(modulus, primes_of_m);
    SplitProduct over = {1, {}};
    uint32_t under_unit = 1;
    for (int32_t i = 1; i <= b; i++) {
        if (i % 1024 == 0) poll_interrupt();
        multiply_in(&over, static_cast<int64_t>(a) - b + i, primes_of_m, count, 1);
        uint32_t numerator = over.unit;
        over.unit = under_unit;
        multiply_in(&over, i, primes_of_m, count, -1);
        under_unit = over.unit;
        over.unit = numerator;
    }
    int32_t inverse = 0, power = 0;
    mod_inverse(static_cast<int32_t>(under_unit), &inverse);
    int32_t result = modmult(over.unit, static_cast<uint32_t>(inverse));
    for (int32_t i = 0; i < count; i++) {
        mod_number_power(residue_of_int(primes_of_m[i]), over.exponent[i], &power);
        result = modmult(static_cast<uint32_t>(result), static_cast<uint32_t>(power));
    }
    return result;
}

/// x := first ... last, 1 for an empty range.
void chain_of_range(imptr x, int64_t first, int64_t last) {
    if (first > last) {
        num_make_digit(x, 1);
        return;
    }
    auto low = static_cast<limb>(first), high = static_cast<limb>(last);
    ScratchMark mark = scratch_mark();
    limb* r = scratch_array<limb>(limbs_range_room(low, high));
    int64_t n = limbs_range_product(r, low, high);
    chain_from_limbs(x, r, n, false);
    scratch_release(mark);
}

/// The table entry C(n, i), n a multiple of 3 from 3 to 150; 1 for i = 0. Nil: i is out of 0..n.
const number* tabulated(int32_t n, int32_t i) {
    if (i < 0 || i > n) return nullptr;
    if (i > n - i) i = n - i;
    if (i == 0) return &number_1;
    int32_t rows = n / 3 - 1;  // the rows before this one have floor(3 k / 2) entries, k = 1..rows
    return binom[(3 * rows * (rows + 1) / 2 - (rows + 1) / 2) / 2 + i - 1];
}

/// a at most 152: a row of the table, or one or two steps of Pascal's rule below it.
void binom_from_table(int32_t a, int32_t b, imptr ans) {
    static constexpr int32_t weight[3][3] = {{1, 0, 0}, {1, 1, 0}, {1, 2, 1}};  // C(r, j)
    int32_t row = a - a % 3;
    number sum = {};
    num_make_digit(&sum, 0);
    for (int32_t j = 0; j <= a % 3; j++) {
        const number* entry = tabulated(row, b - j);
        if (entry == nullptr) continue;
        if (weight[a % 3][j] == 2) fastsum(&sum, entry);
        fastsum(&sum, entry);
    }
    special_free(ans);
    *ans = sum;
}
}  // namespace

int32_t mod_binom(int32_t a, int32_t b) {
    if (finf) return (a & b) == b;  // characteristic 2: no carry in b + (a - b)
    int32_t result = 1 % modulus;
    if (!mod_is_prime) return binom_by_steps(a, b < a - b ? b : a - b);
    // Lucas: the product of the binomials of the digits in base p
    while (b != 0) {
        int32_t ai = a % modulus, bi = b % modulus;
        if (bi > ai) return 0;
        result = modmult(static_cast<uint32_t>(result),
                         static_cast<uint32_t>(binom_by_steps(ai, bi < ai - bi ? bi : ai - bi)));
        a /= modulus;
        b /= modulus;
    }
    return result;
}

int32_t lint_binom(int32_t a, int32_t b) {
    int64_t value = 1;
    if (b > a - b) b = a - b;
    for (int32_t i = 1; i <= b; i++) {
        value = value * (a - b + i) / i;
        if (value > INT32_MAX) {
            error(Err::binomial_too_large);
            return 0;
        }
    }
    return static_cast<int32_t>(value);
}

void rat_binom(int32_t a, int32_t b, imptr ans) {
    constexpr int32_t k_table_rows = 152;
    constexpr int64_t k_bits = INT64_C(1) << 32;  // of the product that is divided: half a gigabyte
    if (b > a - b) b = a - b;
    if (a <= k_table_rows && a >= 3) {
        binom_from_table(a, b, ans);
        return;
    }
    if (static_cast<int64_t>(b) * std::bit_width(static_cast<uint32_t>(a)) > k_bits) {
        error(Err::binomial_too_large);
        special_free(ans);
        num_make_digit(ans, 0);
        return;
    }
    number over = {}, under = {};
    chain_of_range(&over, static_cast<int64_t>(a) - b + 1, a);
    chain_of_range(&under, 1, b);
    divide_exact(&over, &under);
    special_free(&under);
    special_free(ans);
    *ans = over;
}
}  // namespace tolvex
