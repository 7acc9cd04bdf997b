// Random identities of sums, products, quotients, gcds and roots of chains, against plain digit vectors.
#include "numbers/limbs.h"
#include "tests/unit/numbers/big_support.h"

#include <algorithm>
using namespace tolvex;
using namespace tolvex::test;

namespace {
int size_of_round(int round) {
    constexpr int sizes[] = {1, 2, 3, 4, 5, 8, 12, 13, 16, 17, 33, 34, 64, 65, 100, 200};
    return sizes[static_cast<size_t>(round) % std::size(sizes)];
}
}  // namespace

PROPERTY(sums_and_differences, 6000) {
    int most = size_of_round(round);
    Num a = random_number(rng, most), b = random_number(rng, most);
    if (rng() % 4 == 0) b = a;  // equal operands, and neighbours whose heads cancel
    if (rng() % 4 == 0) b = sum(a, random_number(rng, 2));
    Num s = number_of(plain_add(plain(&a.v), plain(&b.v))),
        d = number_of(plain_add(plain(&a.v), plain(&b.v), -1));
    EXPECT_NUM(sum(a, b), s);
    EXPECT_NUM(difference(a, b), d);
    Num r = random_number(rng, most);
    medsum(a.v.size, b.v.size, a.v.head, b.v.head, &r.v);
    EXPECT_NUM(r, s);
    meddiff(a.v.size, b.v.size, a.v.head, b.v.head, &r.v);
    EXPECT_NUM(r, d);
    sub(&a.v, &b.v, &r.v);
    EXPECT_NUM(r, d);
    Num x(a), y(b), z(a);
    medsum(x.v.size, b.v.size, x.v.head, b.v.head, &x.v);
    EXPECT_NUM(x, s);
    sub(&a.v, &y.v, &y.v);
    EXPECT_NUM(y, d);
    sub(&z.v, &b.v, &z.v);
    EXPECT_NUM(z, d);
    Num twice(a);
    fastsum(&twice.v, &twice.v);
    EXPECT_NUM(twice, product(a, Num(2)));
    Num zero(a);
    fastdiff(&zero.v, &zero.v);
    EXPECT_NUM(zero, Num(int64_t{0}));
}

PROPERTY(products, 4000) {
    int most = size_of_round(round);
    Num a = random_number(rng, most), b = random_number(rng, most);
    if (rng() % 4 == 0) b = a;
    Num p = number_of(plain_mul(plain(&a.v), plain(&b.v)));
    EXPECT_NUM(product(a, b), p);
    Num r;
    multiply(&a.v, &b.v, &r.v);
    EXPECT_NUM(r, p);
    Num x(a), y(b);
    fast_mult(&x.v, &b.v, &x.v);
    EXPECT_NUM(x, p);
    fast_mult(&a.v, &y.v, &y.v);
    EXPECT_NUM(y, p);
    Num s(a), q(a);
    fast_mult(&s.v, &s.v, &s.v);
    multiply(&q.v, &q.v, &q.v);
    EXPECT_NUM(s, number_of(plain_mul(plain(&a.v), plain(&a.v))));
    EXPECT_NUM(q, s);
    auto digit = static_cast<int32_t>(rng() & k_max_digit);
    if (rng() % 4 == 0) digit = 0;
    if (rng() % 4 == 0) digit = k_max_digit;
    if (rng() % 2 == 0) digit = -digit;
    numptr penult;
    simp_mult(&a.v, &r.v, digit, &penult);
    EXPECT_NUM(r, product(a, Num(digit)));
    EXPECT_TRUE(r.v.size == 1 ? penult == nullptr : penult->next == r.v.tail);
}

