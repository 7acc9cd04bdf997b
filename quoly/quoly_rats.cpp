#include "quoly/quoly_rats.h"

#include "numbers/limbs.h"
#include "quoly/quoly_internal.h"

#include <cstring>
namespace tolvex {
static uint64_t magnitude(int64_t v) {
    return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
}

// ---- limbs ---------------------------------------------------------------------------------------------

/// A rational operand in limb arrays; an integer has the denominator 1.
struct Rational {
    Limbs n, d;
    bool negative;
};

static limb k_one = 1;
static bool is_one(Limbs a) { return a.n == 1 && a.at[0] == 1; }

static Rational unpacked(LimbArena& arena, const quolynode* q) {
    const number* n = q->numb ? q->ncoef : q->numer->ncoef;
    Rational r = {arena_unpack(arena, n->head, n->size), {&k_one, 1}, n->head->value < 0};
    if (!q->numb) r.d = arena_unpack(arena, q->denom->ncoef->head, q->denom->ncoef->size);
    return r;
}

static Limbs copy_of(LimbArena& arena, Limbs a) {
    limb* r = arena_take(arena, a.n);
    memcpy(r, a.at, static_cast<size_t>(a.n) * sizeof(limb));
    return {r, a.n};
}

static Limbs one_limb(LimbArena& arena, limb v) {
    limb* r = arena_take(arena, 1);
    *r = v;
    return {r, 1};
}

/// gcd(a, b), neither 0. Against one limb a remainder is enough.
static Limbs gcd_of(LimbArena& arena, Limbs a, Limbs b) {
    if (is_one(a) || is_one(b)) return {&k_one, 1};
    if (a.n < b.n) {
        Limbs t = a;
        a = b;
        b = t;
    }
    if (b.n == 1) return one_limb(arena, word_gcd(limbs_mod_1(a.at, a.n, b.at[0]), b.at[0]));
    Limbs x = copy_of(arena, a), y = copy_of(arena, b);
    limb* r = arena_take(arena, b.n);
    return {r, limbs_gcd(r, x.at, x.n, y.at, y.n)};
}

/// a / g, which is exact.
static Limbs quotient(LimbArena& arena, Limbs a, Limbs g) {
    if (is_one(g)) return a;
    Limbs rest = copy_of(arena, a);
    if (g.n == 1) {
        limbs_divrem_1(rest.at, rest.n, g.at[0]);
        return {rest.at, limbs_trim(rest.at, rest.n)};
    }
    limb* q = arena_take(arena, a.n - g.n + 1);
    limbs_divrem(q, rest.at, rest.n, g.at, g.n);
    return {q, limbs_trim(q, a.n - g.n + 1)};
}

static Limbs product(LimbArena& arena, Limbs a, Limbs b) {
    if (a.n == 0 || b.n == 0) return {&k_one, 0};
    if (is_one(a)) return b;
    if (is_one(b)) return a;
    limb* r = arena_take(arena, a.n + b.n);
    limbs_mul(r, a.at, a.n, b.at, b.n);
    return {r, limbs_trim(r, a.n + b.n)};
}

/// a + b or a - b of signed magnitudes; *negative: in, the sign of a; out, the sign of the result.
static Limbs signed_sum(LimbArena& arena, Limbs a, bool* negative, Limbs b, bool b_negative) {
    bool a_negative = *negative;
    if (limbs_compare(a.at, a.n, b.at, b.n) < 0) {
        Limbs t = a;
        a = b;
        b = t;
        *negative = b_negative;
    }
    limb* r = arena_take(arena, a.n + 1);
    r[a.n] = 0;
    if (a_negative == b_negative) {
        r[a.n] = limbs_add(r, a.at, a.n, b.at, b.n);
    } else {
        limbs_sub(r, a.at, a.n, b.at, b.n);
    }
    return {r, limbs_trim(r, a.n + 1)};
}

// ---- sums ----------------------------------------------------------------------------------------------

/// Digits are below 2^28, so t is below 2^57 and the denominator below 2^56.
static void add_words(int32_t n1, int32_t d1, int32_t n2, int32_t d2, quolyptr p) {
    auto g = static_cast<int64_t>(word_gcd(static_cast<uint64_t>(d1), static_cast<uint64_t>(d2)));
    int64_t c1 = d1 / g, c2 = d2 / g, t = n1 * c2 + n2 * c1;
    if (t == 0) {
        receive_rational_words(p, 0, 1);
        return;
    }
    auto h = static_cast<int64_t>(g == 1 ? 1 : word_gcd(magnitude(t), static_cast<uint64_t>(g)));
    receive_rational_words(p, t / h, (g / h) * c1 * c2);
}

void add_rats(const quolynode* n, const quolynode* m, quolyptr p, bool subtract) {
    int32_t n1, d1, n2, d2;
    if (rational_words(n, &n1, &d1) && rational_words(m, &n2, &d2)) {
        add_words(n1, d1, subtract ? -n2 : n2, d2, p);
        return;
    }
    LimbArena arena;
    Rational a = unpacked(arena, n), b = unpacked(arena, m);
    Limbs g = gcd_of(arena, a.d, b.d), c1 = quotient(arena, a.d, g), c2 = quotient(arena, b.d, g);
    bool negative = a.negative;
    Limbs top = signed_sum(arena, product(arena, a.n, c2), &negative, product(arena, b.n, c1),
                           b.negative != subtract);
    if (top.n == 0) {
        receive_rational_words(p, 0, 1);
    } else {
        // Only the gcd of the denominators can still have something in common with the numerator.
        Limbs h = gcd_of(arena, top, g);
        Limbs bottom = product(arena, product(arena, c1, quotient(arena, g, h)), c2);
        receive_rational_limbs(p, quotient(arena, top, h), negative, bottom);
    }
    arena_end(arena);
}

// ---- products and quotients ----------------------------------------------------------------------------

/// (n1 n2) / (d1 d2), each pair n1/d1, n2/d2 in lowest terms, d1, d2 not 0.
static void mult_words(int64_t n1, int64_t d1, int64_t n2, int64_t d2, quolyptr p) {
    auto g1 = static_cast<int64_t>(word_gcd(magnitude(n1), magnitude(d2)));
    auto g2 = static_cast<int64_t>(word_gcd(magnitude(n2), magnitude(d1)));
    int64_t top = (n1 / g1) * (n2 / g2), bottom = (d1 / g2) * (d2 / g1);
    receive_rational_words(p, bottom < 0 ? -top : top, bottom < 0 ? -bottom : bottom);
}

/// The same in limbs, signs apart.
static void mult_limbs(LimbArena& arena, Rational a, Rational b, quolyptr p) {
    if (a.n.n == 0 || b.n.n == 0) {
        receive_rational_words(p, 0, 1);
        return;
    }
    Limbs g1 = gcd_of(arena, a.n, b.d), g2 = gcd_of(arena, b.n, a.d);
    Limbs top = product(arena, quotient(arena, a.n, g1), quotient(arena, b.n, g2));
    Limbs bottom = product(arena, quotient(arena, a.d, g2), quotient(arena, b.d, g1));
    receive_rational_limbs(p, top, a.negative != b.negative, bottom);
}

void mult_rats(const quolynode* n, const quolynode* m, quolyptr p) {
    int32_t n1, d1, n2, d2;
    if (rational_words(n, &n1, &d1) && rational_words(m, &n2, &d2)) {
        mult_words(n1, d1, n2, d2, p);
        return;
    }
    LimbArena arena;
    Rational a = unpacked(arena, n), b = unpacked(arena, m);
    mult_limbs(arena, a, b, p);
    arena_end(arena);
}

void quot_rats(const quolynode* n, const quolynode* m, quolyptr p) {
    int32_t n1, d1, n2, d2;
    if (rational_words(n, &n1, &d1) && rational_words(m, &n2, &d2)) {
        mult_words(n1, d1, d2, n2, p);
        return;
    }
    LimbArena arena;
    Rational a = unpacked(arena, n), b = unpacked(arena, m);
    mult_limbs(arena, a, {b.d, b.n, b.negative}, p);
    arena_end(arena);
}
}  // namespace tolvex
