// Residues, table fields, primes, the change of ring: fixed cases.
#include "numbers/data_files.h"
#include "numbers/display_modes.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_sign.h"
#include "numbers/primes.h"
#include "numbers/random_num.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "tests/support/support.h"

#include <vector>
using namespace tolvex;
namespace {
void enter_table_field(boolean small) {
    ring_enter_prime(2);
    finf = 1;
    f256 = small;
    f2t16 = !small;
    set_modulus(small ? 256 : 65536);
}

class Rings : public ::testing::Test {
  protected:
    void SetUp() override {
        test::set_up_once();
        ring_enter_integers();
    }
    void TearDown() override { ring_enter_integers(); }
};

// ---- residues ------------------------------------------------------------------------------------------

TEST_F(Rings, SumsWrapOnce) {
    EXPECT_EQ(mod_add(2, 2, 3), 1);
    EXPECT_EQ(mod_sub(0, 1, 3), 2);
    EXPECT_EQ(mod_add(2147483645, 2147483645, 2147483646), 2147483644) << "the sum exceeds 2^31";
    enter_table_field(1);
    EXPECT_EQ(mod_add(200, 100, 256), 200 ^ 100);
    EXPECT_EQ(mod_sub(200, 100, 256), 200 ^ 100);
    EXPECT_EQ(mod_neg(77), 77);
}

TEST_F(Rings, InATableFieldAValueIsItsOwnNegative) {
    for (boolean small : {1, 0}) {
        enter_table_field(small);
        number a = {}, b = {}, c = {};
        for (int32_t v : {0, 1, 2, 255, modulus - 1}) {
            a.lint = b.lint = v;
            EXPECT_TRUE(negtive(&a, &b)) << v;
            makeneg(&a, &c);
            EXPECT_EQ(c.lint, v);
            in_place_neg(&c);
            EXPECT_EQ(c.lint, v);
            b.lint = v ^ 1;
            EXPECT_FALSE(negtive(&a, &b)) << v;
        }
    }
}

TEST_F(Rings, SmallModulusEndsBelow65535) {
    set_modulus(65534);
    EXPECT_TRUE(smallmodulus);
    set_modulus(65535);
    EXPECT_FALSE(smallmodulus);
    enter_table_field(0);
    EXPECT_TRUE(smallmodulus) << "in a table field whatever its size";
}

TEST_F(Rings, WhatDependsOnTheModulus) {
    set_modulus(7);
    EXPECT_EQ(half_modulus, 3);
    EXPECT_EQ(two28_mod, (1 << 28) % 7);
    EXPECT_EQ(rmodulus, 7.0);
    set_modulus(2147483646);
    EXPECT_EQ(half_modulus, 1073741823);
    EXPECT_EQ(two28_mod, 1 << 28);
    set_modulus(-1);
    EXPECT_EQ(modulus, -1);
    EXPECT_FALSE(smallmodulus);
}

TEST_F(Rings, ProductsOfExtremeResidues) {
    for (int32_t m : {2, 3, 4, 7, 256, 65534, 65535, 65536, 1 << 30, 2147483629, 2147483646}) {
        ring_enter_prime(m);
        for (int32_t x : {0, 1, m / 2, m - 1}) {
            for (int32_t y : {0, 1, m / 2, m - 1}) {
                auto expected = static_cast<int32_t>(static_cast<int64_t>(x) * y % m);
                EXPECT_EQ(modmult(static_cast<uint32_t>(x), static_cast<uint32_t>(y)), expected) << m;
                EXPECT_EQ(mod_mult(static_cast<uint32_t>(x), static_cast<uint32_t>(y), m), expected);
            }
        }
    }
    ring_enter_prime(7);
    EXPECT_EQ(mod_mult(9, 9, 10), 1) << "another modulus than that in force";
}

TEST_F(Rings, InversesOfNonUnits) {
    ring_enter_prime(6);
    int32_t ans = -1;
    EXPECT_TRUE(RAISES(mod_inverse(2, &ans))) << "a divisor of the modulus has no inverse";
    EXPECT_EQ(test::caught.code, 85);
    EXPECT_TRUE(RAISES(emod_inverse(4, &ans)));
    EXPECT_EQ(test::caught.code, 85);
    testing::internal::CaptureStdout();
    EXPECT_TRUE(RAISES(imod_inverse(3)));
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "bad2:  3\n");
    EXPECT_EQ(test::caught.code, 85);
    EXPECT_EQ(mod_inverse_or_0(2), 0);
    EXPECT_EQ(mod_inverse_or_0(0), 0);
    EXPECT_EQ(mod_inverse_or_0(5), 5);
    mod_inverse(1, &ans);
    EXPECT_EQ(ans, 1);
}