PROPERTY(order, 3000) {
    int most = size_of_round(round);
    Num a = random_number(rng, most), b = random_number(rng, most);
    if (rng() % 3 == 0) b = a;
    if (rng() % 4 == 0) b = sum(a, Num(static_cast<int64_t>(rng() % 3) - 1));
    Plain d = plain_add(plain(&a.v), plain(&b.v), -1);
    int sign = d.d.empty() ? 0 : d.negative ? -1 : 1;
    int magnitudes = plain_compare_magnitudes(plain(&a.v), plain(&b.v));
    EXPECT_EQ(bigger(&a.v, &b.v) != 0, sign > 0);
    EXPECT_EQ(equal(&a.v, &b.v) != 0, sign == 0);
    EXPECT_EQ(spec_equal(&a.v, &b.v) != 0, sign == 0);
    EXPECT_EQ(abs_larger(&a.v, &b.v) != 0, magnitudes > 0);
    EXPECT_EQ(int_abs_bigger(&a.v, &b.v, 0) != 0, magnitudes > 0);
    EXPECT_EQ(int_abs_bigger(&a.v, &b.v, 1) != 0, magnitudes >= 0);
    Num m;
    makeneg(&b.v, &m.v);
    EXPECT_EQ(negtive(&a.v, &m.v) != 0, sign == 0);
    Num u, v;
    abs_val_num(&a.v, &u.v);
    abs_val_num(&b.v, &v.v);
    EXPECT_EQ(pos_bigger(&u.v, &v.v) != 0, magnitudes > 0);
    EXPECT_EQ(fast_bigger(u.v.head, v.v.head, u.v.size, v.v.size) != 0, magnitudes > 0);
    boolean first = 2;
    EXPECT_EQ(equal_which(&u.v, &v.v, &first) != 0, magnitudes == 0);
    EXPECT_EQ(first, magnitudes == 0 ? 2 : magnitudes > 0);
}

PROPERTY(division_gives_back, 6000) {
    int most = size_of_round(round);
    Num a = random_number(rng, 2 * most), b = random_number(rng, most);
    if (b.v.head->value == 0) b = Num(3);
    if (rng() % 4 == 0) a = product(b, random_number(rng, most));                      // exact
    if (rng() % 8 == 0) a = difference(product(b, random_number(rng, most)), Num(1));  // remainder b - 1
    Num q, r;
    trunc_divide(&a.v, &b.v, &q.v, &r.v);
    EXPECT_TRUE(num_check(&q.v));
    EXPECT_TRUE(num_check(&r.v));
    EXPECT_NUM(sum(product(q, b), r), a);
    EXPECT_TRUE(abs_larger(&b.v, &r.v));
    EXPECT_TRUE(chain_sign(&r.v) == 0 || chain_sign(&r.v) == chain_sign(&a.v));
    // The sign rule of divide: the remainder takes the sign of the quotient's formula, not of the dividend.
    Num q2, r2;
    divide(&a.v, &b.v, &q2.v, &r2.v);
    EXPECT_NUM(q2, q);
    bool negative = chain_sign(&a.v) * chain_sign(&b.v) < 0;
    abs_value(&r.v);
    if (negative) in_place_neg(&r.v);
    EXPECT_NUM(r2, r);
    // All aliasings.
    Num x(a), y(b), z(a), w(b);
    divide(&x.v, &b.v, &x.v, &r2.v);
    EXPECT_NUM(x, q);
    divide(&a.v, &y.v, &q2.v, &y.v);
    EXPECT_NUM(y, r);
    EXPECT_NUM(q2, q);
    divide(&z.v, &w.v, &w.v, &z.v);
    EXPECT_NUM(w, q);
    EXPECT_NUM(z, r);
    Num u(a), v(b);
    abs_value(&u.v);
    abs_value(&v.v);
    pos_divide(&u.v, &v.v, &q2.v, &r2.v);
    EXPECT_NUM(sum(product(q2, v), r2), u);
    Num r3;
    pos_divide_noq(u.v.head, u.v.size, v.v.head, v.v.size, &r3.v);
    EXPECT_NUM(r3, r2);
    Num exact = product(a, b);
    divide_exact(&exact.v, &b.v);
    EXPECT_NUM(exact, a);
    Num self(b);
    divide_exact(&self.v, &self.v);
    EXPECT_NUM(self, Num(1));
}

PROPERTY(simp_divide_of_windows, 3000) {
    Num d = random_digits(rng, 1 + static_cast<int>(rng() % 20), false);
    Num q(static_cast<int64_t>(rng() & k_max_digit)), r = random_number(rng, d.v.size, false);
    if (!pos_bigger(&d.v, &r.v)) r = difference(d, Num(1));
    Num window = sum(product(d, q), r), q1, r1;
    simp_divide(window.v.head, window.v.size, &d.v, &q1.v, &r1.v);
    EXPECT_NUM(q1, q);
    EXPECT_NUM(r1, r);
    EXPECT_EQ(q1.v.lint, q.v.head->value);
}

