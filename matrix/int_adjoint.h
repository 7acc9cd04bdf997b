#pragma once
/// matrix/int_adjoint.h: adjoints of matrices of integers.
///
/// Purpose    images modulo word primes, combined until their product exceeds twice Hadamard's bound on the
///            minors. A prime that divides the determinant is as good as any other: the adjoint has an image
///            there too.
///            Cost: n^3 products for each 23 bits of the bound.
/// Modes      the ring in force is neither read nor changed.
#include "matrix/int_entries.h"

#include <cstdint>
namespace tolvex {
/// take(context, k, value) for each element k of the adjoint of a, n by n, both row by row or both column by
/// column; value is a chain that the receiver gets.
void int_adjoint(const IntEntry* a, int32_t n, void (*take)(void* context, int64_t k, imptr value),
                 void* context);
}  // namespace tolvex
