// A similarity brings the matrix to Hessenberg form: step k clears column k below the subdiagonal by row k +
// 1 and does the inverse to the columns. The leading blocks of that form have characteristic polynomials that
// follow each other.
#include "matrix/word_charpoly.h"

#include "numbers/float_modulus.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr uint32_t k_float_modulus = 1u << 26;  // balanced residues have exact products up to here

/// Arithmetic on balanced residues in floating point.
struct FloatRing {
    using Value = double;
    const WordField* f;
    FloatModulus m;
    int32_t exact;  // products of which sums are exact
};
/// Arithmetic in words, or in codes of a table field.
struct WordRing {
    using Value = uint32_t;
    const WordField* f;
};
template <class Ring> struct Hessenberg {
    using Value = typename Ring::Value;
    Ring ring;
    Value* a;       // row by row
    Value* factor;  // of the rows in the step under way
    int32_t n;
    Value* row(int32_t r) const { return a + int64_t{r} * n; }
};
}  // namespace

// ---- kernels in floating point -------------------------------------------------------------------------

// row := row - factor * pivot.
WIDE_VECTORS static void subtract_multiple(double* __restrict row, const double* __restrict pivot,
                                           double factor, int32_t count, FloatModulus m) {
    for (int32_t c = 0; c < count; c++) row[c] = float_sum_rest(row[c] - factor * pivot[c], m);
}
static void subtract_multiple(const FloatRing& ring, double* row, const double* pivot, double factor,
                              int32_t count) {
    subtract_multiple(row, pivot, factor, count, ring.m);
}

// The sum of products, exact for as many as `count`.
WIDE_VECTORS static double exact_dot(const double* __restrict x, const double* __restrict y, int32_t count) {
    constexpr int32_t k_lanes = 8;
    double lane[k_lanes] = {};
    int32_t c = 0;
    for (; c + k_lanes <= count; c += k_lanes)
        for (int32_t i = 0; i < k_lanes; i++) lane[i] += x[c + i] * y[c + i];
    double sum = 0;
    for (; c < count; c++) sum += x[c] * y[c];
    for (double part : lane) sum += part;
    return sum;
}
static double dot(const FloatRing& ring, const double* x, const double* y, int32_t count) {
    double sum = 0;
    for (int32_t c = 0; c < count; c += ring.exact)
        sum = float_sum_rest(sum + exact_dot(x + c, y + c, std::min(ring.exact, count - c)), ring.m);
    return sum;
}

static double add(const FloatRing& ring, double x, double y) { return float_sum_rest(x + y, ring.m); }
static double product(const FloatRing& ring, double x, double y) { return float_sum_rest(x * y, ring.m); }
static double balanced(const WordField& f, uint32_t v) {
    return v > f.p / 2 ? static_cast<double>(v) - f.p : static_cast<double>(v);
}
static double element(const FloatRing& ring, uint32_t v) { return balanced(*ring.f, v); }
static uint32_t residue(const FloatRing& ring, double x) { return float_residue(x, ring.m); }

// ---- kernels in words ----------------------------------------------------------------------------------

static void subtract_multiple(const WordRing& ring, uint32_t* row, const uint32_t* pivot, uint32_t factor,
                              int32_t count) {
    const WordField& f = *ring.f;
    if (f.table) {
        for (int32_t c = 0; c < count; c++) row[c] ^= static_cast<uint32_t>(table_mult(factor, pivot[c]));
        return;
    }
    uint32_t minus = wf_neg(f, factor);
    for (int32_t c = 0; c < count; c++)
        row[c] = wf_reduce(f, static_cast<uint64_t>(minus) * pivot[c] + row[c]);
}
static uint32_t dot(const WordRing& ring, const uint32_t* x, const uint32_t* y, int32_t count) {
    const WordField& f = *ring.f;
    if (f.table) {
        uint32_t sum = 0;
        for (int32_t c = 0; c < count; c++) sum ^= static_cast<uint32_t>(table_mult(x[c], y[c]));
        return sum;
    }
    uint64_t sum = 0, limit = static_cast<uint64_t>(f.p) * f.p;  // sums are kept below it
    for (int32_t c = 0; c < count; c++) {
        sum += static_cast<uint64_t>(x[c]) * y[c];
        if (sum >= limit) sum -= limit;
    }
    return wf_reduce(f, sum);
}
static uint32_t add(const WordRing& ring, uint32_t x, uint32_t y) { return wf_add(*ring.f, x, y); }
static uint32_t product(const WordRing& ring, uint32_t x, uint32_t y) { return wf_mul(*ring.f, x, y); }
static uint32_t element(const WordRing&, uint32_t v) { return v; }
static uint32_t residue(const WordRing&, uint32_t x) { return x; }