PROPERTY(residues_of_chains, 3000) {
    Num a = random_number(rng, 40);
    auto m = static_cast<uint32_t>(rng() % 3 == 0 ? 1 + rng() % 10 : 1 + rng() % 4294967295u);
    Num q, r, modulus_number(static_cast<int64_t>(m));
    trunc_divide(&a.v, &modulus_number.v, &q.v, &r.v);
    if (chain_sign(&r.v) < 0) fastsum(&r.v, &modulus_number.v);
    EXPECT_NUM(Num(static_cast<int64_t>(chain_mod_word(&a.v, m))), r);
    auto word = static_cast<int32_t>(2 + rng() % 2147483645u);
    int32_t saved = modulus;
    modulus = word;
    EXPECT_EQ(modout(&a.v), static_cast<int32_t>(chain_mod_word(&a.v, static_cast<uint32_t>(word))));
    EXPECT_EQ(lintmode, 1);
    lintmode = 0;
    modulus = saved;
}

PROPERTY(gcd_of_multiples, 800) {
    int most = size_of_round(round);
    Num a = random_number(rng, most), b = random_number(rng, most), c = random_number(rng, most);
    Num x = product(a, c), y = product(b, c), g, h;
    binary_gcd(&x.v, &y.v, &g.v);
    gcd(&y.v, &x.v, &h.v);
    EXPECT_NUM(g, h);
    EXPECT_GE(chain_sign(&g.v), 0);
    // The plain Euclidean algorithm.
    Num u(x), v(y);
    while (chain_sign(&v.v) != 0) {
        Num r;
        trunc_divide(&u.v, &v.v, nullptr, &r.v);
        u = v;
        v = r;
    }
    abs_value(&u.v);
    EXPECT_NUM(g, u);
    // Cofactors.
    Num e, qn(7), qm(8);
    boolean gcd1 = 5;
    extgcd(&x.v, &y.v, &e.v, &qn.v, &qm.v, &gcd1);
    EXPECT_NUM(e, g);
    bool is_one = is_longint(&g.v, 1);
    EXPECT_EQ(gcd1, is_one);
    if (is_one) {
        EXPECT_NUM(qn, Num(7));
        EXPECT_NUM(qm, Num(8));
    } else {
        EXPECT_NUM(product(qn, g), x);
        EXPECT_NUM(product(qm, g), y);
        Num p(x), q(y), e2;  // in place, as fractions are reduced
        extgcd(&p.v, &q.v, &e2.v, &p.v, &q.v, &gcd1);
        EXPECT_NUM(p, qn);
        EXPECT_NUM(q, qm);
    }
    Num self(x);
    binary_gcd(&self.v, &self.v, &self.v);
    abs_value(&x.v);
    EXPECT_NUM(self, x);
    Num in_y(y);
    binary_gcd(&x.v, &in_y.v, &in_y.v);
    EXPECT_NUM(in_y, g);
}

// Quotients that are all 1, and runs of long quotients: the two extremes of the Euclidean algorithm.
PROPERTY(gcd_of_consecutive_fibonacci_like, 60) {
    Num a(1), b(1 + static_cast<int64_t>(rng() % 3));
    Num g = random_digits(rng, 3, false);
    for (int i = 0; i < 200 + static_cast<int>(rng() % 900); i++) {
        Num t = a;
        if (rng() % 64 == 0 && round % 2) {
            t = sum(t, product(b, random_digits(rng, 1 + static_cast<int>(rng() % 4), false)));
        } else {
            fastsum(&t.v, &b.v);
        }
        a = b;
        b = t;
    }
    Num x = product(a, g), y = product(b, g), r;
    binary_gcd(&x.v, &y.v, &r.v);
    EXPECT_NUM(r, g);
}

PROPERTY(square_roots, 1500) {
    Num r = random_number(rng, size_of_round(round), false);
    Num square = product(r, r), low, high;
    int_sqrt(&square.v, &low.v, 1);
    EXPECT_NUM(low, r);
    Num top = sum(square, product(r, Num(2)));  // the last value with this root
    int_sqrt(&top.v, &top.v, 1);
    EXPECT_NUM(top, r);
    if (chain_sign(&r.v) > 0) {
        Num below = difference(square, Num(1));
        int_sqrt(&below.v, &high.v, 0);
        EXPECT_NUM(high, difference(r, Num(1)));
    }
    Num any = random_number(rng, size_of_round(round), false), s;
    int_sqrt(&any.v, &s.v, 1);
    EXPECT_FALSE(bigger(at(product(s, s)), &any.v));
    Num next = sum(s, Num(1));
    EXPECT_TRUE(bigger(at(product(next, next)), &any.v));
}

