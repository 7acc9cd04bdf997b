#pragma once
/// numbers/float_transform.h: number-theoretic transforms in floating point.
///
/// Purpose    products of long polynomials modulo primes just below 2^50, whose residues are kept as
///            integers in double precision: a fused product gives the rounding error of a product exactly,
///            so that a residue of a product takes seven operations on as many lanes as a vector has. Long
///            integers (limb_ntt.h) and residue arrays are multiplied modulo as many of the primes as
///            their coefficients need.
/// Invariant  residues are integers of absolute value at most 5/8 p, except where said. Arrays of values
///            hold them in an order of their own, the same for all arrays of one length.
/// Ownership  tables of roots of unity grow to the longest transform used and are kept.
/// Raises     poll_interrupt between passes; no table is half built then.
#include "numbers/float_modulus.h"

#include <cstdint>
namespace tolvex {
constexpr int32_t k_float_primes = 4;
constexpr int64_t k_float_prime[k_float_primes] = {1125625028935681, 1125487589982209, 1125281431552001,
                                                   1124044480970753};
/// The product of that many primes is above 2 to this power.
constexpr int float_bits(int32_t primes) { return 50 * primes - 1; }
/// A fixed factor with its quotient by the modulus.
struct FloatFactor {
    double w, quotient;
};
inline FloatFactor float_factor(int64_t w, FloatModulus f) {
    return {static_cast<double>(w), static_cast<double>(w) / f.m};
}
/// x y modulo m, of absolute value at most 5/8 m for |x y| <= m^2.
inline double float_mult(double x, double y, FloatModulus f) {
    double h = x * y, low = __builtin_fma(x, y, -h);
    return __builtin_fma(-float_round(h * f.inverse), f.m, h) + low;
}
/// x w modulo m for |x| <= 4 m, w <= m / 2: of absolute value at most m, 5/8 m for |x| <= m.
inline double float_times(double x, FloatFactor w, double m) {
    double h = x * w.w, low = __builtin_fma(x, w.w, -h);
    return __builtin_fma(-float_round(x * w.quotient), m, h) + low;
}

/// The number of entries of a transform: h, or 3/2 h; h is a power of two.
struct FloatLength {
    int64_t h;
    bool three_halves;
    int64_t n() const { return three_halves ? h + h / 2 : h; }
};
/// The least length for that many entries.
FloatLength float_length(int64_t entries);
/// a[0..n) := the values of the polynomial with the coefficients a[0..n), of absolute value up to p.
void float_values(double* a, FloatLength length, int32_t prime);
/// a[i] := a[i] b[i]; b may be a.
void float_products(double* a, const double* b, FloatLength length, int32_t prime);
/// c[i] := a0[i] b0[i] + a1[i] b1[i]; c may be any of them.
void float_products_2(double* c, const double* a0, const double* b0, const double* a1, const double* b1,
                      FloatLength length, int32_t prime);
/// a[0..n) := the coefficients of the polynomial with the values a[0..n):
/// products of polynomials are taken modulo x^n - 1, or modulo (x^h - 1) (x^(h/2) - i).
void float_coefficients(double* a, FloatLength length, int32_t prime);
/// An inverse of a modulo p, of absolute value below p; a is prime to p.
int64_t float_inverse(int64_t a, int64_t p);
}  // namespace tolvex
