// A panel of columns is factored; the rows that it leads are solved against its triangle; then all that is
// left changes by the product of the panel and those rows. That product is nearly all of the work: its sums
// stay below 2^52, where floating point is exact. Residues from about 2^23 on have one factor cut in two
// halves.
#include "matrix/float_lu.h"

#include "numbers/float_modulus.h"
#include "poly/dense_kernels.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
typedef double Lanes __attribute__((vector_size(32), aligned(8), may_alias));
constexpr int32_t k_tile_rows = 4, k_tile_cols = 8;  // of a block of sums in registers
constexpr int32_t k_panel = 64, k_cut_panel = 32;    // columns whose products still make exact sums
constexpr uint32_t k_uncut = 1u << 23;               // moduli up to here are not cut
constexpr int32_t k_cut_bits = 16;

/// The matrix; entries are integers above -p and below p but inside a panel.
struct FloatLu {
    const WordField* f;
    FloatModulus m;
    double* a;       // row by row
    int64_t stride;  // of a row, a multiple of k_tile_cols; the columns behind n are 0
    int32_t n;
    bool cut;
    bool negative;
    uint32_t det;
    double* packed;      // rows above the trailing block, tile after tile
    double *low, *high;  // the panel's multipliers, cut in two halves
};

double* row_of(const FloatLu& lu, int32_t r) { return lu.a + r * lu.stride; }
}  // namespace

// ---- kernels -------------------------------------------------------------------------------------------

// row[c] := row[c] - factor * pivot[c].
WIDE_VECTORS static void subtract_multiple(double* __restrict row, const double* __restrict pivot,
                                           double factor, int32_t count) {
    for (int32_t c = 0; c < count; c++) row[c] -= factor * pivot[c];
}

WIDE_VECTORS static void reduce_row(double* __restrict row, FloatModulus m, int32_t count) {
    for (int32_t c = 0; c < count; c++) row[c] = float_sum_rest(row[c], m);
}

// The sums of products of four rows of multipliers with a tile of packed rows.
static inline void tile_sums(const double* const l[k_tile_rows], const double* __restrict u, int32_t depth,
                             Lanes s[2 * k_tile_rows]) {
    Lanes s0 = {}, s1 = {}, s2 = {}, s3 = {}, s4 = {}, s5 = {}, s6 = {}, s7 = {};
    for (int32_t k = 0; k < depth; k++) {
        const Lanes* x = reinterpret_cast<const Lanes*>(u + k * k_tile_cols);
        s0 += l[0][k] * x[0], s1 += l[0][k] * x[1];
        s2 += l[1][k] * x[0], s3 += l[1][k] * x[1];
        s4 += l[2][k] * x[0], s5 += l[2][k] * x[1];
        s6 += l[3][k] * x[0], s7 += l[3][k] * x[1];
    }
    s[0] = s0, s[1] = s1, s[2] = s2, s[3] = s3, s[4] = s4, s[5] = s5, s[6] = s6, s[7] = s7;
}

// Four rows of the trailing block, whose rows are c[0..3] and multipliers l[0..3]: c := c - l u.
WIDE_VECTORS static void update_rows(double* const c[k_tile_rows], const double* const l[k_tile_rows],
                                     const double* u, int32_t depth, int32_t cols, FloatModulus m) {
    for (int32_t j = 0; j < cols; j += k_tile_cols) {
        Lanes s[2 * k_tile_rows];
        tile_sums(l, u + int64_t{j} * depth, depth, s);
        const double* sums = reinterpret_cast<const double*>(s);
        for (int32_t r = 0; r < k_tile_rows; r++)
            for (int32_t t = 0; t < k_tile_cols; t++)
                c[r][j + t] = float_sum_rest(c[r][j + t] - sums[r * k_tile_cols + t], m);
    }
}

// The same with multipliers high 2^16 + low.
WIDE_VECTORS static void update_rows_cut(double* const c[k_tile_rows], const double* const low[k_tile_rows],
                                         const double* const high[k_tile_rows], const double* u,
                                         int32_t depth, int32_t cols, FloatModulus m) {
    for (int32_t j = 0; j < cols; j += k_tile_cols) {
        Lanes s[2 * k_tile_rows], t[2 * k_tile_rows];
        tile_sums(low, u + int64_t{j} * depth, depth, s);
        tile_sums(high, u + int64_t{j} * depth, depth, t);
        const double *lows = reinterpret_cast<const double*>(s), *highs = reinterpret_cast<const double*>(t);
        for (int32_t r = 0; r < k_tile_rows; r++)
            for (int32_t i = 0; i < k_tile_cols; i++) {
                int32_t at = r * k_tile_cols + i;
                double top = float_sum_rest(highs[at], m) * (1 << k_cut_bits);
                c[r][j + i] = float_sum_rest(c[r][j + i] - lows[at] - top, m);
            }
    }
}

