// Values for variables: fixed corners, sums and products of values, and levels that are exchanged and put
// back.
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/residue.h"
#include "poly/div_internal.h"
#include "poly/evaluate.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

using namespace tolvex;
using namespace tolvex::test;
namespace {
/// Appends a node to a list of values; nil: the variable stays.
void add_value(polyptrr list, poly value) {
    while (*list != nullptr) list = &(*list)->next;
    if (value != nullptr && is_number(value))
        *list = value;
    else
        new_term(list, 0, value);
}

poly list_of(std::initializer_list<const char*> values) {
    poly list = nullptr;
    for (const char* v : values) add_value(&list, v == nullptr ? nullptr : poly_of(v));
    return list;
}

void free_list(polyptrr list) {  // a node without a value is not a legal polynomial
    while (*list != nullptr) {
        poly next = (*list)->next;
        (*list)->next = nullptr;
        if (!(*list)->numb && (*list)->pcoef == nullptr)
            free_node(*list);
        else
            free_poly(list);
        *list = next;
    }
}

int32_t residue_at_all(poly p, std::initializer_list<const char*> values) {
    poly list = list_of(values);
    int32_t ans = -1;
    mod_all_poly_eval(p, list, &ans);
    free_list(&list);
    return ans;
}

std::string value_text(const char* p, std::initializer_list<const char*> values) {
    PolyGuard q(poly_of(p)), r;
    poly list = list_of(values);
    all_poly_eval(&q, list, &r, 1);
    free_list(&list);
    EXPECT_TRUE(poly_check(r, number_polys));
    return text_of(r);
}

std::string at_number(const char* p, const char* n2, bool addpad) {
    PolyGuard q(poly_of(p)), n(poly_of(n2)), r;
    poly_at_numb(&r, q, n, polynames, addpad);
    EXPECT_TRUE(poly_check(r, number_polys));
    return text_of(r);
}
}  // namespace

TEST(Evaluate, residues_at_zero_give_the_constant_term) {
    set_up_once();
    use_variables(3);
    use_ring(101);
    PolyGuard p(poly_of("x^2 y + 3 x z + y^2 + 5 z + 17")), q(poly_of("x + y z"));
    EXPECT_EQ(residue_at_all(p, {"0", "0", "0"}), 17);
    EXPECT_EQ(residue_at_all(q, {"0", "0", "0"}), 0);
    EXPECT_EQ(residue_at_all(p, {"0", "2", "0"}), 21);
    EXPECT_EQ(residue_at_all(p, {"2", "0", "3"}), 18 + 15 + 17);
    EXPECT_EQ(residue_at_all(poly_1, {"5"}), 1);
    EXPECT_EQ(residue_at_all(poly_1, {}), 1);
    use_integers();
}

TEST(Evaluate, long_gaps_are_reduced_modulo_primes_alone) {
    set_up_once();
    use_variables(1);
    for (int32_t m : {7, 9, 2, 15, 101, 2147483629}) {
        use_ring(m);
        for (int32_t e = 0; e <= 40; e++)
            for (int32_t a = 1; a < 7; a++) {
                PolyGuard p(term_poly(1, &e, 1));
                int32_t expected = 1 % m, x = a % m, list_value = x;
                for (int32_t i = 0; i < e; i++)
                    expected = modmult(static_cast<uint32_t>(expected), static_cast<uint32_t>(x));
                std::string text = std::to_string(list_value);
                if (x == 0 && e == 0) continue;
                EXPECT_EQ(residue_at_all(p, {text.c_str()}), expected) << a << "^" << e << " mod " << m;
            }
    }
    use_ring(7);
    PolyGuard g20(poly_of("x^20")), g18(poly_of("x^18")), g15(poly_of("x^15"));
    EXPECT_EQ(residue_at_all(g20, {"3"}), 2);
    EXPECT_EQ(residue_at_all(g18, {"3"}), 1);
    EXPECT_EQ(residue_at_all(g15, {"3"}), 6);
    use_integers();
}

TEST(Evaluate, lists_that_end_early_are_faults) {
    set_up_once();
    use_variables(2);
    use_ring(101);
    PolyGuard p(poly_of("x y + 1"));
    poly list = list_of({"3"});
    int32_t ans = 0;
    EXPECT_TRUE(RAISES(mod_all_poly_eval(p, list, &ans)));
    EXPECT_STREQ(caught.text, "arg is NULL but q not number in mod_all_poly_eval. ");
    EXPECT_TRUE(RAISES(mod_all_poly_eval(p, nullptr, &ans)));
    list->exp = 1;
    EXPECT_TRUE(RAISES(mod_all_poly_eval(p, list, &ans)));
    EXPECT_STREQ(caught.text, "arg->exp = 1 in mod_all_poly_eval. ");
    list->exp = 0;
    free_list(&list);
    use_integers();
}

