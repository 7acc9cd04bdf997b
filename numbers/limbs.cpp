// Linear-time kernels on limb arrays. Carries run in a 128-bit accumulator, which compilers turn into one
// widening multiplication and two additions with carry a limb.
#include "numbers/limbs.h"
namespace tolvex {
namespace {
using wide = unsigned __int128;
}

limb limbs_addmul_1(limb* r, const limb* a, int64_t n, limb w) {
    limb carry = 0;
    int64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        wide t = static_cast<wide>(a[i]) * w + r[i] + carry;
        r[i] = static_cast<limb>(t);
        t = static_cast<wide>(a[i + 1]) * w + r[i + 1] + static_cast<limb>(t >> 64);
        r[i + 1] = static_cast<limb>(t);
        t = static_cast<wide>(a[i + 2]) * w + r[i + 2] + static_cast<limb>(t >> 64);
        r[i + 2] = static_cast<limb>(t);
        t = static_cast<wide>(a[i + 3]) * w + r[i + 3] + static_cast<limb>(t >> 64);
        r[i + 3] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    for (; i < n; i++) {
        wide t = static_cast<wide>(a[i]) * w + r[i] + carry;
        r[i] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    return carry;
}

limb limbs_submul_1(limb* r, const limb* a, int64_t n, limb w) {
    limb borrow = 0;
    for (int64_t i = 0; i < n; i++) {
        wide t = static_cast<wide>(a[i]) * w + borrow;
        auto low = static_cast<limb>(t);
        borrow = static_cast<limb>(t >> 64) + (r[i] < low);
        r[i] -= low;
    }
    return borrow;
}

limb limbs_mul_1(limb* r, const limb* a, int64_t n, limb w) {
    limb carry = 0;
    for (int64_t i = 0; i < n; i++) {
        wide t = static_cast<wide>(a[i]) * w + carry;
        r[i] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    return carry;
}

limb limbs_add(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    unsigned long long carry = 0;
    for (int64_t i = 0; i < bn; i++) {
        wide t = static_cast<wide>(a[i]) + b[i] + carry;
        r[i] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    int64_t i = bn;
    for (; i < an && carry != 0; i++) {
        r[i] = a[i] + 1;
        carry = r[i] == 0;
    }
    if (r != a)
        for (; i < an; i++) r[i] = a[i];
    return carry;
}

limb limbs_sub(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    limb borrow = 0;
    for (int64_t i = 0; i < bn; i++) {
        wide t = static_cast<wide>(a[i]) - b[i] - borrow;
        r[i] = static_cast<limb>(t);
        borrow = static_cast<limb>(t >> 64) & 1;
    }
    int64_t i = bn;
    for (; i < an && borrow != 0; i++) {
        borrow = a[i] == 0;
        r[i] = a[i] - 1;
    }
    if (r != a)
        for (; i < an; i++) r[i] = a[i];
    return borrow;
}

int limbs_compare(const limb* a, int64_t an, const limb* b, int64_t bn) {
    if (an != bn) return an > bn ? 1 : -1;
    for (int64_t i = an - 1; i >= 0; i--)
        if (a[i] != b[i]) return a[i] > b[i] ? 1 : -1;
    return 0;
}

limb limbs_shift_left(limb* r, const limb* a, int64_t n, int s) {
    if (s == 0) {
        for (int64_t i = n - 1; i >= 0; i--) r[i] = a[i];
        return 0;
    }
    limb out = n > 0 ? a[n - 1] >> (64 - s) : 0;
    for (int64_t i = n - 1; i > 0; i--) r[i] = a[i] << s | a[i - 1] >> (64 - s);
    if (n > 0) r[0] = a[0] << s;
    return out;
}

void limbs_shift_right(limb* r, const limb* a, int64_t n, int s) {
    if (s == 0) {
        for (int64_t i = 0; i < n; i++) r[i] = a[i];
        return;
    }
    for (int64_t i = 0; i + 1 < n; i++) r[i] = a[i] >> s | a[i + 1] << (64 - s);
    if (n > 0) r[n - 1] = a[n - 1] >> s;
}
}  // namespace tolvex