// ---- the panel -----------------------------------------------------------------------------------------

/// A residue of absolute value at most p / 2.
static double balanced(const WordField& f, uint32_t v) {
    return v > f.p / 2 ? static_cast<double>(v) - f.p : static_cast<double>(v);
}

/// Row k takes the first row whose entry in column k is not 0; the entries of that column are reduced. False:
/// there is none.
static bool bring_pivot(FloatLu& lu, int32_t k) {
    int32_t best = lu.n;
    for (int32_t r = k; r < lu.n; r++) {
        double* entry = row_of(lu, r) + k;
        *entry = float_sum_rest(*entry, lu.m);
        if (*entry != 0 && best == lu.n) best = r;
    }
    if (best == lu.n) return false;
    if (best == k) return true;
    std::swap_ranges(row_of(lu, k), row_of(lu, k) + lu.n, row_of(lu, best));
    lu.negative = !lu.negative;
    return true;
}

/// The determinant takes the pivot in; returns its inverse.
static uint32_t use_pivot(FloatLu& lu, double pivot) {
    uint32_t v = float_residue(pivot, lu.m);
    lu.det = wf_mul(*lu.f, lu.det, v);
    return wf_inverse(*lu.f, v);
}

/// Columns from..to-1 are factored: below the diagonal stand the multipliers then. Within the panel the rows
/// are sums of at most k_panel products and are reduced when their column's turn comes.
static bool factor_panel(FloatLu& lu, int32_t from, int32_t to) {
    for (int32_t k = from; k < to; k++) {
        if (!bring_pivot(lu, k)) return false;
        double* pivot = row_of(lu, k);
        double inverse = balanced(*lu.f, use_pivot(lu, pivot[k]));
        reduce_row(pivot + k + 1, lu.m, to - k - 1);
        for (int32_t r = k + 1; r < lu.n; r++) {
            double* row = row_of(lu, r);
            row[k] = float_sum_rest(row[k] * inverse, lu.m);
            if (row[k] != 0) subtract_multiple(row + k + 1, pivot + k + 1, row[k], to - k - 1);
        }
        poll_interrupt();
    }
    return true;
}

/// The same in words, for moduli whose products are too long for floating point.
static bool factor_cut_panel(FloatLu& lu, int32_t from, int32_t to) {
    int32_t count = to - from;
    ScratchMark mark = scratch_mark();
    auto* words = scratch_array<uint32_t>(int64_t{lu.n} * count);  // row r of the panel at r * count
    for (int32_t r = from; r < lu.n; r++)
        for (int32_t c = 0; c < count; c++)
            words[int64_t{r} * count + c] = float_residue(row_of(lu, r)[from + c], lu.m);
    bool good = true;
    for (int32_t k = 0; good && k < count; k++) {
        int32_t row = from + k, best = row;
        while (best < lu.n && words[int64_t{best} * count + k] == 0) best++;
        good = best < lu.n;
        if (!good) break;
        uint32_t* pivot = words + int64_t{row} * count;
        if (best != row) {
            std::swap_ranges(pivot, pivot + count, words + int64_t{best} * count);
            std::swap_ranges(row_of(lu, row), row_of(lu, row) + lu.n, row_of(lu, best));
            lu.negative = !lu.negative;
        }
        uint32_t inverse = use_pivot(lu, pivot[k]);
        for (int32_t r = row + 1; r < lu.n; r++) {
            uint32_t* w = words + int64_t{r} * count;
            w[k] = wf_mul(*lu.f, w[k], inverse);
            uint32_t minus = wf_neg(*lu.f, w[k]);
            for (int32_t c = k + 1; c < count; c++)
                w[c] = wf_reduce(*lu.f, static_cast<uint64_t>(minus) * pivot[c] + w[c]);
        }
        poll_interrupt();
    }
    for (int32_t r = from; r < lu.n; r++)
        for (int32_t c = 0; c < count; c++)
            row_of(lu, r)[from + c] = balanced(*lu.f, words[int64_t{r} * count + c]);
    scratch_release(mark);
    return good;
}

// ---- the rest of the matrix ----------------------------------------------------------------------------

/// The rows that the panel leads, behind its columns, are solved against its triangle.
static void solve_rows(FloatLu& lu, int32_t from, int32_t to) {
    int32_t count = static_cast<int32_t>(lu.stride) - to;
    for (int32_t r = from; r < to; r++) {
        double* row = row_of(lu, r);
        for (int32_t k = from; k < r; k++) {
            if (row[k] == 0) continue;
            if (!lu.cut) {
                subtract_multiple(row + to, row_of(lu, k) + to, row[k], count);
                continue;
            }
            double high = static_cast<int32_t>(row[k]) >> k_cut_bits, low = row[k] - high * (1 << k_cut_bits);
            subtract_multiple(row + to, row_of(lu, k) + to, low, count);
            reduce_row(row + to, lu.m, count);
            auto* part = lu.packed;
            std::fill_n(part, count, 0.0);
            subtract_multiple(part, row_of(lu, k) + to, high, count);
            reduce_row(part, lu.m, count);
            subtract_multiple(row + to, part, -(1 << k_cut_bits), count);
            reduce_row(row + to, lu.m, count);
        }
        reduce_row(row + to, lu.m, count);
    }
}

