// Form, copies, tests, shape and levels of polynomials: fixed cases.
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "tests/support/random_poly.h"

#include <functional>
using namespace tolvex;
using namespace tolvex::test;

namespace {
using PolyForm = PolyTest;

/// exp over leaf 1
void expect_power_of_one(const polynode* p, int32_t exp) {
    ASSERT_NE(p, nullptr);
    EXPECT_FALSE(p->numb);
    EXPECT_EQ(p->exp, exp);
    ASSERT_TRUE(is_number(p->pcoef));
    EXPECT_EQ(p->pcoef->ncoef->head->value, 1);
}

TEST_F(PolyForm, level_and_depth) {
    poly five = poly_of("5"), z = nullptr;
    base_poly(&z, 3);
    EXPECT_EQ(poly_level(five), 0);
    EXPECT_EQ(poly_depth(five), 16384);
    EXPECT_EQ(poly_level(z), 3);
    EXPECT_EQ(poly_depth(z), 3);
    free_poly(&five), free_poly(&z);
}

TEST_F(PolyForm, examples_of_the_tree) {
    poly x = poly_of("x"), y = poly_of("y"), xy = poly_of("x*y"), sum = poly_of("x + y"), five = poly_of("5");
    expect_power_of_one(x, 1);
    EXPECT_EQ(y->exp, 0);
    expect_power_of_one(y->pcoef, 1);
    EXPECT_EQ(xy->exp, 1);
    expect_power_of_one(xy->pcoef, 1);
    expect_power_of_one(sum, 1);
    ASSERT_NE(sum->next, nullptr);
    EXPECT_EQ(sum->next->exp, 0);
    EXPECT_FALSE(sum->next->numb);
    expect_power_of_one(sum->next->pcoef, 1);
    EXPECT_TRUE(is_number(five));
    poly base = nullptr;
    base_poly(&base, 2);
    EXPECT_TRUE(poly_equal(base, y));
    for (poly* p : {&x, &y, &xy, &sum, &five, &base}) free_poly(p);
}

TEST_F(PolyForm, constant_term_is_a_leaf_of_the_chain) {
    poly p = poly_of("x + 5");
    ASSERT_NE(p->next, nullptr);
    EXPECT_TRUE(p->next->numb);
    EXPECT_EQ(p->next->exp, 0);
    EXPECT_EQ(p->next->ncoef->head->value, 5);
    EXPECT_EQ(poly_length(p), 2);
    free_poly(&p);
}

TEST_F(PolyForm, zero_is_told_from_a_chain_that_begins_with_zero) {
    poly zero = poly_of("0");
    EXPECT_TRUE(poly_iszero(zero));
    EXPECT_TRUE(node_iszero(zero));
    poly chain = zero_leaf();
    new_term(&chain->next, -1, poly_of("1"));
    EXPECT_FALSE(poly_iszero(chain));
    EXPECT_TRUE(node_iszero(chain));
    free_poly(&zero), free_poly(&chain);
}

TEST_F(PolyForm, remove_dummy_and_fix_top) {
    poly p;
    new_term(&p, 0, poly_of("7"));
    remove_dummy(&p);
    EXPECT_EQ(text_of(p), "7");
    free_poly(&p);
    poly q = poly_of("x");
    new_term(&q->next, 0, poly_of("3"));
    fix_top(&q);
    poly want = poly_of("x + 3");
    EXPECT_TRUE(poly_equal(q, want));
    free_poly(&q), free_poly(&want);
    fix_top(&q);
    EXPECT_TRUE(poly_iszero(q));
    free_poly(&q);
    new_term(&q, 0, poly_of("4"));
    fix_top(&q);
    EXPECT_TRUE(is_number(q));
    free_poly(&q);
}

TEST_F(PolyForm, mini_copy_moves) {
    poly p = poly_of("x^2 + y"), want = copy_of(p), q = poly_of("99");
    mini_copy(&p, &q);
    EXPECT_TRUE(poly_equal(q, want));
    EXPECT_TRUE(poly_iszero(p));
    free_poly(&p), free_poly(&q), free_poly(&want);
}

TEST_F(PolyForm, copies_onto_themselves) {
    poly p = poly_of("x^2*y + 3*y - 2"), want = copy_of(p);
    poly_assign(p, &p);
    EXPECT_TRUE(poly_equal(p, want));
    spec_poly_assign(p, &p);
    EXPECT_TRUE(poly_equal(p, want));
    poly_makeneg(p, &p);
    EXPECT_TRUE(poly_neg(p, want));
    poly_inplace(p);
    EXPECT_TRUE(poly_equal(p, want));
    poly_inplace(p);
    poly_abs(p);
    EXPECT_TRUE(poly_equal(p, want));
    poly_abs(p);
    EXPECT_TRUE(poly_equal(p, want));
    node_assign(p, &p);
    EXPECT_EQ(text_of(p), "1*x^2*y");
    free_poly(&p), free_poly(&want);
}

TEST_F(PolyForm, scalars) {
    number n = {};
    setvalue(123456, &n);
    poly p = nullptr;
    scalar_to_poly(&n, &p);
    EXPECT_EQ(text_of(p), "123456");
    poly_set(-3, &p);
    poly_to_scalar(p, &n);
    EXPECT_TRUE(is_longint(&n, -3));
    poly_set(INT32_MIN, &p);
    EXPECT_EQ(text_of(p), "-2147483648");
    special_free(&n);
    free_poly(&p);
}

TEST_F(PolyForm, units) {
    poly one = poly_of("1"), minus = poly_of("-1"), two = poly_of("2"), x = poly_of("x");
    EXPECT_TRUE(poly_eq_1(one) && !poly_eq_1(minus) && !poly_eq_1(two) && !poly_eq_1(x));
    EXPECT_TRUE(poly_eq_m1(minus) && !poly_eq_m1(one) && !poly_eq_m1(x));
    EXPECT_TRUE(poly_eq_pm1(one) && poly_eq_pm1(minus) && !poly_eq_pm1(two));
    for (poly* p : {&one, &minus, &two, &x}) free_poly(p);
    use_ring(7);
    poly six = poly_of("6");
    EXPECT_TRUE(poly_eq_m1(six) && poly_eq_pm1(six) && !poly_eq_1(six));
    free_poly(&six);
    use_ring(256, true);
    one = poly_of("1");
    EXPECT_TRUE(poly_eq_m1(one) && poly_eq_1(one));
    free_poly(&one);
}

TEST_F(PolyForm, monomials) {
    const char* yes[] = {"5", "0", "x", "3*x^2*z", "z^7"};
    const char* no[] = {"x + 1", "x*y + x", "z + t"};
    for (const char* text : yes) {
        poly p = poly_of(text);
        EXPECT_TRUE(monomial(p)) << text;
        free_poly(&p);
    }
    for (const char* text : no) {
        poly p = poly_of(text);
        EXPECT_FALSE(monomial(p)) << text;
        free_poly(&p);
    }
}

TEST_F(PolyForm, monomials_are_inserted_in_place) {
    Rng rng{run_seed()};
    for (bool negative : {false, true}) {
        laurent = negative;
        int32_t low = negative ? -3 : 0, added = 0, refused = 0;
        for (int round = 0; round < 4000; round++) {
            pick_ring(round);
            Shape shape = {random_int(rng, 1, 4), random_int(rng, 1, 12), 3, Coefs::corners, low};
            Shape single = {shape.levels, 1, 4, Coefs::corners, low};
            poly p = random_nonzero_poly(rng, shape), t = random_nonzero_poly(rng, single), sum = nullptr;
            poly grown = copy_of(p);
            poly_add(p, t, &sum);
            bool fits = !is_number(p) && !is_number(t) && monomial(t);
            if (fits && insert_monomial(&grown, t)) {
                added++;
                EXPECT_TRUE(poly_check(grown, shape.levels));
                EXPECT_TRUE(poly_equal(grown, sum)) << text_of(p) << " " << text_of(sum);
            } else {
                refused += fits;
                EXPECT_TRUE(poly_equal(grown, p));
                free_poly(&t);
            }
            free_poly(&p), free_poly(&grown), free_poly(&sum);
        }
        EXPECT_GT(added, 1000);
        EXPECT_GT(refused, 20);
    }
    laurent = 0;
    use_integers();
}

TEST_F(PolyForm, shapes) {
    poly p = poly_of("2*x^3*y^2 + x^3*z + 4*x*y + 7*x*z^5 + 6");
    EXPECT_EQ(text_of(leading_coef(p)), "2");
    EXPECT_EQ(real_degree(p, 1), 3);
    EXPECT_EQ(real_degree(p, 2), 2);
    EXPECT_EQ(real_degree(p, 3), 0);
    EXPECT_EQ(poly_length(p), 3);
    EXPECT_EQ(poly_terms(p), 5);
    EXPECT_EQ(text_of(lastnode(p)), "6");
    EXPECT_EQ(lastnum(p), lastnode(p));
    EXPECT_EQ(lastexp(p), 0);
    poly q = poly_of("x^4 + x^2*y^9 + x^2*y^3");
    EXPECT_EQ(lastexp(q), 3);
    EXPECT_EQ(lastnum(q), lastnode(q)->pcoef);
    EXPECT_FALSE(has_negative_exponent(p));
    EXPECT_FALSE(neg_leading_term(p));
    free_poly(&p), free_poly(&q);
    poly r = poly_of("-3*x + 5");
    EXPECT_TRUE(neg_leading_term(r));
    free_poly(&r);
}

TEST_F(PolyForm, size_of_a_leaf) {
    struct {
        const char* text;
        int32_t top_bit;
    } cases[] = {{"1", 0}, {"-1", 0}, {"255", 7}, {"-256", 8}, {"268435455", 27}, {"268435456", 28}};
    for (auto& c : cases) {
        poly p = poly_of(c.text);
        EXPECT_EQ(p_size_of(p), c.top_bit) << c.text;
        free_poly(&p);
    }
    use_ring(1000003);
    poly p = poly_of("1000002");  // plain, not folded to -1
    EXPECT_EQ(p_size_of(p), 19);
    free_poly(&p);
}

TEST_F(PolyForm, exp_poly_length_marks_sparse_chains) {
    int32_t last;
    boolean flag = 1;
    poly p = poly_of("x^12 + x"), q = poly_of("x^13 + 1");
    EXPECT_EQ(exp_poly_length(p, &last, &flag), 2);  // spread 11, at most 12
    EXPECT_EQ(last, 1);
    EXPECT_FALSE(flag);  // over the integers
    EXPECT_EQ(exp_poly_length(q, &last, &flag), -2);
    EXPECT_EQ(last, 0);
    free_poly(&p), free_poly(&q);
    use_ring(101);
    p = poly_of("x^2 + x + 3"), q = poly_of("x^2 + y");
    flag = 1;
    EXPECT_EQ(exp_poly_length(p, &last, &flag), 3);
    EXPECT_TRUE(flag);
    exp_poly_length(q, &last, &flag);
    EXPECT_FALSE(flag);
    exp_poly_length(p, &last, &flag);
    EXPECT_FALSE(flag);  // it never comes back
    free_poly(&p), free_poly(&q);
    laurent = 1;
    p = poly_of("x + x^-1");
    flag = 1;
    EXPECT_EQ(exp_poly_length(p, &last, &flag), 2);
    EXPECT_EQ(last, -1);
    EXPECT_FALSE(flag);
    free_poly(&p);
}

TEST_F(PolyForm, check_finds_faults) {
    poly good = poly_of("x^2*z + y + 3"), zero = poly_of("0");
    EXPECT_TRUE(poly_check(good, 3));
    EXPECT_FALSE(poly_check(good, 2));  // deeper than the variables
    EXPECT_TRUE(poly_check(zero, 0));
    EXPECT_FALSE(poly_check(nullptr, 3));
    free_poly(&good);
    poly dummy;
    new_term(&dummy, 0, poly_of("1"));
    EXPECT_FALSE(poly_check(dummy, 1));
    free_poly(&dummy);
    poly rising = poly_of("x");
    new_term(&rising->next, 1, poly_of("1"));
    EXPECT_FALSE(poly_check(rising, 1));
    free_poly(&rising);
    poly empty;
    new_term(&empty, 2, poly_of("0"));
    EXPECT_FALSE(poly_check(empty, 1));
    free_poly(&empty), free_poly(&zero);
    laurent = 1;
    poly l = poly_of("5 + x^-1");
    EXPECT_TRUE(l->numb && l->next != nullptr);
    EXPECT_TRUE(poly_check(l, 1));
    laurent = 0;
    EXPECT_FALSE(poly_check(l, 1));
    free_poly(&l);
}

TEST_F(PolyForm, laurent_chains) {
    laurent = 1;
    poly p = poly_of("5 + x^-1");
    EXPECT_EQ(poly_level(p), 1);
    EXPECT_FALSE(is_number(p));
    EXPECT_TRUE(has_negative_exponent(p));
    poly node = nullptr;
    node_assign(p, &node);
    EXPECT_TRUE(is_number(node));
    sub_expons(&p, -1);
    EXPECT_EQ(text_of(p), "5*x + 1");
    EXPECT_TRUE(poly_check(p, 1));
    sub_expons(&p, 1);
    poly want = poly_of("5 + x^-1");
    EXPECT_TRUE(poly_equal(p, want));
    free_poly(&p), free_poly(&node), free_poly(&want);
}

TEST_F(PolyForm, monomial_factors) {
    laurent = 1;
    struct {
        const char *text, *cleared_common, *cleared_negative;
    } cases[] = {
        {"x^2*y + x^3", "y + x", "x^2*y + x^3"},
        {"x^-2*z + x*z^2", "1 + x^3*z", "z + x^3*z^2"},
        {"y^-1", "1", "1"},
        {"x + y^-3", "x*y^3 + 1", "x*y^3 + 1"},
        {"x^5", "1", "x^5"},
        {"y^2 + y^4*z", "1 + y^2*z", "y^2 + y^4*z"},
        {"7", "7", "7"},
    };
    for (auto& c : cases)
        for (int common = 0; common < 2; common++) {
            poly p = poly_of(c.text), original = copy_of(p);
            poly want = poly_of(common ? c.cleared_common : c.cleared_negative);
            poly list = clear_bads(&p, common ? INT32_MAX : 0, k_leaf_depth);
            EXPECT_TRUE(poly_equal(p, want)) << c.text << " gives " << text_of(p);
            EXPECT_TRUE(poly_check(p, 6)) << c.text;
            eliminate_bads(&p, list, 1);
            EXPECT_TRUE(poly_equal(p, original)) << c.text << " back: " << text_of(p);
            free_exponent_list(&list);
            free_poly(&p), free_poly(&original), free_poly(&want);
        }
    poly p = poly_of("x*y^2 + x*y^3"), want = poly_of("y^2 + y^3");  // only down to the given level
    poly list = clear_bads(&p, INT32_MAX, 1);
    EXPECT_TRUE(poly_equal(p, want));
    free_exponent_list(&list);
    EXPECT_EQ(list, nullptr);
    poly zero = poly_of("0");
    sub_expons(&zero, 4);
    EXPECT_TRUE(poly_iszero(zero));
    free_poly(&p), free_poly(&want), free_poly(&zero);
}

TEST_F(PolyForm, variables_that_occur) {
    poly p = poly_of("x^2 + z*t + 3");
    EXPECT_EQ(driver_poly_vars(p), 3);
    int16_t list[k_levels] = {};
    EXPECT_EQ(poly_vars(p, 0, list), 3);
    EXPECT_TRUE(list[1] && !list[2] && list[3] && list[4]);
    EXPECT_TRUE(poly_contains_level(p, 4));
    EXPECT_FALSE(poly_contains_level(p, 2));
    poly n = poly_of("9");
    EXPECT_EQ(driver_poly_vars(n), 0);
    free_poly(&p), free_poly(&n);
}

TEST_F(PolyForm, level_put_in_and_taken_out) {
    struct {
        const char* text;
        int32_t level;
        const char* want;
    } cases[] = {
        {"x^2 + y", 1, "y^2 + z"}, {"x^2 + y", 2, "x^2 + z"}, {"x^2*y + y", 3, "x^2*y + y"}, {"4", 1, "4"}};
    for (auto& c : cases) {
        poly p = poly_of(c.text), original = copy_of(p), want = poly_of(c.want);
        poly_insert_level(&p, c.level);
        EXPECT_TRUE(poly_equal(p, want)) << text_of(p);
        EXPECT_TRUE(poly_check(p, 6));
        remove_one(&p, c.level);
        EXPECT_TRUE(poly_equal(p, original)) << text_of(p);
        free_poly(&p), free_poly(&original), free_poly(&want);
    }
}

#ifndef TOLVEX_POOLS_DIRECT
/// Slugs in use, with empty free lists in front of them, so that every record is drawn from its stash.
struct Slugs {
    int64_t nodes, numbers, digits;
};
Slugs drawn_by(const std::function<void()>& work) {
    while (free_waiting(INT32_MAX)) {
    }
    poly held_nodes = polygarb;
    imptr held_numbers = imhead;
    numptr held_digits = numhead;
    polygarb = nullptr, imhead = nullptr, numhead = nullptr;
    Slugs s = {-polystash->slugs_used, -imagstash->slugs_used, -numstash->slugs_used};
    work();
    s.nodes += polystash->slugs_used, s.numbers += imagstash->slugs_used, s.digits += numstash->slugs_used;
    if (held_nodes != nullptr) polygarb = held_nodes;
    if (held_numbers != nullptr) imhead = held_numbers;
    if (held_digits != nullptr) numhead = held_digits;
    return s;
}

/// A term is one node of 24 bytes and, at the lowest level, a leaf node and a number with its chain; residues
/// have both records as well, but no chain.
TEST_F(PolyForm, records_of_a_term) {
    EXPECT_EQ(sizeof(polynode), 24u);
    EXPECT_EQ(polystash->slug_size, 24);
    EXPECT_EQ(imagstash->slug_size, 32);
    EXPECT_EQ(numstash->slug_size, 16);
    constexpr int32_t k_terms = 1000;
    struct {
        int32_t modulus;
        bool table_field;
        const char* coefficient;
        int64_t digits;
    } cases[] = {{0, false, "7", 1},     {0, false, "268435456", 2},  {0, false, "123456789123456789", 3},
                 {32003, false, "7", 0}, {2147483646, false, "7", 0}, {256, true, "7", 0},
                 {65536, true, "7", 0}};
    for (auto& c : cases) {
        use_ring(c.modulus, c.table_field);
        poly number = poly_of(c.coefficient), one_level = nullptr, two_levels = nullptr, copy = nullptr;
        polyptrr at = &one_level;
        for (int32_t e = k_terms; e > 0; e--, at = &(*at)->next) *at = chain_node(e, copy_of(number));
        *at = nullptr;
        Slugs s = drawn_by([&] { poly_assign(one_level, &copy); });
        EXPECT_EQ(s.nodes, 2 * k_terms) << c.modulus << ' ' << c.coefficient;
        EXPECT_EQ(s.numbers, k_terms);
        EXPECT_EQ(s.digits, k_terms * c.digits);
        free_poly(&copy);
        at = &two_levels;  // a dummy costs a node as well
        for (int32_t e = k_terms; e >= 0; e--, at = &(*at)->next)
            *at = chain_node(e, chain_node(1, copy_of(number)));
        *at = nullptr;
        EXPECT_TRUE(poly_check(two_levels, 2));
        s = drawn_by([&] { poly_assign(two_levels, &copy); });
        EXPECT_EQ(s.nodes, 3 * (k_terms + 1));
        EXPECT_EQ(s.numbers, k_terms + 1);
        EXPECT_EQ(s.digits, (k_terms + 1) * c.digits);
        for (poly* p : {&number, &one_level, &two_levels, &copy}) free_poly(p);
    }
}
#endif

TEST_F(PolyForm, long_constants_of_a_text) {
    poly got = poly_of("999999999999999999*x - 100000000000000000"), a = poly_of("999999999"),
         b = poly_of("1000000001*x"), c = poly_of("100000000"), d = poly_of("1000000000");
    poly_mult(a, b, &a, nullptr);
    poly_mult(c, d, &c, nullptr);
    best_poly_sub(a, c, &a);
    EXPECT_TRUE(poly_check(got, 1));
    EXPECT_TRUE(poly_equal(got, a)) << text_of(got);
    for (poly* p : {&got, &a, &b, &d}) free_poly(p);
}

TEST_F(PolyForm, variable_table) {
    use_variables(0);
    tokentipe name = {};
    int32_t depth = 0;
    for (const char* text : {"b", "c", "a"}) {
        tok_set(name, text);
        insert_poly_name(name, text[0] == 'c');
    }
    EXPECT_EQ(number_polys, 3);  // a b c
    const char* order[] = {"a", "b", "c"};
    for (int32_t i = 0; i < 3; i++) {
        tok_set(name, order[i]);
        polypt v = nullptr;
        EXPECT_TRUE(is_poly_name2(name, &depth, &v));
        EXPECT_EQ(depth, i + 1);
        EXPECT_EQ(v->depth, i + 1);
        EXPECT_EQ(v->polycut, poly_cutoff);
        EXPECT_EQ(its_a_polyname(name), i + 1);
    }
    tok_set(name, "bb");
    EXPECT_FALSE(is_poly_name(name, &depth));
    EXPECT_EQ(its_a_polyname(name), 0);
    polynames->next->polycut = 33;
    reset_cutoffs(60);
    EXPECT_EQ(polynames->polycut, 60);
    EXPECT_EQ(polynames->next->polycut, 33);
    delete_poly_name(2);
    tok_set(name, "c");
    EXPECT_EQ(its_a_polyname(name), 2);
    use_variables(0);
    EXPECT_EQ(number_polys, 0);
}

TEST_F(PolyForm, variable_151_is_refused) {
    use_variables(150);
    tokentipe name = {};
    tok_set(name, "onemore");
    EXPECT_TRUE(RAISES(insert_poly_name(name, 1)));
    EXPECT_EQ(caught.code, 228);
    EXPECT_EQ(number_polys, 150);
    poly deep = nullptr;
    base_poly(&deep, 150);
    EXPECT_TRUE(poly_check(deep, 150));
    EXPECT_EQ(poly_level(deep), 150);
    EXPECT_EQ(driver_poly_vars(deep), 1);
    free_poly(&deep);
    use_variables(0);
}

TEST_F(PolyForm, internal_names) {
    int32_t count = 0;
    for (polypt v = dodo; v != nullptr; v = v->next) count++;
    EXPECT_EQ(count, 78);
    EXPECT_STREQ(tok_text(dodo->let), "a1");
    EXPECT_STREQ(tok_text(dodo->next->next->next->let), "b1");
    EXPECT_TRUE(poly_eq_1(poly_1));
    use_ring(5);
    EXPECT_TRUE(poly_eq_1(poly_1));
}

TEST_F(PolyForm, change_of_ring) {
    poly p = poly_of("6*x + 5*y*x - 7*y + 13"), image = nullptr, original = copy_of(p);
    use_ring(6);
    poly_image(p, &image);
    poly want = poly_of("5*x*y + 5*y + 1");
    EXPECT_TRUE(poly_equal(image, want)) << text_of(image);
    free_poly(&want);
    poly q = copy_of(image), lifted = nullptr, lifted_symmetric = nullptr;
    poly_lift(image, false, &lifted);
    poly_lift(image, true, &lifted_symmetric);
    poly_change_from_mod(&image);
    poly_change_from_mod_symmetric(&q);
    use_integers();
    EXPECT_TRUE(poly_equal(p, original)) << text_of(p);  // it has only been read
    poly plain = poly_of("5*x*y + 5*y + 1"), symmetric = poly_of("-x*y - y + 1");
    EXPECT_TRUE(poly_equal(image, plain)) << text_of(image);
    EXPECT_TRUE(poly_equal(lifted, plain)) << text_of(lifted);
    EXPECT_TRUE(poly_equal(q, symmetric)) << text_of(q);
    EXPECT_TRUE(poly_equal(lifted_symmetric, symmetric)) << text_of(lifted_symmetric);
    for (poly* t : {&p, &q, &image, &lifted, &lifted_symmetric, &plain, &symmetric, &original}) free_poly(t);
}

TEST_F(PolyForm, everything_vanishes_in_the_image) {
    poly p = poly_of("6*x + 12*y - 18"), image = nullptr;
    use_ring(3);
    poly_image(p, &image);
    EXPECT_TRUE(poly_iszero(image));
    free_poly(&image);
    use_integers();
    special_free_poly(&p);
    p = poly_of("2*x*y + 3");  // the chain collapses to the constant
    use_ring(2);
    poly_image(p, &image);
    EXPECT_TRUE(poly_eq_1(image));
    free_poly(&image);
    special_free_poly(&p);
}

TEST_F(PolyForm, integers_go_into_a_table_field_modulo_2) {
    poly p = poly_of("6*x + 5*y - 7");
    use_ring(256, true);
    poly image = nullptr;
    poly_image(p, &image);
    EXPECT_EQ(text_of(image), "1*y + 1");
    free_poly(&image);
    special_free_poly(&p);
}

TEST_F(PolyForm, release_whatever_the_mode) {
    poly p = poly_of("1000000000000*x + y");
    use_ring(7);
    special_free_poly(&p);
    EXPECT_EQ(p, nullptr);
    special_free_poly(&p);
    free_poly(&p);
}

TEST_F(PolyForm, words_of_lintmode) {
    lintmode = 1;
    poly p = nullptr, q = nullptr;
    poly_set(2147483647, &p);
    poly_set(1, &q);
    best_poly_add(p, q, &p);
    EXPECT_EQ(p->ncoef->lint, INT32_MIN);  // wraps
    poly_inplace(p);
    EXPECT_EQ(p->ncoef->lint, INT32_MIN);
    free_poly(&p);
}

TEST_F(PolyForm, pads) {
    poly n = poly_of("5"), p = poly_of("x + 1"), want = poly_of("z + 1");
    add_pad(&n, 3);
    EXPECT_TRUE(is_number(n));
    add_pad(&p, 2);
    EXPECT_TRUE(poly_equal(p->pcoef->pcoef, want->pcoef->pcoef));
    EXPECT_EQ(poly_level(p), 3);
    free_poly(&n), free_poly(&p), free_poly(&want);
}
}  // namespace
