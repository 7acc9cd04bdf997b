// The half-gcd: the first half of the Euclidean algorithm as a matrix, from the top half of the digits alone.
//
// The matrix found for the top limbs is applied to all: a = M00 a' + M01 b' with a', b' of more than half the
// length bounds the entries of M below a' and b', so that what the low limbs add to a' or take off it cannot
// make it negative. Any such matrix keeps the gcd; it need not be that of the true sequence of quotients. So
// no quotient is ever taken back (compare Moeller 2008, who keeps the sequence).
#include "numbers/limb_lehmer.h"
#include "storage/checked.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
// Below this many limbs the reduction goes word by word. Measured.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_half_gcd = 12;
#else
constexpr int64_t k_half_gcd = 100;
#endif

struct Pair {
    limb *a, *b;
    int64_t an, bn;
    int64_t longer() const { return an > bn ? an : bn; }
    int64_t shorter() const { return an < bn ? an : bn; }
};

void copy_limbs(limb* r, const limb* a, int64_t n) {
    scratch_copy(r, a, static_cast<size_t>(n) * sizeof(limb));
}
void clear_limbs(limb* r, int64_t n) { scratch_clear(r, static_cast<size_t>(n) * sizeof(limb)); }

void set_identity(CofactorMatrix& m) {
    m.n = 1;
    m.odd = false;
    m.identity = true;
    m.m[0][0] = m.m[3][0] = 1;
    m.m[1][0] = m.m[2][0] = 0;
}

/// The entries have been written n limbs long: their common length is that of the longest.
void set_length(CofactorMatrix& m, int64_t n) {
    m.n = 1;
    for (const limb* entry : m.m) m.n = maxx64(m.n, limbs_trim(entry, n));
}

/// r[0..n+2) := x w + y z, where r may be x.
void combine(limb* r, const limb* x, limb w, const limb* y, limb z, int64_t n) {
    limb top = limbs_mul_1(r, x, n, w);
    r[n] = top + limbs_addmul_1(r, y, n, z);
    r[n + 1] = r[n] < top;
}

/// M := M (w0 w1 / w2 w3) for words.
void times_words(CofactorMatrix& m, const limb w[4], limb* tmp) {
    int64_t n = m.n;
    for (int row = 0; row < 2; row++) {
        limb *x = m.m[2 * row], *y = m.m[2 * row + 1];
        copy_limbs(tmp, x, n);
        combine(x, x, w[0], y, w[2], n);
        combine(y, y, w[3], tmp, w[1], n);
    }
    set_length(m, n + 2);
}

/// Copies four new entries of up to n limbs into M, whose room bounds their true lengths.
void install(CofactorMatrix& m, limb* const entry[4], int64_t n) {
    int64_t length = 1;
    for (int i = 0; i < 4; i++) length = maxx64(length, limbs_trim(entry[i], n));
    for (int i = 0; i < 4; i++) copy_limbs(m.m[i], entry[i], length);
    m.n = length;
}

/// M := M * w.
void times_matrix(CofactorMatrix& m, const CofactorMatrix& w) {
    if (w.identity) return;
    ScratchMark mark = scratch_mark();
    int64_t n = m.n + w.n;
    auto* v = scratch_array<limb>(n);
    limb* entry[4];
    for (int i = 0; i < 4; i++) {
        const limb *x = m.m[i & 2], *y = m.m[(i & 2) + 1];
        entry[i] = scratch_array<limb>(n + 1);
        limbs_mul(entry[i], x, m.n, w.m[i & 1], w.n);
        limbs_mul(v, y, m.n, w.m[2 + (i & 1)], w.n);
        entry[i][n] = limbs_add(entry[i], entry[i], n, v, n);
    }
    install(m, entry, n + 1);
    m.odd ^= w.odd;
    m.identity = false;
    scratch_release(mark);
}

/// M := M (1 q / 0 1), or M (1 0 / q 1) if `lower`.
void times_quotient(CofactorMatrix& m, const limb* q, int64_t qn, bool lower) {
    ScratchMark mark = scratch_mark();
    CofactorMatrix w = {{nullptr, nullptr, nullptr, nullptr}, qn, false, false};
    for (limb*& entry : w.m) {
        entry = scratch_array<limb>(qn);
        clear_limbs(entry, qn);
    }
    w.m[0][0] = w.m[3][0] = 1;
    copy_limbs(w.m[lower ? 2 : 1], q, qn);
    times_matrix(m, w);
    scratch_release(mark);
}

