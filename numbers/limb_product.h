#pragma once
/// numbers/limb_product.h: powers and products of many factors on limb arrays.
///
/// Purpose    the factors are kept balanced, so that nearly all work is done in few large products.
/// Ownership  results go to room that the caller gives; scratch is given back before return.
/// Raises     poll_interrupt between products.
#include "numbers/limbs.h"
namespace tolvex {
/// r := the product of w[0..n), n >= 1; r has room for n limbs; returns the length. w is kept.
int64_t limbs_word_product(limb* r, const limb* w, int64_t n);

/// r := first (first + 1) ... last for 1 <= first <= last < 2^32; returns the length.
int64_t limbs_range_product(limb* r, limb first, limb last);
inline int64_t limbs_range_room(limb first, limb last) { return static_cast<int64_t>(last - first) / 2 + 2; }

/// r := a^k for k >= 1 and a[0..n) not 0, exact in length; returns the length. Binary powering from the top
/// bit of k; powers of two are split off first.
int64_t limbs_power(limb* r, const limb* a, int64_t n, uint32_t k);
/// Bit length of a[0..n), a[n-1] not 0, and room for the power.
int64_t limbs_bits(const limb* a, int64_t n);
inline int64_t limbs_power_room(const limb* a, int64_t n, uint32_t k) {
    return limbs_bits(a, n) * k / 64 + 2;
}

/// r := n!; returns the length. Luschny's swing: n! = ((n/2)!)^2 times a product of few prime powers.
int64_t limbs_factorial(limb* r, uint32_t n);
int64_t limbs_factorial_room(uint32_t n);
}  // namespace tolvex
