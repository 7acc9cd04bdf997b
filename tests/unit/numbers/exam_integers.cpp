// Integers: fixed cases of chains, signs, shifts, products, quotients, gcds and roots.
#include "numbers/gf_tables.h"
#include "numbers/limbs.h"
#include "numbers/residue.h"
#include "tests/unit/numbers/big_support.h"

#include <string>
using namespace tolvex;
using namespace tolvex::test;

namespace {
constexpr int32_t k_full = k_max_digit;

class Integers : public ::testing::Test {
  protected:
    void SetUp() override { set_up_once(); }
};

/// Z modulo p for one block.
struct Modulo {
    RingState saved = ring_save();
    explicit Modulo(int32_t p) { ring_enter_prime(p); }
    ~Modulo() { ring_restore(saved); }
};

/// Words without a modulus for one block.
struct Words {
    Words() { lintmode = 1; }
    ~Words() { lintmode = 0; }
};

number word(int32_t v) {
    number n = {};
    n.lint = v;
    return n;
}

Num power_of_2(int32_t k) {
    Num r(1);
    shift_left(&r.v, k);
    return r;
}

Num quotient(const Num& a, const Num& b) {
    Num q, r;
    divide(&a.v, &b.v, &q.v, &r.v);
    return q;
}

Num remainder_of(const Num& a, const Num& b) {
    Num q, r;
    divide(&a.v, &b.v, &q.v, &r.v);
    return r;
}

Num root(const Num& n) {
    Num r;
    int_sqrt(&n.v, &r.v, 1);
    return r;
}
}  // namespace

TEST_F(Integers, constants_stand_in_both_forms) {
    const std::pair<const number*, int32_t> all[] = {{&number_0, 0},   {&number_1, 1},   {&number_2, 2},
                                                     {&number_m1, -1}, {&number_10, 10}, {&num_2_14, 16384}};
    for (auto [n, v] : all) {
        EXPECT_TRUE(is_longint(n, v));
        EXPECT_EQ(n->lint, v);
    }
    EXPECT_TRUE(is_longint(&tens_base, 100000000));
    EXPECT_NUM(product(Num(100000000), Num(100000000)), Num(10000000000000000));
    EXPECT_TRUE(spec_equal(&two_tensbase, at(Num(10000000000000000))));
}

TEST_F(Integers, normal_form_is_told) {
    EXPECT_TRUE(num_check(at(Num{0})));
    EXPECT_TRUE(num_check(at(Num{1, 0, -0})));
    EXPECT_TRUE(num_check(at(Num{-1, 0, -k_full})));
    EXPECT_FALSE(num_check(at(Num{0, 1})));
    EXPECT_FALSE(num_check(at(Num{1, -1})));
    EXPECT_FALSE(num_check(at(Num{-1, 1})));
    EXPECT_FALSE(num_check(at(Num{k_base})));
    number none = {};
    EXPECT_FALSE(num_check(&none));
    Num wrong{1, 2};
    wrong.v.size = 3;
    EXPECT_FALSE(num_check(&wrong.v));
    wrong.v.size = 2;
    numptr tail = wrong.v.tail;
    wrong.v.tail = wrong.v.head;
    EXPECT_FALSE(num_check(&wrong.v));
    wrong.v.tail = tail;
}

TEST_F(Integers, setvalue_makes_one_or_two_digits) {
    Num x;
    setvalue(k_full, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({k_full}));
    setvalue(k_base, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({1, 0}));
    setvalue(-(k_base + 5), &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({-1, -5}));
    setvalue(INT32_MAX, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({7, k_full}));
    setvalue(INT32_MIN, &x.v);  // one raw digit, a marker for those who ask for it
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({INT32_MIN}));
    setvalue_any(INT32_MIN, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({-8, 0}));
    setvalue_any(INT64_MIN, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({-128, 0, 0}));
    setvalue_any(0, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({0}));
    special_set_2(INT32_MIN, INT32_MIN, &x.v);
    EXPECT_NUM(x, power_of_2(62));
}

