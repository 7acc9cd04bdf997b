// Limb arrays: each fast method against the plain one, over all lengths around the crossings.
#include "numbers/limb_lehmer.h"
#include "numbers/limb_ntt.h"
#include "numbers/limb_product.h"
#include "numbers/limbs.h"
#include "tests/unit/numbers/big_support.h"

#include <algorithm>
using namespace tolvex;
using namespace tolvex::test;

namespace {
using Vec = std::vector<limb>;

/// n limbs, the top one not 0, of one of several shapes.
Vec random_limbs(Rng& rng, int64_t n) {
    Vec v(static_cast<size_t>(n));
    switch (rng() % 6) {
    case 0:
        for (auto& x : v) x = ~limb{0};
        break;
    case 1:
        v.back() = limb{1} << (rng() % 64);
        break;
    case 2:
        for (auto& x : v) x = rng() % 2 ? ~limb{0} : 0;
        break;
    default:
        for (auto& x : v) x = rng();
        if (rng() % 4 == 0) v.back() >>= rng() % 64;
        if (rng() % 4 == 0)
            for (size_t i = 0; i < v.size() / 2; i++) v[i] = 0;
    }
    if (v.back() == 0) v.back() = 1;
    return v;
}

int64_t len(const Vec& v) { return static_cast<int64_t>(v.size()); }

Vec school(const Vec& a, const Vec& b) {
    Vec r(a.size() + b.size());
    if (a.size() >= b.size()) {
        limbs_mul_school(r.data(), a.data(), len(a), b.data(), len(b));
    } else {
        limbs_mul_school(r.data(), b.data(), len(b), a.data(), len(a));
    }
    return r;
}

Vec product(const Vec& a, const Vec& b) {
    Vec r(a.size() + b.size());
    limbs_mul(r.data(), a.data(), len(a), b.data(), len(b));
    return r;
}

Vec square(const Vec& a) {
    Vec r(2 * a.size());
    limbs_mul(r.data(), a.data(), len(a), a.data(), len(a));
    return r;
}

Vec transform(const Vec& a, const Vec& b) {
    Vec r(a.size() + b.size());
    limbs_mul_transform(r.data(), a.data(), len(a), b.data(), len(b));
    return r;
}

Vec trimmed(Vec v) {
    while (!v.empty() && v.back() == 0) v.pop_back();
    return v;
}

/// a + b.
Vec plus(Vec a, Vec b) {
    if (a.size() < b.size()) std::swap(a, b);
    limb carry = limbs_add(a.data(), a.data(), len(a), b.data(), len(b));
    if (carry) a.push_back(carry);
    return a;
}

/// Random lengths up to `most`, often near powers of two.
int64_t random_length(Rng& rng, int64_t most) {
    if (rng() % 3) return 1 + static_cast<int64_t>(rng() % static_cast<uint64_t>(most));
    int64_t n = (int64_t{1} << (rng() % 12)) + static_cast<int64_t>(rng() % 5) - 2;
    return std::clamp<int64_t>(n, 1, most);
}

limb mod_word(const Vec& a, limb w) { return limbs_mod_1(a.data(), len(a), w); }
limb mul_mod(limb a, limb b, limb w) { return static_cast<limb>(static_cast<unsigned __int128>(a) * b % w); }
}  // namespace

PROPERTY(kernels_are_schoolbook_lines, 2000) {
    Vec a = random_limbs(rng, random_length(rng, 40)), r = random_limbs(rng, len(a));
    limb w = rng() % 4 == 0 ? ~limb{0} : rng();
    Vec sum = r, difference = r, line(a.size());
    limb up = limbs_addmul_1(sum.data(), a.data(), len(a), w);
    limb down = limbs_submul_1(difference.data(), a.data(), len(a), w);
    limb top = limbs_mul_1(line.data(), a.data(), len(a), w);
    unsigned __int128 carry = 0, product_carry = 0;
    limb borrow = 0;
    for (size_t i = 0; i < a.size(); i++) {
        product_carry += static_cast<unsigned __int128>(a[i]) * w;
        auto low = static_cast<limb>(product_carry);
        product_carry >>= 64;
        EXPECT_EQ(line[i], low);
        carry += static_cast<unsigned __int128>(r[i]) + low;
        EXPECT_EQ(sum[i], static_cast<limb>(carry));
        carry >>= 64;
        limb d = r[i] - low - borrow;
        borrow = r[i] < low || (r[i] == low && borrow);
        EXPECT_EQ(difference[i], d);
    }
    EXPECT_EQ(top, static_cast<limb>(product_carry));
    EXPECT_EQ(up, static_cast<limb>(product_carry + carry));
    EXPECT_EQ(down, static_cast<limb>(product_carry) + borrow);
    // Sum and difference undo each other.
    Vec s(std::max(a.size(), r.size()));
    limb c = limbs_add(s.data(), a.data(), len(a), r.data(), len(r));
    limb b = limbs_sub(s.data(), s.data(), len(s), r.data(), len(r));
    EXPECT_EQ(c, b);
    EXPECT_EQ(s, a);
    int shift = static_cast<int>(rng() % 64);
    Vec shifted(a.size());
    limb out = limbs_shift_left(shifted.data(), a.data(), len(a), shift);
    EXPECT_EQ(out, shift ? a.back() >> (64 - shift) : 0);
    limbs_shift_right(shifted.data(), shifted.data(), len(a), shift);
    if (shift) shifted.back() |= out << (64 - shift);
    EXPECT_EQ(shifted, a);
}

