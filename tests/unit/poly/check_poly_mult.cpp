// Products of polynomials in every ground ring: every method against the plainest one, ring axioms,
// ownership.
#include "poly/dense_mult.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

#include <cstdlib>
using namespace tolvex;
using namespace tolvex::test;

namespace {
/// The definition: every term by every term, one leaf product each, added up one by one.
poly product_by_definition(const polynode* n, const polynode* m);

/// sum += x^shift * (c * d), where c and d are coefficients; all kept.
void add_term_product(polyptrr sum, int32_t exp, const polynode* c, const polynode* d) {
    poly t = product_by_definition(c, d);
    if (!poly_iszero(t)) t = chain_node(exp, t);
    best_poly_add(*sum, t, sum);
}

poly product_by_definition(const polynode* n, const polynode* m) {
    if (is_number(n) && is_number(m)) return leaf_of(leaf_product(n->ncoef, m->ncoef));
    poly sum = zero_leaf();
    for (const polynode* s = n; s != nullptr; s = s->next)
        for (const polynode* t = m; t != nullptr; t = t->next) {
            polynode a = leaf_alone(s), b = leaf_alone(t);
            add_term_product(&sum, s->exp + t->exp, s->numb ? &a : s->pcoef, t->numb ? &b : t->pcoef);
        }
    return sum;
}

/// A ring, and whether negative exponents occur, by the number of the round.
struct Setting {
    const Ring* ring;
    Coefs coefs;
    int32_t min_exp;
};
Setting enter(Rng& rng, int round) {
    const Coefs styles[] = {Coefs::small, Coefs::digit, Coefs::two_digits,
                            Coefs::huge,  Coefs::ones,  Coefs::corners};
    Setting s;
    // Half of the rounds in Z, which has the most representations.
    s.ring = &all_rings[round % 2 ? 0 : round / 2 % all_ring_count];
    s.coefs = styles[random_int(rng, 0, 5)];
    laurent = random_int(rng, 0, 3) == 0;
    s.min_exp = laurent ? -5 : 0;
    use_ring(*s.ring);
    return s;
}
void leave() {
    laurent = 0;
    use_integers();
}

/// One method against the product already known; operands must not change.
#define EXPECT_METHOD(call, what)                                                                            \
    do {                                                                                                     \
        poly got = poly_of("1");                                                                             \
        polyptrr p = &got;                                                                                   \
        call;                                                                                                \
        EXPECT_TRUE(poly_check(got, 8)) << what;                                                             \
        EXPECT_TRUE(poly_equal(got, want))                                                                   \
            << what << ": (" << text_of(n) << ") * (" << text_of(m) << ") gives " << text_of(got);           \
        EXPECT_TRUE(poly_equal(n, n_before) && poly_equal(m, m_before)) << what << " changed an operand";    \
        free_poly(&got);                                                                                     \
    } while (0)

void compare_methods(poly n, poly m, poly want) {
    poly n_before = copy_of(n), m_before = copy_of(m);
    EXPECT_METHOD(poly_mult(n, m, p, nullptr), "poly_mult");
    EXPECT_METHOD(poly_mult(m, n, p, nullptr), "poly_mult, swapped");
    if (!is_number(n) && !is_number(m)) {
        EXPECT_METHOD(EXPECT_TRUE(packed_poly_mult(n, m, p)), "packed");
        EXPECT_METHOD(simple_standard(n, m, poly_length(n), poly_length(m), p), "simple_standard");
        if (poly_length(n) > 1 && poly_length(m) > 1)
            EXPECT_METHOD(karatsuba_poly_mult(n, m, p, nullptr), "karatsuba");
        boolean flag = 1;
        int32_t last;
        exp_poly_length(n, &last, &flag);
        exp_poly_length(m, &last, &flag);
        if (flag) {
            EXPECT_METHOD(simplest_poly_mult(n, m, p, 0, 0, 0, 0), "simplest_poly_mult");
            EXPECT_METHOD(simplest_standard(n, m, poly_length(n), poly_length(m), p), "simplest_standard");
            EXPECT_METHOD(fastest_standard(n, m, poly_length(n), poly_length(m), p), "fastest_standard");
            EXPECT_METHOD(k_fastest_poly_mult(n, m, p), "k_fastest_poly_mult");
        }
    }
    free_poly(&n_before), free_poly(&m_before);
}

PROPERTY(methods_agree, 2000) {
    int64_t live = live_records();
    Setting s = enter(rng, round);
    Shape shape = {random_int(rng, 1, 5), random_int(rng, 1, 14), random_int(rng, 1, 9), s.coefs, s.min_exp};
    poly n = random_poly(rng, shape);
    shape.terms = random_int(rng, 1, 14);
    poly m = random_int(rng, 0, 5) == 0 ? copy_of(n) : random_poly(rng, shape);
    poly want = product_by_definition(n, m);
    SCOPED_TRACE(s.ring->name);
    compare_methods(n, m, want);
    free_poly(&want);
    want = product_by_definition(n, n);
    compare_methods(n, n, want);
    free_poly(&n), free_poly(&m), free_poly(&want);
    leave();
    EXPECT_EQ(live_records(), live);
}

/// One level, dense and long enough for the arrays and for Karatsuba.
PROPERTY(methods_agree_on_long_chains, 60) {
    Setting s = enter(rng, round);
    laurent = 0;
    if (s.coefs == Coefs::huge) s.coefs = Coefs::digit;
    int32_t d1 = random_int(rng, 9, 130), d2 = random_int(rng, 9, 130);
    poly n = dense_poly(rng, d1, s.coefs), m = dense_poly(rng, d2, s.coefs);
    sub_expons(&n, -random_int(rng, 0, 40));
    poly want = nullptr;
    simple_standard(n, m, poly_length(n), poly_length(m), &want);
    SCOPED_TRACE(s.ring->name);
    compare_methods(n, m, want);
    free_poly(&want);
    simple_standard(n, n, poly_length(n), poly_length(n), &want);
    compare_methods(n, n, want);
    free_poly(&n), free_poly(&m), free_poly(&want);
    leave();
}

/// Many terms: boxes with several tiles, many buckets, keys of one and two words.
PROPERTY(large_products, 40) {
    Setting s = enter(rng, round);
    if (s.coefs == Coefs::huge) s.coefs = Coefs::two_digits;
    const int32_t top[] = {3, 12, 1000, 100000};
    Shape shape = {random_int(rng, 1, 7), random_int(rng, 40, 160), top[random_int(rng, 0, 3)], s.coefs,
                   s.min_exp};
    poly n = random_poly(rng, shape), m = random_poly(rng, shape), want = nullptr, got = nullptr;
    SCOPED_TRACE(s.ring->name);
    simple_standard(n, m, poly_length(n), poly_length(m), &want);
    poly_mult(n, m, &got, nullptr);
    EXPECT_TRUE(poly_check(got, 8));
    EXPECT_TRUE(poly_equal(got, want));
    simple_standard(n, n, poly_length(n), poly_length(n), &want);
    poly_mult(n, n, &got, nullptr);
    EXPECT_TRUE(poly_check(got, 8));
    EXPECT_TRUE(poly_equal(got, want));
    free_poly(&n), free_poly(&m), free_poly(&want), free_poly(&got);
    leave();
}

/// Boxes so crowded that one long product takes over; Karatsuba's method on the lists knows nothing of them.
PROPERTY(crowded_boxes, 24) {
    Setting s = enter(rng, round);
    const int32_t degree = s.coefs == Coefs::huge ? 120 : random_int(rng, 300, 600);
    poly n = dense_poly(rng, degree, s.coefs), m = dense_poly(rng, degree / 2, s.coefs);
    poly y = poly_of("y - x"), want = nullptr, got = nullptr;
    if (round % 3 == 0) {  // and with a second level
        poly_mult(n, y, &n, nullptr);
        poly_mult(m, y, &m, nullptr);
    }
    SCOPED_TRACE(s.ring->name);
    karatsuba_poly_mult(n, m, &want, nullptr);
    EXPECT_TRUE(packed_poly_mult(n, m, &got));
    EXPECT_TRUE(poly_check(got, 2));
    EXPECT_TRUE(poly_equal(got, want));
    simple_standard(n, n, poly_length(n), poly_length(n), &want);
    EXPECT_TRUE(packed_poly_mult(n, n, &got));
    EXPECT_TRUE(poly_equal(got, want));
    for (poly* p : {&n, &m, &y, &want, &got}) free_poly(p);
    leave();
}

/// Two levels of residues, dense enough for the two-level arrays.
PROPERTY(two_level_arrays, 30) {
    const Ring rings[] = {{2, false, ""}, {6, false, ""}, {32003, false, ""}, {2147483629, false, ""}};
    use_ring(rings[round % 4]);
    Shape shape = {2, 500, 34, Coefs::digit};
    poly n = random_poly(rng, shape), m = random_poly(rng, shape), want = nullptr, got = nullptr;
    if (!is_number(n) && !is_number(m) && try_fast_2_var(n, m)) {
        fastest_poly2_mult(n, m, &got);
        packed_poly_mult(n, m, &want);
        EXPECT_TRUE(poly_check(got, 2));
        EXPECT_TRUE(poly_equal(got, want));
        fastest_poly2_mult(n, n, &got);
        packed_poly_mult(n, n, &want);
        EXPECT_TRUE(poly_equal(got, want));
    }
    free_poly(&n), free_poly(&m), free_poly(&want), free_poly(&got);
    leave();
}

PROPERTY(ring_axioms, 1000) {
    int64_t live = live_records();
    Setting s = enter(rng, round);
    Shape shape = {random_int(rng, 1, 4), random_int(rng, 1, 9), random_int(rng, 1, 6), s.coefs, s.min_exp};
    poly a = random_poly(rng, shape), b = random_poly(rng, shape), c = random_poly(rng, shape);
    poly left = nullptr, right = nullptr, t = nullptr;
    SCOPED_TRACE(s.ring->name);
    poly_mult(a, b, &left, nullptr);  // (a b) c = a (b c)
    poly_mult(left, c, &left, nullptr);
    poly_mult(b, c, &right, nullptr);
    poly_mult(a, right, &right, nullptr);
    EXPECT_TRUE(poly_equal(left, right));
    poly_add(b, c, &left);  // a (b + c) = a b + a c
    poly_mult(a, left, &left, nullptr);
    poly_mult(a, b, &right, nullptr);
    poly_mult(a, c, &t, nullptr);
    best_poly_add(right, t, &right), t = USED_UP;
    EXPECT_TRUE(poly_equal(left, right));
    poly_sub(a, b, &left);  // (a - b) + b = a
    better_poly_add(left, b, &left);
    EXPECT_TRUE(poly_equal(left, a));
    poly_makeneg(b, &t);  // a - b = a + (-b)
    poly_sub(a, b, &left);
    poly_add(a, t, &right);
    EXPECT_TRUE(poly_equal(left, right));
    EXPECT_TRUE(poly_neg(t, b));
    for (poly* p : {&a, &b, &c, &left, &right, &t}) free_poly(p);
    leave();
    EXPECT_EQ(live_records(), live);
}

/// All versions of the sum and the difference give one value, use up what they say, and leave the rest alone.
PROPERTY(versions_of_the_sum, 1500) {
    int64_t live = live_records();
    Setting s = enter(rng, round);
    Shape shape = {random_int(rng, 1, 4), random_int(rng, 1, 10), random_int(rng, 0, 3), s.coefs, s.min_exp};
    poly n = random_poly(rng, shape), m = random_poly(rng, shape);
    if (random_int(rng, 0, 5) == 0) poly_makeneg(n, &m);
    if (random_int(rng, 0, 5) == 0) poly_assign(n, &m);
    poly n_before = copy_of(n), m_before = copy_of(m), sum = nullptr, difference = nullptr;
    poly_add(n, m, &sum);
    poly_sub(n, m, &difference);
    SCOPED_TRACE(s.ring->name);
    EXPECT_TRUE(poly_check(sum, 4) && poly_check(difference, 4));
    using Operation = void (*)(poly, poly, polyptrr);
    const struct {
        Operation operation;
        bool minus, takes_m, one_level;
    } versions[] = {{better_poly_add, false, false, false}, {best_poly_add, false, true, false},
                    {better_poly_sub, true, false, false},  {best_poly_sub, true, true, false},
                    {simplest_poly_add, false, true, true}, {simplest_poly_sub, true, true, true}};
    for (auto& v : versions) {
        if (v.one_level && (shape.levels > 1 || !modularmode)) continue;
        for (int target = 0; target < 3; target++) {  // into the first, into the second, elsewhere
            if (target == 1 && !v.takes_m) continue;
            poly a = copy_of(n), b = copy_of(m), other = poly_of("x + 5");
            poly* into = target == 0 ? &a : target == 1 ? &b : &other;
            v.operation(a, b, into);
            EXPECT_TRUE(poly_equal(*into, v.minus ? difference : sum))
                << text_of(n) << " with " << text_of(m);
            EXPECT_TRUE(poly_check(*into, 4));
            if (!v.takes_m) {
                EXPECT_TRUE(poly_equal(b, m_before));
                free_poly(&b);
            }
            free_poly(into);
            if (target != 2) free_poly(&other);
        }
    }
    EXPECT_TRUE(poly_equal(n, n_before) && poly_equal(m, m_before));
    poly_add(n, m, &n);  // the result may take the place of a kept operand
    EXPECT_TRUE(poly_equal(n, sum));
    poly_sub(n_before, m, &m);
    EXPECT_TRUE(poly_equal(m, difference));
    poly_sub(m, m, &m);
    EXPECT_TRUE(poly_iszero(m));
    for (poly* p : {&n, &m, &n_before, &m_before, &sum, &difference}) free_poly(p);
    leave();
    EXPECT_EQ(live_records(), live);
}

PROPERTY(scaling, 300) {
    int64_t live = live_records();
    Setting s = enter(rng, round);
    Shape shape = {random_int(rng, 1, 4), random_int(rng, 1, 9), random_int(rng, 1, 4), s.coefs, s.min_exp};
    poly y = random_poly(rng, shape), scaled = nullptr, c = nullptr;
    number x = {};
    random_number(rng, s.coefs, &x);
    scalar_to_poly(&x, &c);
    poly want = product_by_definition(c, y), in_place = copy_of(y);
    SCOPED_TRACE(s.ring->name);
    scalar_by_poly(&x, y, &scaled);
    EXPECT_TRUE(poly_equal(scaled, want));
    mult_num(&in_place, &x);
    EXPECT_TRUE(poly_equal(in_place, want));
    poly_assign(y, &in_place);
    if (modularmode)
        mod_num_poly_mult(&in_place, x.lint);
    else
        num_poly_mult(&in_place, &x);
    EXPECT_TRUE(poly_equal(in_place, want));
    scalar_by_poly(y->numb ? y->ncoef : leading_coef(y)->ncoef, y, &y);  // by a number of its own
    EXPECT_TRUE(poly_check(y, 4));
    free_num(&x);
    for (poly* p : {&y, &scaled, &c, &want, &in_place}) free_poly(p);
    leave();
    EXPECT_EQ(live_records(), live);
}

PROPERTY(term_times_polynomial, 300) {
    Setting s = enter(rng, round);
    Shape shape = {random_int(rng, 1, 4), random_int(rng, 1, 9), random_int(rng, 1, 4), s.coefs, s.min_exp};
    poly x = random_nonzero_poly(rng, shape), y = random_poly(rng, shape), term = nullptr, got = nullptr;
    node_assign(x, &term);
    poly want = product_by_definition(term, y), x_before = copy_of(x);
    SCOPED_TRACE(s.ring->name);
    node_by_poly(x, y, &got);  // what follows the first term of x does not count
    EXPECT_TRUE(poly_equal(got, want)) << text_of(got);
    EXPECT_TRUE(poly_equal(x, x_before));
    for (poly* p : {&x, &y, &term, &got, &want, &x_before}) free_poly(p);
    leave();
}

PROPERTY(powers, 120) {
    int64_t live = live_records();
    Setting s = enter(rng, round);
    Shape shape = {random_int(rng, 1, 4), random_int(rng, 1, 5), random_int(rng, 1, 4), s.coefs, s.min_exp};
    poly a = random_poly(rng, shape), want = poly_of("1"), got = copy_of(a);
    int32_t e = random_int(rng, 1, 12);  // beyond the characteristic of the small fields
    for (int32_t i = 0; i < e; i++) {
        poly t = product_by_definition(want, a);
        free_poly(&want);
        want = t;
    }
    SCOPED_TRACE(s.ring->name);
    compute_power(&got, e, nullptr);
    EXPECT_TRUE(poly_equal(got, want)) << text_of(a) << " ^ " << e;
    EXPECT_TRUE(poly_check(got, 4));
    for (poly* p : {&a, &want, &got}) free_poly(p);
    leave();
    EXPECT_EQ(live_records(), live);
}

/// Monomials out and in again, exponents of every level moved.
PROPERTY(monomial_there_and_back, 300) {
    laurent = 1;
    use_ring(all_rings[round % all_ring_count]);
    poly p = random_nonzero_poly(rng, {random_int(rng, 1, 4), random_int(rng, 1, 8), 4, Coefs::small, -4});
    poly before = copy_of(p);
    poly list = clear_bads(&p, round % 2 ? INT32_MAX : 0, k_leaf_depth);
    EXPECT_TRUE(poly_check(p, 4));
    EXPECT_FALSE(has_negative_exponent(p));
    eliminate_bads(&p, list, 1);
    EXPECT_TRUE(poly_equal(p, before)) << text_of(before) << " became " << text_of(p);
    free_exponent_list(&list);
    int32_t e = random_int(rng, -5, 5);
    sub_expons(&p, e);
    EXPECT_TRUE(poly_check(p, 4));
    sub_expons(&p, -e);
    EXPECT_TRUE(poly_equal(p, before));
    free_poly(&p), free_poly(&before);
    leave();
}
}  // namespace