TEST_F(Integers, words_are_set_in_lintmode_only) {
    Num x(77);
    Words mode;
    setvalue(5, &x.v);
    EXPECT_EQ(x.v.lint, 5);
    EXPECT_EQ(x.v.head->value, 77);
    setvalue_any((int64_t{1} << 32) + 9, &x.v);
    EXPECT_EQ(x.v.lint, 9);
    special_set(12, &x.v);  // the chain, whatever the mode
    EXPECT_EQ(x.v.head->value, 12);
    EXPECT_EQ(x.v.lint, 9);
    number y = word(3);
    num_assign(&x.v, &y);
    EXPECT_EQ(y.lint, 9);
    EXPECT_EQ(y.size, 0);
    spec_num_assign(&x.v, &y);
    EXPECT_TRUE(is_longint(&y, 12));
    free_num(&y);  // nothing in lintmode
    EXPECT_EQ(y.size, 1);
    EXPECT_EQ(y.head->value, 12);
    special_free(&y);
    EXPECT_EQ(y.size, 0);
}

TEST_F(Integers, assignment_copies_a_piece) {
    Num x{5, 6, 7, 8};
    Num y;
    fast_num_assign(x.v.head->next, 2, &y.v);
    EXPECT_EQ(digits(&y.v), std::vector<int32_t>({6, 7}));
    fast_num_assign(x.v.head->next, 3, &x.v);  // out of its own chain
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({6, 7, 8}));
    num_assign(&x.v, &x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({6, 7, 8}));
    imptr p = nullptr;
    faster_num_assign(x.v.head, 3, &p);
    EXPECT_TRUE(spec_equal(p, &x.v));
    free_imag(&p);
    EXPECT_EQ(p, nullptr);
    Num zero(int64_t{0});
    faster_num_assign(zero.v.head, 1, &p);
    EXPECT_EQ(p, nullptr);
}

TEST_F(Integers, carries_run_over_all_digits) {
    EXPECT_EQ(digits(at(sum(Num(k_full), Num(1)))), std::vector<int32_t>({1, 0}));
    EXPECT_EQ(digits(at(difference(Num(-k_full), Num(1)))), std::vector<int32_t>({-1, 0}));
    EXPECT_EQ(digits(at(sum(Num{1, 0, 0}, Num(-1)))), std::vector<int32_t>({k_full, k_full}));
    EXPECT_EQ(digits(at(sum(Num{-1, 0, 0}, Num(1)))), std::vector<int32_t>({-k_full, -k_full}));
    std::vector<int32_t> full(100, k_full), up(101, 0);
    up[0] = 1;
    EXPECT_EQ(digits(at(sum(Num(full), Num(1)))), up);
    EXPECT_EQ(digits(at(difference(Num(up), Num(1)))), full);
    // Heads that cancel for many positions.
    Num a(full), b(full);
    b.v.tail->value = 5;
    EXPECT_EQ(digits(at(difference(a, b))), std::vector<int32_t>({k_full - 5}));
    EXPECT_EQ(digits(at(difference(b, a))), std::vector<int32_t>({5 - k_full}));
}

#ifdef TOLVEX_CHECKED
TEST_F(Integers, cancelled_digits_go_back) {
    Num x(std::vector<int32_t>(300, 77)), y(x);
    int64_t live = pool_counters<numnode>.live;
    in_place_neg(&y.v);
    fastsum(&x.v, &y.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({0}));
    EXPECT_EQ(pool_counters<numnode>.live, live - 299);
}

TEST_F(Integers, nothing_is_left_behind) {
    int64_t live = pool_counters<numnode>.live;
    {
        Num a(std::vector<int32_t>(90, 123456)), b(std::vector<int32_t>(50, 7)), q, r, g, u, v;
        boolean one;
        Num p = product(a, b);
        divide(&p.v, &b.v, &q.v, &r.v);
        divide(&p.v, &a.v, &p.v, nullptr);
        extgcd(&a.v, &b.v, &g.v, &u.v, &v.v, &one);
        int_sqrt(&a.v, &a.v, 1);
        number_power(&b.v, 3);
        Num f(100);
        factorial(&f.v);
        multout(3, 90, &f.v);
        numptr penult;
        simp_mult(&f.v, &f.v, -3, &penult);
        shift_left(&b.v, 100);
        shift_right(&b.v, 5000);
        shift_right(&b.v, 500000);
    }
    EXPECT_EQ(pool_counters<numnode>.live, live);
}
#endif