// Every pair of near lengths up to 400 digits of a chain, which is 175 limbs: the bounds of the splits.
TEST(Limbs, karatsuba_at_every_length) {
    set_up_once();
    Rng rng(run_seed());
    for (int64_t n = 1; n <= 180; n++) {
        for (int64_t m : {n, n - 1, (n + 1) / 2, n / 3, int64_t{1}}) {
            if (m < 1) continue;
            Vec a = random_limbs(rng, n), b = random_limbs(rng, m);
            ASSERT_EQ(product(a, b), school(a, b)) << n << " by " << m;
            ASSERT_EQ(product(b, a), school(a, b)) << m << " by " << n;
        }
        Vec a = random_limbs(rng, n);
        ASSERT_EQ(square(a), school(a, a)) << n;
    }
}

// Lengths where the operands are cut in three, with all remainders; and the greatest and sparsest operands.
TEST(Limbs, three_parts_at_many_lengths) {
    set_up_once();
    Rng rng(run_seed());
    for (int64_t n = 110; n <= 420; n++) {
        Vec a = random_limbs(rng, n), b = random_limbs(rng, n);
        ASSERT_EQ(product(a, b), school(a, b)) << n;
        ASSERT_EQ(square(a), school(a, a)) << n;
        Vec full(static_cast<size_t>(n), ~limb{0}), one(full.size(), 0);
        one.back() = 1;
        ASSERT_EQ(product(full, a), school(full, a)) << n;
        ASSERT_EQ(square(full), school(full, full)) << n;
        ASSERT_EQ(product(one, full), school(one, full)) << n;
    }
}

PROPERTY(three_parts_are_schoolbook, 40) {
    Vec a = random_limbs(rng, 400 + static_cast<int64_t>(rng() % 2600));
    Vec b = random_limbs(rng, rng() % 2 ? len(a) : 1 + static_cast<int64_t>(rng() % a.size()));
    EXPECT_EQ(product(a, b), school(a, b)) << len(a) << " by " << len(b);
    EXPECT_EQ(square(a), school(a, a)) << len(a);
}

TEST(Limbs, transform_at_every_short_length) {
    set_up_once();
    Rng rng(run_seed());
    for (int64_t n = 1; n <= 130; n++) {
        for (int64_t m : {n, (n + 2) / 3, int64_t{1}}) {
            Vec a = random_limbs(rng, n), b = random_limbs(rng, m);
            ASSERT_EQ(transform(a, b), school(a, b)) << n << " by " << m;
        }
        Vec full(static_cast<size_t>(n), ~limb{0});
        ASSERT_EQ(transform(full, full), school(full, full)) << n;
    }
}

PROPERTY(transform_is_schoolbook, 20) {
    Vec a = random_limbs(rng, random_length(rng, 2500)), b = random_limbs(rng, random_length(rng, 2500));
    EXPECT_EQ(transform(a, b), school(a, b));
    EXPECT_EQ(transform(a, a), school(a, a));
}

// Long operands: residues modulo words tell, and the largest coefficients there are.
PROPERTY(long_products, 6) {
    int64_t n = 5000 + static_cast<int64_t>(rng() % 30000);
    Vec a = random_limbs(rng, n), b = random_limbs(rng, round % 3 == 0 ? n / 4 : n);
    if (round % 4 == 0) a.assign(a.size(), ~limb{0}), b = a;
    Vec p = product(a, b);
    for (int i = 0; i < 4; i++) {
        limb w = rng() | 1;
        EXPECT_EQ(mod_word(p, w), mul_mod(mod_word(a, w), mod_word(b, w), w));
    }
}

