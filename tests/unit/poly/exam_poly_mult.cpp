// Sums and products of polynomials: fixed cases and limits of the methods.
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
using PolyMult = PolyTest;

void expect_text(poly got, const char* text) {
    poly want = poly_of(text);
    EXPECT_TRUE(poly_check(got, 6));
    EXPECT_TRUE(poly_equal(got, want)) << text_of(got) << " instead of " << text;
    free_poly(&want);
}

using Operation = void (*)(poly, poly, polyptrr);
const Operation all_sums[] = {poly_add, better_poly_add, best_poly_add};

/// The operation on copies; both operands and the result are given back.
void expect_operation(Operation operation, const char* n, const char* m, const char* want) {
    poly a = poly_of(n), b = poly_of(m), p = nullptr;
    bool takes_n = operation != poly_add && operation != poly_sub;
    bool takes_m = operation == best_poly_add || operation == best_poly_sub ||
                   operation == simplest_poly_add || operation == simplest_poly_sub;
    operation(a, b, &p);
    expect_text(p, want);
    if (!takes_n) expect_text(a, n);
    if (!takes_m) expect_text(b, m);
    if (!takes_n) free_poly(&a);
    if (!takes_m) free_poly(&b);
    free_poly(&p);
}

TEST_F(PolyMult, sums) {
    for (Operation sum : all_sums) {
        expect_operation(sum, "x", "-x", "0");
        expect_operation(sum, "x + 1", "-x", "1");
        expect_operation(sum, "x^2 + y", "-y", "x^2");
        expect_operation(sum, "x + y", "-x", "y");
        expect_operation(sum, "x*y + z", "-x*y + 2*x*z", "2*x*z + z");
        expect_operation(sum, "0", "x", "x");
        expect_operation(sum, "x", "0", "x");
        expect_operation(sum, "0", "0", "0");
        expect_operation(sum, "7", "x + 1", "x + 8");
        expect_operation(sum, "x + 1", "-1", "x");
        expect_operation(sum, "268435455", "1", "268435456");
        expect_operation(sum, "268435456*x", "-1*x", "268435455*x");
        expect_operation(sum, "x + z", "x + 1", "2*x + z + 1");
        expect_operation(sum, "y", "z", "y + z");
        expect_operation(sum, "y + 3", "x + z - 3", "x + y + z");
    }
    for (Operation difference : {poly_sub, better_poly_sub, best_poly_sub}) {
        expect_operation(difference, "x", "x", "0");
        expect_operation(difference, "1", "x^2 + y", "-x^2 - y + 1");
        expect_operation(difference, "0", "3*x", "-3*x");
        expect_operation(difference, "x^5 + x", "x^4 + x^3", "x^5 - x^4 - x^3 + x");
        expect_operation(difference, "y", "x + y", "-x");
    }
}

TEST_F(PolyMult, sums_with_negative_exponents) {
    laurent = 1;
    for (Operation sum : all_sums) {
        expect_operation(sum, "x^-1", "5", "5 + x^-1");
        expect_operation(sum, "5 + x^-1", "x", "x + 5 + x^-1");
        expect_operation(sum, "5 + x^-1", "-5", "x^-1");
        expect_operation(sum, "5 + x^-1", "-x^-1", "5");
        expect_operation(sum, "x + 5 + x^-1", "y - 5", "x + y + x^-1");
        expect_operation(sum, "x*y^-1 + 2*x", "-2*x", "x*y^-1");
        expect_operation(sum, "y + x^-1", "-y", "x^-1");
    }
    expect_operation(poly_sub, "x^-1", "5 + x^-2", "-5 + x^-1 - x^-2");
}

TEST_F(PolyMult, zero_into_a_polynomial) {
    poly p = poly_of("x^3 + 2"), t = poly_of("0");
    best_poly_add(p, t, &p);
    expect_text(p, "x^3 + 2");
    free_poly(&p);
}

TEST_F(PolyMult, residues) {
    use_ring(5);
    for (Operation sum : {poly_add, better_poly_add, best_poly_add, simplest_poly_add}) {
        expect_operation(sum, "3", "4", "2");
        expect_operation(sum, "3*x + 1", "2*x", "1");
        expect_operation(sum, "3*x", "2*x", "0");
    }
    for (Operation difference : {poly_sub, better_poly_sub, best_poly_sub, simplest_poly_sub}) {
        expect_operation(difference, "3", "4", "4");
        expect_operation(difference, "1", "x", "4*x + 1");
        expect_operation(difference, "x + 1", "x + 1", "0");
    }
    use_ring(256, true);
    for (Operation either :
         {poly_add, poly_sub, best_poly_add, best_poly_sub, simplest_poly_add, simplest_poly_sub})
        expect_operation(either, "200*x + 7", "100*x + 7", "172*x");
    use_ring(2147483646);  // a sum of residues exceeds 31 bits
    expect_operation(poly_add, "2147483645", "2147483645", "2147483644");
}