TEST_F(Integers, signs_in_every_mode) {
    Num x{3, 4};
    in_place_neg(&x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({-3, -4}));
    abs_value(&x.v);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({3, 4}));
    Num y;
    makeneg(&x.v, &y.v);
    EXPECT_TRUE(negtive(&x.v, &y.v));
    makeneg(&y.v, &y.v);
    EXPECT_NUM(y, x);
    Num zero(int64_t{0});
    EXPECT_TRUE(negtive(&zero.v, &zero.v));
    {
        Words mode;
        number a = word(5), b = {};
        makeneg(&a, &b);
        EXPECT_EQ(b.lint, -5);
        EXPECT_TRUE(negtive(&a, &b));
        abs_value(&b);
        EXPECT_EQ(b.lint, 5);
        number least = word(INT32_MIN);
        in_place_neg(&least);
        EXPECT_EQ(least.lint, INT32_MIN);  // wraps
        EXPECT_TRUE(abs_larger(&least, &a));
        number z = word(0);
        EXPECT_TRUE(negtive(&z, &z));
    }
    Modulo mode(7);
    number a = word(3), b = {};
    makeneg(&a, &b);
    EXPECT_EQ(b.lint, 4);
    EXPECT_TRUE(negtive(&a, &b));
    EXPECT_FALSE(negtive(&a, &a));
    number z = word(0);
    in_place_neg(&z);
    EXPECT_EQ(z.lint, 0);
    EXPECT_TRUE(negtive(&z, &z));
}

TEST_F(Integers, units_are_told_in_every_mode) {
    boolean minus = 5;
    EXPECT_TRUE(equal_to_pm1(at(Num(1)), &minus));
    EXPECT_FALSE(minus);
    EXPECT_TRUE(equal_to_pm1(at(Num(-1)), &minus));
    EXPECT_TRUE(minus);
    EXPECT_FALSE(equal_to_pm1(at(Num(2)), &minus));
    EXPECT_FALSE(equal_to_pm1(at(Num{1, 1}), &minus));
    EXPECT_FALSE(equal_to_pm1(at(Num(int64_t{0})), &minus));
    {
        Modulo mode(7);
        number a = word(6), b = word(1), c = word(2);
        EXPECT_TRUE(equal_to_pm1(&a, &minus));
        EXPECT_TRUE(minus);
        EXPECT_TRUE(equal_to_pm1(&b, &minus));
        EXPECT_FALSE(minus);
        EXPECT_FALSE(equal_to_pm1(&c, &minus));
    }
    Modulo mode(2);
    number b = word(1);
    EXPECT_TRUE(equal_to_pm1(&b, &minus));
    EXPECT_FALSE(minus);
}

TEST_F(Integers, differences_and_sums_of_words) {
    number a = word(2), b = word(5), c = {};
    {
        Modulo mode(7);
        sub(&a, &b, &c);
        EXPECT_EQ(c.lint, 4);
        int_add(&c, &b);
        EXPECT_EQ(c.lint, 2);
    }
    {
        Modulo mode(2147483629);  // the sum of two residues passes 2^31
        number x = word(2147483628), y = word(2147483628);
        int_add(&x, &y);
        EXPECT_EQ(x.lint, 2147483627);
        EXPECT_FALSE(negtive(&y, &y));
    }
    {
        Words mode;
        sub(&a, &b, &c);
        EXPECT_EQ(c.lint, -3);
        number least = word(INT32_MIN), one = word(1);
        sub(&least, &one, &least);
        EXPECT_EQ(least.lint, INT32_MAX);
        int_add(&least, &one);
        EXPECT_EQ(least.lint, INT32_MIN);
    }
    Num x(7);
    int_add(&x.v, at(Num(-9)));
    EXPECT_NUM(x, Num(-2));
}

TEST_F(Integers, lengths_in_bits) {
    EXPECT_EQ(logg2(at(Num(int64_t{0}))), 0);
    EXPECT_EQ(logg2(at(Num(1))), 1);
    EXPECT_EQ(logg2(at(Num{1, 0})), 29);
    EXPECT_EQ(logg2_neg(at(Num{-1, 0})), 29);
    EXPECT_EQ(logg2(at(power_of_2(1000))), 1001);
    EXPECT_EQ(logg2lint(1), 0);
    EXPECT_EQ(logg2lint(0), -1);
    EXPECT_EQ(logg2lint(-8), 3);
    EXPECT_EQ(logg2lint(INT32_MIN), 31);
    EXPECT_EQ(word_top_bit(INT64_MIN), 63);
    Modulo mode(101);
    EXPECT_EQ(logg2lint(100), 0);  // -1
    EXPECT_EQ(logg2lint(50), 5);
    EXPECT_EQ(word_top_bit(100), 6);
}