PROPERTY(quotients_multiply_back, 500) {
    int64_t bn = random_length(rng, round % 10 == 0 ? 1500 : 260);
    int64_t qn = random_length(rng, round % 10 == 0 ? 1500 : 260);
    Vec b = random_limbs(rng, bn), q = random_limbs(rng, qn), r = random_limbs(rng, random_length(rng, bn));
    if (limbs_compare(r.data(), len(r), b.data(), bn) >= 0) r.clear();
    if (rng() % 4 == 0) {  // the largest remainder there is
        r = b;
        const limb one = 1;
        limbs_sub(r.data(), r.data(), bn, &one, 1);
        r = trimmed(r);
    }
    Vec a = trimmed(plus(school(b, q), r)), rest = a, quotient(a.size() - b.size() + 1);
    limbs_divrem(quotient.data(), rest.data(), len(rest), b.data(), bn);
    EXPECT_EQ(trimmed(quotient), q);
    rest.resize(b.size());
    EXPECT_EQ(trimmed(rest), trimmed(r));
    Vec only_rest = a;
    limbs_divrem(nullptr, only_rest.data(), len(a), b.data(), bn);
    only_rest.resize(b.size());
    EXPECT_EQ(only_rest, rest);
    limb w = rng() >> (rng() % 64) | 1;
    Vec by_word = a;
    limb left = limbs_divrem_1(by_word.data(), len(a), w);
    EXPECT_EQ(left, mod_word(a, w));
    EXPECT_EQ(trimmed(plus(school(by_word, Vec{w}), Vec{left})), a);
}

PROPERTY(long_quotients, 3) {
    int64_t bn = 2000 + static_cast<int64_t>(rng() % 6000),
            an = bn + 1000 + static_cast<int64_t>(rng() % 20000);
    Vec a = random_limbs(rng, an), b = random_limbs(rng, bn), rest = a, q(static_cast<size_t>(an - bn + 1));
    limbs_divrem(q.data(), rest.data(), an, b.data(), bn);
    rest.resize(b.size());
    EXPECT_LT(limbs_compare(rest.data(), limbs_trim(rest.data(), bn), b.data(), bn), 0);
    EXPECT_EQ(trimmed(plus(product(q, b), rest)), a);
}

namespace {
/// (a, b) = M (a', b')?
void expect_matrix(const Vec& a, const Vec& b, const CofactorMatrix& m, const Vec& x, const Vec& y) {
    auto entry = [&](int i) { return Vec(m.m[i], m.m[i] + m.n); };
    auto row = [&](int i) { return trimmed(plus(product(entry(2 * i), x), product(entry(2 * i + 1), y))); };
    EXPECT_EQ(row(0), trimmed(a));
    EXPECT_EQ(row(1), trimmed(b));
    Vec left = trimmed(product(entry(0), entry(3))), right = trimmed(product(entry(1), entry(2)));
    EXPECT_EQ(m.odd ? trimmed(plus(left, Vec{1})) : left, m.odd ? right : trimmed(plus(right, Vec{1})));
}
}  // namespace

PROPERTY(half_gcd_is_a_unimodular_reduction, 120) {
    int64_t n = random_length(rng, round % 10 == 0 ? 2000 : 400);
    Vec a = random_limbs(rng, n), b = random_limbs(rng, n - static_cast<int64_t>(rng() % 2) * (n > 1));
    if (rng() % 8 == 0) b = a;
    Vec x = a, y = b;
    x.resize(static_cast<size_t>(n));
    y.resize(static_cast<size_t>(n));
    int64_t xn = len(a), yn = len(b);
    ScratchMark mark = scratch_mark();
    CofactorMatrix m = new_matrix(n);
    half_gcd(x.data(), xn, y.data(), yn, m);
    EXPECT_EQ(limbs_trim(x.data(), n), xn);
    EXPECT_EQ(limbs_trim(y.data(), n), yn);
    if (!m.identity) {
        EXPECT_GT(xn, n / 2);
        EXPECT_GT(yn, n / 2);
    }
    expect_matrix(a, b, m, x, y);
    scratch_release(mark);
}

