#pragma once
/// matrix/determinant.h: the determinant of a dense matrix, by the method that fits its entries.
///
///   numbers      residues modulo a prime, a composite number, of a table field    matrix/word_determinant.h
///                integers, rational numbers                                        matrix/int_determinant.h
///   else         values at points and interpolation                                matrix/interpolated.h
///                few rows: minors                                                  matrix/minors.h
///                field towers, many variables: fraction-free elimination           matrix/bareiss.h
///
/// Ownership  the elements are only read.
/// Modes      detcutoff (&D): rows from which elimination is finished by minors, 0: never. gauss_cutoff (&K =
///            1): elimination of polynomials to the end. rat_det_method_cut (&L = 1): interpolation of
///            polynomials as in matrix/interpolation.h. Without them the estimated work decides. The value is
///            the same.
/// Raises     poll_interrupt; request.fault as in matrix/interpolation.h.
#include "matrix/interpolation.h"
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// *det := the determinant of a, m by m, m >= 1, column by column, no element nil, divided by request.fct.
/// What *det held is given back.
void dense_determinant(const quoly* a, int32_t m, const DeterminantRequest& request, quolyptr det);
inline void dense_determinant(const quoly* a, int32_t m, quolyptr det) { dense_determinant(a, m, {}, det); }
/// About the nanoseconds of a determinant of m rows of functions without denominators like those of a, n by
/// n, without interpolation: by minors.
double determinant_work(const quoly* a, int32_t m, int32_t n);
/// True if the interpolation route is open by the switches.
bool interpolation_is_on();
}  // namespace tolvex