TEST_F(Integers, shifts_of_zero_and_beyond_the_value) {
    Num zero(int64_t{0}), x{1, 2, 3};
    shift_left(&zero.v, 28);
    EXPECT_EQ(digits(&zero.v), std::vector<int32_t>({0}));
    fillout(&zero.v, 5);
    EXPECT_EQ(digits(&zero.v), std::vector<int32_t>({0}));
    shift_right(&zero.v, 100);
    EXPECT_EQ(digits(&zero.v), std::vector<int32_t>({0}));
    fillout(&x.v, 2);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({1, 2, 3, 0, 0}));
    shift_right(&x.v, 56);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({1, 2, 3}));
    shift_right(&x.v, 57);
    EXPECT_EQ(digits(&x.v), std::vector<int32_t>({0}));
    Num y{1, 2, 3};
    shift_right(&y.v, 84);
    EXPECT_EQ(digits(&y.v), std::vector<int32_t>({0}));
    Num z{1, 0};
    shift_right_1(&z.v);
    EXPECT_EQ(digits(&z.v), std::vector<int32_t>({1 << 27}));
    shift_left(&z.v, 1);
    EXPECT_EQ(digits(&z.v), std::vector<int32_t>({1, 0}));
}

TEST_F(Integers, products_with_zero_and_signs) {
    Num a(std::vector<int32_t>(40, k_full)), zero(int64_t{0}), r;
    numptr penult;
    simp_mult(&a.v, &r.v, 0, &penult);
    EXPECT_EQ(digits(&r.v), std::vector<int32_t>({0}));
    EXPECT_EQ(penult, nullptr);
    EXPECT_NUM(product(a, zero), zero);
    EXPECT_NUM(product(zero, a), zero);
    multiply(&zero.v, &a.v, &r.v);
    EXPECT_NUM(r, zero);
    Num minus(a);
    in_place_neg(&minus.v);
    for (const Num& p : {product(a, minus), product(minus, a)})
        for (int32_t d : digits(&p.v)) EXPECT_LE(d, 0);
    EXPECT_NUM(product(minus, minus), product(a, a));
    simp_mult(&minus.v, &minus.v, -k_full, &penult);
    EXPECT_NUM(minus, product(a, Num(k_full)));
    EXPECT_EQ(penult->next, minus.v.tail);
}

// Around the lengths at which the method changes; the low half all zeros.
TEST_F(Integers, products_at_the_crossings) {
    Rng rng(1);
    for (auto [n, m] : {std::pair{16, 16}, {17, 16}, {17, 17}, {17, 33}, {17, 34}, {33, 34}, {64, 65}}) {
        Num a = random_digits(rng, n), b = random_digits(rng, m);
        EXPECT_NUM(product(a, b), number_of(plain_mul(plain(&a.v), plain(&b.v))));
        Num c = power_of_2(28 * (n - 1));
        EXPECT_NUM(product(c, b), number_of(plain_mul(plain(&c.v), plain(&b.v))));
        Num square(a);
        fast_mult(&square.v, &square.v, &square.v);  // in place of both operands
        EXPECT_NUM(square, number_of(plain_mul(plain(&a.v), plain(&a.v))));
    }
}

