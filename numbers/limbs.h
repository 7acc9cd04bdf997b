#pragma once
/// numbers/limbs.h: arrays of 64-bit limbs, the working form of big integers inside one operation.
///
/// Purpose    chains are unpacked once (28-bit digits to little-endian limbs), worked on in arrays, and
/// written once. Invariant  operands are read only; lengths are exact (top limb not 0) except where said. All
/// scratch comes from
///            storage/scratch.h and is given back before return.
/// Raises     nothing.
#include "numbers/number.h"

#include <cstdint>
namespace tolvex {
using limb = uint64_t;

/// Limbs needed for a chain of `size` digits.
inline int64_t limbs_for(int64_t size) { return (size * k_digit_bits + 63) / 64; }
/// r := magnitude of the `size` digits from p (all of one sign); r has limbs_for(size) limbs; returns the
/// true length.
int64_t limbs_from_chain(limb* r, numptr p, int32_t size);
/// x, whose old chain is given back by the caller or absent, becomes the chain of a[0..n) with the given
/// sign.
void chain_from_limbs(imptr x, const limb* a, int64_t n, bool negative);

/// r[0..an+bn) := a * b; an, bn >= 1; r overlaps neither. a may be b (then it squares).
void limbs_mul(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// r[0..n+1) += a[0..n) * w ... returns the carry limb.
limb limbs_addmul_1(limb* r, const limb* a, int64_t n, limb w);
limb limbs_submul_1(limb* r, const limb* a, int64_t n, limb w);
limb limbs_mul_1(limb* r, const limb* a, int64_t n, limb w);
/// r[0..an) := a + b, an >= bn; returns the carry. r may be a or b.
limb limbs_add(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// r[0..an) := a - b, a >= b; returns the borrow (0). r may be a or b.
limb limbs_sub(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
int limbs_compare(const limb* a, int64_t an, const limb* b, int64_t bn);
/// q[0..an-bn+1) := a / b, a[0..bn) := remainder (a is overwritten). b's top limb is not 0. q may be nil.
void limbs_divrem(limb* q, limb* a, int64_t an, const limb* b, int64_t bn);
/// a := a / w in place; returns the remainder.
limb limbs_divrem_1(limb* a, int64_t n, limb w);
/// Length of a[0..n) without leading zeros.
inline int64_t limbs_trim(const limb* a, int64_t n) {
    while (n > 0 && a[n - 1] == 0) n--;
    return n;
}
}  // namespace tolvex
