// n = q m + r in every ring, one level and several, with the cutoffs of the divide and conquer at their
// defaults and at their least.
#include "numbers/residue.h"
#include "poly/div_field.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
namespace tolvex::test {
namespace {
int32_t degree(const polynode* p) { return is_number(p) ? 0 : p->exp; }

// c x^degree + a polynomial of lower degree, c a unit.
poly random_divisor(Rng& rng, const Shape& shape, bool monic) {
    poly m = random_poly(rng, shape), lead = nullptr, top = nullptr;
    int32_t c = modularmode && !monic ? random_int(rng, 1, modulus - 1) : 1;
    while (modularmode && mod_inverse_or_0(c) == 0) c = random_int(rng, 1, modulus - 1);
    poly_set(c, &lead);
    new_term(&top, degree(m) + 1, lead);
    best_poly_add(top, m, &m);
    return m;
}

void expect_division(poly n, poly m, poly q, poly r) {
    poly back = nullptr;
    EXPECT_TRUE(poly_check(q, k_max_polys));
    EXPECT_TRUE(poly_check(r, k_max_polys));
    EXPECT_TRUE(is_number(r) || r->exp < m->exp);
    poly_mult(q, m, &back, polynames);
    better_poly_add(back, r, &back);
    EXPECT_TRUE(poly_equal(back, n)) << text_of(n) << " by " << text_of(m) << " gave " << text_of(q)
                                     << " and " << text_of(r);
    free_poly(&back);
}

struct Cutoffs {
    int32_t poly_cut = poly_cutoff, div_cut = div_poly_cutoff;
    ~Cutoffs() { poly_cutoff = poly_cut, div_poly_cutoff = div_cut; }
};
}  // namespace

PROPERTY(basic_poly_divide_gives_quotient_and_remainder, 400) {
    Cutoffs at_the_end_as_before;
    use_ring(all_rings[round % all_ring_count]);
    use_variables(3);
    if (round % 3 == 0) poly_cutoff = 3, div_poly_cutoff = 3;
    int32_t levels = random_int(rng, 1, 3);
    int32_t most = levels == 1 ? 60 : 12;  // coefficients of the quotient grow with each of its terms
    poly n = random_poly(rng, {levels, 40, random_int(rng, 1, most)});
    poly m = random_divisor(rng, {levels, random_int(rng, 1, 12), random_int(rng, 0, most / 2)}, false);
    poly n0 = copy_of(n), m0 = copy_of(m), q = nullptr, r = nullptr;
    basic_poly_divide(n, m, &q, &r, round % 2);
    EXPECT_TRUE(poly_equal(n, n0));
    EXPECT_TRUE(poly_equal(m, m0));
    expect_division(n, m, q, r);
    if (modularmode) {
        poly rest = nullptr;
        poly_div_no_q(n, m, &rest);
        EXPECT_TRUE(poly_equal(rest, r));
        free_poly(&rest);
    }
    for (poly* p : {&n, &m, &n0, &m0, &q, &r}) free_poly(p);
    use_integers();
}

// Every pair of degrees around the borders of the methods: 9/4, 10/3 and the blocks.
PROPERTY(fast_mod_and_div_at_every_ratio_of_degrees, 60) {
    Cutoffs at_the_end_as_before;
    use_ring(round % 2 != 0 ? 32003 : 3);
    use_variables(2);
    div_poly_cutoff = round % 3 + 2;
    int32_t b = random_int(rng, 1, 9);
    poly m = random_divisor(rng, {2, 12, b}, true);
    for (int32_t a = 0; a <= 5 * b; a++) {
        poly n = random_poly(rng, {2, 40, a}), q = nullptr, r = nullptr;
        fast_mod_and_div(n, m, &r, &q, polynames, 1);
        expect_division(n, m, q, r);
        for (poly* p : {&n, &q, &r}) free_poly(p);
    }
    free_poly(&m);
    use_integers();
}

PROPERTY(division_of_products_is_exact, 100) {
    use_ring(all_rings[round % all_ring_count]);
    use_variables(2);
    poly a = random_poly(rng, {2, 30, 40}), m = random_divisor(rng, {2, 20, 30}, false), n = nullptr,
         q = nullptr, r = nullptr;
    poly_mult(a, m, &n, polynames);
    basic_poly_divide(n, m, &q, &r, 1);
    EXPECT_TRUE(poly_iszero(r));
    EXPECT_TRUE(poly_equal(q, a));
    for (poly* p : {&a, &m, &n, &q, &r}) free_poly(p);
    use_integers();
}

PROPERTY(division_keeps_no_record, 50) {
    use_ring(all_rings[round % all_ring_count]);
    use_variables(2);
    int64_t before = live_records();
    poly n = random_poly(rng, {2, 30, 16}), m = random_divisor(rng, {2, 12, 6}, false), q = nullptr,
         r = nullptr;
    basic_poly_divide(n, m, &q, &r, 1);
    basic_poly_divide(n, m, &n, &r, 1);  // results over operands and over old results
    EXPECT_TRUE(poly_equal(n, q));
    for (poly* p : {&n, &m, &q, &r}) free_poly(p);
    EXPECT_EQ(live_records(), before);
    use_integers();
}
}  // namespace tolvex::test
