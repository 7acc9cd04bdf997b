#include "matrix/lane_determinant.h"

#include "numbers/float_modulus.h"
#include "storage/wide_vectors.h"

// Parts of functions that are compiled once for each kind of processor.
#define INTO_CLONES [[gnu::always_inline]] inline
namespace tolvex {
namespace {
constexpr uint32_t k_sum_modulus = 1u << 23;  // below it sums of products need no reduction for a while
constexpr int64_t k_sum_terms = 128;          // products whose sum stays below 2^51

/// A product of numbers of absolute value little above m / 2, modulo m < 2^50: its low half by a fused
/// product.
inline double product_rest(double x, double y, FloatModulus m) {
    double high = x * y, low = __builtin_fma(x, y, -high), q = float_round(high * m.inverse);
    return __builtin_fma(-q, m.m, high) + low;
}

template <bool wide> INTO_CLONES double times(double x, double y, FloatModulus m) {
    return wide ? product_rest(x, y, m) : float_sum_rest(x * y, m);
}

template <bool wide> INTO_CLONES void reduce_lanes(double* __restrict x, FloatModulus m) {
    for (int32_t l = 0; l < k_lanes; l++) x[l] = float_sum_rest(x[l], m);
}

template <bool wide>
INTO_CLONES void multiply_lanes(double* __restrict x, const double* __restrict y, FloatModulus m) {
    for (int32_t l = 0; l < k_lanes; l++) x[l] = times<wide>(x[l], y[l], m);
}

/// inverse := the power p - 2 of x.
template <bool wide>
INTO_CLONES void invert_lanes(const double* x, uint32_t p, FloatModulus m, double* inverse) {
    for (int32_t l = 0; l < k_lanes; l++) inverse[l] = x[l];
    uint32_t e = p - 2;
    for (int32_t bit = e > 1 ? 30 - __builtin_clz(e) : -1; bit >= 0; bit--) {
        for (int32_t l = 0; l < k_lanes; l++) inverse[l] = times<wide>(inverse[l], inverse[l], m);
        if ((e >> bit) & 1) multiply_lanes<wide>(inverse, x, m);
    }
}

/// row := row - factor * pivot, entry by entry; entries are 16 numbers.
template <bool wide>
INTO_CLONES void subtract_lanes(double* __restrict row, const double* __restrict pivot,
                                const double* __restrict factor, int32_t entries, FloatModulus m) {
    for (int32_t c = 0; c < entries; c++)
        for (int32_t l = 0; l < k_lanes; l++) {
            double product = factor[l] * pivot[c * k_lanes + l];
            if constexpr (wide) product = product_rest(factor[l], pivot[c * k_lanes + l], m);
            row[c * k_lanes + l] -= product;
        }
}

/// The zeros among the pivots become 1, so that the other lanes go on; the lanes of zeros.
inline uint32_t replace_zeros(double* pivot) {
    uint32_t zeros = 0;
    for (int32_t l = 0; l < k_lanes; l++) {
        zeros |= static_cast<uint32_t>(pivot[l] == 0) << l;
        pivot[l] = pivot[l] == 0 ? 1 : pivot[l];
    }
    return zeros;
}

template <bool wide>
INTO_CLONES uint32_t eliminate(double* a, int32_t n, uint32_t p, FloatModulus m, double* det) {
    uint32_t zeros = 0;
    double inverse[k_lanes], factor[k_lanes];
    for (int32_t l = 0; l < k_lanes; l++) det[l] = 1;
    for (int32_t k = 0; k < n; k++) {
        double* pivot = a + (int64_t{k} * n + k) * k_lanes;
        for (int32_t c = 0; c < n - k; c++) reduce_lanes<wide>(pivot + c * k_lanes, m);
        zeros |= replace_zeros(pivot);
        multiply_lanes<wide>(det, pivot, m);
        if (k == n - 1) break;
        invert_lanes<wide>(pivot, p, m, inverse);
        for (int32_t r = k + 1; r < n; r++) {
            double* row = a + (int64_t{r} * n + k) * k_lanes;
            for (int32_t l = 0; l < k_lanes; l++) factor[l] = float_sum_rest(row[l], m);
            multiply_lanes<wide>(factor, inverse, m);
            subtract_lanes<wide>(row + k_lanes, pivot + k_lanes, factor, n - k - 1, m);
        }
    }
    return zeros;
}

template <bool wide>
INTO_CLONES void add_values(const double* coef, const int32_t* exp, int64_t count, const double* power,
                            FloatModulus m, double* __restrict sum) {
    for (int32_t l = 0; l < k_lanes; l++) sum[l] = 0;
    for (int64_t t = 0; t < count; t++) {
        const double* __restrict at = power + int64_t{exp[t]} * k_lanes;
        double c = coef[t];
        for (int32_t l = 0; l < k_lanes; l++) sum[l] += wide ? product_rest(c, at[l], m) : c * at[l];
        if (t % k_sum_terms == k_sum_terms - 1) reduce_lanes<wide>(sum, m);
    }
    reduce_lanes<wide>(sum, m);
}
}  // namespace

WIDE_VECTORS static uint32_t eliminate_short(double* a, int32_t n, uint32_t p, FloatModulus m, double* det) {
    return eliminate<false>(a, n, p, m, det);
}
WIDE_VECTORS static uint32_t eliminate_wide(double* a, int32_t n, uint32_t p, FloatModulus m, double* det) {
    return eliminate<true>(a, n, p, m, det);
}
WIDE_VECTORS static void values_short(const double* coef, const int32_t* exp, int64_t count,
                                      const double* power, FloatModulus m, double* sum) {
    add_values<false>(coef, exp, count, power, m, sum);
}
WIDE_VECTORS static void values_wide(const double* coef, const int32_t* exp, int64_t count,
                                     const double* power, FloatModulus m, double* sum) {
    add_values<true>(coef, exp, count, power, m, sum);
}

uint32_t lane_determinants(const WordField& f, double* a, int32_t n, uint32_t* det) {
    double value[k_lanes];
    FloatModulus m = float_modulus(f.p);
    uint32_t zeros = (f.p < k_sum_modulus ? eliminate_short : eliminate_wide)(a, n, f.p, m, value);
    for (int32_t l = 0; l < k_lanes; l++) det[l] = float_residue(value[l], m);
    return zeros;
}

void lane_values(const WordField& f, const double* coef, const int32_t* exp, int64_t count,
                 const double* power, double* sum) {
    (f.p < k_sum_modulus ? values_short : values_wide)(coef, exp, count, power, float_modulus(f.p), sum);
}

void lane_powers(const WordField& f, const uint32_t* point, int32_t most, double* power) {
    for (int32_t l = 0; l < k_lanes; l++) {
        uint32_t v = 1;
        for (int32_t e = 0; e <= most; e++) {
            power[int64_t{e} * k_lanes + l] = lane_residue(f, v);
            v = wf_mul(f, v, point[l]);
        }
    }
}
}  // namespace tolvex