/// The sure quotients of the word step, for a pair of one length in any order. False if there are none.
bool word_step(Pair& h, CofactorMatrix& m, limb* tmp) {
    int64_t n = h.an;
    bool swapped = limbs_compare(h.a, n, h.b, n) < 0;
    Cofactors c = swapped ? lehmer_cofactors(h.b, h.a, n) : lehmer_cofactors(h.a, h.b, n);
    if (c.steps == 0) return false;
    // (a, b) = (v1 v0 / u1 u0) (r, r'); rows exchanged if b is the larger.
    const limb w[4] = {swapped ? c.u1 : c.v1, swapped ? c.u0 : c.v0, swapped ? c.v1 : c.u1,
                       swapped ? c.v0 : c.u0};
    if (swapped) {  // a = -+(u1 b - v1 a) ...: put r into a and r' into b all the same
        copy_limbs(tmp, h.a, n);
        copy_limbs(h.a, h.b, n);
        copy_limbs(h.b, tmp, n);
    }
    apply_cofactors(c, h.a, h.b, n, tmp);
    times_words(m, w, tmp);
    m.odd ^= ((c.steps & 1) != 0) != swapped;
    m.identity = false;
    h.an = limbs_trim(h.a, n);
    h.bn = limbs_trim(h.b, n);
    return true;
}

/// The larger operand modulo the smaller one, unless that gets as short as `least` limbs.
bool division_step(Pair& h, int64_t least, CofactorMatrix& m) {
    int order = limbs_compare(h.a, h.an, h.b, h.bn);
    if (order == 0) return false;
    bool lower = order < 0;
    limb *big = lower ? h.b : h.a, *small = lower ? h.a : h.b;
    int64_t n = h.longer(), sn = h.shorter();
    ScratchMark mark = scratch_mark();
    auto *rest = scratch_array<limb>(n), *q = scratch_array<limb>(n - sn + 1);
    copy_limbs(rest, big, n);
    limbs_divrem(q, rest, n, small, sn);
    int64_t rn = limbs_trim(rest, sn);
    bool taken = rn > least;
    if (taken) {
        copy_limbs(big, rest, rn);
        clear_limbs(big + rn, n - rn);
        (lower ? h.bn : h.an) = rn;
        times_quotient(m, q, n - sn + 1, lower);
    }
    scratch_release(mark);
    return taken;
}

bool any_step(Pair& h, int64_t least, CofactorMatrix& m, limb* tmp) {
    return (h.an == h.bn && word_step(h, m, tmp)) || division_step(h, least, m);
}

/// a[0..n) := 2^(64 p) a[p..n) + x - y, where x, y have p + mn limbs.
void join_low(limb* a, int64_t n, int64_t p, const limb* x, const limb* y, int64_t mn) {
    copy_limbs(a, x, p);
    int64_t rest = mn < n - p ? mn : n - p;
    limb carry = limbs_add(a + p, a + p, n - p, x + p, rest);
    carry -= limbs_sub(a, a, n, y, p + rest);
    CHECK(carry == 0);
    (void)carry;
}
}  // namespace

CofactorMatrix new_matrix(int64_t n) {
    CofactorMatrix m = {};
    for (limb*& entry : m.m) entry = scratch_array<limb>(matrix_room(n));
    set_identity(m);
    return m;
}

void half_gcd_top(limb* a, int64_t& an, limb* b, int64_t& bn, int64_t p, CofactorMatrix& m) {
    int64_t n = maxx64(an, bn), ta = an - p, tb = bn - p;
    set_identity(m);
    if (ta <= 0 || tb <= 0) return;
    half_gcd(a + p, ta, b + p, tb, m);
    if (m.identity) return;
    ScratchMark mark = scratch_mark();
    limb* t[4];
    const limb* low[4] = {b, b, a, a};  // M00 b, M01 b, M10 a, M11 a
    for (int i = 0; i < 4; i++) {
        t[i] = scratch_array<limb>(p + m.n);
        limbs_mul(t[i], low[i], p, m.m[i], m.n);
    }
    // The inverse of M is +-(M11 -M01 / -M10 M00).
    if (!m.odd) {
        join_low(a, n, p, t[3], t[1], m.n);
        join_low(b, n, p, t[0], t[2], m.n);
    } else {
        join_low(a, n, p, t[1], t[3], m.n);
        join_low(b, n, p, t[2], t[0], m.n);
    }
    scratch_release(mark);
    an = limbs_trim(a, n);
    bn = limbs_trim(b, n);
}

void half_gcd(limb* a, int64_t& an, limb* b, int64_t& bn, CofactorMatrix& m) {
    Pair h = {a, b, an, bn};
    int64_t n = h.longer(), s = n / 2 + 1, least = s + 2;
    set_identity(m);
    if (h.shorter() <= least) return;
    poll_interrupt();
    ScratchMark mark = scratch_mark();
    auto* tmp = scratch_array<limb>(n);
    bool going = true;
    if (n >= k_half_gcd) {
        half_gcd_top(a, h.an, b, h.bn, n / 2, m);
        while (going && h.shorter() > least && h.longer() > n / 4 * 3 + 4) going = any_step(h, s, m, tmp);
        int64_t p = 2 * s - h.longer();
        if (going && h.shorter() > least && p > 0) {
            CofactorMatrix w = new_matrix(h.longer() - p);
            half_gcd_top(a, h.an, b, h.bn, p, w);
            times_matrix(m, w);
        }
    }
    while (going && h.shorter() > least) going = any_step(h, s, m, tmp);
    an = h.an;
    bn = h.bn;
    scratch_release(mark);
}
}  // namespace tolvex
