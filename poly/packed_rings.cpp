#include "poly/packed_rings.h"

#include "storage/interrupt.h"
namespace tolvex {
/// From this many limbs of the shorter factor a product is formed apart, by the fast methods; from this many
/// of the longer one it has a safe point of its own.
static constexpr int32_t k_apart = 20;

/// r[0..n) += c at place 0, the carry running up.
static void ripple_up(limb* r, int64_t n, limb c) {
    for (int64_t i = 0; c != 0 && i < n; i++) c = (r[i] += c) < c;
}
static void ripple_down(limb* r, int64_t n, limb c) {
    for (int64_t i = 0; c != 0 && i < n; i++) {
        limb old = r[i];
        r[i] = old - c;
        c = old < c;
    }
}

/// acc[0..width) += or -= x[0..n), n <= width.
static void combine(limb* acc, int64_t width, const limb* x, int64_t n, bool minus) {
    if (minus)
        ripple_down(acc + n, width - n, limbs_submul_1(acc, x, n, 1));
    else
        ripple_up(acc + n, width - n, limbs_addmul_1(acc, x, n, 1));
}

void LimbRing::add(int64_t slot, const Left& a, int64_t j) {
    limb* r = acc + slot * width;
    const limb* b = m.limbs + m.start[j];
    int32_t b_length = m.length[j];
    bool minus = a.negative != (b_length < 0);
    if (b_length < 0) b_length = -b_length;
    const limb* x = a.a;
    int32_t x_length = a.length;
    if (x_length < b_length) {
        const limb* t = x;
        x = b;
        b = t;
        int32_t l = x_length;
        x_length = b_length;
        b_length = l;
    }
    if (x_length >= k_apart) poll_interrupt();
    if (b_length >= k_apart) {
        limbs_mul(product, x, x_length, b, b_length);
        int64_t length = limbs_trim(product, x_length + b_length);
        combine(r, width, product, length, minus);
        if (a.twice) combine(r, width, product, length, minus);
        return;
    }
    for (int rounds = a.twice ? 2 : 1; rounds > 0; rounds--)
        for (int32_t k = 0; k < b_length; k++) {
            if (minus)
                ripple_down(r + k + x_length, width - k - x_length, limbs_submul_1(r + k, x, x_length, b[k]));
            else
                ripple_up(r + k + x_length, width - k - x_length, limbs_addmul_1(r + k, x, x_length, b[k]));
        }
}

bool LimbRing::zero(int64_t slot) const {
    const limb* r = acc + slot * width;
    for (int64_t i = 0; i < width; i++)
        if (r[i] != 0) return false;
    return true;
}

poly LimbRing::leaf(int64_t slot) const {
    if (width >= k_apart) poll_interrupt();
    const limb* r = acc + slot * width;
    bool negative = static_cast<int64_t>(r[width - 1]) < 0;
    limb carry = negative;
    for (int64_t i = 0; i < width; i++) {
        limb v = negative ? ~r[i] : r[i];
        magnitude[i] = v + carry;
        carry = carry && magnitude[i] == 0;
    }
    int64_t length = limbs_trim(magnitude, width);
    if (length == 0) return nullptr;
    imptr c;
    newimag(&c);
    chain_from_limbs(c, magnitude, length, negative);
    return leaf_of(c);
}
}  // namespace tolvex