PROPERTY(shifts, 1000) {
    Num a = random_number(rng, size_of_round(round), false);
    auto k = static_cast<int32_t>(rng() % 200);
    Num power(2), up(a), down(a);
    number_power(&power.v, k);
    shift_left(&up.v, k);
    EXPECT_NUM(up, product(a, power));
    shift_right(&down.v, k);
    Num q, rest;
    trunc_divide(&a.v, &power.v, &q.v, &rest.v);
    EXPECT_NUM(down, q);
    shift_right(&up.v, k);
    EXPECT_NUM(up, a);
    auto m = static_cast<int32_t>(1 + rng() % 27);
    Num b(a), c(a);
    gen_shift_right(&b.v, m);
    shift_right(&c.v, m);
    EXPECT_NUM(b, c);
    Num one(a), two(a);
    shift_right_1(&one.v);
    shift_right_1(&one.v);
    shift_right_2(&two.v);
    EXPECT_NUM(one, two);
    auto x = static_cast<int32_t>(rng() % 8);
    Num filled(a), shifted(a);
    fillout(&filled.v, x);
    shift_left(&shifted.v, 28 * x);
    EXPECT_NUM(filled, shifted);
    if (chain_sign(&a.v) > 0) {
        Num low(2), neg(a);
        number_power(&low.v, logg2(&a.v) - 1);
        EXPECT_FALSE(bigger(&low.v, &a.v));
        fastsum(&low.v, &low.v);
        EXPECT_TRUE(bigger(&low.v, &a.v));
        in_place_neg(&neg.v);
        EXPECT_EQ(logg2_neg(&neg.v), logg2(&a.v));
    }
}

PROPERTY(powers, 300) {
    Num a = random_number(rng, 12);
    auto k = static_cast<int32_t>(rng() % 40);
    Num p(a), expected(1);
    number_power(&p.v, k);
    for (int32_t i = 0; i < k; i++) fast_mult(&expected.v, &a.v, &expected.v);
    EXPECT_NUM(p, expected);
}

PROPERTY(ranges_and_factorials, 100) {
    auto first = static_cast<int32_t>(rng() % 600) - 200;
    int32_t last = first + static_cast<int32_t>(rng() % 300) - 3;
    Num p, expected(1);
    multout(first, last, &p.v);
    for (int32_t i = first; i <= last; i++) fast_mult(&expected.v, at(Num(i)), &expected.v);
    EXPECT_NUM(p, expected);
    auto n = static_cast<int32_t>(rng() % 500);
    Num f(n);
    factorial(&f.v);
    multout(1, n, &p.v);
    EXPECT_NUM(f, p);
}

PROPERTY(decimal_sums, 400) {
    auto chain = [&](int size) {
        std::vector<int32_t> d(static_cast<size_t>(size));
        for (auto& x : d) x = rng() % 3 == 0 ? 99999999 : static_cast<int32_t>(rng() % 100000000);
        if (d[0] == 0) d[0] = 1;
        if (rng() % 2 == 0)
            for (auto& x : d) x = -x;
        return Num(d);
    };
    auto binary = [&](const Num& x) {
        Num r(int64_t{0});
        for (int32_t d : digits(&x.v)) {
            fast_mult(&r.v, &tens_base, &r.v);
            fastsum(&r.v, at(Num(d)));
        }
        return r;
    };
    Num a = chain(1 + static_cast<int>(rng() % 70)), b = chain(1 + static_cast<int>(rng() % 70)), s, d;
    if (rng() % 4 == 0) b = a;
    summ(&a.v, &b.v, &s.v, 100000000);
    diff(a.v.head, a.v.size, &b.v, &d.v, 100000000);
    EXPECT_NUM(binary(s), sum(binary(a), binary(b)));
    EXPECT_NUM(binary(d), difference(binary(a), binary(b)));
    for (int32_t x : digits(&s.v)) EXPECT_LT(abs(x), 100000000);
    for (int32_t x : digits(&d.v)) EXPECT_LT(abs(x), 100000000);
    EXPECT_TRUE(num_check(&s.v));
    EXPECT_TRUE(num_check(&d.v));
}
