#include "poly/dense_modulus.h"

#include "poly/dense_divide.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
namespace {
// Degrees from which the inverse series pays, and the transforms kept with it; measured.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_series_degree = 4;
constexpr int32_t k_transform_degree = 9;
#else
constexpr int32_t k_series_degree = 64;
constexpr int32_t k_transform_degree = 200;
#endif
}  // namespace

static void copy_words(uint32_t* to, const uint32_t* from, int64_t n) {
    if (n > 0) memcpy(to, from, static_cast<size_t>(n) * sizeof(uint32_t));
}

/// The least power of two that is a length of transforms and not below n.
static FloatLength wrapped_length(int32_t n) {
    FloatLength length = float_length(n);
    while (length.three_halves || length.h < n) length = {2 * length.h, false};
    return length;
}

static void keep_transforms(DenseModulus* m) {
    const int32_t n = m->n;
    m->whole = ntt_frame(m->f, float_length(int64_t{2} * n - 1), n);
    m->wrapped = ntt_frame(m->f, wrapped_length(n), int64_t{n} + 1);
    const bool full = m->wrapped.length.n() == n;  // the leading 1 comes round to the constant term
    auto* folded = scratch_array<uint32_t>(int64_t{n} + 1);
    copy_words(folded, m->c, int64_t{n} + 1);
    if (full) folded[0] = wf_add(m->f, folded[0], 1);
    for (int32_t p = 0; p < m->whole.primes; p++) {
        m->series_values[p] = scratch_array<double>(m->whole.length.n());
        ntt_values(m->whole, p, {m->series, n - 1}, m->series_values[p]);
    }
    for (int32_t p = 0; p < m->wrapped.primes; p++) {
        m->modulus_values[p] = scratch_array<double>(m->wrapped.length.n());
        ntt_values(m->wrapped, p, {folded, full ? n : n + 1}, m->modulus_values[p]);
    }
}

void open_modulus(DenseModulus* m, const WordField& f, const uint32_t* c, int32_t n) {
    *m = {};
    m->f = f;
    m->n = n;
    m->c = c;
    if (n < k_series_degree) return;
    m->series = scratch_array<uint32_t>(n - 1);
    ScratchMark mark = scratch_mark();
    auto *reversed = scratch_array<uint32_t>(n - 1), *inverse = scratch_array<uint32_t>(n - 1);
    for (int32_t i = 0; i < n - 1; i++) reversed[i] = c[n - i];
    wf_series_inverse(f, reversed, n - 1, 1, inverse);
    for (int32_t i = 0; i < n - 1; i++) m->series[i] = inverse[n - 2 - i];
    scratch_release(mark);
    m->transformed = !f.table && n >= k_transform_degree;
    if (m->transformed) keep_transforms(m);
}

/// q[0..n-1) := the quotient of the polynomial whose entries from n on stand in `high`.
static void quotient_by_series(const DenseModulus& m, const uint32_t* high, uint32_t* q) {
    const int32_t n = m.n;
    ScratchMark mark = scratch_mark();
    if (m.transformed) {
        double* image[k_ntt_primes] = {};
        for (int32_t p = 0; p < m.whole.primes; p++) {
            double* x = scratch_array<double>(m.whole.length.n());
            ntt_values(m.whole, p, {high, n - 1}, x);
            float_products(x, m.series_values[p], m.whole.length, p);
            float_coefficients(x, m.whole.length, p);
            image[p] = x + n - 2;
        }
        ntt_combine(m.whole, image, q, n - 1);
    } else {
        auto* product = scratch_array<uint32_t>(int64_t{2} * n);
        wf_mult(m.f, high, n - 1, m.series, n - 1, product);
        copy_words(q, product + n - 2, n - 1);
    }
    scratch_release(mark);
}

/// out := the lowest n entries of a[0..2n-1) less q times the modulus, which has no more.
static void subtract_multiple(const DenseModulus& m, const uint32_t* a, const uint32_t* q, uint32_t* out) {
    const int32_t n = m.n;
    ScratchMark mark = scratch_mark();
    auto* product = scratch_array<uint32_t>(int64_t{2} * n);
    if (m.transformed) {
        double* image[k_ntt_primes] = {};
        for (int32_t p = 0; p < m.wrapped.primes; p++) {
            double* x = image[p] = scratch_array<double>(m.wrapped.length.n());
            ntt_values(m.wrapped, p, {q, n - 1}, x);
            float_products(x, m.modulus_values[p], m.wrapped.length, p);
            float_coefficients(x, m.wrapped.length, p);
        }
        ntt_combine(m.wrapped, image, product, n);
        const auto round = static_cast<int32_t>(m.wrapped.length.n());
        row_sub(m.f, a, product, product, n);
        if (2 * n - 1 > round) row_add(m.f, product, a + round, product, 2 * n - 1 - round);
        copy_words(out, product, n);
    } else {
        wf_mult(m.f, m.c, n, q, n - 1, product);
        row_sub(m.f, a, product, out, n);
    }
    scratch_release(mark);
}

void reduce_modulo(const DenseModulus& m, uint32_t* a, int32_t an, uint32_t* out) {
    const int32_t n = m.n;
    if (an <= n) {
        copy_words(out, a, an);
        memset(out + an, 0, static_cast<size_t>(n - an) * sizeof(uint32_t));
    } else if (m.series == nullptr) {
        wf_div_mod(m.f, a, an - 1, m.c, n, 1, nullptr);
        copy_words(out, a, n);
    } else {
        ScratchMark mark = scratch_mark();
        auto *whole = a, *q = scratch_array<uint32_t>(n);
        if (an < 2 * n - 1) {
            whole = scratch_array<uint32_t>(int64_t{2} * n);
            copy_words(whole, a, an);
            memset(whole + an, 0, static_cast<size_t>(2 * n - 1 - an) * sizeof(uint32_t));
        }
        quotient_by_series(m, whole + n, q);
        subtract_multiple(m, whole, q, out);
        scratch_release(mark);
    }
}

/// c[0..2n-1) := a b.
static void product_by_transforms(const DenseModulus& m, const uint32_t* a, const uint32_t* b, uint32_t* c) {
    ScratchMark mark = scratch_mark();
    double* image[k_ntt_primes] = {};
    double* y = a == b ? nullptr : scratch_array<double>(m.whole.length.n());
    for (int32_t p = 0; p < m.whole.primes; p++) {
        double* x = image[p] = scratch_array<double>(m.whole.length.n());
        ntt_values(m.whole, p, {a, m.n}, x);
        if (a != b) ntt_values(m.whole, p, {b, m.n}, y);
        float_products(x, a == b ? x : y, m.whole.length, p);
        float_coefficients(x, m.whole.length, p);
    }
    ntt_combine(m.whole, image, c, 2 * m.n - 1);
    scratch_release(mark);
}

void mult_modulo(const DenseModulus& m, const uint32_t* a, const uint32_t* b, uint32_t* out) {
    ScratchMark mark = scratch_mark();
    auto* product = scratch_array<uint32_t>(int64_t{2} * m.n);
    if (m.transformed)
        product_by_transforms(m, a, b, product);
    else
        wf_mult(m.f, a, m.n, b, m.n, product);
    reduce_modulo(m, product, 2 * m.n - 1, out);
    scratch_release(mark);
}
}  // namespace tolvex
