#pragma once
/// numbers/limb_ntt.h: products of long limb arrays by number-theoretic transforms.
///
/// Purpose    the operands are cut into digits of about 55 bits, taken as polynomials, and multiplied modulo
///            two primes below 2^62; the Chinese remainder theorem gives the coefficients of the product.
/// Ownership  tables of roots of unity grow to the longest transform used and are kept.
/// Raises     poll_interrupt between passes; no table is half built then.
#include "numbers/limbs.h"
namespace tolvex {
/// r[0..an+bn) := a * b; an, bn >= 1; r overlaps neither. a may be b. Time n log n.
void limbs_mul_transform(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
}  // namespace tolvex
