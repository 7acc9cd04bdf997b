#pragma once
/// language/substitute.h: the operator "#", values put for polynomial variables.
///
/// Purpose    p#e, p#(a, b, c) by place, p#(x = a, y = b) by name. All replacements are made at once.
/// Raises     1 no ")"; 22 a denominator becomes 0; 202 the two kinds are mixed; 273 more places than
///            variables.
#include "language/evaluator.h"
namespace tolvex {
/// "#" is the current token; *n, a private value, takes the result.
void get_evalquoly(FILE* inf, quolyptr n, nameptr* flag);
/// "#" is the current token; the replacements are read, and `use` is called with them, by level, nil: none.
void with_replacements(FILE* inf, nameptr* flag, void (*use)(const quoly* value, void* context),
                       void* context);
/// *n := q with the variable of level k replaced by value[k] (1 based, nil: kept). Horner's rule at each
/// level; a power is formed only for a gap above 1.
void total_eval(const quolynode* q, quolyptr n, const quoly* value, int32_t levels);
}  // namespace tolvex
