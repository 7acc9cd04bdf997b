#pragma once
/// matrix/inverse.h: the inverse of a square matrix.
#include "matrix/work.h"
namespace tolvex {
/// result, whose slots are nil, := the inverse of a, n by n, by elimination over the field of fractions with
/// a unit pivot from the open block, numbers first. The elements of a are changed. False if no pivot is left:
/// a is singular, or has no inverse over the modulus; the slots of result hold values all the same. Time n^3
/// products.
bool invert_by_elimination(workptr a, workptr result, int32_t n);
}  // namespace tolvex