poly product(const char* n, const char* m) {
    poly a = poly_of(n), b = poly_of(m), p = nullptr;
    poly_mult(a, b, &p, nullptr);
    expect_text(a, n), expect_text(b, m);
    free_poly(&a), free_poly(&b);
    return p;
}
void expect_product(const char* n, const char* m, const char* want) {
    poly p = product(n, m);
    expect_text(p, want);
    free_poly(&p);
    p = product(m, n);
    expect_text(p, want);
    free_poly(&p);
}

TEST_F(PolyMult, products) {
    expect_product("0", "x + y", "0");
    expect_product("1", "x + y", "x + y");
    expect_product("6", "7", "42");
    expect_product("x + 1", "x - 1", "x^2 - 1");
    expect_product("y", "x", "x*y");
    expect_product("y + 1", "z", "y*z + z");
    expect_product("x + y", "x - y", "x^2 - y^2");
    expect_product("268435455*x", "268435455", "72057593501057025*x");
    expect_product("x*z + y", "x + z^2*y", "x^2*z + x*y*z^3 + x*y + y^2*z^2");
    expect_product("y^2 + y*z + z^2", "y - z", "y^3 - z^3");
}

TEST_F(PolyMult, products_with_negative_exponents) {
    laurent = 1;
    expect_product("x^-1", "x", "1");
    expect_product("x + x^-1", "x - x^-1", "x^2 - x^-2");
    expect_product("1 + x^-1", "1 + x^-1", "1 + 2*x^-1 + x^-2");
    expect_product("x*y^-1 + 1", "x^-1*y + 1", "x*y^-1 + 2 + x^-1*y");
    expect_product("y^-3", "y^3 + x*y^3", "x + 1");
    expect_product("5 + x^-1", "0", "0");
    expect_product("5 + x^-1", "2", "10 + 2*x^-1");
}

TEST_F(PolyMult, zero_divisors_leave_no_terms) {
    use_ring(6);
    expect_product("2*x + 1", "3*x + 1", "5*x + 1");
    expect_product("2*x", "3*x + 3", "0");
    expect_product("2*x + 2*y", "3*x*y + 3", "0");
    expect_product("2*y + 3", "3*x + 3", "3*x + 3");
    poly p = poly_of("3*x*y + x + 3"), two = poly_of("2");
    mult_num(&p, two->ncoef);
    expect_text(p, "2*x");
    mod_num_poly_mult(&p, 3);
    expect_text(p, "0");
    free_poly(&p), free_poly(&two);
    p = poly_of("3*y + 2");
    mod_num_poly_mult(&p, 2);  // the pad goes with the last variable
    expect_text(p, "4");
    free_poly(&p);
}

TEST_F(PolyMult, squares_and_one_variable_for_all) {
    poly p = poly_of("x + y + 1");
    poly_mult(p, p, &p, nullptr);
    expect_text(p, "x^2 + 2*x*y + 2*x + y^2 + 2*y + 1");
    poly q = poly_of("x - 1");
    poly_mult(p, q, &q, nullptr);
    poly_mult(p, q, &p, nullptr);
    EXPECT_TRUE(poly_check(p, 2));
    free_poly(&p), free_poly(&q);
}

/// Shapes at the limits between methods; whatever is chosen, the values agree with the plain method.
void expect_as_standard(poly n, poly m) {
    poly got = nullptr, want = nullptr;
    poly_mult(n, m, &got, nullptr);
    simple_standard(n, m, poly_length(n), poly_length(m), &want);
    EXPECT_TRUE(poly_check(got, 6));
    EXPECT_TRUE(poly_equal(got, want));
    free_poly(&got), free_poly(&want);
}

TEST_F(PolyMult, counts_of_terms_around_the_cutoff) {
    Rng rng(5);
    for (int32_t terms : {79, 80, 81}) {
        poly n = dense_poly(rng, terms - 1), m = dense_poly(rng, terms - 1), far = copy_of(n);
        sub_expons(&far, -1000);  // x^1000 .. x^1079
        expect_as_standard(n, m);
        expect_as_standard(n, n);
        expect_as_standard(n, far);
        expect_as_standard(far, far);
        poly k = nullptr, want = nullptr;
        karatsuba_poly_mult(far, far, &k, nullptr);
        simple_standard(far, far, terms, terms, &want);
        EXPECT_TRUE(poly_equal(k, want));
        for (poly* p : {&n, &m, &far, &k, &want}) free_poly(p);
    }
    poly sparse = poly_of("0");  // 80 terms up to degree 1000: spread above 6 x 80
    for (int32_t i = 0; i < 80; i++) {
        int32_t e = i * 1000 / 79;
        best_poly_add(sparse, term_poly(i + 1, &e, 1), &sparse);
    }
    boolean flag = 1;
    int32_t last;
    EXPECT_EQ(exp_poly_length(sparse, &last, &flag), -80);
    expect_as_standard(sparse, sparse);
    free_poly(&sparse);
}