TEST_F(Rings, TheInverseOf0IsAnInternalFault) {
    int32_t ans = 0;
    for (int i = 0; i < 3; i++) {
        if (i == 0) ring_enter_prime(7);
        if (i > 0) enter_table_field(i == 1);
        EXPECT_TRUE(RAISES(mod_inverse(0, &ans)));
        EXPECT_EQ(test::caught.code, -1000);
        EXPECT_STREQ(test::caught.text, "bad seca.");
    }
}

TEST_F(Rings, ShownResidues) {
    ring_enter_prime(7);
    EXPECT_EQ(shown_residue(6), -1);
    EXPECT_EQ(shown_residue(4), -3);
    EXPECT_EQ(shown_residue(3), 3);
    alt_form_display = 0;
    EXPECT_EQ(shown_residue(6), 6);
    alt_form_display = 1;
    enter_table_field(1);
    EXPECT_EQ(shown_residue(255), 255);
}

TEST_F(Rings, IntegersAsElements) {
    ring_enter_prime(7);
    EXPECT_EQ(residue_of_int(-1), 6);
    EXPECT_EQ(residue_of_int(-14), 0);
    EXPECT_EQ(residue_of_int(INT64_MIN), static_cast<int32_t>(7 - (UINT64_C(1) << 63) % 7));
    enter_table_field(1);
    EXPECT_EQ(residue_of_int(-3), 3) << "-k is the same element";
    EXPECT_EQ(residue_of_int(259), 3);
    enter_table_field(0);
    EXPECT_EQ(residue_of_int(65536 + 259), 259);
}

TEST_F(Rings, PowersWithExponent0) {
    int32_t ans = -1;
    for (int32_t m : {2, 6, 7}) {
        ring_enter_prime(m);
        mod_number_power(0, 0, &ans);
        EXPECT_EQ(ans, 1);
        mod_number_power(0, 5, &ans);
        EXPECT_EQ(ans, 0);
    }
    enter_table_field(0);
    mod_number_power(0, 0, &ans);
    EXPECT_EQ(ans, 1);
    mod_number_power(263, 65535, &ans);
    EXPECT_EQ(ans, 1);
    mod_number_power(263, INT64_C(65535) << 40, &ans);
    EXPECT_EQ(ans, 1);
    mod_number_power(263, 64507, &ans);
    EXPECT_EQ(ans, 14);
}

// ---- table fields --------------------------------------------------------------------------------------

TEST_F(Rings, FieldTables) {
    EXPECT_EQ(f256inv[255], 28);
    EXPECT_EQ(f256prod[255][255], 19);
    EXPECT_EQ(f256sqr[255], 78);
    EXPECT_EQ(f256prod[0x53][0xCA], 1) << "the classical pair of inverses modulo x^8+x^4+x^3+x+1";
    EXPECT_EQ(f2t16exp[65535], 1);
    EXPECT_EQ(f2t16exp[64507], 14);
    EXPECT_EQ(f2t16inv[65535], 3602);
    EXPECT_EQ(f2t16log[65535], 483);
    EXPECT_EQ(f2t16sqr[65535], 41708);
    EXPECT_EQ(f2t16exp[1], 263);
    EXPECT_EQ(f2t16log[1], 0);
}

TEST_F(Rings, ProductsThroughLogarithms) {
    enter_table_field(0);
    EXPECT_EQ(modmult(0, 1234), 0);
    EXPECT_EQ(modmult(1234, 0), 0);
    uint32_t g = f2t16exp[1];
    EXPECT_EQ(modmult(f2t16exp[65533], g), f2t16exp[65534]) << "a sum of 65534 is within the table";
    EXPECT_EQ(modmult(f2t16exp[65534], g), f2t16exp[0]) << "65535 goes round";
    EXPECT_EQ(modmult(f2t16exp[65534], f2t16exp[65534]), f2t16exp[65533]);
}

TEST_F(Rings, TheSmallFieldIsTheLowByteOfTheLargeOne) {
    enter_table_field(0);
    for (uint32_t x = 0; x < 256; x++) {
        for (uint32_t y = 0; y < 256; y++) ASSERT_EQ(table_mult(x, y), f256prod[x][y]);
        ASSERT_EQ(f2t16sqr[x], f256sqr[x]);
        if (x == 0) continue;
        ASSERT_EQ(f2t16inv[x], f256inv[x]);
    }
}

