// The ring axioms and inverses in every modular ground ring, and primality against a plain method.
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "tests/support/support.h"

#include <numeric>
using namespace tolvex;
namespace {
using test::Rng;

/// Enters Z/m for a small, large, prime or composite m, or a table field; returns the number of elements.
int32_t enter_random_ring(Rng& rng) {
    static const int32_t moduli[] = {2,     3,          4,          6,          7,         255,
                                     256,   46337,      65521,      65534,      65535,     65536,
                                     65537, 1 << 28,    1 << 30,    1000000007, 30030,     46340,
                                     46341, 2147483629, 2147483645, 2147483646, 2147395600};
    if (rng() % 4 == 0) {
        boolean small = rng() % 2;
        ring_enter_prime(2);
        finf = 1;
        f256 = small;
        f2t16 = !small;
        set_modulus(small ? 256 : 65536);
        return modulus;
    }
    int32_t m = rng() % 2 ? moduli[rng() % std::size(moduli)] : static_cast<int32_t>(2 + rng() % 2147483645);
    ring_enter_prime(m);
    mod_is_prime = is_prime(m);
    return m;
}

uint32_t random_element(Rng& rng, int32_t m) {
    switch (rng() % 6) {
    case 0:
        return 0;
    case 1:
        return 1;
    case 2:
        return static_cast<uint32_t>(m - 1);
    default:
        return static_cast<uint32_t>(rng() % static_cast<uint64_t>(m));
    }
}

uint32_t mult(uint32_t x, uint32_t y) { return static_cast<uint32_t>(modmult(x, y)); }
uint32_t add(uint32_t x, uint32_t y) {
    return static_cast<uint32_t>(mod_add(static_cast<int32_t>(x), static_cast<int32_t>(y), modulus));
}
uint32_t sub(uint32_t x, uint32_t y) {
    return static_cast<uint32_t>(mod_sub(static_cast<int32_t>(x), static_cast<int32_t>(y), modulus));
}

PROPERTY(residues_form_a_commutative_ring, 4000) {
    int32_t m = enter_random_ring(rng);
    uint32_t a = random_element(rng, m), b = random_element(rng, m), c = random_element(rng, m);
    EXPECT_EQ(add(a, b), add(b, a));
    EXPECT_EQ(mult(a, b), mult(b, a));
    EXPECT_EQ(add(add(a, b), c), add(a, add(b, c)));
    EXPECT_EQ(mult(mult(a, b), c), mult(a, mult(b, c)));
    EXPECT_EQ(mult(a, add(b, c)), add(mult(a, b), mult(a, c)));
    EXPECT_EQ(add(a, 0), a);
    EXPECT_EQ(mult(a, 1), a);
    EXPECT_EQ(mult(a, 0), 0u);
    EXPECT_EQ(sub(add(a, b), b), a);
    EXPECT_EQ(add(a, static_cast<uint32_t>(mod_neg(static_cast<int32_t>(a)))), 0u);
    EXPECT_LT(mult(a, b), static_cast<uint32_t>(m));
    EXPECT_EQ(mod_mult(a, b, m), modmult(a, b));
    if (!finf) {
        EXPECT_EQ(mult(a, b), static_cast<uint64_t>(a) * b % static_cast<uint64_t>(m));
    }
    ring_enter_integers();
}

PROPERTY(units_have_inverses_and_others_none, 4000) {
    int32_t m = enter_random_ring(rng);
    auto a = static_cast<int32_t>(random_element(rng, m));
    if (a == 0) a = 1;
    int32_t inverse = mod_inverse_or_0(a);
    if (finf || std::gcd(a, m) == 1) {
        EXPECT_EQ(modmult(static_cast<uint32_t>(a), static_cast<uint32_t>(inverse)), 1 % m);
        int32_t again = 0;
        mod_inverse(a, &again);
        EXPECT_EQ(again, inverse);
        emod_inverse(a, &again);
        EXPECT_EQ(again, inverse);
        EXPECT_EQ(imod_inverse(a), inverse);
    } else {
        EXPECT_EQ(inverse, 0);
        int32_t again = 0;
        EXPECT_TRUE(RAISES(mod_inverse(a, &again)));
        EXPECT_EQ(test::caught.code, 85);
    }
    ring_enter_integers();
}

PROPERTY(powers_add_their_exponents, 1000) {
    int32_t m = enter_random_ring(rng);
    auto a = static_cast<int32_t>(random_element(rng, m));
    auto e = static_cast<int64_t>(rng() >> (rng() % 40 + 2)), f = static_cast<int64_t>(rng() % 50);
    int32_t x, y, both, plain = 1 % m;
    mod_number_power(a, e, &x);
    mod_number_power(a, f, &y);
    mod_number_power(a, e + f, &both);
    EXPECT_EQ(modmult(static_cast<uint32_t>(x), static_cast<uint32_t>(y)), both % m);
    for (int64_t i = 0; i < f; i++) plain = modmult(static_cast<uint32_t>(plain), static_cast<uint32_t>(a));
    EXPECT_EQ(y % m, plain);
    ring_enter_integers();
}

PROPERTY(smallest_factors_divide_and_are_prime, 400) {
    auto bits = static_cast<int>(rng() % 62);
    auto n = static_cast<int64_t>(rng() >> (1 + bits));
    if (n < 2) n = 2;
    if (rng() % 3 == 0) n = INT64_C(1) * lrgpme[rng() % k_lrg_primes] * big_prime[rng() % k_big_primes];
    int64_t d = long_is_prime(n);
    if (d == 1) {
        for (int64_t k = 2; k < 3000 && k < n; k++) ASSERT_NE(n % k, 0) << n;
    } else {
        ASSERT_EQ(n % d, 0);
        ASSERT_EQ(long_is_prime(d), 1);
        for (int64_t k = 2; k < 3000 && k < d; k++) ASSERT_NE(n % k, 0) << n;
    }
    int64_t list[16], rest = n;
    int32_t count = prime_factors(n, list);
    for (int32_t i = 0; i < count; i++) {
        ASSERT_TRUE(i == 0 || list[i] > list[i - 1]);
        ASSERT_EQ(long_is_prime(list[i]), 1);
        ASSERT_EQ(rest % list[i], 0);
        while (rest % list[i] == 0) rest /= list[i];
    }
    EXPECT_EQ(rest, 1);
    EXPECT_EQ(list[0], d == 1 ? n : d);
}

PROPERTY(table_field_squares_are_additive, 2000) {
    ring_enter_prime(2);
    finf = 1;
    f2t16 = 1;
    set_modulus(65536);
    auto a = static_cast<uint32_t>(rng() % 65536), b = static_cast<uint32_t>(rng() % 65536);
    EXPECT_EQ(mult(a ^ b, a ^ b), mult(a, a) ^ mult(b, b)) << "characteristic 2";
    // z^2 = 2 z + 1, where z is encoded 256 and 2 is the element x of the small field
    EXPECT_EQ(mult(256, 256), (2u << 8) | 1u);
    EXPECT_EQ(f256prod[2][0x80], 0x1B) << "x^8 = x^4 + x^3 + x + 1";
    ring_enter_integers();
}
}  // namespace
