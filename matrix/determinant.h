#pragma once
/// matrix/determinant.h: the determinant of a dense matrix, by the method that fits its entries.
///
///   numbers      residues modulo a prime, a composite number, of a table field    matrix/word_determinant.h
///                integers, rational numbers                                        matrix/int_determinant.h
///   else         few rows: minors; more: fraction-free elimination                 matrix/minors.h,
///   bareiss.h
///
/// Switches   detcutoff (&D): rows from which elimination is finished by minors; negative: up to 5 rows by
/// minors alone,
///            the last 4 of 6 rows, and none of more.
/// Ownership  the elements are only read.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// *det := the determinant of a, m by m, m >= 1, column by column, no element nil. What *det held is given
/// back.
void dense_determinant(const quoly* a, int32_t m, quolyptr det);
}  // namespace tolvex
