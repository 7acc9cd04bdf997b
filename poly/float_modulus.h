#pragma once
/// poly/float_modulus.h: reduction of exact sums in floating point.
///
/// Modes      none is read; the processor rounds to nearest.
#include <cstdint>
namespace tolvex {
inline constexpr int64_t k_exact_sum = int64_t{1}
                                       << 52;  // integers up to here are exact, in any order of additions
inline constexpr double k_round_to_integer =
    6755399441055744.0;  // 3 * 2^51: adding and subtracting it rounds

/// A modulus below 2^31.
struct FloatModulus {
    double m, inverse;
};
inline FloatModulus float_modulus(uint32_t m) {
    return {static_cast<double>(m), 1.0 / static_cast<double>(m)};
}
/// An integer of at most 2^52 in absolute value modulo m, above -m and below m: the rounded quotient is wrong
/// by little more than 1/2.
inline double float_rest(double s, FloatModulus f) {
    double q = (s * f.inverse + k_round_to_integer) - k_round_to_integer;
    return s - q * f.m;
}
/// The rest as a residue 0..m-1. No branch, so that loops over it are vectorised.
inline uint32_t float_residue(double s, FloatModulus f) {
    auto r = static_cast<int32_t>(float_rest(s, f));
    return static_cast<uint32_t>(r + (r >> 31 & static_cast<int32_t>(f.m)));
}
}  // namespace tolvex
