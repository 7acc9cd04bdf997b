#include "matrix/word_adjoint.h"

#include "matrix/word_determinant.h"
#include "numbers/float_modulus.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr uint32_t k_sum_modulus = 1u << 23;  // below it sums of products need no reduction for a while
constexpr int32_t k_sum_steps = 120;          // additions to an entry until it has to be reduced

/// Gauss-Jordan elimination in place: rows change places, and the columns of the result must change back.
struct Jordan {
    const WordField* f;
    int32_t n;
    int32_t* exchanged;  // with row k
    uint32_t det;
};
}  // namespace

// ---- floating point ------------------------------------------------------------------------------------

WIDE_VECTORS static void subtract_multiple(double* __restrict row, const double* __restrict pivot,
                                           double factor, int32_t count) {
    for (int32_t c = 0; c < count; c++) row[c] -= factor * pivot[c];
}

WIDE_VECTORS static void scale_row(double* row, double factor, FloatModulus m, int32_t count) {
    for (int32_t c = 0; c < count; c++) row[c] = float_sum_rest(float_sum_rest(row[c], m) * factor, m);
}

WIDE_VECTORS static void reduce_row(double* row, FloatModulus m, int32_t count) {
    for (int32_t c = 0; c < count; c++) row[c] = float_sum_rest(row[c], m);
}

static double balanced(const WordField& f, uint32_t v) {
    return v > f.p / 2 ? static_cast<double>(v) - f.p : static_cast<double>(v);
}

static bool float_step(Jordan& j, double* a, int32_t k, FloatModulus m) {
    int32_t n = j.n, best = n;
    for (int32_t r = n - 1; r >= 0; r--) {
        double* entry = a + int64_t{r} * n + k;
        *entry = float_sum_rest(*entry, m);
        if (r >= k && *entry != 0) best = r;
    }
    if (best == n) return false;
    j.exchanged[k] = best;
    double* pivot = a + int64_t{k} * n;
    if (best != k) {
        std::swap_ranges(pivot, pivot + n, a + int64_t{best} * n);
        j.det = wf_neg(*j.f, j.det);
    }
    uint32_t v = float_residue(pivot[k], m);
    j.det = wf_mul(*j.f, j.det, v);
    pivot[k] = 1;
    scale_row(pivot, balanced(*j.f, wf_inverse(*j.f, v)), m, n);
    for (int32_t r = 0; r < n; r++) {
        double* row = a + int64_t{r} * n;
        if (r == k || row[k] == 0) continue;
        double factor = row[k];
        row[k] = 0;
        subtract_multiple(row, pivot, factor, n);
    }
    if (k % k_sum_steps == k_sum_steps - 1)
        for (int32_t r = 0; r < n; r++) reduce_row(a + int64_t{r} * n, m, n);
    return true;
}

static bool float_jordan(Jordan& j, uint32_t* words) {
    int64_t size = int64_t{j.n} * j.n;
    FloatModulus m = float_modulus(j.f->p);
    auto* a = scratch_array<double>(size);
    for (int64_t k = 0; k < size; k++) a[k] = balanced(*j.f, words[k]);
    for (int32_t k = 0; k < j.n; k++) {
        if (!float_step(j, a, k, m)) return false;
        poll_interrupt();
    }
    for (int64_t k = 0; k < size; k++) words[k] = float_residue(a[k], m);
    return true;
}

// ---- words ---------------------------------------------------------------------------------------------

/// row := row - factor * pivot.
static void subtract_words(const WordField& f, uint32_t* row, const uint32_t* pivot, uint32_t factor,
                           int32_t count) {
    uint32_t minus = wf_neg(f, factor);
    if (f.table) {
        for (int32_t c = 0; c < count; c++) row[c] = wf_add(f, row[c], wf_mul(f, minus, pivot[c]));
        return;
    }
    for (int32_t c = 0; c < count; c++)
        row[c] = wf_reduce(f, static_cast<uint64_t>(minus) * pivot[c] + row[c]);
}

static bool word_step(Jordan& j, uint32_t* a, int32_t k) {
    const WordField& f = *j.f;
    int32_t n = j.n, best = k;
    while (best < n && a[int64_t{best} * n + k] == 0) best++;
    if (best == n) return false;
    j.exchanged[k] = best;
    uint32_t* pivot = a + int64_t{k} * n;
    if (best != k) {
        std::swap_ranges(pivot, pivot + n, a + int64_t{best} * n);
        j.det = wf_neg(f, j.det);
    }
    j.det = wf_mul(f, j.det, pivot[k]);
    uint32_t inverse = wf_inverse(f, pivot[k]);
    pivot[k] = 1;
    for (int32_t c = 0; c < n; c++) pivot[c] = wf_mul(f, pivot[c], inverse);
    for (int32_t r = 0; r < n; r++) {
        uint32_t* row = a + int64_t{r} * n;
        if (r == k || row[k] == 0) continue;
        uint32_t factor = row[k];
        row[k] = 0;
        subtract_words(f, row, pivot, factor, n);
    }
    return true;
}

