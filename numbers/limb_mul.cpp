// Products of limb arrays: schoolbook, Karatsuba, and the choice of method by length.
#include "numbers/limb_ntt.h"
#include "numbers/limbs.h"
#include "storage/interrupt.h"

#include <cstring>
#include <utility>
namespace tolvex {
namespace {
// Crossings, in limbs of the shorter operand, measured by bench/time_numbers_int.cpp.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_karatsuba = 4, k_transform = 40;
#else
constexpr int64_t k_karatsuba = 36, k_transform = 1200;
#endif

/// Scratch limbs that karatsuba takes for operands of n limbs: 2 (n/2 + 1) a level, in a geometric series.
int64_t karatsuba_room(int64_t n) { return 4 * n + 256; }

/// r[0..n) := |a - b|, an, bn <= n; true if a < b.
bool absolute_difference(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn, int64_t n) {
    an = limbs_trim(a, an);
    bn = limbs_trim(b, bn);
    bool negative = limbs_compare(a, an, b, bn) < 0;
    if (negative) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    limbs_sub(r, a, an, b, bn);
    memset(r + an, 0, static_cast<size_t>(n - an) * sizeof(limb));
    return negative;
}

/// Operands of one short length.
void mul_short(limb* r, const limb* a, const limb* b, int64_t n) {
    if (a == b) {
        limbs_sqr_school(r, a, n);
    } else {
        limbs_mul_school(r, a, n, b, n);
    }
}

/// r[0..2n) := a[0..n) * b[0..n) with the middle product (a1 - a0) (b1 - b0), whose factors never outgrow a
/// half, as those of (a1 + a0) (b1 + b0) do (Knuth, The Art of Computer Programming 2, 4.3.3). a may be b.
void karatsuba(limb* r, const limb* a, const limb* b, int64_t n, limb* room) {
    if (n < k_karatsuba) {
        mul_short(r, a, b, n);
        return;
    }
    int64_t low = (n + 1) / 2, high = n - low;
    limb* da = r;
    bool negative = absolute_difference(da, a + low, high, a, low, low);
    limb* db = da;
    if (a != b) {
        db = r + low;
        negative ^= absolute_difference(db, b + low, high, b, low, low);
    } else {
        negative = false;
    }
    limb* middle = room;
    room += 2 * low;
    karatsuba(middle, da, db, low, room);
    karatsuba(r, a, b, low, room);
    karatsuba(r + 2 * low, a + low, b + low, high, room);
    // low product + high product -+ middle, added in at `low`.
    limb* s = room;
    limb top = limbs_add(s, r, 2 * low, r + 2 * low, 2 * high);
    if (negative) {
        top += limbs_add(s, s, 2 * low, middle, 2 * low);
    } else {
        top -= limbs_sub(s, s, 2 * low, middle, 2 * low);
    }
    limb carry = limbs_add(r + low, r + low, 2 * low, s, 2 * low) + top;
    if (carry != 0) limbs_add(r + 3 * low, r + 3 * low, 2 * n - 3 * low, &carry, 1);
}

/// Operands of one length.
void mul_balanced(limb* r, const limb* a, const limb* b, int64_t n) {
    if (n < k_karatsuba) {
        mul_short(r, a, b, n);
        return;
    }
    if (n >= k_transform) {
        limbs_mul_transform(r, a, n, b, n);
        return;
    }
    ScratchMark mark = scratch_mark();
    karatsuba(r, a, b, n, scratch_array<limb>(karatsuba_room(n)));
    scratch_release(mark);
}

/// an >= bn: the longer operand in pieces of the length of the shorter, the last piece first multiplied the
/// other way round.
void mul_in_pieces(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    ScratchMark mark = scratch_mark();
    auto* piece = scratch_array<limb>(2 * bn);
    mul_balanced(r, a, b, bn);
    int64_t at = bn;
    for (; at + bn <= an; at += bn) {
        poll_interrupt();
        mul_balanced(piece, a + at, b, bn);
        memset(r + at + bn, 0, static_cast<size_t>(bn) * sizeof(limb));
        limbs_add(r + at, piece, 2 * bn, r + at, bn);
    }
    if (int64_t rest = an - at; rest > 0) {
        limbs_mul(piece, b, bn, a + at, rest);
        limbs_add(r + at, piece, bn + rest, r + at, bn);
    }
    scratch_release(mark);
}
}  // namespace

void limbs_mul_school(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    r[an] = limbs_mul_1(r, a, an, b[0]);
    for (int64_t j = 1; j < bn; j++) r[an + j] = limbs_addmul_1(r + j, a, an, b[j]);
}

void limbs_sqr_school(limb* r, const limb* a, int64_t n) {
    // The products of different limbs once, doubled, and the squares on the diagonal.
    r[0] = 0;
    if (n > 1) {
        r[n] = limbs_mul_1(r + 1, a + 1, n - 1, a[0]);
        for (int64_t i = 1; i + 1 < n; i++)
            r[n + i] = limbs_addmul_1(r + 2 * i + 1, a + i + 1, n - i - 1, a[i]);
    }
    r[2 * n - 1] = 0;
    limb carry = 0, shifted_out = 0;
    for (int64_t i = 0; i < n; i++) {
        unsigned __int128 s = static_cast<unsigned __int128>(a[i]) * a[i];
        limb x = r[2 * i], y = r[2 * i + 1];
        unsigned __int128 t =
            static_cast<unsigned __int128>(x << 1 | shifted_out) + static_cast<limb>(s) + carry;
        r[2 * i] = static_cast<limb>(t);
        t = static_cast<unsigned __int128>(y << 1 | x >> 63) + static_cast<limb>(s >> 64) +
            static_cast<limb>(t >> 64);
        r[2 * i + 1] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
        shifted_out = y >> 63;
    }
}

void limbs_mul(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    if (an == bn && an < k_transform) {
        mul_balanced(r, a, b, an);
    } else if (bn < k_karatsuba) {
        limbs_mul_school(r, a, an, b, bn);
    } else if (bn >= k_transform && an < 3 * bn) {
        limbs_mul_transform(r, a, an, b, bn);
    } else {
        mul_in_pieces(r, a, an, b, bn);
    }
}
}  // namespace tolvex
