// Field axioms on random values, the canonical form after every operation, the in-place forms against the
// plain ones, in every ground ring, with and without negative exponents, for 0 to 3 variables.
#include "numbers/number_modes.h"
#include "quoly/canonical.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/unit/quoly/quoly_support.h"
using namespace tolvex;
using namespace tolvex::test;

static const int32_t k_rings[] = {0, 0, 2, 3, 7, 10007, 2147483629, 256, 65536, 6, 2147483646};

/// One setting a round: the ring, the number of variables and laurent in turn.
struct Round {
    int32_t ring, vars;
    bool laurent_on;
    explicit Round(int round)
        : ring(k_rings[round % 11]), vars(round / 11 % 4), laurent_on(round / 44 % 2 != 0) {}
};

static quoly add(quoly a, quoly b) {
    quoly r = nullptr;
    quoly_add(a, b, &r);
    EXPECT_TRUE(canonical(r)) << text_of(a) << " + " << text_of(b) << " = " << text_of(r);
    return r;
}
static quoly sub(quoly a, quoly b) {
    quoly r = nullptr;
    quoly_sub(a, b, &r);
    EXPECT_TRUE(canonical(r)) << text_of(a) << " - " << text_of(b) << " = " << text_of(r);
    return r;
}
static quoly mul(quoly a, quoly b) {
    quoly r = nullptr;
    quoly_mult(a, b, &r);
    EXPECT_TRUE(canonical(r)) << text_of(a) << " * " << text_of(b) << " = " << text_of(r);
    return r;
}
static quoly quo(quoly a, quoly b) {
    quoly r = nullptr;
    quoly_quot(a, b, &r, 0);
    EXPECT_TRUE(canonical(r)) << text_of(a) << " / " << text_of(b) << " = " << text_of(r);
    return r;
}
/// Both are used up.
static void same(quoly a, quoly b, const char* law) {
    EXPECT_TRUE(quoly_equal(a, b)) << law << ": " << text_of(a) << " and " << text_of(b);
    free_quoly(&a);
    free_quoly(&b);
}
static void drop(quoly a) { free_quoly(&a); }

PROPERTY(sums, 352) {
    Round r(round);
    Setting setting(r.ring, r.vars, r.laurent_on);
    quoly a = random_value(rng, r.vars, 4), b = random_value(rng, r.vars, 4),
          c = random_value(rng, r.vars, 3);
    Live before = value_records();
    same(add(a, b), add(b, a), "a + b = b + a");
    quoly ab = add(a, b), bc = add(b, c);
    same(add(ab, c), add(a, bc), "(a + b) + c = a + (b + c)");
    same(sub(ab, b), copy_of(a), "(a + b) - b = a");
    quoly zero = sub(a, a);
    EXPECT_TRUE(quoly_iszero(zero) && zero->numb);
    quoly minus = nullptr;
    quoly_makeneg(a, &minus);
    EXPECT_TRUE(canonical(minus));
    EXPECT_TRUE(quoly_negtive(a, minus));
    same(sub(zero, a), copy_of(minus), "0 - a = -a");
    same(add(minus, b), sub(b, a), "-a + b = b - a");
    drop(ab), drop(bc), drop(zero), drop(minus);
    EXPECT_TRUE(value_records() == before);
    drop(a), drop(b), drop(c);
}

PROPERTY(products, 352) {
    Round r(round);
    Setting setting(r.ring, r.vars, r.laurent_on);
    quoly a = random_value(rng, r.vars, 3), b = random_value(rng, r.vars, 3),
          c = random_value(rng, r.vars, 2);
    Live before = value_records();
    same(mul(a, b), mul(b, a), "a b = b a");
    quoly ab = mul(a, b), bc = mul(b, c), sum = add(b, c), ac = mul(a, c);
    same(mul(ab, c), mul(a, bc), "(a b) c = a (b c)");
    same(mul(a, sum), add(ab, ac), "a (b + c) = a b + a c");
    quoly copy = copy_of(a);
    same(mul(a, a), mul(a, copy), "a a by one object and by two");
    drop(ab), drop(bc), drop(sum), drop(ac), drop(copy);
    EXPECT_TRUE(value_records() == before);
    drop(a), drop(b), drop(c);
}

PROPERTY(quotients, 352) {
    Round r(round);
    Setting setting(r.ring, r.vars, r.laurent_on);
    if (!ring_has_gcds()) return;
    quoly a = random_value(rng, r.vars, 3), b = random_nonzero_value(rng, r.vars, 3),
          c = random_nonzero_value(rng, r.vars, 2);
    Live before = value_records();
    quoly q = quo(a, b);
    same(mul(q, b), copy_of(a), "(a / b) b = a");
    quoly inverse = copy_of(b);
    quoly_reciprocal(&inverse);
    EXPECT_TRUE(canonical(inverse));
    same(mul(a, inverse), copy_of(q), "a (1 / b) = a / b");
    quoly one = mul(b, inverse);
    EXPECT_TRUE(one->numb && quoly_equal(one, quol_num_1));
    quoly bc = mul(b, c), ac = mul(a, c);
    same(quo(q, c), quo(a, bc), "(a / b) / c = a / (b c)");
    same(quo(ac, bc), copy_of(q), "(a c) / (b c) = a / b");
    quoly_reciprocal(&inverse);
    same(inverse, copy_of(b), "1 / (1 / b) = b");
    drop(q), drop(one), drop(bc), drop(ac);
    EXPECT_TRUE(value_records() == before);
    drop(a), drop(b), drop(c);
}