TEST_F(Rings, EveryElementHasInverseAndRoot) {
    for (boolean small : {1, 0}) {
        enter_table_field(small);
        for (int32_t x = 1; x < modulus; x++) {
            int32_t inverse = 0;
            mod_inverse(x, &inverse);
            auto root = static_cast<uint32_t>(small ? f256sqr[x] : f2t16sqr[x]);
            ASSERT_EQ(modmult(static_cast<uint32_t>(x), static_cast<uint32_t>(inverse)), 1);
            ASSERT_EQ(modmult(root, root), x);
        }
    }
}

// ---- primes --------------------------------------------------------------------------------------------

TEST_F(Rings, PrimesBelow100000) {
    constexpr int32_t k_limit = 100000;
    std::vector<char> composite(k_limit, 0);
    for (int32_t p = 2; p < k_limit; p++)
        for (int32_t k = 2 * p; k < k_limit && !composite[static_cast<size_t>(p)]; k += p)
            composite[static_cast<size_t>(k)] = 1;
    int32_t next = 0;
    for (int32_t n = k_limit - 1; n >= 2; n--) {
        bool prime_here = !composite[static_cast<size_t>(n)];
        ASSERT_EQ(is_prime(n) != 0, prime_here) << n;
        ASSERT_EQ(long_is_prime(n) == 1, prime_here) << n;
        if (next != 0 && n > 2) {
            ASSERT_EQ(nextprime(n), next) << n;
        }
        if (prime_here) next = n;
    }
    for (int32_t n : {1, 0, -1, -7, INT32_MIN}) EXPECT_FALSE(is_prime(n));
    for (int32_t n : {2, 1, 0, -5}) EXPECT_EQ(nextprime(n), 3);
}

TEST_F(Rings, TheSmallestFactorIsFound) {
    EXPECT_EQ(long_is_prime(4), 2);
    EXPECT_EQ(long_is_prime(9), 3);
    EXPECT_EQ(long_is_prime(25), 5);
    EXPECT_EQ(long_is_prime(49), 7);
    EXPECT_EQ(long_is_prime(4294967297), 641) << "Fermat's F5";
    EXPECT_EQ(long_is_prime(INT64_C(65521) * 65521), 65521);
    EXPECT_EQ(long_is_prime(INT64_C(2147483647) * 2147483629), 2147483629);
    EXPECT_EQ(long_is_prime(INT64_C(3037000493) * 3037000493), 3037000493);
    EXPECT_EQ(long_is_prime(9223372036854775783), 1) << "the largest prime below 2^63";
    EXPECT_EQ(long_is_prime(9223372036854775807), 7);
    EXPECT_EQ(long_is_prime(3825123056546413051), 149491) << "a strong pseudoprime to the bases 2 to 23";
    EXPECT_EQ(long_is_prime(3215031751), 151) << "to the bases 2, 3, 5, 7";
    EXPECT_EQ(longg_is_prime(0, 8, 1), long_is_prime(2147483649));
    EXPECT_EQ(longg_is_prime(127, k_max_digit, k_max_digit), 7) << "2^63 - 1";
    EXPECT_EQ(is_prime(2147483647), 1);
    EXPECT_EQ(is_prime(2147483646), 0);
}

TEST_F(Rings, NextPrimeEndsAtTheWord) {
    EXPECT_EQ(nextprime(2147483628), 2147483629);
    EXPECT_EQ(nextprime(2147483629), 2147483647);
    EXPECT_EQ(nextprime(2147483646), 2147483647);
    EXPECT_EQ(nextprime(2147483647), 0);
    EXPECT_EQ(nextprime(8), 11);
    EXPECT_EQ(nextprime(10), 11) << "an even number starts at its successor";
}

TEST_F(Rings, PrimeFactorsAscend) {
    int64_t list[16];
    EXPECT_EQ(prime_factors(1, list), 0);
    EXPECT_EQ(prime_factors(360, list), 3);
    EXPECT_EQ((std::vector<int64_t>(list, list + 3)), (std::vector<int64_t>{2, 3, 5}));
    set_prime_quotients(list, 3, 360);
    EXPECT_EQ((std::vector<int64_t>(list, list + 3)), (std::vector<int64_t>{180, 120, 72}));
    EXPECT_EQ(prime_factors(614889782588491410, list), 15) << "the product of the first 15 primes";
    EXPECT_EQ(list[14], 47);
    EXPECT_EQ(prime_factors(4294967295, list), 5);
    EXPECT_EQ((std::vector<int64_t>(list, list + 5)), (std::vector<int64_t>{3, 5, 17, 257, 65537}));
    EXPECT_EQ(prime_factors(2147483629, list), 1);
}

