// Quotients of limb arrays. Short ones: Knuth, The Art of Computer Programming 2, 4.3.1, algorithm D, with
// the reciprocal of the divisor's two top limbs of Moeller and Granlund, "Improved division by invariant
// integers" (2011). Long ones: Burnikel and Ziegler, "Fast recursive division" (1998), which turns a division
// into products of half its length.
#include "numbers/limbs.h"
#include "storage/checked.h"
#include "storage/interrupt.h"

#include <bit>
namespace tolvex {
namespace {
using wide = unsigned __int128;

// From this many limbs of divisor and quotient on, division is recursive. Measured.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_recursive = 4;
#else
constexpr int64_t k_recursive = 40;
#endif

limb high(wide v) { return static_cast<limb>(v >> 64); }

/// floor((2^128 - 1) / d) - 2^64 for a d whose top bit is set.
limb reciprocal_1(limb d) { return static_cast<limb>((((static_cast<wide>(~d)) << 64) | ~limb{0}) / d); }

/// The same for the divisor d1 2^64 + d0: floor((2^192 - 1) / d) - 2^64.
limb reciprocal_2(limb d1, limb d0) {
    limb v = reciprocal_1(d1);
    limb p = d1 * v + d0;
    if (p < d0) {
        v--;
        if (p >= d1) {
            v--;
            p -= d1;
        }
        p -= d1;
    }
    wide t = static_cast<wide>(v) * d0;
    p += high(t);
    if (p < high(t)) {
        v--;
        if (p > d1 || (p == d1 && static_cast<limb>(t) >= d0)) v--;
    }
    return v;
}

/// u := (u 2^64 + low) mod d, returns the quotient; u < d, d normalised, v its reciprocal.
limb divide_step_1(limb& u, limb low, limb d, limb v) {
    wide q = static_cast<wide>(v) * u + ((static_cast<wide>(u) << 64) | low);
    limb q1 = high(q) + 1;
    limb r = low - q1 * d;
    if (r > static_cast<limb>(q)) {
        q1--;
        r += d;
    }
    if (__builtin_expect(r >= d, 0)) {
        q1++;
        r -= d;
    }
    u = r;
    return q1;
}

/// The quotient digit of (u2 u1 u0) / (d1 d0), where (u2 u1) < (d1 d0); (u1 u0) becomes the remainder.
limb divide_step_2(limb u2, limb& u1, limb& u0, limb d1, limb d0, limb v) {
    wide q = static_cast<wide>(v) * u2 + ((static_cast<wide>(u2) << 64) | u1);
    auto q0 = static_cast<limb>(q);
    limb q1 = high(q);
    limb r1 = u1 - q1 * d1;
    wide d = (static_cast<wide>(d1) << 64) | d0;
    wide r = ((static_cast<wide>(r1) << 64) | u0) - static_cast<wide>(d0) * q1 - d;
    q1++;
    if (high(r) >= q0) {
        q1--;
        r += d;
    }
    if (__builtin_expect(r >= d, 0)) {
        q1++;
        r -= d;
    }
    u1 = high(r);
    u0 = static_cast<limb>(r);
    return q1;
}

/// a[0..an) / b[0..bn), b normalised, bn >= 2, the top bn limbs of a below b: q[0..an-bn), remainder in
/// a[0..bn).
void divide_school(limb* q, limb* a, int64_t an, const limb* b, int64_t bn) {
    limb d1 = b[bn - 1], d0 = b[bn - 2], v = reciprocal_2(d1, d0);
    for (int64_t j = an - bn - 1; j >= 0; j--) {
        limb* u = a + j;  // the window u[0..bn]
        limb digit;
        if (__builtin_expect(u[bn] == d1 && u[bn - 1] == d0, 0)) {
            digit = ~limb{0};
            limbs_submul_1(u, b, bn, digit);
        } else {
            limb r1 = u[bn - 1], r0 = u[bn - 2];
            digit = divide_step_2(u[bn], r1, r0, d1, d0, v);
            limb borrow = limbs_submul_1(u, b, bn - 2, digit);
            wide r = ((static_cast<wide>(r1) << 64) | r0);
            bool under = r < borrow;
            r -= borrow;
            u[bn - 2] = static_cast<limb>(r);
            u[bn - 1] = high(r);
            if (__builtin_expect(under, 0)) {  // one too large: rare, about 2 in 2^64
                digit--;
                limbs_add(u, u, bn, b, bn);
            }
        }
        u[bn] = 0;
        if (q != nullptr) q[j] = digit;
    }
}

const limb k_one = 1;

/// The claimed quotient q[0..qn) + top 2^(64 qn) was found with the upper limbs of b alone: b[0..bn) has
/// `rest` more limbs below. Takes their share q * b[0..rest) off the remainder a[0..bn) and puts q right,
/// which is at most 2 too large. tmp has room for bn limbs.
void take_off_rest(limb* q, int64_t qn, limb& top, limb* a, const limb* b, int64_t bn, int64_t rest,
                   limb* tmp) {
    limbs_mul(tmp, q, qn, b, rest);
    limb borrow = limbs_sub(a, a, bn, tmp, bn);
    if (top != 0) borrow += limbs_sub(a + qn, a + qn, bn - qn, b, rest);
    while (borrow != 0) {
        top -= limbs_sub(q, q, qn, &k_one, 1);
        borrow -= limbs_add(a, a, bn, b, bn);
    }
}

/// q[0..n) := a[0..2n) / b[0..n), b normalised, n >= 2; returns the limb 0 or 1 above q. Remainder in
/// a[0..n), zeros above. tmp has room for n limbs.
limb divide_recursive(limb* q, limb* a, const limb* b, int64_t n, limb* tmp) {
    if (n < k_recursive) {
        limb top = limbs_compare(a + n, n, b, n) >= 0;
        if (top != 0) limbs_sub(a + n, a + n, n, b, n);
        divide_school(q, a, 2 * n, b, n);
        return top;
    }
    poll_interrupt();
    int64_t low = n / 2, up = n - low;
    limb top = divide_recursive(q + low, a + 2 * low, b + low, up, tmp);
    take_off_rest(q + low, up, top, a + low, b, n, low, tmp);
    limb middle = divide_recursive(q, a + up, b + up, low, tmp);
    take_off_rest(q, low, middle, a, b, n, up, tmp);
    CHECK(middle == 0);  // a < b 2^(64 low) here
    return top;
}

/// q[0..an-bn) := a / b, the top bn limbs of a below b, b normalised: blocks of bn quotient limbs, the first
/// one shorter.
void divide_blocks(limb* q, limb* a, int64_t an, const limb* b, int64_t bn) {
    ScratchMark mark = scratch_mark();
    auto* tmp = scratch_array<limb>(bn);
    int64_t at = an - bn, first = at % bn;
    if (first > 0) {
        at -= first;
        if (first < k_recursive) {
            divide_school(q + at, a + at, bn + first, b, bn);
        } else {
            int64_t rest = bn - first;
            limb top = divide_recursive(q + at, a + at + rest, b + rest, first, tmp);
            take_off_rest(q + at, first, top, a + at, b, bn, rest, tmp);
        }
    }
    while (at > 0) {
        at -= bn;
        divide_recursive(q + at, a + at, b, bn, tmp);
    }
    scratch_release(mark);
}
}  // namespace

limb limbs_divrem_1(limb* a, int64_t n, limb w) {
    int s = std::countl_zero(w);
    limb d = w << s, v = reciprocal_1(d);
    limb u = s == 0 || n == 0 ? 0 : a[n - 1] >> (64 - s);
    for (int64_t i = n - 1; i >= 0; i--) {
        limb below = i > 0 && s > 0 ? a[i - 1] >> (64 - s) : 0;
        a[i] = divide_step_1(u, a[i] << s | below, d, v);
    }
    return u >> s;
}

limb limbs_mod_1(const limb* a, int64_t n, limb w) {
    int s = std::countl_zero(w);
    limb d = w << s, v = reciprocal_1(d);
    limb u = s == 0 || n == 0 ? 0 : a[n - 1] >> (64 - s);
    for (int64_t i = n - 1; i >= 0; i--) {
        limb below = i > 0 && s > 0 ? a[i - 1] >> (64 - s) : 0;
        divide_step_1(u, a[i] << s | below, d, v);
    }
    return u >> s;
}

void limbs_divrem(limb* q, limb* a, int64_t an, const limb* b, int64_t bn) {
    CHECK(bn >= 1 && an >= bn && b[bn - 1] != 0);
    if (bn == 1) {
        if (q == nullptr) {
            a[0] = limbs_mod_1(a, an, b[0]);
            return;
        }
        scratch_copy(q, a, static_cast<size_t>(an) * sizeof(limb));
        a[0] = limbs_divrem_1(q, an, b[0]);
        return;
    }
    ScratchMark mark = scratch_mark();
    int s = std::countl_zero(b[bn - 1]);
    auto* u = scratch_array<limb>(an + 1 + bn);
    limb* d = u + an + 1;
    limbs_shift_left(d, b, bn, s);
    u[an] = limbs_shift_left(u, a, an, s);
    if (bn < k_recursive || an - bn + 1 < k_recursive) {
        divide_school(q, u, an + 1, d, bn);
    } else {
        divide_blocks(q != nullptr ? q : scratch_array<limb>(an - bn + 1), u, an + 1, d, bn);
    }
    limbs_shift_right(a, u, bn, s);
    scratch_release(mark);
}
}  // namespace tolvex