TEST_F(Integers, powers_at_the_edges) {
    auto power = [](Num x, int32_t k) {
        number_power(&x.v, k);
        return x;
    };
    EXPECT_NUM(power(Num(int64_t{0}), 0), Num(1));
    EXPECT_NUM(power(Num{5, 6}, 0), Num(1));
    EXPECT_NUM(power(Num(int64_t{0}), INT32_MAX), Num(int64_t{0}));
    EXPECT_NUM(power(Num(1), INT32_MAX), Num(1));
    EXPECT_NUM(power(Num(-1), INT32_MAX), Num(-1));
    EXPECT_NUM(power(Num(-1), INT32_MAX - 1), Num(1));
    EXPECT_NUM(power(Num(2), 5000), power_of_2(5000));
    EXPECT_NUM(power(Num(-6), 3), Num(-216));
    EXPECT_NUM(power(Num{-1, 0}, 7), difference(Num(int64_t{0}), power_of_2(196)));
    EXPECT_NUM(power(Num(3), 1), Num(3));
    // 2^(28 2^31) does not fit: the value is 0 after the warning about memory.
    EXPECT_NUM(power(Num{1, 0}, INT32_MAX), Num(int64_t{0}));
    {
        Modulo mode(7);
        number x = word(3);
        number_power(&x, 6);
        EXPECT_EQ(x.lint, 1);
        x = word(0);
        number_power(&x, 0);
        EXPECT_EQ(x.lint, 1);
    }
    Words mode;
    number x = word(3);
    number_power(&x, 21);  // wraps
    EXPECT_EQ(x.lint, static_cast<int32_t>(static_cast<uint32_t>(10460353203)));
}

TEST_F(Integers, ranges) {
    Num r;
    multout(5, 5, &r.v);
    EXPECT_NUM(r, Num(5));
    multout(6, 5, &r.v);
    EXPECT_NUM(r, Num(1));
    multout(-3, 3, &r.v);
    EXPECT_NUM(r, Num(int64_t{0}));
    multout(-3, -1, &r.v);
    EXPECT_NUM(r, Num(-6));
    multout(-4, -1, &r.v);
    EXPECT_NUM(r, Num(24));
    multout(INT32_MAX - 1, INT32_MAX, &r.v);
    EXPECT_NUM(r, product(Num(INT32_MAX - 1), Num(INT32_MAX)));
    multout(INT32_MIN, INT32_MIN, &r.v);
    EXPECT_NUM(r, Num(INT32_MIN));
    {
        Modulo mode(7);
        number x = {};
        multout(1, 10, &x);
        EXPECT_EQ(x.lint, 0);
        multout(1, 6, &x);
        EXPECT_EQ(x.lint, 6);
        multout(8, 9, &x);  // factors are reduced first
        EXPECT_EQ(x.lint, 2);
        multout(3, 2, &x);
        EXPECT_EQ(x.lint, 1);
    }
    Words mode;
    number x = {};
    multout(2, 5, &x);
    EXPECT_EQ(x.lint, 120);
    multout(2, 1, &x);
    EXPECT_EQ(x.lint, 1);
}

TEST_F(Integers, ranges_and_factorials_of_a_table_field) {
    Modulo mode(2);  // the flags of GF(2^8); integers are 0 and 1 there
    set_modulus(256);
    finf = f256 = 1;
    number x = {};
    const int32_t table[][3] = {{1, 1, 1}, {3, 3, 1}, {2, 2, 0}, {3, 4, 0}, {5, 4, 1}, {-1, -1, 1}};
    for (auto [first, last, value] : table) {
        multout(first, last, &x);
        EXPECT_EQ(x.lint, value) << first << " to " << last;
    }
    for (int32_t n : {0, 1, 2, 3, 255}) {
        x.lint = n;
        factorial(&x);
        EXPECT_EQ(x.lint, n < 2) << n;
    }
}

TEST_F(Integers, factorials_and_their_ranges) {
    auto factorial_of = [](Num x) {
        factorial(&x.v);
        return x;
    };
    EXPECT_NUM(factorial_of(Num(int64_t{0})), Num(1));
    EXPECT_NUM(factorial_of(Num(1)), Num(1));
    EXPECT_NUM(factorial_of(Num(20)), Num(2432902008176640000));
    EXPECT_NUM(factorial_of(Num(21)), product(Num(2432902008176640000), Num(21)));
    Num minus(-1), long_one{1, 0};
    EXPECT_TRUE(RAISES(factorial(&minus.v)));
    EXPECT_EQ(caught.code, 94);
    EXPECT_TRUE(RAISES(factorial(&long_one.v)));
    EXPECT_EQ(caught.code, 94);
    number x = {};
    {
        Words mode;
        x.lint = 12;
        factorial(&x);
        EXPECT_EQ(x.lint, 479001600);
        x.lint = 13;
        EXPECT_TRUE(RAISES(factorial(&x)));
        EXPECT_EQ(caught.code, 240);
        x.lint = -1;
        EXPECT_TRUE(RAISES(factorial(&x)));
        EXPECT_EQ(caught.code, 94);
    }
    {
        Modulo mode(7);
        x.lint = 6;  // Wilson
        factorial(&x);
        EXPECT_EQ(x.lint, 6);
        x.lint = 7;
        factorial(&x);
        EXPECT_EQ(x.lint, 0);
    }
    Modulo mode(65521);
    x.lint = 65520;
    EXPECT_TRUE(RAISES(factorial(&x)));
    EXPECT_EQ(caught.code, 94);
    x.lint = 46340;
    factorial(&x);
    EXPECT_GT(x.lint, 0);
}

