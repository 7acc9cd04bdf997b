#pragma once
/// numbers/float_transform.h: number-theoretic transforms in floating point.
///
/// Purpose    products of long polynomials modulo primes just below 2^50, whose residues are kept as
///            integers in double precision: a fused product gives the rounding error of a product exactly,
///            so that a residue of a product takes seven operations on as many lanes as a vector has. Long
///            integers (limb_transform.h) and residue arrays are multiplied modulo as many of the primes as
///            their coefficients need.
/// Invariant  residues are integers of absolute value at most 5/8 p, except where said. Arrays of values
///            hold them in an order of their own, the same for all arrays of one length.
/// Ownership  tables of roots of unity grow to the longest transform used and are kept.
/// Raises     poll_interrupt between passes; no table is half built then.
#include <cstdint>
namespace tolvex {
constexpr int32_t k_float_primes = 4;
constexpr int64_t k_float_prime[k_float_primes] = {1125625028935681, 1125487589982209, 1125281431552001,
                                                   1124044480970753};
/// The product of that many primes is above 2 to this power.
constexpr int float_bits(int32_t primes) { return 50 * primes - 1; }
/// A modulus below 2^50, or a word, with its inverse.
struct FloatModulus {
    double m, inverse;
};
inline FloatModulus float_modulus(int64_t m) {
    return {static_cast<double>(m), 1.0 / static_cast<double>(m)};
}
/// A fixed factor with its quotient by the modulus.
struct FloatFactor {
    double w, quotient;
};
inline FloatFactor float_factor(int64_t w, FloatModulus f) {
    return {static_cast<double>(w), static_cast<double>(w) / f.m};
}
/// The nearest integer, for |x| <= 2^51: adding 3 * 2^51 leaves no bits for a fraction.
inline double float_round(double x) {
    constexpr double k_round = 6755399441055744.0;
    return (x + k_round) - k_round;
}
/// An integer below 2^53 modulo m, of absolute value little above m / 2.
inline double float_rest(double x, FloatModulus f) {
    return __builtin_fma(-float_round(x * f.inverse), f.m, x);
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
}  // namespace tolvex