TEST(Evaluate, top_variable_replaced) {
    set_up_once();
    use_integers();
    use_variables(3);
    // the value stands one level down: its x is the y of the operand
    EXPECT_EQ(at_number("x^2", "x + 1", true), "1*y^2 + 2*y + 1");
    EXPECT_EQ(at_number("x^2", "x + 1", false), "1*x^2 + 2*x + 1");
    EXPECT_EQ(at_number("17", "5", true), "17");
    EXPECT_EQ(at_number("x^3 y + x + 1", "2", true), "8*y + 3");
    EXPECT_EQ(at_number("x^3 y + x + 1", "0", true), "1");
    EXPECT_EQ(at_number("x^3 y - y", "1", true), "0");
    EXPECT_EQ(at_number("y z", "9", true), "1*y*z");
    EXPECT_EQ(at_number("x - y", "x", false), "0");
}

TEST(Evaluate, lists_keep_the_main_variable) {
    set_up_once();
    use_integers();
    use_variables(4);
    EXPECT_EQ(value_text("x^2 y + x z + t", {"2", "3", "5"}), "2*x^2 + 3*x + 5");
    EXPECT_EQ(value_text("x^2 y + x z + t", {"0", "0", "0"}), "0");
    EXPECT_EQ(value_text("x^2 y + x z + t", {"2"}), "2*x^2 + 1*x*z + 1*t");
    EXPECT_EQ(value_text("x^2 y + x z + t", {nullptr, "3"}), "1*x^2*y + 3*x + 1*t");
    EXPECT_EQ(value_text("x^2 y - x^2 z", {nullptr, "3", nullptr}), "1*x^2*y + -3*x^2");
    EXPECT_EQ(value_text("x y^2 + y", {"x + 1"}), "1*x*z^2 + 2*x*z + 1*x + 1*z + 1");
    EXPECT_EQ(value_text("x y - x z", {"x"}), "0");
    EXPECT_EQ(value_text("y^3 z", {"2", "5"}), "40");
    EXPECT_EQ(value_text("9", {"2", "5"}), "9");
    use_ring(7);
    EXPECT_EQ(value_text("x y + 5 z", {"3", "5"}), "3*x + 4");
    EXPECT_EQ(value_text("x y + 5 z", {"3", nullptr}), "3*x + 5*z");
    use_integers();
}