TEST_F(Integers, products_of_words_are_recognised) {
    Words mode;  // a dimension stays a true integer in any mode
    EXPECT_TRUE(is_product_of(at(Num{4}), 2, 2));
    number big = {};
    special_set_2(-50000, 60000, &big);
    EXPECT_TRUE(is_product_of(&big, -60000, 50000));
    EXPECT_FALSE(is_product_of(&big, 60000, 50000));
    special_free(&big);
    EXPECT_FALSE(is_product_of(at(Num{1, 0, 0, 0}), 1, 1));
}

TEST_F(Integers, products_of_every_mode) {
    Num r;
    int_mult(at(Num(6)), at(Num(-7)), &r.v);
    EXPECT_NUM(r, Num(-42));
    number a = word(5), b = word(6), q = {};
    {
        Words mode;
        int_mult(&a, &b, &q);
        EXPECT_EQ(q.lint, 30);
    }
    {
        Modulo mode(7);
        int_mult(&a, &b, &q);
        EXPECT_EQ(q.lint, 2);
    }
    Modulo mode(2147483629);
    a = b = word(2147483628);
    int_mult(&a, &b, &q);
    EXPECT_EQ(q.lint, 1);
}

TEST_F(Integers, remainder_takes_the_sign_of_the_quotient) {
    const int64_t table[][4] = {{7, 2, 3, 1}, {-7, 2, -3, -1}, {7, -2, -3, -1}, {-7, -2, 3, 1},
                                {0, 5, 0, 0}, {1, 5, 0, 1},    {-1, 5, 0, -1},  {-1, -5, 0, 1}};
    for (auto [n, d, q, r] : table) {
        EXPECT_NUM(quotient(Num(n), Num(d)), Num(q));
        EXPECT_NUM(remainder_of(Num(n), Num(d)), Num(r));
        // The same rule for long operands.
        Num scale = power_of_2(500);
        EXPECT_NUM(quotient(product(Num(n), scale), product(Num(d), scale)), Num(q));
        EXPECT_NUM(remainder_of(product(Num(n), scale), product(Num(d), scale)), product(Num(r), scale));
    }
    Num q, r;
    trunc_divide(at(Num(-7)), at(Num(-2)), &q.v, &r.v);
    EXPECT_NUM(q, Num(3));
    EXPECT_NUM(r, Num(-1));
}

TEST_F(Integers, division_by_zero_changes_nothing) {
    Num q(5), r(6);
    divide(at(Num{1, 2, 3}), at(Num(int64_t{0})), &q.v, &r.v);
    trunc_divide(at(Num(4)), at(Num(int64_t{0})), &q.v, &r.v);
    EXPECT_NUM(q, Num(5));
    EXPECT_NUM(r, Num(6));
}

TEST_F(Integers, division_at_the_edges_of_digits) {
    EXPECT_NUM(quotient(Num{6, 0, 0, 0, 0}, Num(3)), (Num{2, 0, 0, 0, 0}));
    EXPECT_NUM(remainder_of(Num{6, 0, 0, 0, 0}, Num(3)), Num(int64_t{0}));
    for (int32_t d : {0x3FFFF, 0x40000, 15, 16, k_full}) {
        Num n{d - 1, k_full, k_full, k_full};
        Num q = quotient(n, Num(d)), r = remainder_of(n, Num(d));
        EXPECT_NUM(sum(product(q, Num(d)), r), n);
        for (int32_t head : {1, 15, 16}) {
            Num e{head, 0, d, k_full};
            Num m = difference(product(e, n), Num(1));
            EXPECT_NUM(quotient(m, e), difference(n, Num(1)));
            EXPECT_NUM(remainder_of(m, e), difference(e, Num(1)));
        }
    }
    // One operand for dividend, divisor and both results.
    Num x{9, 8, 7};
    divide(&x.v, &x.v, &x.v, nullptr);
    EXPECT_NUM(x, Num(1));
    Num y{9, 8, 7};
    divide(&y.v, &y.v, nullptr, &y.v);
    EXPECT_NUM(y, Num(int64_t{0}));
}

