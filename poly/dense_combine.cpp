#include "poly/dense_combine.h"

#include "numbers/float_modulus.h"
#include "poly/dense_kernels.h"
#include "poly/dense_school.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_tile = 64;       // columns that are worked at together
constexpr int32_t k_least_run = 32;  // products to a reduction from which entries are not split
constexpr int32_t k_split_run = 64;  // products of a half entry to a reduction
constexpr double k_half = 65536;     // an entry is high k_half + low

/// One tile: the entries of all rows as doubles.
struct Tile {
    double* low;   // count x k_tile; the whole entries, if they are not split
    double* high;  // nil if they are not
    int32_t width;
};
}  // namespace

/// x := high k_half + low, |low| <= k_half / 2.
WIDE_VECTORS static void split_entries(double* __restrict x, double* __restrict high, int32_t n) {
    for (int32_t i = 0; i < n; i++) {
        double h = float_round(x[i] * (1 / k_half));
        high[i] = h;
        x[i] -= h * k_half;
    }
}

/// sum[0..k_tile) += the combination of four rows of a tile.
WIDE_VECTORS static void add_four(double* __restrict sum, const double* __restrict row, double c0, double c1,
                                  double c2, double c3) {
    for (int32_t j = 0; j < k_tile; j++)
        sum[j] +=
            (c0 * row[j] + c1 * row[k_tile + j]) + (c2 * row[2 * k_tile + j] + c3 * row[3 * k_tile + j]);
}

WIDE_VECTORS static void add_one(double* __restrict sum, const double* __restrict row, double c) {
    for (int32_t j = 0; j < k_tile; j++) sum[j] += c * row[j];
}

/// total := total + low + k_half high, reduced; the sums are exact.
WIDE_VECTORS static void reduce_sums(double* __restrict total, const double* __restrict low,
                                     const double* __restrict high, FloatModulus m) {
    for (int32_t j = 0; j < k_tile; j++) total[j] += float_sum_rest(low[j], m);
    if (high == nullptr) {
        for (int32_t j = 0; j < k_tile; j++) total[j] = float_sum_rest(total[j], m);
    } else {
        for (int32_t j = 0; j < k_tile; j++)
            total[j] = float_sum_rest(total[j] + float_sum_rest(high[j], m) * k_half, m);
    }
}

static void add_run(double* sum, const double* rows, const double* coef, int32_t count) {
    std::fill(sum, sum + k_tile, 0.0);
    int32_t k = 0;
    for (; k + 4 <= count; k += 4)
        add_four(sum, rows + int64_t{k} * k_tile, coef[k], coef[k + 1], coef[k + 2], coef[k + 3]);
    for (; k < count; k++) add_one(sum, rows + int64_t{k} * k_tile, coef[k]);
}

/// out[0..width) := the combination of the rows of a tile, `run` products to a reduction.
static void combine_tile(const Tile& tile, const double* coef, int32_t count, int32_t run, FloatModulus m,
                         uint32_t* out) {
    double low[k_tile], high[k_tile], total[k_tile] = {};
    for (int32_t k = 0; k < count; k += run) {
        const int32_t n = std::min(run, count - k);
        add_run(low, tile.low + int64_t{k} * k_tile, coef + k, n);
        if (tile.high != nullptr) add_run(high, tile.high + int64_t{k} * k_tile, coef + k, n);
        reduce_sums(total, low, tile.high != nullptr ? high : nullptr, m);
    }
    for (int32_t j = 0; j < tile.width; j++) out[j] = float_residue(total[j], m);
}

static void combine_residues(const WordField& f, const uint32_t* coef, int32_t rows, int32_t count,
                             const uint32_t* row, int32_t n, uint32_t* out) {
    const auto m = static_cast<int32_t>(f.p);
    const FloatModulus divisor = float_modulus(m);
    const int64_t half = m / 2 + 1;
    const int64_t whole_run = k_exact_sum / 4 / (half * half);
    const bool split = whole_run < k_least_run;
    const auto run = static_cast<int32_t>(split ? k_split_run : std::min<int64_t>(whole_run, count));
    ScratchMark mark = scratch_mark();
    auto* c = scratch_array<double>(int64_t{rows} * count);
    balanced_floats(coef, c, rows * count, m);
    Tile tile = {scratch_array<double>(int64_t{count} * k_tile),
                 split ? scratch_array<double>(int64_t{count} * k_tile) : nullptr, k_tile};
    for (int32_t from = 0; from < n; from += k_tile) {
        poll_interrupt();
        tile.width = std::min(k_tile, n - from);
        memset(tile.low, 0, static_cast<size_t>(count) * k_tile * sizeof(double));
        for (int32_t k = 0; k < count; k++)
            balanced_floats(row + int64_t{k} * n + from, tile.low + int64_t{k} * k_tile, tile.width, m);
        if (split) split_entries(tile.low, tile.high, count * k_tile);
        for (int32_t i = 0; i < rows; i++)
            combine_tile(tile, c + int64_t{i} * count, count, run, divisor, out + int64_t{i} * n + from);
    }
    scratch_release(mark);
}

void combine_rows(const WordField& f, const uint32_t* coef, int32_t rows, int32_t count, const uint32_t* row,
                  int32_t n, uint32_t* out) {
    if (!f.table) {
        combine_residues(f, coef, rows, count, row, n, out);
        return;
    }
    memset(out, 0, static_cast<size_t>(rows) * static_cast<size_t>(n) * sizeof(uint32_t));
    for (int32_t i = 0; i < rows; i++) {
        poll_interrupt();
        for (int32_t k = 0; k < count; k++)  // of characteristic 2: a difference is a sum
            row_submul(f, out + int64_t{i} * n, row + int64_t{k} * n, n, coef[int64_t{i} * count + k]);
    }
}
}  // namespace tolvex
