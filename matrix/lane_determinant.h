#pragma once
/// matrix/lane_determinant.h: determinants of sixteen small matrices of residues at once.
///
/// Purpose    interpolation takes thousands of determinants of a few rows, each too short for blocks; side by
///            side in vector registers they cost a few instructions a product together.
///            Source: as matrix/float_lu.h: sums of products of residues stay exact in floating point up to
///            2^52.
/// Modes      the processor rounds to nearest.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
inline constexpr int32_t k_lanes = 16;
inline constexpr int32_t k_most_lane_rows = 20;
/// det[l] := the determinant of matrix l, n by n, n <= 20; its element (r, c) is a[(r n + c) 16 + l], an
/// integer of absolute value below 2^51. Rows are not exchanged: bit l of the result is set where a pivot has
/// come out 0, and det[l] is not valid. f: a prime field. a is overwritten. n^3 / 3 products a matrix.
uint32_t lane_determinants(const WordField& f, double* a, int32_t n, uint32_t* det);
/// sum[l] := the sum of coef[t] times power[exp[t] 16 + l] over t < count, of absolute value below 2^51;
/// coefficients and powers of absolute value at most p / 2.
void lane_values(const WordField& f, const double* coef, const int32_t* exp, int64_t count,
                 const double* power, double* sum);
/// power[e 16 + l] := the power e of point[l], e = 0..most.
void lane_powers(const WordField& f, const uint32_t* point, int32_t most, double* power);
/// A residue as the number of least absolute value.
inline double lane_residue(const WordField& f, uint32_t v) {
    return v > f.p / 2 ? static_cast<double>(v) - f.p : static_cast<double>(v);
}
}  // namespace tolvex
