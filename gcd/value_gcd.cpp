// Operands over Z in one variable: their values at t = 2^(64 w) are two integers, whose gcd, written with
// digits from -t/2 to t/2, gives a multiple of the gcd by a number. (B. Char, K. Geddes, G. Gonnet, "GCDHEU",
// 1989.)
//
// With t above twice the heights of the operands and 2, a primitive polynomial that divides both is their
// gcd: what it lacked would have a value above t/2 and divide the content of the digits, which is not. The
// division is one of values: digits of the divisor and of the quotient that are too small to make up a
// product above t/2 are the coefficients of a true product.
#include "gcd/word_gcd.h"
#include "numbers/limbs.h"
#include "numbers/num_compare.h"
#include "poly/packed_kronecker.h"
#include "poly/poly_scale.h"
#include "storage/scratch.h"
namespace tolvex {
namespace {
constexpr int64_t k_spare_bits = 40;   // for a factor that only the values have in common, and for products
constexpr int64_t k_most_limbs = 160;  // of a value: longer ones lose to images (bench/compare, "100 digits")

/// A value and its digits.
struct Digits {
    limb* value;
    int64_t length;  // of the value, exact
    limb* at;        // magnitudes of the digits, `width` limbs each
    bool* negative;
    int64_t count;
    int64_t bits;  // of the longest
};

struct ValueEnv {
    const WordGcdEnv* env;
    PackPlan plan;
    int64_t width;
    Digits u, v, g;
};
}  // namespace

static int64_t bits_of(const limb* a, int64_t n) {
    n = limbs_trim(a, n);
    return n == 0 ? 0 : 64 * n - __builtin_clzll(a[n - 1]);
}

// a[0..n) in two's complement becomes its magnitude; true if it was negative.
static bool take_magnitude(limb* a, int64_t n) {
    if (a[n - 1] >> 63 == 0) return false;
    limb carry = 1;
    for (int64_t k = 0; k < n; k++) {
        a[k] = ~a[k] + carry;
        carry = carry != 0 && a[k] == 0;
    }
    return true;
}

// The digits of d->value, at most `count`; false: it is longer.
static bool read_digits(Digits* d, int64_t count, int64_t width) {
    const int64_t room = count * width;
    if (d->length > room) return false;
    d->count = count;
    d->at = scratch_array<limb>(room);
    d->negative = scratch_array<bool>(count);
    scratch_copy(d->at, d->value, static_cast<size_t>(d->length) * sizeof(limb));
    scratch_clear(d->at + d->length, static_cast<size_t>(room - d->length) * sizeof(limb));
    kronecker_restore(d->at, count, width);
    if (d->at[room - 1] >> 63 != 0) return false;
    d->bits = 0;
    for (int64_t i = 0; i < count; i++) {
        d->negative[i] = take_magnitude(d->at + i * width, width);
        d->bits = maxx64(d->bits, bits_of(d->at + i * width, width));
    }
    return true;
}

// The gcd of the digits, in fresh scratch; returns its length.
static int64_t content_of(const Digits& d, int64_t width, limb** content) {
    auto *c = scratch_array<limb>(width), *a = scratch_array<limb>(width), *b = scratch_array<limb>(width);
    int64_t n = 0;
    for (int64_t i = 0; i < d.count && !(n == 1 && c[0] == 1); i++) {
        const limb* digit = d.at + i * width;
        int64_t m = limbs_trim(digit, width);
        if (m == 0) continue;
        scratch_copy(b, digit, static_cast<size_t>(m) * sizeof(limb));
        if (n == 0) {
            scratch_copy(c, b, static_cast<size_t>(m) * sizeof(limb));
            n = m;
            continue;
        }
        scratch_copy(a, c, static_cast<size_t>(n) * sizeof(limb));
        n = limbs_gcd(c, a, n, b, m);
    }
    *content = c;
    return n;
}

// d->value divided by the divisor, whose length is exact; false: it leaves a remainder.
static bool divide_value(const Digits& d, const limb* divisor, int64_t n, Digits* q) {
    if (d.length < n) return false;
    auto* rest = scratch_array<limb>(d.length);
    scratch_copy(rest, d.value, static_cast<size_t>(d.length) * sizeof(limb));
    q->value = scratch_array<limb>(d.length - n + 1);
    limbs_divrem(q->value, rest, d.length, divisor, n);
    q->length = limbs_trim(q->value, d.length - n + 1);
    return limbs_trim(rest, n) == 0;
}

// The values, if they are short enough.
static bool open_values(ValueEnv* e) {
    const WordGcdEnv& env = *e->env;
    PackTerms t[2] = {pack_leaves(env.u, e->plan, env.um.least, env.um.terms),
                      pack_leaves(env.v, e->plan, env.vm.least, env.vm.terms)};
    PackedOperand p[2];
    int64_t bits = 0, extent = 0;
    for (int side = 0; side < 2; side++) {
        p[side] = {reinterpret_cast<const uint64_t*>(t[side].index), t[side].leaf, t[side].count,
                   side == 0 ? env.um.digits : env.vm.digits};
        bits = maxx64(bits, kronecker_bits(p[side]));
        extent = maxx64(extent, p[side].extent());
    }
    e->width = (bits + k_spare_bits + 63) / 64;
    if (extent > k_most_limbs / e->width) return false;
    for (int side = 0; side < 2; side++) {
        Digits* d = side == 0 ? &e->u : &e->v;
        bool negative;
        d->value = kronecker_value(p[side], e->width, &negative);
        d->count = p[side].extent();
        d->length = limbs_trim(d->value, d->count * e->width);
    }
    return true;
}

// The candidate: the digits of the common divisor of the values, without their content.
static bool read_candidate(ValueEnv* e, int64_t degree, bool* primitive) {
    const int64_t shorter = e->u.length < e->v.length ? e->u.length : e->v.length;
    auto *a = scratch_array<limb>(e->u.length), *b = scratch_array<limb>(e->v.length), *content = a;
    scratch_copy(a, e->u.value, static_cast<size_t>(e->u.length) * sizeof(limb));
    scratch_copy(b, e->v.value, static_cast<size_t>(e->v.length) * sizeof(limb));
    e->g.value = scratch_array<limb>(shorter);
    e->g.length = limbs_gcd(e->g.value, a, e->u.length, b, e->v.length);
    if (!read_digits(&e->g, degree + 1, e->width)) return false;
    const int64_t n = content_of(e->g, e->width, &content);
    *primitive = n == 1 && content[0] == 1;
    if (*primitive) return true;
    Digits quotient = {};
    if (!divide_value(e->g, content, n, &quotient) || !read_digits(&quotient, degree + 1, e->width))
        return false;
    e->g = quotient;
    return true;
}

// Whether the candidate, which has the degree of its digits, divides the operand.
static bool divides_value(const ValueEnv& e, const Digits& d) {
    Digits q = {};
    if (!divide_value(d, e.g.value, e.g.length, &q) || !read_digits(&q, d.count - e.g.count + 1, e.width))
        return false;
    const int64_t meeting = q.count < e.g.count ? q.count : e.g.count;
    return q.bits + e.g.bits + (64 - __builtin_clzll(static_cast<uint64_t>(meeting))) < 64 * e.width - 1;
}

namespace {
struct LeafSource {
    const Digits* d;
    const int64_t* index;
    int64_t width;
};
}  // namespace

static void leaf_of_digit(void* source, int64_t i, imptr leaf) {
    const LeafSource& s = *static_cast<LeafSource*>(source);
    const int64_t place = s.index[i];
    chain_from_limbs(leaf, s.d->at + place * s.width, s.width, s.d->negative[place]);
}

static poly tree_of_digits(const ValueEnv& e) {
    auto* index = scratch_array<int64_t>(e.g.count);
    int64_t count = 0;
    for (int64_t i = e.g.count - 1; i >= 0; i--)
        if (limbs_trim(e.g.at + i * e.width, e.width) > 0) index[count++] = i;
    LeafSource source = {&e.g, index, e.width};
    return pack_tree(e.plan, nullptr, index, count, leaf_of_digit, &source);
}

bool gcd_of_values(const WordGcdEnv& env, polyptrr g) {
    const int32_t level = lintmode ? -1 : only_level(env);
    ValueEnv e = {};
    e.env = &env;
    if (level < 0 || !plan_of_level(env, level, &e.plan)) return false;
    ScratchMark mark = scratch_mark();
    bool primitive = false, found = open_values(&e) && read_candidate(&e, env.bound[level], &primitive) &&
                                    limbs_trim(e.g.at + (e.g.count - 1) * e.width, e.width) > 0 &&
                                    divides_value(e, e.u) && divides_value(e, e.v);
    if (found) *g = tree_of_digits(e);
    scratch_release(mark);
    if (found && !primitive) {
        number c = {};
        common_content(env.u, env.v, &c);
        if (!is_longint(&c, 1)) num_poly_mult(g, &c);
        special_free(&c);
    }
    return found;
}
}  // namespace tolvex
