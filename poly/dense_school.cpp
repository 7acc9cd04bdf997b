// The schoolbook product of residues in floating point: sums of products that stay below 2^52 are exact
// whatever the order of the operations, one fused instruction forms and adds four products, and the sums stay
// in registers. Moduli whose products leave no room for long sums have the entries of one operand cut into
// two halves (compare J. van der Hoeven, G. Lecerf, G. Quintin, "Modular SIMD arithmetic in Mathemagix",
// 2016).
#include "poly/dense_school.h"

#include "numbers/float_modulus.h"
#include "poly/dense_kernels.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
typedef double Lanes __attribute__((vector_size(32), aligned(8), may_alias));
constexpr int32_t k_tile = 16;          // neighbouring coefficients whose sums are kept in registers
constexpr int32_t k_cut_bits = 16;      // of the low half of an entry that is cut in two
constexpr int32_t k_cut_rows = 1 << 7;  // sums of so many products of at most 2^30 by 2^15 are exact

/// The operands in floating point. Pointers into scratch memory.
struct FloatOperands {
    const double* rows;  // the shorter one
    const double* low;   // the longer one, or its low halves; k_tile zeros on either side
    const double* high;  // its high halves likewise, or nil
    int32_t an, bn;      // lengths of the longer and the shorter one
    int32_t most;        // number of rows whose sums are exact
};
}  // namespace

// out[t] := sum of rows[i] b[t - i], first <= i < last. Even and odd rows have sums of their own, so that an
// addition does not wait for the one before it.
WIDE_VECTORS static void tile_sums(double* __restrict out, const double* __restrict rows,
                                   const double* __restrict b, ptrdiff_t first, ptrdiff_t last) {
    Lanes s0 = {}, s1 = {}, s2 = {}, s3 = {}, t0 = {}, t1 = {}, t2 = {}, t3 = {};
    ptrdiff_t i = first;
    for (; i + 1 < last; i += 2) {
        const Lanes *x = reinterpret_cast<const Lanes*>(b - i),
                    *y = reinterpret_cast<const Lanes*>(b - i - 1);
        s0 += rows[i] * x[0];
        s1 += rows[i] * x[1];
        s2 += rows[i] * x[2];
        s3 += rows[i] * x[3];
        t0 += rows[i + 1] * y[0];
        t1 += rows[i + 1] * y[1];
        t2 += rows[i + 1] * y[2];
        t3 += rows[i + 1] * y[3];
    }
    if (i < last) {
        const Lanes* x = reinterpret_cast<const Lanes*>(b - i);
        s0 += rows[i] * x[0];
        s1 += rows[i] * x[1];
        s2 += rows[i] * x[2];
        s3 += rows[i] * x[3];
    }
    Lanes* to = reinterpret_cast<Lanes*>(out);
    to[0] = s0 + t0, to[1] = s1 + t1, to[2] = s2 + t2, to[3] = s3 + t3;
}

WIDE_VECTORS static void reduce_sums(const double* __restrict low, uint32_t* __restrict c, FloatModulus f) {
    for (int32_t t = 0; t < k_tile; t++) c[t] = float_residue(low[t], f);
}

WIDE_VECTORS static void reduce_cut_sums(const double* __restrict low, const double* __restrict high,
                                         uint32_t* __restrict c, FloatModulus f) {
    for (int32_t t = 0; t < k_tile; t++)
        c[t] = float_residue(float_sum_rest(high[t], f) * (1 << k_cut_bits) + float_sum_rest(low[t], f), f);
}

// c[t] := coefficient k + t of the product, 0 <= t < k_tile.
static void tile_product(const WordField& f, const FloatOperands& o, int32_t k, uint32_t* c) {
    FloatModulus m = float_modulus(f.p);
    int32_t first = std::max(0, k - o.an + 1), last = std::min(o.bn, k + k_tile);
    double low[k_tile], high[k_tile];
    uint32_t part[k_tile];
    for (int32_t i = first; i < last; i += o.most) {
        int32_t end = last - i < o.most ? last : i + o.most;
        uint32_t* to = i == first ? c : part;
        tile_sums(low, o.rows, o.low + k, i, end);
        if (o.high == nullptr) {
            reduce_sums(low, to, m);
        } else {
            tile_sums(high, o.rows, o.high + k, i, end);
            reduce_cut_sums(low, high, to, m);
        }
        if (i != first) row_add(f, c, part, c, k_tile);
    }
}

WIDE_VECTORS static void to_floats(const uint32_t* __restrict a, double* __restrict x, int32_t n) {
    for (int32_t i = 0; i < n; i++) x[i] = static_cast<int32_t>(a[i]);
}

// No branch: which half a residue stands in cannot be foreseen.
WIDE_VECTORS void balanced_floats(const uint32_t* __restrict a, double* __restrict x, int32_t n, int32_t m) {
    for (int32_t i = 0; i < n; i++) {
        auto v = static_cast<int32_t>(a[i]);
        x[i] = v - (m & (m / 2 - v) >> 31);
    }
}

// a[i] = high 2^16 + low with -2^15 <= low < 2^15, 0 <= high <= 2^15.
WIDE_VECTORS static void to_cut_floats(const uint32_t* __restrict a, double* __restrict low,
                                       double* __restrict high, int32_t n) {
    for (int32_t i = 0; i < n; i++) {
        uint32_t top = (a[i] + (1u << (k_cut_bits - 1))) >> k_cut_bits;
        low[i] = static_cast<int32_t>(a[i] - (top << k_cut_bits));
        high[i] = static_cast<int32_t>(top);
    }
}

static double* padded_array(int32_t n) {
    auto* x = scratch_array<double>(int64_t{n} + 2 * k_tile);
    memset(x, 0, k_tile * sizeof(double));
    memset(x + k_tile + n, 0, k_tile * sizeof(double));
    return x + k_tile;
}

void school_residues(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                     uint32_t* c) {
    ScratchMark mark = scratch_mark();
    int64_t square = static_cast<int64_t>(f.p - 1) * (f.p - 1);
    bool cut = square > k_exact_sum / std::min(bn, k_cut_rows);
    double *rows = scratch_array<double>(bn), *low = padded_array(an), *high = nullptr;
    if (cut) {
        high = padded_array(an);
        to_cut_floats(a, low, high, an);
        balanced_floats(b, rows, bn, static_cast<int32_t>(f.p));
    } else {
        to_floats(a, low, an);
        to_floats(b, rows, bn);
    }
    int32_t most = cut ? k_cut_rows : static_cast<int32_t>(std::min<int64_t>(k_exact_sum / square, bn));
    FloatOperands o = {rows, low, high, an, bn, most};
    int32_t n = an + bn - 1, k = 0;
    for (; n - k >= k_tile; k += k_tile) tile_product(f, o, k, c + k);
    if (k < n) {
        uint32_t end[k_tile];
        tile_product(f, o, k, end);
        memcpy(c + k, end, static_cast<size_t>(n - k) * sizeof(uint32_t));
    }
    scratch_release(mark);
}
}  // namespace tolvex