TEST_F(PolyMult, degrees_around_the_limit_of_the_arrays) {
    use_ring(32003);
    for (int32_t extra = 0; extra < 2; extra++) {
        poly n = poly_of("1"), m = poly_of("1");
        for (int32_t i = 1; i <= 12; i++) {
            int32_t e = i == 12 ? 12500 + extra : i * 1000;
            best_poly_add(n, term_poly(i, &e, 1), &n);
            e = i == 12 ? 12500 : i * 1001;
            best_poly_add(m, term_poly(i + 7, &e, 1), &m);
        }
        expect_as_standard(n, m);
        poly got = nullptr, want = nullptr;
        simplest_poly_mult(n, m, &got, 0, 0, 0, 0);
        simple_standard(n, m, 13, 13, &want);
        EXPECT_TRUE(poly_equal(got, want));
        for (poly* p : {&n, &m, &got, &want}) free_poly(p);
    }
}

TEST_F(PolyMult, two_level_arrays_apply_where_they_should) {
    use_ring(101);
    Rng rng(3);
    auto grid = [&](int32_t top, int32_t inner) {
        poly sum = poly_of("0");
        for (int32_t i = 0; i <= top; i++) {
            int32_t e[2] = {i, random_int(rng, 0, 1) ? inner : 0};
            best_poly_add(sum, term_poly(random_int(rng, 1, 100), e, 2), &sum);
        }
        int32_t corner[2] = {top, inner};
        best_poly_add(sum, term_poly(1, corner, 2), &sum);
        return sum;
    };
    struct {
        int32_t top1, inner1, top2, inner2;
        bool applies;
    } cases[] = {{350, 10, 350, 10, true},  {351, 10, 350, 10, false}, {60, 350, 60, 350, true},
                 {60, 351, 60, 350, false}, {24, 5, 40, 5, false},     {31, 5, 31, 5, true},
                 {300, 5, 31, 5, false}};
    for (auto& c : cases) {
        poly n = grid(c.top1, c.inner1), m = grid(c.top2, c.inner2);
        EXPECT_EQ(try_fast_2_var(n, m) != 0, c.applies) << c.top1 << ' ' << c.inner1;
        expect_as_standard(n, m);
        free_poly(&n), free_poly(&m);
    }
    poly three = poly_of("x*y*z + 1");
    EXPECT_FALSE(try_fast_2_var(three, three));
    use_ring(256, true);
    poly n = grid(40, 5);
    EXPECT_FALSE(try_fast_2_var(n, n));
    free_poly(&n), free_poly(&three);
}

TEST_F(PolyMult, fields_of_characteristic_2_do_without_arrays) {
    Rng rng(11);
    for (int table = 0; table < 2; table++) {
        use_ring(table ? 256 : 2, table);
        poly n = dense_poly(rng, 60), m = dense_poly(rng, 45);
        expect_as_standard(n, m);
        expect_as_standard(n, n);
        free_poly(&n), free_poly(&m);
    }
}

TEST_F(PolyMult, exponents_beyond_a_word_are_refused) {
    int32_t e = 2000000000;
    poly p = term_poly(1, &e, 1), q = copy_of(p), got = nullptr;
    EXPECT_TRUE(RAISES(poly_mult(p, q, &got, nullptr)));
    EXPECT_EQ(caught.code, static_cast<int32_t>(Err::exponent_too_long));
    EXPECT_TRUE(RAISES(poly_mult(p, p, &got, nullptr)));
    EXPECT_TRUE(RAISES(simple_standard(p, q, 1, 1, &got)));
    EXPECT_TRUE(RAISES(compute_power(&p, 2, nullptr)));
    free_poly(&p), free_poly(&q);
    records_before = live_records();  // what the jump left behind is lost
}

