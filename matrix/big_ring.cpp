#include "matrix/big_ring.h"

#include <utility>
namespace tolvex {
BigRing big_ring(const limb* m, int64_t n) {
    BigRing g = {m, n, scratch_array<limb>(n + 2), scratch_array<limb>(2 * n + 2),
                 scratch_array<limb>(2 * n + 4)};
    ScratchMark mark = scratch_mark();
    limb* power = scratch_array<limb>(2 * n + 1);
    std::fill_n(power, 2 * n, 0);
    power[2 * n] = 1;
    limbs_divrem(g.recip, power, 2 * n + 1, m, n);
    if (g.recip[n + 1] != 0) std::fill_n(g.recip, n + 1, ~limb{0});  // m is a power of 2^64: one less serves
    scratch_release(mark);
    return g;
}

/// r := wide[0..2 n), which is below m 2^(64 n), modulo m.
static void reduce_wide(const BigRing& g, limb* r) {
    int64_t n = g.n;
    const limb* top = g.wide + n - 1;  // n + 1 limbs
    std::fill_n(g.high, 2 * n + 2, 0);
    for (int64_t k = 0; k <= n; k++) g.high[n + 1 + k] = limbs_addmul_1(g.high + k, g.recip, n + 1, top[k]);
    const limb* q = g.high + n + 1;  // at most 2 below the quotient
    // of the difference the lower n + 1 limbs are wanted
    g.wide[n] -= limbs_submul_1(g.wide, g.m, n, q[0]);
    for (int64_t k = 1; k <= n; k++) limbs_submul_1(g.wide + k, g.m, n + 1 - k, q[k]);
    while (g.wide[n] != 0 || limbs_compare(g.wide, limbs_trim(g.wide, n), g.m, n) >= 0)
        g.wide[n] -= limbs_sub(g.wide, g.wide, n, g.m, n);
    copy_limbs(r, g.wide, n);
}

/// wide := f a.
static void product(const BigRing& g, const limb* f, const limb* a) {
    std::fill_n(g.wide, 2 * g.n, 0);
    for (int64_t k = 0; k < g.n; k++)
        if (f[k] != 0) g.wide[g.n + k] = limbs_addmul_1(g.wide + k, a, g.n, f[k]);
}

void ring_mul(const BigRing& g, limb* r, const limb* f, const limb* a) {
    product(g, f, a);
    reduce_wide(g, r);
}

void ring_addmul(const BigRing& g, limb* r, const limb* f, const limb* a) {
    product(g, f, a);
    limb carry = limbs_add(g.wide, g.wide, g.n, r, g.n);
    for (int64_t k = g.n; carry != 0; k++) carry = ++g.wide[k] == 0;
    reduce_wide(g, r);
}

void ring_negate(const BigRing& g, limb* r) {
    if (!ring_iszero(g, r)) limbs_sub(r, g.m, g.n, r, g.n);
}

void ring_add(const BigRing& g, limb* r, const limb* a) {
    limb carry = limbs_add(r, r, g.n, a, g.n);
    if (carry != 0 || limbs_compare(r, limbs_trim(r, g.n), g.m, g.n) >= 0) limbs_sub(r, r, g.n, g.m, g.n);
}

void ring_reduce(const BigRing& g, limb* r, const limb* a, int64_t an, bool negative) {
    std::fill_n(r, g.n, 0);
    if (an < g.n) {
        copy_limbs(r, a, an);
    } else {
        ScratchMark mark = scratch_mark();
        limb* rest = scratch_array<limb>(an);
        copy_limbs(rest, a, an);
        limbs_divrem(nullptr, rest, an, g.m, g.n);
        copy_limbs(r, rest, g.n);
        scratch_release(mark);
    }
    if (negative) ring_negate(g, r);
}

int64_t gcd_of_limbs(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    an = limbs_trim(a, an);
    bn = limbs_trim(b, bn);
    if (an == 0) {
        copy_limbs(r, b, bn);
        return bn;
    }
    ScratchMark mark = scratch_mark();
    limb *x = scratch_array<limb>(an), *y = scratch_array<limb>(bn),
         *g = scratch_array<limb>(std::max(an, bn));
    copy_limbs(x, a, an);
    copy_limbs(y, b, bn);
    int64_t n = limbs_gcd(g, x, an, y, bn);
    copy_limbs(r, g, n);
    scratch_release(mark);
    return n;
}

void cofactor_of_gcd(const BigRing& ring, limb* u, const limb* a, const limb* g, int64_t gn) {
    ScratchMark mark = scratch_mark();
    int64_t n = ring.n, an = limbs_trim(a, n);
    limb *rest = scratch_array<limb>(n), *over_a = scratch_array<limb>(n + 1),
         *over_m = scratch_array<limb>(n + 1);
    std::fill_n(over_a, n + 1, 0);
    std::fill_n(over_m, n + 1, 0);
    copy_limbs(rest, ring.m, n);
    limbs_divrem(over_m, rest, n, g, gn);
    copy_limbs(rest, a, n);
    if (an >= gn) limbs_divrem(over_a, rest, an, g, gn);
    int64_t mn = limbs_trim(over_m, n + 1);
    std::fill_n(u, n, 0);
    if (is_one(over_m, mn))
        u[0] = 1;
    else
        inverse_of_limbs(u, over_a, over_m, mn);
    scratch_release(mark);
}

void inverse_of_limbs(limb* r, const limb* a, const limb* m, int64_t mn) {
    ScratchMark mark = scratch_mark();
    // x = +-u a, y = +-v a modulo m; the signs alternate
    limb *x = scratch_array<limb>(mn + 1), *y = scratch_array<limb>(mn + 1),
         *u = scratch_array<limb>(2 * mn + 2), *v = scratch_array<limb>(2 * mn + 2),
         *q = scratch_array<limb>(mn + 1), *w = scratch_array<limb>(2 * mn + 2);
    copy_limbs(x, m, mn);
    copy_limbs(y, a, mn);
    int64_t xn = limbs_trim(x, mn), yn = limbs_trim(y, mn), un = 0, vn = 1;
    v[0] = 1;
    bool minus = false;  // v belongs to -y
    while (yn > 1 || y[0] != 1) {
        limbs_divrem(q, x, xn, y, yn);
        int64_t qn = limbs_trim(q, xn - yn + 1);
        xn = limbs_trim(x, yn);
        int64_t wn = vn > 0 && qn > 0 ? qn + vn : 0;
        if (wn > 0) limbs_mul(w, q, qn, v, vn);
        wn = limbs_trim(w, wn);
        int64_t sn = std::max(wn, un) + 1;
        std::fill(w + wn, w + sn, 0);
        w[sn - 1] = 0;
        if (un > 0) w[sn - 1] += limbs_add(w, w, sn - 1, u, un);
        copy_limbs(u, w, sn);
        un = limbs_trim(u, sn);
        std::swap(x, y);
        std::swap(xn, yn);
        std::swap(u, v);
        std::swap(un, vn);
        minus = !minus;
    }
    std::fill_n(r, mn, 0);
    copy_limbs(r, v, std::min(vn, mn));
    if (minus) limbs_sub(r, m, mn, r, mn);
    scratch_release(mark);
}
}  // namespace tolvex