TEST_F(Integers, small_quotients_and_residues) {
    EXPECT_EQ(quotient_of(at(Num(100)), 7), 14);
    EXPECT_EQ(quotient_of(at(Num(-100)), 7), -14);
    EXPECT_EQ(quotient_of(at(product(Num(2000000000), Num(2000000000))), -2000000000), -2000000000);
    EXPECT_EQ(chain_mod_word(at(Num(-1)), 7), 6u);
    EXPECT_EQ(chain_mod_word(at(Num(-7)), 7), 0u);
    EXPECT_EQ(chain_mod_word(at(Num{-1, -2, -3, -4}), 1), 0u);
    Num n{1, 2, 3, 4};
    fast_modout(&n.v, at(Num{1, 0, 0, 0}));
    EXPECT_EQ(digits(&n.v), std::vector<int32_t>({2, 3, 4}));
    fast_modout(&n.v, at(Num{1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(digits(&n.v), std::vector<int32_t>({2, 3, 4}));
    Num zeros{5, 0, 0, 7};
    fast_modout(&zeros.v, at(Num{1, 0, 0, 0}));
    EXPECT_EQ(digits(&zeros.v), std::vector<int32_t>({7}));
    Num nothing{5, 0, 0};
    fast_modout(&nothing.v, at(Num{1, 0, 0}));
    EXPECT_EQ(digits(&nothing.v), std::vector<int32_t>({0}));
    Num none{5, 6};
    fast_modout(&none.v, at(Num{3}));
    EXPECT_EQ(digits(&none.v), std::vector<int32_t>({0}));
}

TEST_F(Integers, gcds_with_zero_and_themselves) {
    Num g;
    binary_gcd(at(Num(int64_t{0})), at(Num(-5)), &g.v);
    EXPECT_NUM(g, Num(5));
    binary_gcd(at(Num{-1, -2, -3}), at(Num(int64_t{0})), &g.v);
    EXPECT_NUM(g, (Num{1, 2, 3}));
    binary_gcd(at(Num(int64_t{0})), at(Num(int64_t{0})), &g.v);
    EXPECT_NUM(g, Num(int64_t{0}));
    gcd(at(Num(12)), at(Num(-18)), &g.v);
    EXPECT_NUM(g, Num(6));
    Num x{-1, -2, -3};
    binary_gcd(&x.v, &x.v, &x.v);
    EXPECT_NUM(x, (Num{1, 2, 3}));
    EXPECT_EQ(smallgcd(12, -18), 6);
    EXPECT_EQ(smallgcd(0, -7), 7);
    EXPECT_EQ(smallgcd(0, 0), 0);
    EXPECT_EQ(smallgcd(INT32_MIN, 6), 2);
}

TEST_F(Integers, cofactors) {
    boolean one = 7;
    Num g, q(100), r(200);
    extgcd(at(Num(8)), at(Num(9)), &g.v, &q.v, &r.v, &one);
    EXPECT_TRUE(one);
    EXPECT_NUM(g, Num(1));
    EXPECT_NUM(q, Num(100));  // not touched
    EXPECT_NUM(r, Num(200));
    for (int32_t k : {1, 2, 40}) {  // short and long operands
        Num m = power_of_2(28 * k), minus(m);
        in_place_neg(&minus.v);
        extgcd(at(Num(int64_t{0})), &minus.v, &g.v, &q.v, &r.v, &one);
        EXPECT_FALSE(one);
        EXPECT_NUM(g, m);
        EXPECT_NUM(q, Num(int64_t{0}));
        EXPECT_NUM(r, Num(-1));
        extgcd(&minus.v, at(Num(int64_t{0})), &g.v, &q.v, &r.v, &one);
        EXPECT_NUM(g, m);
        EXPECT_NUM(q, Num(-1));
        EXPECT_NUM(r, Num(int64_t{0}));
        extgcd(at(Num(int64_t{0})), at(Num(-1)), &g.v, &q.v, &r.v, &one);
        EXPECT_TRUE(one);
    }
    extgcd(at(Num(int64_t{0})), at(Num(int64_t{0})), &g.v, &q.v, &r.v, &one);
    EXPECT_FALSE(one);
    EXPECT_NUM(g, Num(int64_t{0}));
    EXPECT_NUM(q, Num(int64_t{0}));
    EXPECT_NUM(r, Num(int64_t{0}));
    extgcd(at(Num(-12)), at(Num(18)), &g.v, &q.v, &r.v, &one);
    EXPECT_NUM(q, Num(-2));
    EXPECT_NUM(r, Num(3));
}

TEST_F(Integers, roots_of_powers_of_two) {
    for (int32_t k : {0, 1, 2, 27, 28, 31, 32, 200, 210, 224}) {
        Num square = power_of_2(2 * k), s = power_of_2(k);
        EXPECT_NUM(root(square), s);
        if (k > 0) {
            EXPECT_NUM(root(difference(square, Num(1))), difference(s, Num(1)));
        }
    }
    EXPECT_NUM(root(Num(int64_t{0})), Num(int64_t{0}));
    EXPECT_NUM(root(Num(3)), Num(1));
    for (int size : {15, 16}) {
        Num n(std::vector<int32_t>(static_cast<size_t>(size), k_full));
        Num s = root(n), next = sum(s, Num(1));
        EXPECT_FALSE(bigger(at(product(s, s)), &n.v));
        EXPECT_TRUE(bigger(at(product(next, next)), &n.v));
    }
}

TEST_F(Integers, roots_of_residues) {
    {
        Modulo mode(7);
        int32_t r = modular_sqrt(2);
        EXPECT_TRUE(r == 3 || r == 4);
        EXPECT_EQ(modular_sqrt(3), 0);
        EXPECT_EQ(modular_sqrt(0), 0);
        EXPECT_FALSE(its_a_square(0));
        EXPECT_TRUE(its_a_square(4));
        EXPECT_FALSE(its_a_square(5));
    }
    for (int32_t p : {3, 5, 13, 17, 41, 97, 193, 257, 12289, 65537, 2147483629}) {
        Modulo mode(p);
        int squares = 0;
        int32_t most = p < 200 ? p - 1 : 200;
        for (int32_t n = 1; n <= most; n++) {
            int32_t r = modular_sqrt(n);
            EXPECT_EQ(r != 0, its_a_square(n)) << n << " modulo " << p;
            if (r != 0) {
                EXPECT_EQ(residue_mult(static_cast<uint32_t>(r), static_cast<uint32_t>(r)), n);
            }
            squares += r != 0;
        }
        if (p < 200) {
            EXPECT_EQ(squares, (p - 1) / 2) << p;
        }
    }
}

TEST_F(Integers, square_root_by_mode) {
    Num x(17), minus(-1);
    square_root(&x.v);
    EXPECT_NUM(x, Num(4));
    EXPECT_TRUE(RAISES(square_root(&minus.v)));
    EXPECT_EQ(caught.code, 37);
    number n = word(17);
    {
        Words mode;
        square_root(&n);
        EXPECT_EQ(n.lint, 4);
        n.lint = INT32_MAX;
        square_root(&n);
        EXPECT_EQ(n.lint, 46340);
        n.lint = -1;
        EXPECT_TRUE(RAISES(square_root(&n)));
        EXPECT_EQ(caught.code, 37);
    }
    {
        Modulo mode(2);
        n.lint = 1;
        EXPECT_TRUE(RAISES(square_root(&n)));
        EXPECT_EQ(caught.code, 34);
    }
    {
        Modulo mode(11);
        mod_is_prime = 0;  // as under a composite modulus
        EXPECT_TRUE(RAISES(square_root(&n)));
        EXPECT_EQ(caught.code, 34);
        mod_is_prime = 1;
        n.lint = 5;
        square_root(&n);
        EXPECT_TRUE(n.lint == 4 || n.lint == 7);
    }
}
