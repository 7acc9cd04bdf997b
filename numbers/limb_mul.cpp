// Products of limb arrays: schoolbook, Karatsuba, Toom-Cook in three parts, and the choice of method by
// length.
#include "numbers/limb_ntt.h"
#include "numbers/limbs.h"
#include "storage/interrupt.h"

#include <cstring>
#include <utility>
namespace tolvex {
namespace {
// Crossings, in limbs of the shorter operand, measured by bench/time_numbers_int.cpp.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_karatsuba = 4, k_toom = 12, k_transform = 40;
#else
constexpr int64_t k_karatsuba = 36, k_toom = 120, k_transform = 440;
#endif

/// Scratch limbs for operands of one length n below k_transform: Karatsuba takes 2 (n/2 + 1) a level,
/// Toom-Cook 8 (n/3 + 2), both in a geometric series of at most ten levels.
int64_t recursion_room(int64_t n) { return 4 * n + 512; }

void mul_recursive(limb* r, const limb* a, const limb* b, int64_t n, limb* room);

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
    mul_recursive(middle, da, db, low, room);
    mul_recursive(r, a, b, low, room);
    mul_recursive(r + 2 * low, a + low, b + low, high, room);
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

/// a[0..n) := a / 3, which leaves no remainder. With D = (2^64 - 1) / 3, a / 3 = -a D / (1 - 2^64): the
/// products a[i] D are summed up with a weight of 1 and of 2^64, and no product waits for another (Jebelean,
/// "An algorithm for exact division", 1993).
void divide_by_3(limb* a, int64_t n) {
    constexpr limb k_third = ~limb{0} / 3;
    limb h = 0;
    for (int64_t i = 0; i < n; i++) {
        unsigned __int128 t = static_cast<unsigned __int128>(a[i]) * k_third;
        auto low = static_cast<limb>(t);
        limb borrow = h < low;
        h -= low;
        a[i] = h;
        h -= static_cast<limb>(t >> 64) + borrow;
    }
}

/// An operand a0 + a1 X + a2 X^2, where X stands for k limbs and a2 has s, at the points 1, -1 and 2: k + 1
/// limbs each. Returns true if the value at -1 is negative; its magnitude is given.
bool toom_values(limb* at_1, limb* at_minus_1, limb* at_2, const limb* a, int64_t k, int64_t s) {
    const limb *a1 = a + k, *a2 = a + 2 * k;
    at_1[k] = limbs_add(at_1, a, k, a2, s);  // a0 + a2, to begin with
    bool negative = absolute_difference(at_minus_1, at_1, k + 1, a1, k, k + 1);
    limbs_add(at_1, at_1, k + 1, a1, k);
    limbs_add(at_2, at_1, k + 1, a2, s);
    limbs_shift_left(at_2, at_2, k + 1, 1);
    limbs_sub(at_2, at_2, k + 1, a, k);
    return negative;
}

/// The coefficients c1, c2, c3 of a product c0 + c1 X + ... + c4 X^4 into w1, wm, w2, from its values there
/// at 1, -1 (a magnitude) and 2, n limbs each, and from c0 and c4. No value on the way is negative.
void toom_coefficients(limb* w1, limb* wm, limb* w2, bool negative, int64_t n, const limb* c0, int64_t n0,
                       const limb* c4, int64_t n4) {
    if (negative) {
        limbs_add(w2, w2, n, wm, n);
        limbs_add(wm, w1, n, wm, n);
    } else {
        limbs_sub(w2, w2, n, wm, n);
        limbs_sub(wm, w1, n, wm, n);
    }
    divide_by_3(w2, n);               // c1 + c2 + 3 c3 + 5 c4
    limbs_shift_right(wm, wm, n, 1);  // c1 + c3
    limbs_sub(w1, w1, n, c0, n0);     // c1 + c2 + c3 + c4
    limbs_sub(w2, w2, n, w1, n);
    limbs_shift_right(w2, w2, n, 1);  // c3 + 2 c4
    limbs_sub(w1, w1, n, wm, n);
    limbs_sub(w1, w1, n, c4, n4);  // c2
    limbs_sub(w2, w2, n, c4, n4);
    limbs_sub(w2, w2, n, c4, n4);  // c3
    limbs_sub(wm, wm, n, w2, n);   // c1
}

/// r[0..2n) := a[0..n) * b[0..n) by five products of a third of the length (Toom-Cook; the interpolation of
/// Bodrato and Zanoni, "What about Toom-Cook matrices optimality?", 2006). a may be b. n >= 8.
void toom_3(limb* r, const limb* a, const limb* b, int64_t n, limb* room) {
    int64_t k = (n + 2) / 3, s = n - 2 * k, m = k + 1, w = 2 * m;
    limb *w1 = room, *wm = room + w, *w2 = room + 2 * w;
    limb* a_at_2 = room + 3 * w;
    limb* b_at_2 = a_at_2 + m;
    room = b_at_2 + m;
    // The values at 1 and -1 stand in r until the outer products are made.
    limb *a_at_1 = r, *a_at_m = r + m, *b_at_1 = r + 2 * m, *b_at_m = r + 3 * m;
    bool negative = toom_values(a_at_1, a_at_m, a_at_2, a, k, s);
    if (a == b) {
        b_at_1 = a_at_1;
        b_at_m = a_at_m;
        b_at_2 = a_at_2;
        negative = false;
    } else {
        negative ^= toom_values(b_at_1, b_at_m, b_at_2, b, k, s);
    }
    mul_recursive(w1, a_at_1, b_at_1, m, room);
    mul_recursive(wm, a_at_m, b_at_m, m, room);
    mul_recursive(w2, a_at_2, b_at_2, m, room);
    limb* c4 = r + 4 * k;
    mul_recursive(r, a, b, k, room);
    mul_recursive(c4, a + 2 * k, b + 2 * k, s, room);
    toom_coefficients(w1, wm, w2, negative, w, r, 2 * k, c4, 2 * s);
    // c2 fills the gap between the outer products, c1 and c3 are added in; what lies above the result is 0.
    scratch_copy(r + 2 * k, w1, static_cast<size_t>(2 * k) * sizeof(limb));
    limbs_add(c4, c4, 2 * s, w1 + 2 * k, limbs_trim(w1 + 2 * k, 2));
    limbs_add(r + k, r + k, 2 * n - k, wm, w);
    limbs_add(r + 3 * k, r + 3 * k, 2 * n - 3 * k, w2, limbs_trim(w2, w));
}

/// Operands of one length below k_transform; room as recursion_room tells.
void mul_recursive(limb* r, const limb* a, const limb* b, int64_t n, limb* room) {
    if (n < k_karatsuba) {
        mul_short(r, a, b, n);
    } else if (n < k_toom) {
        karatsuba(r, a, b, n, room);
    } else {
        toom_3(r, a, b, n, room);
    }
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
    mul_recursive(r, a, b, n, scratch_array<limb>(recursion_room(n)));
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