// The value of a product is the product of the values, that of a sum the sum; lists and single levels agree.
PROPERTY(values_of_sums_and_products, 3000) {
    const Ring& ring = all_rings[round % all_ring_count];
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(4);
    int64_t before = live_records();
    {
        Shape s{4, 6, 4};
        if (round % 5 == 0) s.max_exp = 40;
        PolyGuard p(random_nonzero_poly(rng, s)), q(random_nonzero_poly(rng, s)), sum, product;
        poly_add(p, q, &sum);
        poly_mult(p, q, &product, polynames);
        poly list = nullptr;
        for (int32_t k = 0, n = random_int(rng, 0, 3); k < n; k++) {
            poly v = nullptr;
            int32_t kind = random_int(rng, 0, 3);
            if (kind == 1) v = random_poly(rng, 2 - k > 0 ? 2 - k : 1, 2, 2);
            if (k == 2 && v != nullptr && !is_number(v)) free_poly(&v);
            if (kind >= 2) {
                v = zero_leaf();
                random_number(rng, Coefs::small, v->ncoef);
            }
            add_value(&list, v);
        }
        PolyGuard a, b, c, d, t;
        all_poly_eval(&p, list, &a, 1);
        all_poly_eval(&q, list, &b, 1);
        all_poly_eval(&sum, list, &c, 1);
        all_poly_eval(&product, list, &d, 1);
        poly_add(a, b, &t);
        EXPECT_TRUE(poly_equal(t, c)) << text_of(p) << " and " << text_of(q);
        poly_mult(a, b, &t, polynames);
        EXPECT_TRUE(poly_equal(t, d)) << text_of(p) << " and " << text_of(q);
        EXPECT_TRUE(poly_check(d, 4));
        old_all_poly_eval(&product, list, 1);
        EXPECT_TRUE(poly_equal(product, d));
        free_list(&list);
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

// All variables at numbers: the routine for numbers, the list, and one level after the other.
PROPERTY(numbers_for_all_variables, 2000) {
    const Ring& ring = all_rings[round % all_ring_count];
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(4);
    int64_t before = live_records();
    {
        PolyGuard p(random_nonzero_poly(rng, Shape{3, 8, round % 3 == 0 ? 50 : 5}));
        poly list = nullptr;
        for (int32_t k = 0; k < 3; k++) {
            poly v = zero_leaf();
            random_number(rng, Coefs::small, v->ncoef);
            add_value(&list, v);
        }
        PolyGuard one_by_one(copy_of(p)), padded(copy_of(p)), all, direct(zero_leaf());
        for (poly v = list; v != nullptr; v = v->next) {
            PolyGuard n(copy_of(poly_1));
            node_assign(v, &n);
            if (modularmode)
                poly_at_numb(&one_by_one, one_by_one, n, polynames, 0);
            else
                poly_at_numb(&one_by_one, one_by_one, n, polynames, 0);
        }
        ASSERT_TRUE(is_number(one_by_one));
        if (modularmode)
            mod_all_poly_eval(p, list, &direct.p->ncoef->lint);
        else
            rat_all_poly_eval(p, list, direct.p->ncoef);
        EXPECT_TRUE(poly_equal(direct, one_by_one)) << text_of(p);
        add_pad(&padded, 1);  // the main variable of the list form stays
        all_poly_eval(&padded, list, &all, 1);
        EXPECT_TRUE(poly_equal(all, one_by_one)) << text_of(p);
        free_list(&list);
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

TEST(Evaluate, coefficients_in_a_deeper_variable) {
    set_up_once();
    use_integers();
    use_variables(3);
    struct Row {
        int32_t k, e;
        const char* coefficient;
    };
    PolyGuard p(poly_of("x^2 y^3 + 2 x y^3 z + 5 x^2 + 7 y^3 + 9"));
    const Row rows[] = {
        {0, 2, "1*y^3 + 5"}, {0, 0, "7*y^3 + 9"},         {0, 1, "2*y^3*z"},
        {0, 3, "0"},         {1, 3, "1*x^2 + 2*x*z + 7"}, {1, 0, "5*x^2 + 9"},
        {1, 1, "0"},         {2, 1, "2*x*y^3"},           {2, 0, "1*x^2*y^3 + 5*x^2 + 7*y^3 + 9"}};
    for (const Row& row : rows) {
        PolyGuard s;
        extract_coef(p, &s, row.k, row.e);
        EXPECT_EQ(text_of(s), row.coefficient) << row.k << " " << row.e;
        EXPECT_TRUE(poly_check(s, 3));
    }
    PolyGuard s;
    extract_coef(poly_1, &s, 1, 0);
    EXPECT_EQ(text_of(s), "1");
    extract_coef(poly_1, &s, 1, 2);
    EXPECT_EQ(text_of(s), "0");
}

// A variable goes to the top and back; its coefficients are those that extract_coef finds.
PROPERTY(levels_exchanged_and_put_back, 2000) {
    const Ring& ring = all_rings[round % all_ring_count];
    use_ring(ring);
    use_variables(5);
    int64_t before = live_records();
    {
        int32_t lev = random_int(rng, 1, 4);
        PolyGuard p(random_nonzero_poly(rng, Shape{4, 9, 3})), up, back, x, y, value, by_value, direct;
        PolyGuard padded(copy_of(p));
        add_pad(&padded, 1);
        base_poly(&x, 1);
        base_poly(&y, lev + 1);
        case_two(padded, &up, static_cast<int16_t>(lev + 1), x, polynames);
        EXPECT_TRUE(poly_check(up, 5));
        for (poly t = is_number(p) ? nullptr : up.p; t != nullptr; t = t->next) {
            PolyGuard c, d;
            extract_coef(p, &c, lev - 1, t->exp);
            d.p = coefficient_copy(t);
            EXPECT_TRUE(poly_equal(c, d)) << text_of(p) << " at " << lev;
        }
        case_one(up, &back, y, polynames);
        EXPECT_TRUE(poly_equal(back, padded)) << text_of(p) << " at " << lev << ": " << text_of(back);
        // a number for the variable: by case_two, and by the exchange and poly_at_numb
        value.p = zero_leaf();
        random_number(rng, Coefs::small, value.p->ncoef);
        case_two(p, &by_value, static_cast<int16_t>(lev), value, polynames);
        poly_at_numb(&direct, up, value, polynames, 0);
        EXPECT_TRUE(poly_equal(by_value, direct)) << text_of(p) << " at " << lev;
        // a polynomial in the place of the top variable
        PolyGuard w(random_nonzero_poly(rng, Shape{3, 2, 2})), sum, expected, one;
        add_pad(&w, 1);
        case_one(p, &sum, w, polynames);
        poly_at_numb(&expected, p, is_number(w) ? w.p : w.p->pcoef, polynames, 1);
        EXPECT_TRUE(poly_equal(sum, expected));
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}