/// Keys of one word, of two, and exponents too wide for any key.
TEST_F(PolyMult, widths_of_keys) {
    Rng rng(21);
    struct {
        int32_t levels, max_exp;
        bool packs;
    } cases[] = {{3, 1 << 19, true}, {6, 1 << 19, true}, {10, 1 << 20, false}};
    for (auto& c : cases) {
        poly n = random_poly(rng, {c.levels, 30, c.max_exp}), m = copy_of(n), got = nullptr, want = nullptr;
        int32_t e[10] = {};
        for (int32_t i = 0; i < c.levels; i++) e[i] = c.max_exp;
        best_poly_add(n, term_poly(3, e, c.levels), &n);
        EXPECT_EQ(packed_poly_mult(n, m, &got), c.packs) << c.levels;
        poly_mult(n, m, &got, nullptr);
        simple_standard(n, m, poly_length(n), poly_length(m), &want);
        EXPECT_TRUE(poly_check(got, c.levels));
        EXPECT_TRUE(poly_equal(got, want));
        for (poly* p : {&n, &m, &got, &want}) free_poly(p);
    }
}

TEST_F(PolyMult, variables_at_the_deepest_level) {
    poly x = poly_of("x + 1"), deep = nullptr, got = nullptr, back = nullptr;
    base_poly(&deep, 150);
    poly_add(x, deep, &got);
    poly_mult(got, got, &got, nullptr);  // (x + w + 1)^2
    EXPECT_TRUE(poly_check(got, 150));
    EXPECT_EQ(poly_terms(got), 6);
    poly_mult(deep, deep, &back, nullptr);
    better_poly_sub(got, back, &got);
    poly_mult(x, deep, &back, nullptr);
    better_poly_sub(got, back, &got);
    better_poly_sub(got, back, &got);
    expect_text(got, "x^2 + 2*x + 1");
    for (poly* p : {&x, &deep, &got, &back}) free_poly(p);
}

TEST_F(PolyMult, words_of_lintmode_wrap) {
    lintmode = 1;
    poly n = poly_of("65536*x + 65536*y"), got = nullptr;
    EXPECT_FALSE(packed_poly_mult(n, n, &got));
    poly_mult(n, n, &got, nullptr);  // every coefficient is a multiple of 2^32
    EXPECT_TRUE(poly_iszero(got));
    poly m = poly_of("3*x + 2");
    poly_mult(m, m, &got, nullptr);
    expect_text(got, "9*x^2 + 12*x + 4");
    free_poly(&n), free_poly(&m), free_poly(&got);
}

TEST_F(PolyMult, powers) {
    poly p = poly_of("x + y");
    compute_power(&p, 1, nullptr);
    expect_text(p, "x + y");
    compute_power(&p, 3, nullptr);
    expect_text(p, "x^3 + 3*x^2*y + 3*x*y^2 + y^3");
    free_poly(&p);
    p = poly_of("0");
    compute_power(&p, 5, nullptr);
    expect_text(p, "0");
    free_poly(&p);
    p = poly_of("-2");
    compute_power(&p, 9, nullptr);
    expect_text(p, "-512");
    free_poly(&p);
    p = poly_of("-3*x^2*z");
    compute_power(&p, 3, nullptr);
    expect_text(p, "-27*x^6*z^3");
    free_poly(&p);
    use_ring(8);
    p = poly_of("2*x*y");
    compute_power(&p, 3, nullptr);
    expect_text(p, "0");
    free_poly(&p);
    use_ring(2);
    p = poly_of("x + y + 1");
    compute_power(&p, 5, nullptr);
    expect_text(p, "x^5 + x^4*y + x^4 + x*y^4 + x + y^5 + y^4 + y + 1");
    free_poly(&p);
    laurent = 1;
    p = poly_of("x + y^-1");
    compute_power(&p, 4, nullptr);
    expect_text(p, "x^4 + y^-4");
    free_poly(&p);
    laurent = 0;
    use_ring(7);
    p = poly_of("3");
    compute_power(&p, 6, nullptr);
    expect_text(p, "1");
    free_poly(&p);
    p = poly_of("x + y + 1");
    compute_power(&p, 7, nullptr);
    expect_text(p, "x^7 + y^7 + 1");
    free_poly(&p);
}

/// (1 + x + y + z + t)^k has binomial(k + 4, 4) terms, and so many ways to pick factors that the sum of its
/// coefficients is 5^k.
TEST_F(PolyMult, power_of_a_sum) {
    poly f = poly_of("1 + x + y + z + t");
    compute_power(&f, 10, nullptr);
    EXPECT_EQ(poly_terms(f), 1001);
    int64_t total = 0;
    struct {
        int64_t* total;
        void walk(const polynode* p) {
            for (; p != nullptr; p = p->next) {
                if (!p->numb)
                    walk(p->pcoef);
                else
                    *total += p->ncoef->head->value;
            }
        }
    } sum = {&total};
    sum.walk(f);
    EXPECT_EQ(total, 9765625);
    free_poly(&f);
}
}  // namespace
