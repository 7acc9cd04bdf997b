#pragma once
/// matrix/denominators.h: matrices of rational functions as matrices of polynomials.
///
/// Purpose    determinants and minors of fractions are those of polynomials over one denominator.
/// Ownership  elements are changed in place.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// The m entries of a line become free of denominators, multiplied by what goes to *multiple.
void clear_line(quoly* line, int32_t m, quolyptr multiple);
/// All columns of a, m by m, column by column; *divisor is multiplied by what each of them has been
/// multiplied by.
void clear_columns(quoly* a, int32_t m, quolyptr divisor);
}  // namespace tolvex