// ---- the similarity ------------------------------------------------------------------------------------

/// An entry of column k that is not 0 goes to row k + 1; the column with its number goes with the row. False:
/// the column is clear below the subdiagonal, and on it.
template <class Ring> static bool bring_pivot(const Hessenberg<Ring>& h, int32_t k) {
    int32_t r = k + 1;
    while (r < h.n && h.row(r)[k] == 0) r++;
    if (r == h.n) return false;
    if (r == k + 1) return true;
    std::swap_ranges(h.row(r) + k, h.row(r) + h.n, h.row(k + 1) + k);
    for (int32_t i = 0; i < h.n; i++) std::swap(h.row(i)[r], h.row(i)[k + 1]);
    return true;
}

/// Column k is cleared below row k + 1.
template <class Ring> static void clear_column(const Hessenberg<Ring>& h, int32_t k) {
    const Ring& ring = h.ring;
    const auto* pivot = h.row(k + 1);
    auto inverse = element(ring, wf_inverse(*ring.f, residue(ring, pivot[k])));
    for (int32_t r = k + 2; r < h.n; r++) {
        auto* row = h.row(r);
        h.factor[r] = product(ring, row[k], inverse);
        row[k] = 0;
        if (h.factor[r] != 0) subtract_multiple(ring, row + k + 1, pivot + k + 1, h.factor[r], h.n - k - 1);
        poll_every<64>(r);
    }
    for (int32_t r = 0; r < h.n; r++) {
        auto* row = h.row(r);
        row[k + 1] = add(ring, row[k + 1], dot(ring, row + k + 2, h.factor + k + 2, h.n - k - 2));
        poll_every<64>(r);
    }
}

// ---- the recurrence ------------------------------------------------------------------------------------

/// p[k], at p + k (n + 1), is the polynomial of the leading k by k block:
/// p[k + 1] = (x - h[k][k]) p[k] - sum over i < k of h[i][k] h[i+1][i] ... h[k][k-1] p[i].
template <class Ring>
static void leading_block(const Hessenberg<Ring>& h, int32_t k, typename Ring::Value* p) {
    const Ring& ring = h.ring;
    int64_t stride = int64_t{h.n} + 1;
    auto* next = p + (k + 1) * stride;
    const auto* last = p + k * stride;
    std::copy_n(last, k + 1, next + 1);
    next[0] = 0;
    subtract_multiple(ring, next, last, h.row(k)[k], k + 1);
    auto below = element(ring, 1);
    for (int32_t i = k - 1; i >= 0; i--) {
        below = product(ring, below, h.row(i + 1)[i]);
        if (below == 0) break;
        auto factor = product(ring, below, h.row(i)[k]);
        if (factor != 0) subtract_multiple(ring, next, p + i * stride, factor, i + 1);
    }
    poll_interrupt();
}

template <class Ring> static void charpoly_over(const Ring& ring, const uint32_t* a, int32_t n, uint32_t* c) {
    using Value = typename Ring::Value;
    ScratchMark mark = scratch_mark();
    Hessenberg<Ring> h = {ring, scratch_array<Value>(int64_t{n} * n), scratch_array<Value>(n), n};
    for (int32_t r = 0; r < n; r++) {
        poll_every<16>(r);
        for (int32_t k = 0; k < n; k++) h.row(r)[k] = element(ring, a[int64_t{r} * n + k]);
    }
    for (int32_t k = 0; k + 2 < n; k++)
        if (bring_pivot(h, k)) clear_column(h, k);
    // the polynomials overwrite nothing: p[k] has k + 1 coefficients
    int64_t stride = int64_t{n} + 1;
    auto* p = scratch_array<Value>(stride * stride);
    p[0] = element(ring, 1);
    for (int32_t k = 0; k < n; k++) leading_block(h, k, p);
    for (int32_t k = 0; k <= n; k++) c[k] = residue(ring, p[n * stride + k]);
    scratch_release(mark);
}

void word_charpoly(const WordField& f, const uint32_t* a, int32_t n, uint32_t* c) {
    if (f.table || f.p > k_float_modulus) return charpoly_over(WordRing{&f}, a, n, c);
    double half = f.p / 2 + 1;
    auto exact = static_cast<int32_t>(std::min(static_cast<double>(k_exact_sum) / (half * half), 4096.0));
    charpoly_over(FloatRing{&f, float_modulus(f.p), std::max(exact, 1)}, a, n, c);
}
}  // namespace tolvex