PROPERTY(long_gcds, 17) {
    int64_t n = round % 8 == 0 ? 3000 : 700;
    Vec g = random_limbs(rng, random_length(rng, round % 2 ? 3 : 300));
    Vec u = random_limbs(rng, random_length(rng, n)), v = random_limbs(rng, random_length(rng, n));
    Vec a = trimmed(product(u, g)), b = trimmed(product(v, g));
    auto of = [](Vec p, Vec q) {
        Vec r(std::min(p.size(), q.size()));
        r.resize(static_cast<size_t>(limbs_gcd(r.data(), p.data(), len(p), q.data(), len(q))));
        return r;
    };
    Vec uv = of(u, v), ab = of(a, b);
    EXPECT_EQ(ab, trimmed(product(uv, g)));
    EXPECT_EQ(of(b, a), ab);
    // It divides both, and the cofactors have no common divisor.
    auto cofactor = [](Vec p, const Vec& d) {
        Vec q(p.size() - d.size() + 1);
        limbs_divrem(q.data(), p.data(), len(p), d.data(), len(d));
        EXPECT_EQ(limbs_trim(p.data(), len(d)), 0);
        return trimmed(q);
    };
    EXPECT_EQ(of(cofactor(a, ab), cofactor(b, ab)), Vec{1});
    // Consecutive continuants have gcd 1.
    Vec p = {1}, q = {2 + rng() % 3};
    for (int i = 0; i < 60; i++) {
        Vec t = trimmed(plus(product(q, random_limbs(rng, 1 + static_cast<int64_t>(rng() % 20))), p));
        p = q;
        q = t;
    }
    EXPECT_EQ(of(p, q), Vec{1});
}

PROPERTY(gcd_of_words, 2000) {
    limb u = rng() >> (rng() % 64), v = rng() >> (rng() % 64), x = u, y = v;
    while (y != 0) {
        limb t = x % y;
        x = y;
        y = t;
    }
    EXPECT_EQ(word_gcd(u, v), x);
    Vec p = {rng(), rng() | 1}, q = {rng(), rng() | 1}, r(2);
    unsigned __int128 s = (static_cast<unsigned __int128>(p[1]) << 64) | p[0];
    unsigned __int128 t = (static_cast<unsigned __int128>(q[1]) << 64) | q[0];
    int64_t n = limbs_gcd(r.data(), p.data(), 2, q.data(), 2);
    while (t != 0) {
        unsigned __int128 w = s % t;
        s = t;
        t = w;
    }
    EXPECT_EQ(r[0], static_cast<limb>(s));
    EXPECT_EQ(n == 2 ? r[1] : 0, static_cast<limb>(s >> 64));
}

PROPERTY(long_square_roots, 120) {
    Vec s = random_limbs(rng, random_length(rng, round % 10 == 0 ? 1200 : 120));
    Vec n = trimmed(square(s)), root((n.size() + 1) / 2);
    limbs_sqrt(root.data(), n.data(), len(n));
    EXPECT_EQ(trimmed(root), s);
    const limb one = 1;
    limbs_sub(n.data(), n.data(), len(n), &one, 1);
    n = trimmed(n);
    if (n.empty()) return;
    root.assign((n.size() + 1) / 2, 0);
    limbs_sqrt(root.data(), n.data(), len(n));
    EXPECT_EQ(trimmed(plus(trimmed(root), Vec{1})), s);
    Vec top = trimmed(plus(square(s), plus(s, s)));  // s^2 + 2 s: the last with this root
    root.assign((top.size() + 1) / 2, 0);
    limbs_sqrt(root.data(), top.data(), len(top));
    EXPECT_EQ(trimmed(root), s);
}

PROPERTY(products_of_words, 100) {
    Vec w = random_limbs(rng, random_length(rng, 300)), r(w.size()), expected = {1};
    for (auto& x : w) x |= 1;
    int64_t n = limbs_word_product(r.data(), w.data(), len(w));
    for (limb x : w) expected = trimmed(school(expected, Vec{x}));
    r.resize(static_cast<size_t>(n));
    EXPECT_EQ(r, expected);
}

TEST(Limbs, factorials_by_swing_and_by_range) {
    set_up_once();
    for (uint32_t n : {0u, 1u, 2u, 3u, 19u, 20u, 21u, 22u, 41u, 42u, 100u, 1000u, 5000u, 20000u}) {
        Vec f(static_cast<size_t>(limbs_factorial_room(n))),
            g(static_cast<size_t>(limbs_range_room(1, n + 1)));
        f.resize(static_cast<size_t>(limbs_factorial(f.data(), n)));
        g.resize(static_cast<size_t>(limbs_range_product(g.data(), 1, n > 0 ? n : 1)));
        ASSERT_EQ(f, g) << n;
    }
}

PROPERTY(chains_there_and_back, 2000) {
    Num a = random_number(rng, 100), b = random_number(rng, 100);
    Vec v(static_cast<size_t>(limbs_for(a.v.size)));
    int64_t n = limbs_from_chain(v.data(), a.v.head, a.v.size);
    bool negative = a.v.head->value < 0;
    chain_replace(&b.v, v.data(), n, negative);
    EXPECT_NUM(b, a);
    Num c;
    chain_from_limbs(&c.v, v.data(), n, negative);
    EXPECT_NUM(c, a);
}