uint32_t word_inverse(const WordField& f, uint32_t* a, int32_t n) {
    ScratchMark mark = scratch_mark();
    Jordan j = {&f, n, scratch_array<int32_t>(n), 1};
    bool good = true;
    if (!f.table && f.p < k_sum_modulus) {
        good = float_jordan(j, a);
    } else {
        for (int32_t k = 0; good && k < n; k++) {
            good = word_step(j, a, k);
            poll_interrupt();
        }
    }
    for (int32_t k = n - 1; good && k >= 0; k--)
        for (int64_t r = 0; j.exchanged[k] != k && r < n; r++)
            std::swap(a[r * n + k], a[r * n + j.exchanged[k]]);
    scratch_release(mark);
    return good ? j.det : 0;
}

// ---- adjoints of singular matrices ---------------------------------------------------------------------

namespace {
/// Vectors that the matrix takes to 0 from either side, if both are unique but for a factor.
struct Kernels {
    uint32_t *left, *right;
    int32_t free_column;  // where right is 1
};
}  // namespace

/// Rows [a | 1] are reduced; false if more than one row of a becomes 0.
static bool find_kernels(const WordField& f, const uint32_t* a, int32_t n, Kernels* k) {
    int64_t width = int64_t{2} * n;
    auto* m = scratch_array<uint32_t>(n * width);
    auto* column = scratch_array<int32_t>(n);  // of the pivot of a row
    for (int64_t r = 0; r < n; r++)
        for (int64_t c = 0; c < width; c++) m[r * width + c] = c < n ? a[r * n + c] : c - n == r;
    int32_t rank = 0;
    k->free_column = n;
    for (int32_t c = 0; c < n; c++) {
        int32_t best = rank;
        while (best < n && m[best * width + c] == 0) best++;
        if (best == n) {
            if (k->free_column < n) return false;
            k->free_column = c;
            continue;
        }
        uint32_t* pivot = m + rank * width;
        if (best != rank) std::swap_ranges(pivot, pivot + width, m + best * width);
        uint32_t inverse = wf_inverse(f, pivot[c]);
        for (int64_t t = 0; t < width; t++) pivot[t] = wf_mul(f, pivot[t], inverse);
        for (int32_t r = 0; r < n; r++)
            if (r != rank && m[r * width + c] != 0)
                subtract_words(f, m + r * width, pivot, m[r * width + c], static_cast<int32_t>(width));
        column[rank++] = c;
        poll_interrupt();
    }
    std::copy_n(m + rank * width + n, n, k->left);
    std::fill_n(k->right, n, 0);
    k->right[k->free_column] = 1;
    for (int32_t r = 0; r < rank; r++) k->right[column[r]] = wf_neg(f, m[r * width + k->free_column]);
    return true;
}

/// The cofactor of (row, column).
static uint32_t cofactor(const WordField& f, const uint32_t* a, int32_t n, int32_t row, int32_t column) {
    if (n == 1) return 1;
    auto* m = scratch_array<uint32_t>(int64_t{n - 1} * (n - 1));
    uint32_t* out = m;
    for (int32_t r = 0; r < n; r++)
        for (int32_t c = 0; c < n; c++)
            if (r != row && c != column) *out++ = a[int64_t{r} * n + c];
    uint32_t det = word_determinant(f, m, n - 1);
    return (row + column) % 2 == 0 ? det : wf_neg(f, det);
}

/// Of rank n - 1 the adjoint is a multiple of the product of the kernels; below it is 0.
static void singular_adjoint(const WordField& f, uint32_t* a, int32_t n) {
    Kernels k = {scratch_array<uint32_t>(n), scratch_array<uint32_t>(n), n};
    if (!find_kernels(f, a, n, &k)) {
        std::fill_n(a, int64_t{n} * n, 0);
        return;
    }
    int32_t row = 0;
    while (k.left[row] == 0) row++;
    uint32_t factor = wf_mul(f, cofactor(f, a, n, row, k.free_column), wf_inverse(f, k.left[row]));
    for (int64_t r = 0; r < n; r++) {
        uint32_t x = wf_mul(f, k.right[r], factor);
        for (int64_t c = 0; c < n; c++) a[r * n + c] = wf_mul(f, x, k.left[c]);
    }
}

uint32_t word_adjoint(const WordField& f, uint32_t* a, int32_t n) {
    ScratchMark mark = scratch_mark();
    int64_t size = int64_t{n} * n;
    auto* copy = scratch_array<uint32_t>(size);
    std::copy_n(a, size, copy);
    uint32_t det = word_inverse(f, a, n);
    if (det == 0) {
        std::copy_n(copy, size, a);
        singular_adjoint(f, a, n);
    } else {
        for (int64_t k = 0; k < size; k++) a[k] = wf_mul(f, a[k], det);
    }
    scratch_release(mark);
    return det;
}
}  // namespace tolvex
