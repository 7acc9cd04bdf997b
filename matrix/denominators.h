#pragma once
/// matrix/denominators.h: matrices of rational functions as matrices of polynomials.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// *multiple := the least common multiple of it and the denominator of q.
void take_denominator(quolyptr multiple, quoly q);
/// The columns of a, m by m, column by column, become free of denominators; *divisor is multiplied by what each
/// of them has been multiplied by.
void clear_columns(quoly* a, int32_t m, quolyptr divisor);
}  // namespace tolvex