PROPERTY(in_place_forms, 352) {
    Round r(round);
    Setting setting(r.ring, r.vars, r.laurent_on);
    quoly a = random_value(rng, r.vars, 4), b = random_value(rng, r.vars, 4);
    Live before = value_records();
    quoly sum = add(a, b), difference = sub(a, b), product = mul(a, b);

    quoly t = nullptr, n = copy_of(a);
    better_quoly_add(n, b, &t);
    same(t, copy_of(sum), "better_quoly_add");
    n = copy_of(a);
    better_quoly_add(n, b, &n);
    same(n, copy_of(sum), "better_quoly_add onto itself");
    t = nullptr, n = copy_of(a);
    better_quoly_sub(n, b, &t);
    same(t, copy_of(difference), "better_quoly_sub");
    n = copy_of(a);
    best_quoly_add(&n, copy_of(b));
    same(n, copy_of(sum), "best_quoly_add");
    n = copy_of(a);
    best_quoly_sub(&n, copy_of(b));
    same(n, copy_of(difference), "best_quoly_sub");
    n = copy_of(a);
    fast_quoly_add(&n, b);
    EXPECT_TRUE(canonical(n));
    same(n, copy_of(sum), "fast_quoly_add");
    n = copy_of(a);
    fast_quoly_sub(&n, b);
    same(n, copy_of(difference), "fast_quoly_sub");
    n = copy_of(a);
    fast_quoly_mult(&n, b);
    same(n, copy_of(product), "fast_quoly_mult");

    // The result may be either operand, and both operands one object.
    n = copy_of(b);
    quoly_add(a, n, &n);
    same(n, copy_of(sum), "quoly_add(a, n, &n)");
    n = copy_of(b);
    quoly_sub(a, n, &n);
    same(n, copy_of(difference), "quoly_sub(a, n, &n)");
    n = copy_of(b);
    quoly_mult(a, n, &n);
    same(n, copy_of(product), "quoly_mult(a, n, &n)");
    n = copy_of(a);
    fast_quoly_add(&n, n);
    same(n, add(a, a), "n + n in place");
    n = copy_of(a);
    fast_quoly_sub(&n, n);
    EXPECT_TRUE(quoly_iszero(n));
    drop(n);
    n = copy_of(a);
    quoly_mult(n, n, &n);
    same(n, mul(a, a), "n n in place");
    if (ring_has_gcds() && !quoly_iszero(b)) {
        n = copy_of(a);
        fast_quoly_quot(&n, b, 0);
        same(n, quo(a, b), "fast_quoly_quot");
        n = copy_of(b);
        quoly_quot(a, n, &n, 0);
        same(n, quo(a, b), "quoly_quot(a, n, &n)");
    }
    drop(sum), drop(difference), drop(product);
    EXPECT_TRUE(value_records() == before);
    drop(a), drop(b);
}

PROPERTY(powers, 132) {
    Round r(round);
    Setting setting(r.ring, r.vars, r.laurent_on);
    quoly a = random_value(rng, r.vars, 2);
    Live before = value_records();
    quoly power = copy_of(a), product = copy_of(a);
    for (int32_t e = 2; e <= 5; e++) fast_quoly_mult(&product, a);
    quoly_compute_power(&power, 5);
    EXPECT_TRUE(canonical(power));
    same(power, copy_of(product), "a^5");
    if (ring_has_gcds() && !quoly_iszero(a)) {
        number e = {};
        if (lintmode) {
            e.lint = -5;
        } else {
            num_make_digit(&e, -5);
        }
        quoly inverse = copy_of(a);
        raise_to_power(&inverse, &e);
        special_free(&e);
        quoly one = mul(inverse, product);
        EXPECT_TRUE(quoly_equal(one, quol_num_1)) << text_of(a) << " to the -5: " << text_of(inverse);
        drop(inverse), drop(one);
    }
    drop(product);
    EXPECT_TRUE(value_records() == before);
    drop(a);
}

// A quotient taken without a gcd has a form of its own, but the same value.
PROPERTY(quotients_as_given, 88) {
    Round r(round);
    const int32_t vars = 1 + r.vars % 3;
    Setting setting(r.ring, vars, r.laurent_on);
    if (!ring_has_gcds()) return;
    quoly a = random_value(rng, minn(vars, 2), 3), b = random_nonzero_value(rng, 1, 3);
    quoly given = nullptr;
    quoly_quot(a, b, &given, 1);
    quoly reduced = quo(a, b);
    EXPECT_TRUE(quoly_equal(given, reduced)) << text_of(given) << " and " << text_of(reduced);
    check_quoly(&given, laurent);
    EXPECT_TRUE(canonical(given)) << text_of(given);
    same(given, reduced, "check_quoly");
    drop(a), drop(b);
}