// ---- binomials -----------------------------------------------------------------------------------------

TEST_F(Rings, BinomialsOfAllSmallRows) {
    std::vector<std::vector<unsigned __int128>> row(131);
    number x = {};
    for (size_t a = 0; a <= 130; a++) {
        row[a].assign(a + 1, 1);
        for (size_t b = 1; b < a; b++) row[a][b] = row[a - 1][b - 1] + row[a - 1][b];
        for (size_t b = 0; b <= a; b++) {
            rat_binom(static_cast<int32_t>(a), static_cast<int32_t>(b), &x);
            ASSERT_TRUE(num_check(&x));
            unsigned __int128 value = 0;
            for (numptr p = x.head; p != nullptr; p = p->next)
                value = value << 28 | static_cast<unsigned>(p->value);
            ASSERT_TRUE(value == row[a][b]) << a << " over " << b;
            if (value <= INT32_MAX) {
                ASSERT_EQ(lint_binom(static_cast<int32_t>(a), static_cast<int32_t>(b)),
                          static_cast<int32_t>(value));
            } else {
                ASSERT_TRUE(RAISES(lint_binom(static_cast<int32_t>(a), static_cast<int32_t>(b))));
                ASSERT_EQ(test::caught.code, 279);
            }
            for (int32_t m : {2, 3, 4, 6, 7, 12, 97, 360, 65536, 2147483629, 2147483646}) {
                ring_enter_prime(m);
                mod_is_prime = is_prime(m);
                ASSERT_EQ(mod_binom(static_cast<int32_t>(a), static_cast<int32_t>(b)),
                          static_cast<int32_t>(value % static_cast<unsigned>(m)))
                    << a << " over " << b << " modulo " << m;
            }
            enter_table_field(1);
            ASSERT_EQ(mod_binom(static_cast<int32_t>(a), static_cast<int32_t>(b)),
                      static_cast<int32_t>(value % 2));
            ring_enter_integers();
        }
    }
    special_free(&x);
}

TEST_F(Rings, LargeBinomials) {
    number x = {}, y = {}, sum = {};
    for (int32_t a : {150, 151, 152, 153, 154, 1000, 5000}) {
        for (int32_t b : {1, 2, 75, a / 3, a / 2, a - 1}) {
            rat_binom(a, b, &x);
            rat_binom(a, b - 1, &y);
            rat_binom(a + 1, b, &sum);
            fastsum(&x, &y);
            ASSERT_TRUE(equal(&x, &sum)) << a << " " << b;
        }
    }
    rat_binom(2147483647, 2, &x);
    rat_binom(2147483647, 2147483645, &y);
    EXPECT_TRUE(equal(&x, &y));
    EXPECT_TRUE(RAISES(rat_binom(2147483647, 1073741823, &x)));
    EXPECT_EQ(test::caught.code, 279);
    for (number* n : {&x, &y, &sum}) special_free(n);
    ring_enter_prime(2147483629);
    EXPECT_EQ(mod_binom(2147483647, 3), static_cast<int32_t>(18 * 17 / 2 * 16 / 3))
        << "Lucas: 18 over 3, and 1 over 0";
}

// ---- random words --------------------------------------------------------------------------------------

TEST_F(Rings, RandomWordsStayInRange) {
    number x = {};
    for (int i = 0; i < 2000; i++) {
        int32_t n = 1 + rand_word() % 50;
        int32_t r = rand_below(n);
        ASSERT_TRUE(r >= 0 && r < n);
        randomize(i % 2, &x);
        ASSERT_TRUE(num_check(&x));
        int32_t v = convert_to_int(&x);
        ASSERT_GE(v, 0);
    }
    EXPECT_EQ(rand_below(1), 0);
    ring_enter_prime(7);
    number y = {};
    bool seen[7] = {};
    for (int i = 0; i < 500; i++) {
        randomize(0, &y);
        ASSERT_TRUE(y.lint >= 0 && y.lint < 7);
        seen[y.lint] = true;
    }
    for (bool s : seen) EXPECT_TRUE(s);
    ring_enter_integers();
    special_free(&x);
}

// ---- change of ring ------------------------------------------------------------------------------------