/// The rows from..to-1 behind column `to`, tile after tile, each tile row by row.
static void pack_rows(FloatLu& lu, int32_t from, int32_t to) {
    double* out = lu.packed;
    for (int64_t j = to; j < lu.stride; j += k_tile_cols)
        for (int32_t k = from; k < to; k++) {
            memcpy(out, row_of(lu, k) + j, k_tile_cols * sizeof(double));
            out += k_tile_cols;
        }
}

/// The multipliers of row r in two halves.
static void cut_multipliers(const FloatLu& lu, int32_t r, int32_t from, int32_t to, double* low,
                            double* high) {
    for (int32_t k = from; k < to; k++) {
        int32_t v = static_cast<int32_t>(row_of(lu, r)[k]), top = (v + (1 << (k_cut_bits - 1))) >> k_cut_bits;
        high[k - from] = top;
        low[k - from] = v - top * (1 << k_cut_bits);
    }
}

/// What is left changes by the product of the panel and the rows above.
static void update_trailing(FloatLu& lu, int32_t from, int32_t to) {
    pack_rows(lu, from, to);
    int32_t depth = to - from, cols = static_cast<int32_t>(lu.stride) - to;
    for (int32_t r = to; r < lu.n; r += k_tile_rows) {
        double* c[k_tile_rows];
        const double *l[k_tile_rows], *h[k_tile_rows];
        for (int32_t i = 0; i < k_tile_rows; i++) {
            c[i] = row_of(lu, r + i) + to;
            l[i] = row_of(lu, r + i) + from;
            h[i] = nullptr;
            if (!lu.cut) continue;
            cut_multipliers(lu, r + i, from, to, lu.low + i * k_cut_panel, lu.high + i * k_cut_panel);
            l[i] = lu.low + i * k_cut_panel;
            h[i] = lu.high + i * k_cut_panel;
        }
        if (lu.cut)
            update_rows_cut(c, l, h, lu.packed, depth, cols, lu.m);
        else
            update_rows(c, l, lu.packed, depth, cols, lu.m);
        if (r % 64 < k_tile_rows) poll_interrupt();
    }
}

// ---- the whole -----------------------------------------------------------------------------------------

/// The matrix in floating point, with rows and columns of zeros up to whole tiles.
static void load(FloatLu& lu, const uint32_t* a) {
    int64_t rows = int64_t{lu.n} + k_tile_rows;
    lu.a = scratch_array<double>(rows * lu.stride);
    for (int32_t r = 0; r < lu.n; r++) {
        double* row = row_of(lu, r);
        for (int32_t c = 0; c < lu.n; c++) row[c] = balanced(*lu.f, a[int64_t{r} * lu.n + c]);
        std::fill(row + lu.n, row + lu.stride, 0.0);
    }
    std::fill_n(row_of(lu, lu.n), k_tile_rows * lu.stride, 0.0);
    lu.packed = scratch_array<double>(int64_t{k_panel} * (lu.stride + k_tile_cols));
    if (!lu.cut) return;
    lu.low = scratch_array<double>(k_tile_rows * k_cut_panel);
    lu.high = scratch_array<double>(k_tile_rows * k_cut_panel);
}

uint32_t float_lu_determinant(const WordField& f, const uint32_t* a, int32_t n) {
    ScratchMark mark = scratch_mark();
    FloatLu lu = {};
    lu.f = &f;
    lu.m = float_modulus(f.p);
    lu.n = n;
    lu.cut = f.p > k_uncut;
    lu.det = 1;
    // panels begin at multiples of k_tile_cols, so that the rows behind them are whole tiles
    lu.stride = (int64_t{n} + k_tile_cols - 1) / k_tile_cols * k_tile_cols;
    load(lu, a);
    int32_t width = lu.cut ? k_cut_panel : k_panel;
    for (int32_t from = 0; from < n; from += width) {
        int32_t to = std::min(from + width, n);
        if (!(lu.cut ? factor_cut_panel(lu, from, to) : factor_panel(lu, from, to))) {
            lu.det = 0;
            break;
        }
        if (to == n) break;
        solve_rows(lu, from, to);
        update_trailing(lu, from, to);
    }
    scratch_release(mark);
    return lu.negative ? wf_neg(f, lu.det) : lu.det;
}
}  // namespace tolvex
