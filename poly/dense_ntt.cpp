#include "poly/dense_ntt.h"

#include "numbers/float_transform.h"
#include "poly/dense_school.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
namespace tolvex {
namespace {
/// Mixed radix: the value is r0 + p0 t, t = (r1 - r0) / p0 modulo p1 (Garner).
struct Garner {
    FloatModulus p1, m;
    FloatFactor inverse_p0;  // modulo p1
    FloatFactor p0;          // modulo m
};
}  // namespace

NttFrame ntt_frame(const WordField& f, FloatLength length, int64_t terms) {
    uint64_t half = f.p / 2;
    unsigned __int128 bound = static_cast<unsigned __int128>(half * half) * static_cast<uint64_t>(terms);
    // 4 times the bound has to fit, for the residues are balanced only roughly
    int32_t primes = bound >> (float_bits(1) - 2) == 0 ? 1 : 2;
    return {length, primes, static_cast<int32_t>(f.p), float_modulus(f.p)};
}

void ntt_values(const NttFrame& frame, int32_t prime, NttOperand a, double* x) {
    balanced_floats(a.c, x, a.n, frame.m);
    scratch_clear(x + a.n, static_cast<size_t>(frame.length.n() - a.n) * sizeof(double));
    if (a.n > 0) float_values(x, frame.length, prime);
}

// A balanced residue as one from 0 on.
static inline uint32_t residue(double r, FloatModulus f) {
    auto v = static_cast<int32_t>(r);
    return static_cast<uint32_t>(v + (v >> 31 & static_cast<int32_t>(f.m)));
}

WIDE_VECTORS static void combine_1(const double* __restrict r, uint32_t* __restrict c, int32_t n,
                                   FloatModulus m) {
    for (int32_t i = 0; i < n; i++) c[i] = residue(float_rest(r[i], m), m);
}

WIDE_VECTORS static void combine_2(const double* __restrict r0, const double* __restrict r1,
                                   uint32_t* __restrict c, int32_t n, Garner g) {
    for (int32_t i = 0; i < n; i++) {
        double t = float_rest(float_times(r1[i] - r0[i], g.inverse_p0, g.p1.m), g.p1);
        double s = float_times(float_rest(t, g.m), g.p0, g.m.m);
        c[i] = residue(float_rest(s + float_rest(r0[i], g.m), g.m), g.m);
    }
}

static Garner garner(const NttFrame& frame) {
    FloatModulus p1 = float_modulus(k_float_prime[1]);
    int64_t p0 = k_float_prime[0] % frame.m;
    return {p1, frame.modulus, float_factor(float_inverse(k_float_prime[0], k_float_prime[1]), p1),
            float_factor(p0 > frame.m / 2 ? p0 - frame.m : p0, frame.modulus)};
}

void ntt_combine(const NttFrame& frame, double* const* image, uint32_t* c, int32_t n) {
    constexpr int32_t stretch = 1 << 16;
    Garner g = garner(frame);
    for (int32_t from = 0; from < n; from += stretch) {
        int32_t count = std::min(n - from, stretch);
        if (frame.primes == 1)
            combine_1(image[0] + from, c + from, count, frame.modulus);
        else
            combine_2(image[0] + from, image[1] + from, c + from, count, g);
        poll_interrupt();
    }
}

void ntt_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn, uint32_t* c) {
    NttFrame frame = ntt_frame(f, float_length(int64_t{an} + bn - 1), std::min(an, bn));
    ScratchMark mark = scratch_mark();
    bool square = a == b && an == bn;
    double* y = square ? nullptr : scratch_array<double>(frame.length.n());
    double* image[k_ntt_primes] = {};
    for (int32_t i = 0; i < frame.primes; i++) {
        double* x = image[i] = scratch_array<double>(frame.length.n());
        ntt_values(frame, i, {a, an}, x);
        if (!square) ntt_values(frame, i, {b, bn}, y);
        float_products(x, square ? x : y, frame.length, i);
        float_coefficients(x, frame.length, i);
    }
    ntt_combine(frame, image, c, an + bn - 1);
    scratch_release(mark);
}

void ntt_matrix_mult(const WordField& f, const NttOperand (&a)[2][2], const NttOperand (&b)[2][k_ntt_columns],
                     int32_t columns, uint32_t* const (&c)[2][k_ntt_columns], int32_t n) {
    NttFrame frame = ntt_frame(f, float_length(n), int64_t{2} * n);
    ScratchMark mark = scratch_mark();
    auto room = [&] { return scratch_array<double>(frame.length.n()); };
    double *x[2][2] = {{room(), room()}, {room(), room()}}, *y[2] = {room(), room()};
    double* image[2][k_ntt_columns][k_ntt_primes];
    for (int32_t p = 0; p < frame.primes; p++) {
        for (int i = 0; i < 2; i++)
            for (int k = 0; k < 2; k++) ntt_values(frame, p, a[i][k], x[i][k]);
        for (int32_t j = 0; j < columns; j++) {
            for (int k = 0; k < 2; k++) ntt_values(frame, p, b[k][j], y[k]);
            for (int i = 0; i < 2; i++) {
                image[i][j][p] = room();
                float_products_2(image[i][j][p], x[i][0], y[0], x[i][1], y[1], frame.length, p);
                float_coefficients(image[i][j][p], frame.length, p);
            }
        }
    }
    for (int i = 0; i < 2; i++)
        for (int32_t j = 0; j < columns; j++) ntt_combine(frame, image[i][j], c[i][j], n);
    scratch_release(mark);
}
}  // namespace tolvex
