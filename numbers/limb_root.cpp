// Integer square roots. Zimmermann, "Karatsuba square root" (1999): the root of the top half by recursion,
// the other half of the digits by one division; the cost is that of a division.
#include "numbers/limbs.h"
#include "storage/checked.h"
#include "storage/interrupt.h"

#include <bit>
#include <cmath>
namespace tolvex {
namespace {
using wide = unsigned __int128;

/// floor of the root of v >= 2^62: the floating-point root, put right.
limb root_of_word(limb v) {
    auto r = static_cast<limb>(std::sqrt(static_cast<double>(v)));
    while (r > v / r) r--;
    while (r + 1 <= v / (r + 1)) r++;
    return r;
}

/// Root of a[1] a[0], a[1] >= 2^62; the remainder goes to a[0], its top bit is returned.
limb root_of_two(limb* s, limb* a) {
    // One step of the recursion with half words for digits.
    limb high = root_of_word(a[1]), rest = a[1] - high * high;
    wide dividend = (static_cast<wide>(rest) << 32) | (a[0] >> 32);
    auto q = static_cast<limb>(dividend / (2 * high));
    auto u = static_cast<limb>(dividend - static_cast<wide>(q) * (2 * high));
    wide root = (static_cast<wide>(high) << 32) + q;
    __int128 r = static_cast<__int128>((static_cast<wide>(u) << 32) | (a[0] & 0xFFFFFFFF)) -
                 static_cast<__int128>(static_cast<wide>(q) * q);
    while (r < 0) {
        r += static_cast<__int128>(2 * root - 1);
        root--;
    }
    s[0] = static_cast<limb>(root);
    a[0] = static_cast<limb>(r);
    return static_cast<limb>(r >> 64);
}

/// s[0..k) := root of a[0..2k), a[2k-1] >= 2^62; a[0..k) := the remainder, whose top bit is returned.
/// tmp has k + 1 limbs.
limb root_of_many(limb* s, limb* a, int64_t k, limb* tmp) {
    if (k == 1) return root_of_two(s, a);
    poll_interrupt();
    int64_t l = k / 2, h = k - l;
    limb* high = s + l;
    limb c = root_of_many(high, a + 2 * l, h, tmp);
    if (c != 0) limbs_sub(a + 2 * l, a + 2 * l, h, high, h);
    // Twice the root of the top half is the divisor: divide by it once, then halve the quotient.
    limbs_divrem(tmp, a + l, k, high, h);
    limb top = tmp[l] + c, odd = tmp[0] & 1;
    limbs_shift_right(s, tmp, l, 1);
    s[l - 1] |= top << 63;
    limb over = top >> 1;  // the quotient is B^l exactly, its low part 0
    int64_t carry = odd != 0 ? static_cast<int64_t>(limbs_add(a + l, a + l, h, high, h)) : 0;
    limb borrow = over;
    if (over == 0) {
        limbs_mul(tmp, s, l, s, l);
        borrow = limbs_sub(a, a, 2 * l, tmp, 2 * l);
    }
    if (h > l) borrow = limbs_sub(a + 2 * l, a + 2 * l, h - l, &borrow, 1);
    carry -= static_cast<int64_t>(borrow);
    limb root_carry = limbs_add(high, high, h, &over, 1);
    if (carry < 0) {
        const limb one = 1;
        carry += static_cast<int64_t>(limbs_addmul_1(a, s, k, 2) + 2 * root_carry);
        carry -= static_cast<int64_t>(limbs_sub(a, a, k, &one, 1));
        limbs_sub(s, s, k, &one, 1);
    }
    return static_cast<limb>(carry);
}
}  // namespace

void limbs_sqrt(limb* s, const limb* a, int64_t n) {
    CHECK(n >= 1 && a[n - 1] != 0);
    ScratchMark mark = scratch_mark();
    int64_t k = (n + 1) / 2;
    auto *u = scratch_array<limb>(2 * k), *tmp = scratch_array<limb>(k + 2);
    // An even shift, so that the root is shifted by half of it; a limb of zeros below makes the length even.
    int shift = std::countl_zero(a[n - 1]) & ~1;
    limb* from = u + (2 * k - n);
    u[0] = 0;
    limbs_shift_left(from, a, n, shift);
    root_of_many(s, u, k, tmp);
    shift = (shift + (n & 1 ? 64 : 0)) / 2;
    limbs_shift_right(s, s, k, shift);
    scratch_release(mark);
}
}  // namespace tolvex
