// The tower over a ring of words: flat arrays against polynomial records, ring laws, inverses, gcds, and the
// irreducibility of modding polynomials against counting.
#include "field/irreducible.h"
#include "field/tower_words.h"
#include "poly/poly_add.h"
#include "poly/poly_mult.h"
#include "tests/unit/field/tower_support.h"

#include <vector>
using namespace tolvex;
using namespace tolvex::test;
using Element = std::vector<uint32_t>;

static const int32_t k_primes_tried[] = {2, 3, 7, 101, 65521, 2147483629, 256, 65536};

static Element random_element(Rng& rng, const TowerWords& t) {
    Element a(static_cast<size_t>(t.at[t.height].size));
    for (uint32_t& w : a) w = static_cast<uint32_t>(random_int(rng, 0, modulus - 1));
    return a;
}
static Element times(const TowerWords& t, const Element& a, const Element& b) {
    Element c(a.size());
    tw_mul(t, t.height, a.data(), b.data(), c.data());
    return c;
}
static poly record(const TowerWords& t, const Element& a) { return tw_to_poly(t, t.height, a.data()); }

namespace {
struct Round {
    TowerSetting setting;
    Round(Rng& rng, int round)
        : setting(round % 3 + 1, k_primes_tried[round % 8],
                  k_primes_tried[round % 8] == 256 || k_primes_tried[round % 8] == 65536) {
        random_tower(rng, 1, Coefs::small);
    }
};
}  // namespace

PROPERTY(word_products, 240) {
    Round r(rng, round);
    const TowerWords& t = tower_words();
    Element a = random_element(rng, t), b = random_element(rng, t), c = random_element(rng, t);
    EXPECT_EQ(times(t, a, b), times(t, b, a));
    EXPECT_EQ(times(t, times(t, a, b), c), times(t, a, times(t, b, c)));
    PolyGuard u(record(t, a)), v(record(t, b)), product, direct(record(t, times(t, a, b)));
    poly_mult(u, v, &product.p, polynames);
    EXPECT_TRUE(poly_equal(product, direct)) << text_of(u) << " * " << text_of(v);
    Element back(a.size());
    EXPECT_TRUE(tw_from_poly(t, t.height, u, back.data()));
    EXPECT_EQ(back, a);
    tw_power(t, t.height, a.data(), 5, back.data());
    EXPECT_EQ(back, times(t, a, times(t, times(t, a, a), times(t, a, a))));
}

PROPERTY(word_inverses, 240) {
    Round r(rng, round);
    const TowerWords& t = tower_words();
    Element a = random_element(rng, t), b(a.size()), one(a.size());
    one[0] = 1;
    if (tw_inverse(t, t.height, a.data(), b.data())) {
        EXPECT_EQ(times(t, a, b), one);
    }
}

/// A product of two elements that is 0 shows a zero divisor, which has no inverse.
TEST(Words, zero_divisors_have_no_inverse) {
    TowerSetting setting(1, 7);
    mod_out(1, "x^2 - 2");  // (x - 3)(x + 3)
    const TowerWords& t = tower_words();
    uint32_t a[2] = {3, 1}, b[2] = {0, 1}, out[2];
    EXPECT_FALSE(tw_inverse(t, 1, a, out));
    EXPECT_TRUE(tw_inverse(t, 1, b, out));
    EXPECT_TRUE(t.separable);
}

/// The number of irreducible monic polynomials of degree n over q elements, by Moebius' formula.
static int64_t irreducible_count(int64_t q, int32_t n) {
    switch (n) {
    case 2:
        return (q * q - q) / 2;
    case 3:
        return (q * q * q - q) / 3;
    default:
        return (q * q * q * q - q * q) / 4;
    }
}

/// All monic polynomials of degree n over Z/p, and over the field of 4 elements.
TEST(Words, irreducible_polynomials_are_as_many_as_there_are) {
    for (int32_t p : {2, 3, 5})
        for (int32_t n : {2, 3, 4}) {
            TowerSetting setting(1, p);
            int64_t all = 1, found = 0;
            for (int32_t i = 0; i < n; i++) all *= p;
            for (int64_t code = 0; code < all; code++) {
                PolyGuard f;
                int32_t top[1] = {n};
                f.p = term_poly(1, top, 1);
                int64_t rest = code;
                for (int32_t e = 0; e < n; e++, rest /= p) {
                    int32_t exps[1] = {e};
                    PolyGuard c(term_poly(rest % p, exps, 1));
                    poly_add(f.p, c, &f.p);
                }
                const TowerWords& t = candidate_words(f, 0);
                found += tw_irreducible(t, 1);
            }
            EXPECT_EQ(found, irreducible_count(p, n)) << p << " " << n;
        }
    TowerSetting setting(2, 2);
    mod_out(2, "x^2 + x + 1");
    int64_t found = 0;
    for (int32_t code = 0; code < 16; code++) {  // y^2 + (a t + b) y + (c t + d)
        PolyGuard f(poly_of("x^2"));
        const char* parts[] = {"x*y", "x", "y", "1"};
        for (int32_t bit = 0; bit < 4; bit++)
            if (code >> bit & 1) {
                PolyGuard c(poly_of(parts[bit]));
                poly_add(f.p, c, &f.p);
            }
        found += tw_irreducible(candidate_words(f, 1), 2);
    }
    EXPECT_EQ(found, irreducible_count(4, 2));
}

TEST(Words, any_exponent_is_reduced) {
    TowerSetting setting(1, 101);
    mod_out(1, "x^3 - 2*x - 5");
    const TowerWords& t = tower_words();
    uint32_t x[3] = {0, 1, 0}, power[3], out[3];
    PolyGuard far(poly_of("x^1000000"));
    tw_power(t, 1, x, 1000000, power);
    EXPECT_TRUE(tw_from_poly(t, 1, far, out));
    for (int i = 0; i < 3; i++) EXPECT_EQ(out[i], power[i]);
    laurent = 1;
    PolyGuard low(poly_of("x^-3"));
    EXPECT_TRUE(tw_from_poly(t, 1, low, out));
    laurent = 0;
    tw_power(t, 1, x, 3, power);
    tw_mul(t, 1, power, out, out);
    EXPECT_TRUE(tw_is_one(t, 1, out));
}
