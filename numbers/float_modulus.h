#pragma once
/// numbers/float_modulus.h: reduction of integers that are kept in double precision.
///
/// Modes      none is read; the processor rounds to nearest.
#include <cstdint>
namespace tolvex {
inline constexpr int64_t k_exact_sum = int64_t{1}
                                       << 52;  // sums up to here are exact in any order of additions

/// A modulus below 2^50, or a word, with its inverse.
struct FloatModulus {
    double m, inverse;
};
inline FloatModulus float_modulus(int64_t m) {
    return {static_cast<double>(m), 1.0 / static_cast<double>(m)};
}
/// The nearest integer, for |x| <= 2^51: adding 3 * 2^51 leaves no bits for a fraction.
inline double float_round(double x) {
    constexpr double k_round = 6755399441055744.0;
    return (x + k_round) - k_round;
}
/// An integer below 2^53 modulo m, of absolute value little above m / 2. The product is fused: for any
/// modulus.
inline double float_rest(double x, FloatModulus f) {
    return __builtin_fma(-float_round(x * f.inverse), f.m, x);
}
/// The same for an exact sum modulo a word: the product of the quotient by m is exact without being fused, so
/// that the loop needs no library call on a processor without fused products.
inline double float_sum_rest(double sum, FloatModulus f) { return sum - float_round(sum * f.inverse) * f.m; }
/// The rest of a sum as a residue 0..m-1 of a word. No branch, so that loops over it are vectorised.
inline uint32_t float_residue(double sum, FloatModulus f) {
    auto r = static_cast<int32_t>(float_sum_rest(sum, f));
    return static_cast<uint32_t>(r + (r >> 31 & static_cast<int32_t>(f.m)));
}
}  // namespace tolvex
