#include "numbers/num_gcd.h"

#include "numbers/limbs.h"
namespace tolvex {
namespace {
limb small_magnitude(const number* n) {
    int64_t v = chain_small_value(n);
    return static_cast<limb>(v < 0 ? -v : v);
}

int64_t with_sign(const number* n, limb v) {
    return n->head->value < 0 ? -static_cast<int64_t>(v) : static_cast<int64_t>(v);
}

Limbs copy_of(LimbArena& arena, Limbs a) {
    limb* r = arena_take(arena, a.n);
    scratch_copy(r, a.at, static_cast<size_t>(a.n) * sizeof(limb));
    return {r, a.n};
}

/// gcd of magnitudes that are not 0; they are kept.
Limbs gcd_of(LimbArena& arena, Limbs a, Limbs b) {
    Limbs u = copy_of(arena, a), v = copy_of(arena, b);
    limb* r = arena_take(arena, a.n < b.n ? a.n : b.n);
    return {r, limbs_gcd(r, u.at, u.n, v.at, v.n)};
}

/// x := a / g, exact, with the given sign. a is overwritten.
void cofactor(LimbArena& arena, imptr x, Limbs a, Limbs g, bool negative) {
    if (a.n == 0) {
        chain_replace(x, nullptr, 0, false);
        return;
    }
    limb* q = arena_take(arena, a.n);
    limbs_divrem(q, a.at, a.n, g.at, g.n);
    chain_replace(x, q, a.n - g.n + 1, negative);
}

/// extgcd of operands of at most two digits.
void small_extgcd(const number* n, const number* m, imptr g, imptr qn, imptr qm, boolean* gcd1) {
    limb a = small_magnitude(n), b = small_magnitude(m), d = word_gcd(a, b);
    *gcd1 = d == 1;
    if (d != 1) {
        int64_t u = d == 0 ? 0 : with_sign(n, a / d), v = d == 0 ? 0 : with_sign(m, b / d);
        chain_set_int64(qn, u);
        chain_set_int64(qm, v);
    }
    chain_set_int64(g, static_cast<int64_t>(d));
}
}  // namespace

void binary_gcd(const number* n, const number* m, imptr ans) {
    if (n->size <= 2 && m->size <= 2) {
        chain_set_int64(ans, static_cast<int64_t>(word_gcd(small_magnitude(n), small_magnitude(m))));
        return;
    }
    LimbArena arena;
    Limbs a = arena_unpack(arena, n->head, n->size), b = arena_unpack(arena, m->head, m->size);
    if (a.n == 0 || b.n == 0) {
        Limbs g = a.n == 0 ? b : a;
        chain_replace(ans, g.at, g.n, false);
    } else {
        limb* r = arena_take(arena, a.n < b.n ? a.n : b.n);
        chain_replace(ans, r, limbs_gcd(r, a.at, a.n, b.at, b.n), false);
    }
    arena_end(arena);
}

void gcd(const number* n, const number* m, imptr ans) { binary_gcd(n, m, ans); }

void extgcd(const number* n, const number* m, imptr g, imptr qn, imptr qm, boolean* gcd1) {
    if (n->size <= 2 && m->size <= 2) {
        small_extgcd(n, m, g, qn, qm, gcd1);
        return;
    }
    bool n_negative = n->head->value < 0, m_negative = m->head->value < 0;
    LimbArena arena;
    Limbs a = arena_unpack(arena, n->head, n->size), b = arena_unpack(arena, m->head, m->size);
    Limbs d = a.n == 0 ? copy_of(arena, b) : b.n == 0 ? copy_of(arena, a) : gcd_of(arena, a, b);
    *gcd1 = d.n == 1 && d.at[0] == 1;
    if (!*gcd1) {
        cofactor(arena, qn, a, d, n_negative);
        cofactor(arena, qm, b, d, m_negative);
    }
    chain_replace(g, d.at, d.n, false);
    arena_end(arena);
}

int32_t smallgcd(int32_t u, int32_t v) {
    int64_t a = u, b = v;
    // |-2^31| with 0 does not fit the result; no caller passes it, and the cast keeps the bits.
    return static_cast<int32_t>(static_cast<uint32_t>(
        word_gcd(static_cast<limb>(a < 0 ? -a : a), static_cast<limb>(b < 0 ? -b : b))));
}
}  // namespace tolvex