TEST_F(Rings, SavedRingsNest) {
    ring_enter_prime(10007);
    RingState outer = ring_save();
    ring_enter_prime(7);
    RingState inner = ring_save();
    ring_enter_integers();
    EXPECT_FALSE(modularmode || lintmode);
    ring_restore(inner);
    EXPECT_EQ(modulus, 7);
    EXPECT_EQ(modmult(3, 5), 1);
    ring_restore(outer);
    EXPECT_EQ(modulus, 10007);
    EXPECT_EQ(half_modulus, 5003);
    EXPECT_TRUE(mod_is_prime);
    EXPECT_EQ(modmult(10006, 10006), 1);
    ring_unwind();
    EXPECT_EQ(modulus, 10007) << "nothing was left to undo";
}

TEST_F(Rings, UnwindGoesBackToTheOutermostRing) {
    enter_table_field(1);
    ring_save();
    ring_enter_prime(7);
    ring_save();
    boolean suspended = 0;
    check_modular(&suspended);
    EXPECT_FALSE(modularmode);
    ring_unwind();
    EXPECT_EQ(modulus, 256);
    EXPECT_TRUE(finf && f256 && modularmode && lintmode && smallmodulus);
    EXPECT_EQ(mod_is_changed, 0);
    ring_enter_prime(11);
    ring_unwind();
    EXPECT_EQ(modulus, 11);
}

TEST_F(Rings, ACapturedStateKeepsItsWayOut) {
    ring_enter_prime(10007);
    ring_save();
    ring_enter_prime(7);
    RingState inside = ring_capture();  // a level is opened in the middle of an image
    ring_unwind();
    EXPECT_EQ(modulus, 10007);
    RingState of_level = ring_save();
    ring_enter_prime(5);
    ring_restore(of_level);
    ring_assign(inside);  // the level is left
    EXPECT_EQ(modulus, 7);
    ring_unwind();  // and an error follows
    EXPECT_EQ(modulus, 10007);
}

TEST_F(Rings, SuspendedArithmeticKeepsWords) {
    boolean saved = 1;
    check_modular(&saved);
    EXPECT_FALSE(saved) << "nothing to suspend among the integers";
    EXPECT_EQ(mod_is_changed, 0);
    restore_modular(saved);
    ring_enter_prime(7);
    check_modular(&saved);
    EXPECT_TRUE(saved && lintmode && !modularmode);
    EXPECT_EQ(mod_is_changed, 1);
    boolean again = 1;
    check_modular(&again);
    EXPECT_FALSE(again);
    restore_modular(again);
    restore_modular(saved);
    EXPECT_TRUE(modularmode);
    EXPECT_EQ(mod_is_changed, 0);
}

// ---- shapes --------------------------------------------------------------------------------------------

TEST_F(Rings, OversizeOfShapes) {
    number n = {}, m = {};
    auto over = [&](int32_t a, int32_t b) {
        special_set(a, &n);
        special_set(b, &m);
        EXPECT_EQ(oversize(&n, &m), sparse_oversize(&n, &m));
        return oversize(&n, &m) != 0;
    };
    EXPECT_FALSE(over(1000, 1000));
    EXPECT_TRUE(over(1000, 1001));
    EXPECT_TRUE(over(1000000, 2));
    EXPECT_TRUE(over(20000, 20000)) << "two digits";
    EXPECT_FALSE(over(0, k_max_digit));
    EXPECT_TRUE(over(k_max_digit, k_max_digit));
    special_set_2(k_max_digit, k_max_digit, &n);
    special_set(0, &m);
    EXPECT_FALSE(oversize(&n, &m));
    special_set(1, &m);
    lintmode = 1;
    EXPECT_TRUE(oversize(&n, &m)) << "the chains count whatever the mode";
    lintmode = 0;
    special_free(&n), special_free(&m);
}

TEST_F(Rings, SizesAndWords) {
    number n = {};
    special_set_2(k_max_digit, k_max_digit, &n);
    EXPECT_EQ(sizenumber(&n), 32 + 2 * 16);
    EXPECT_EQ(convert_to_int(&n), k_no_word);
    setvalue_any(2147483647, &n);
    EXPECT_EQ(convert_to_int(&n), 2147483647);
    setvalue_any(-2147483646, &n);
    EXPECT_EQ(convert_to_int(&n), -2147483646);
    setvalue_any(-2147483647, &n);
    EXPECT_EQ(convert_to_int(&n), k_no_word);
    setvalue_any(2147483648, &n);
    EXPECT_EQ(convert_to_int(&n), k_no_word);
    setvalue_any(-5, &n);
    EXPECT_EQ(convert_to_int(&n), -5);
    lintmode = 1;
    n.lint = 77;
    EXPECT_EQ(convert_to_int(&n), 77);
    EXPECT_EQ(sizenumber(&n), 32);
    lintmode = 0;
    special_free(&n);
}
}  // namespace
