#include "matrix/int_products.h"

#include "matrix/int_grid.h"
#include "numbers/number_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
#include <bit>
namespace tolvex {
namespace {
/// The lines that meet in the products: of the left matrix its rows, of the right one its columns.
struct Lines {
    IntEntry* at;  // line after line
    int32_t count, length;
    IntEntry* denominator;  // of each line
    int64_t bits;           // of the longest entry
    IntEntry* line(int32_t i) const { return at + int64_t{i} * length; }
};
constexpr int64_t k_factor_bits = 31, k_sum_bits = 63;
}  // namespace

static bool are_rational(const quoly* a, int64_t count) {
    return std::all_of(a, a + count, [](const quolynode* q) { return q->numb || q->rat; });
}

/// Line i has the elements a[i step], a[i step + stride], ...
static Lines read_lines(const quoly* a, int32_t count, int32_t length, int64_t step, int64_t stride) {
    Lines l = {scratch_array<IntEntry>(int64_t{count} * length), count, length,
               scratch_array<IntEntry>(count), 0};
    for (int32_t i = 0; i < count; i++) {
        IntEntry multiple = k_entry_one;
        for (int32_t k = 0; k < length; k++) {
            const quolynode* q = a[i * step + k * stride];
            if (!q->numb) multiple = entry_common_multiple(multiple, entry_denominator(q));
            poll_every<256>(k);
        }
        for (int32_t k = 0; k < length; k++) {
            const quolynode* q = a[i * step + k * stride];
            IntEntry e = entry_numerator(q);
            if (multiple.n != 1 || multiple.at[0] != 1)
                e = entry_product(e, entry_quotient(multiple, entry_denominator(q)));
            l.line(i)[k] = e;
            l.bits = std::max(l.bits, entry_bits(e));
            poll_every<256>(k);
        }
        l.denominator[i] = multiple;
    }
    return l;
}

/// The element becomes the value of `sum` over the denominators of its lines.
static void store_element(quolyptr q, const IntEntry& sum, const IntEntry& d, const IntEntry& e) {
    *q = value_of_entry(sum);
    IntEntry below = entry_product(d, e);
    if (sum.n == 0 || (below.n == 1 && below.at[0] == 1)) return;
    quoly divisor = value_of_entry(below);
    fast_quoly_quot(q, divisor, false);
    free_quoly(&divisor);
}

// ---- in words ------------------------------------------------------------------------------------------

static int32_t* words_of(const Lines& l) {
    int64_t count = int64_t{l.count} * l.length;
    auto* words = scratch_array<int32_t>(count);
    for (int64_t k = 0; k < count; k++) {
        auto magnitude = static_cast<int32_t>(l.at[k].n == 0 ? 0 : l.at[k].at[0]);
        words[k] = l.at[k].negative ? -magnitude : magnitude;
    }
    return words;
}

// The sum of the products, which words hold.
WIDE_VECTORS static int64_t word_sum(const int32_t* __restrict x, const int32_t* __restrict y, int32_t n) {
    int64_t sum = 0;
    for (int32_t k = 0; k < n; k++) sum += static_cast<int64_t>(x[k]) * y[k];
    return sum;
}

static void multiply_words(const Lines& a, const Lines& b, workptr result) {
    const int32_t *x = words_of(a), *y = words_of(b);
    for (int32_t c = 0; c < b.count; c++)
        for (int32_t r = 0; r < a.count; r++) {
            ScratchMark mark = scratch_mark();
            int64_t sum = word_sum(x + int64_t{r} * a.length, y + int64_t{c} * b.length, a.length);
            limb magnitude = sum < 0 ? 0 - static_cast<limb>(sum) : static_cast<limb>(sum);
            store_element(&result[r + int64_t{c} * a.count], {&magnitude, sum != 0, sum < 0},
                          a.denominator[r], b.denominator[c]);
            scratch_release(mark);
            poll_interrupt();
        }
}

// ---- in limbs ------------------------------------------------------------------------------------------

static void multiply_limbs(const Lines& a, const Lines& b, workptr result) {
    IntSum sum = new_sum(a.bits, b.bits, a.length);
    for (int32_t c = 0; c < b.count; c++)
        for (int32_t r = 0; r < a.count; r++) {
            ScratchMark mark = scratch_mark();
            clear_sum(sum);
            for (int32_t k = 0; k < a.length; k++) {
                add_to_sum(sum, a.line(r)[k], b.line(c)[k], false);
                poll_interrupt();
            }
            store_element(&result[r + int64_t{c} * a.count], value_of_sum(sum), a.denominator[r],
                          b.denominator[c]);
            scratch_release(mark);
        }
}

bool multiply_rationals(const quoly* a, const quoly* b, int32_t rows, int32_t inner, int32_t cols,
                        workptr result) {
    if (lintmode || !are_rational(a, int64_t{rows} * inner) || !are_rational(b, int64_t{inner} * cols))
        return false;
    ScratchMark mark = scratch_mark();
    Lines x = read_lines(a, rows, inner, 1, rows), y = read_lines(b, cols, inner, inner, 1);
    int64_t bits = x.bits + y.bits + std::bit_width(static_cast<uint32_t>(inner));
    bool words = x.bits <= k_factor_bits && y.bits <= k_factor_bits && bits <= k_sum_bits;
    (words ? multiply_words : multiply_limbs)(x, y, result);
    scratch_release(mark);
    return true;
}
}  // namespace tolvex
