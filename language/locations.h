#pragma once
/// language/locations.h: arguments that are read where they live, and small pieces of reading.
///
/// Raises     19 unknown scalar; 28 unknown array; 125 the name is a polynomial variable; 175, 220 undefined
///            system array, array of arrays; 235, 341 decimal fractions.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// Reads what follows "^" in an argument: a variable or "<". *qp: where its value is; nil if it has none.
void get_quoly_ptr(quolyptr* qp, FILE* inf, nameptr* flag);
/// The digits after the current "." as the fraction m / 10^count.
void get_decimal_part(quolyptr n, FILE* inf, nameptr* flag);
}  // namespace tolvex
