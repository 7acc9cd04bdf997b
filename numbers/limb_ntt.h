#pragma once
/// numbers/limb_ntt.h: products of long limb arrays by number-theoretic transforms.
///
/// Purpose    the operands are cut into digits of about 42, 67 or 92 bits, taken as polynomials, and
///            multiplied modulo two, three or four primes (float_transform.h), whichever leaves the least
///            unused; the Chinese remainder theorem gives the coefficients of the product.
/// Raises     poll_interrupt between passes.
#include "numbers/limbs.h"
namespace tolvex {
/// r[0..an+bn) := a * b; an, bn >= 1; r overlaps neither. a may be b. Time n log n.
void limbs_mul_transform(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
}  // namespace tolvex
