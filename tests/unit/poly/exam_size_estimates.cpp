// Measures of polynomials: both sides of every cap, the shapes of numbers, weights against their definition.
#include "numbers/num_assign.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/size_estimates.h"
#include "tests/support/random_poly.h"
#include "tests/support/support.h"

using namespace tolvex;
using namespace tolvex::test;
namespace {
/// x^(terms-1) + ... + x + 1: terms leaves, 2 terms - 1 nodes.
poly dense_ones(int32_t terms) {
    poly p = nullptr;
    for (int32_t e = 0; e < terms; e++) {
        poly t = term_poly(1, &e, 1);
        t->next = p;
        p = t;
    }
    return p;
}

/// The form sum over i < rows of x^i times the polynomial with `terms` terms in y.
poly grid(int32_t rows, int32_t terms) {
    poly p = nullptr, last = nullptr;
    for (int32_t e = rows - 1; e >= 0; e--) {
        poly t = nullptr;
        new_term(&t, e, dense_ones(terms));
        (last == nullptr ? p : last->next) = t;
        last = t;
    }
    return p;
}
}  // namespace

TEST(SizeEstimates, counters_stop_at_their_caps) {
    set_up_once();
    use_integers();
    use_variables(2);
    struct Row {
        const char* name;
        int64_t (*count)(const polynode*);
        int64_t cap;
        bool terms;
    };
    const Row rows[] = {
        {"node_total", [](const polynode* p) -> int64_t { return node_total(p); }, 1000, false},
        {"big_node_total", [](const polynode* p) -> int64_t { return big_node_total(p); }, 8000, false},
        {"new_node_total", [](const polynode* p) -> int64_t { return new_node_total(p); }, 8000, false},
        {"bigg_node_total", [](const polynode* p) -> int64_t { return bigg_node_total(p); }, 1000000, false},
        {"bigger_node_total", [](const polynode* p) -> int64_t { return bigger_node_total(p); }, 1000000,
         false},
        {"poly_nodes", [](const polynode* p) -> int64_t { return poly_nodes(p); }, 2000, false},
        {"fast_numterms", [](const polynode* p) -> int64_t { return fast_numterms(p); }, 2000, true},
        {"poly_numterms", [](const polynode* p) -> int64_t { return poly_numterms(p); }, 20000, true},
        {"f_poly_numterms", [](const polynode* p) -> int64_t { return f_poly_numterms(p); }, 20000, true},
        {"fast_f_numterms", [](const polynode* p) -> int64_t { return fast_f_numterms(p, 1); }, 2000, true},
        {"qpoly_numterms", [](const polynode* p) -> int64_t { return qpoly_numterms(p); }, 1001, true},
        {"q_poly_numterms", [](const polynode* p) -> int64_t { return q_poly_numterms(p); }, 2000, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        // 2t - 1 nodes or t terms of a chain; 2 more make the first count above the cap
        int32_t t = static_cast<int32_t>(row.terms ? row.cap : row.cap / 2);
        int64_t at = row.terms ? t : 2 * t - 1;
        PolyGuard below(dense_ones(t - 1)), p(dense_ones(t)), above(dense_ones(t + 1)),
            beyond(dense_ones(3 * t));
        EXPECT_EQ(row.count(below), row.terms ? at - 1 : at - 2);
        EXPECT_EQ(row.count(p), at);
        EXPECT_EQ(row.count(above), row.cap);
        EXPECT_EQ(row.count(beyond), row.cap);
        EXPECT_EQ(row.count(poly_1), 1);
    }
    PolyGuard deep(grid(30, 60));  // 30 terms of the top chain and 60 nodes below each
    EXPECT_EQ(poly_nodes(deep), 30 * 61);
    PolyGuard deeper(grid(30, 70));
    EXPECT_EQ(poly_nodes(deeper), 2000);
    EXPECT_EQ(node_total(deep), 1000);
    EXPECT_EQ(big_node_total(deep), 30 * (1 + 2 * 60 - 1));
    EXPECT_EQ(poly_numterms(deep), 1800);
}

TEST(SizeEstimates, lengths_stop_one_above_the_limit) {
    set_up_once();
    use_variables(1);
    for (int32_t n = 1; n < 12; n++) {
        PolyGuard p(dense_ones(n));
        EXPECT_EQ(fast_poly_length(p, 5), n < 6 ? n : 6);
        EXPECT_EQ(poly_length(p), n);
    }
    EXPECT_EQ(fast_poly_length(poly_1, 5), 1);
}

TEST(SizeEstimates, box_of_exponents) {
    set_up_once();
    use_variables(4);
    int32_t box = 0;
    EXPECT_EQ(expon_node_total(poly_1, 1, 1, &box), 1);
    EXPECT_EQ(box, 1);
    PolyGuard p(poly_of("x^3 y^2 + x y^4 z + 7"));          // x: 0..3, y: 0..4, z: 0..1
    EXPECT_EQ(expon_node_total(p, 1, 1, &box), 3 + 2 + 3);  // the nodes of 7, of x^3 y^2, of x y^4 z
    EXPECT_EQ(box, 4 * 5 * 2);
    EXPECT_EQ(expon_node_total(p, 3, 1, &box), 8);
    EXPECT_EQ(deglist[3], 4);
    EXPECT_EQ(deglist[4], 5);
    EXPECT_EQ(deglist[6], 0);
    // a pad is no node, but its level is in the box
    PolyGuard padded(poly_of("z^2 + 1"));
    EXPECT_EQ(expon_node_total(padded, 1, 1, &box), 3);
    EXPECT_EQ(box, 3);
    // added to, without init: the box is left alone
    box = -5;
    expon_node_total(p, 1, 1, &box);
    int32_t kept = box;
    PolyGuard wider(poly_of("x^9 y"));
    EXPECT_EQ(expon_node_total(wider, 1, 0, &box), 3);
    EXPECT_EQ(box, kept);
    EXPECT_EQ(deglist[1], 10);
    // the counts around the caps
    for (int32_t rows : {1, 2, 5, 14, 30}) {
        PolyGuard g(grid(rows, 100));
        int32_t full = (rows - 1) * 200 + 199;  // the row of exponent 0 is a pad
        int32_t seen = expon_node_total(g, 1, 1, &box);
        EXPECT_LE(seen, 3200);
        if (full <= 1600)
            EXPECT_EQ(seen, full);
        else
            EXPECT_GT(seen, 1600);
        EXPECT_EQ(box, rows * 100);
    }
    PolyGuard chain(dense_ones(2500));
    int32_t large = expon_node_total(chain, 1, 1, &box);
    EXPECT_TRUE(large > 1600 && large <= 3200);
    EXPECT_EQ(box, 2500);
}

TEST(SizeEstimates, box_overflow_has_its_own_value) {
    set_up_once();
    use_variables(4);
    int32_t box = 0;
    PolyGuard fits(poly_of("x^46339 y^46339")), over(poly_of("x^46340 y^46341")),
        far(poly_of("x^2147483647 y^9 z^9"));
    expon_node_total(fits, 1, 1, &box);
    EXPECT_EQ(box, 46340 * 46340);
    expon_node_total(over, 1, 1, &box);
    EXPECT_EQ(box, 2147483629);
    expon_node_total(far, 1, 1, &box);
    EXPECT_EQ(box, 2147483629);
}

TEST(SizeEstimates, masses_of_small_polynomials) {
    set_up_once();
    use_integers();
    use_variables(3);
    EXPECT_EQ(poly_mass(poly_1, 2, 1), 1);
    PolyGuard p(poly_of("x^3 + 5 x + 7"));
    EXPECT_EQ(poly_mass(p, 2, 1), 2 * 3 + 1 + 1);  // the leading term alone has the multiplier
    EXPECT_EQ(better_poly_mass(p, 2, 1), (1 + 2 * 2 * 2) + (1 + 1 * 2) + (1 + 1));
    EXPECT_EQ(new_poly_mass(p, 1), 3 + 1 + 1);
    EXPECT_EQ(new_poly_mass(p, 4), 12 + 4 + 1);
    PolyGuard q(poly_of("x^2 y^3 + y"));  // y stands under exponent 0 of x
    EXPECT_EQ(poly_mass(q, 2, 1), 2 * 2 * (2 * 3) + 1);
    EXPECT_EQ(new_poly_mass(q, 1), 2 * (2 * 3) + 1);
    EXPECT_EQ(simple_poly_mass(p), 3 * (31 + 8) + 2 * 13);
    EXPECT_EQ(simple_poly_mass(poly_1), 39);
    EXPECT_EQ(poly_weight(poly_1, 1), 1);
    EXPECT_EQ(poly_weight(p, 1), 3 + 1);
    EXPECT_EQ(poly_weight(q, 1), 2 * 3 + 1);
    use_ring(7);
    PolyGuard m(poly_of("x^3 + 5 x + 7"));
    EXPECT_EQ(simple_poly_mass(m), 2 * 31 + 2 * 13);
    EXPECT_EQ(poly_mass(m, 2, 1), 7);
    use_integers();
}

TEST(SizeEstimates, masses_saturate) {
    set_up_once();
    use_integers();
    use_variables(4);
    PolyGuard big(poly_of("x^2000000000 y^2000000000 z^2000000000 t^2000000000 + x^1999999999 y"));
    EXPECT_EQ(poly_mass(big, 2, 1), 33554430);
    EXPECT_EQ(poly_mass(big, 2147483647, 150), 33554430);
    EXPECT_EQ(better_poly_mass(big, 2, 1), 1073741824);
    EXPECT_EQ(new_poly_mass(big, 1), 268435456);
    EXPECT_EQ(poly_weight(big, 1), 10000000);
    PolyGuard under(poly_of("x^33554429")), over(poly_of("x^33554431"));
    EXPECT_EQ(poly_mass(under, 1, 1), 33554429);
    EXPECT_EQ(poly_mass(over, 1, 1), 33554430);
    PolyGuard w1(poly_of("x^9999999")), w2(poly_of("x^10000001"));
    EXPECT_EQ(poly_weight(w1, 1), 9999999);
    EXPECT_EQ(poly_weight(w2, 1), 10000000);
    PolyGuard n1(poly_of("x^268435455")), n2(poly_of("x^268435457"));
    EXPECT_EQ(new_poly_mass(n1, 1), 268435455);
    EXPECT_EQ(new_poly_mass(n2, 1), 268435456);
}

TEST(SizeEstimates, byte_masses_stop_above_their_limits) {
    set_up_once();
    use_ring(101);
    use_variables(1);
    // a term of a chain weighs 13 + 31, the constant one 31
    PolyGuard five(dense_ones(6)), seven(dense_ones(7)), ten(dense_ones(10));
    EXPECT_EQ(very_simple_poly_mass(five), 5 * 44 + 31);
    EXPECT_EQ(very_simple_poly_mass(seven), 6 * 44);  // 264 is above 250: left
    EXPECT_EQ(more_simple_poly_mass(seven), 6 * 44 + 31);
    EXPECT_EQ(more_simple_poly_mass(ten), 8 * 44);
    EXPECT_EQ(simple_poly_mass(ten), 9 * 44 + 31);
    use_integers();
}

TEST(SizeEstimates, shapes_of_numbers) {
    set_up_once();
    use_integers();
    use_variables(3);
    int32_t degree = k_no_degree;
    EXPECT_EQ(poly_length(poly_1), 1);
    EXPECT_EQ(quick_depth_below(poly_1, 1), 0);
    EXPECT_EQ(polys_there(poly_1, 1), 0);
    EXPECT_TRUE(depth_only_2(poly_1));
    EXPECT_TRUE(height_is_1(poly_1));
    EXPECT_EQ(sum_degrees(poly_1, 1, 100), 0);
    EXPECT_EQ(poly_height(poly_1), 0);
    EXPECT_EQ(max_below(poly_1, 1), 0);
    max_degree(poly_1, 1, &degree);
    EXPECT_EQ(degree, 0);
    degree = k_no_degree;
    max_degree(poly_1, 3, &degree);
    EXPECT_EQ(degree, 0);
    EXPECT_EQ(max_digits(nullptr), -1);
}

TEST(SizeEstimates, shapes_of_polynomials) {
    set_up_once();
    use_integers();
    use_variables(4);
    PolyGuard one(poly_of("x^2 + 3")), two(poly_of("x y + z^5 + 1")), low(poly_of("z^2 + t"));
    EXPECT_EQ(poly_height(one), 0);
    EXPECT_EQ(poly_height(two), 1);  // x, z: the level of y is a pad on the way to z
    EXPECT_EQ(poly_height(low), 1);
    EXPECT_EQ(quick_depth_below(one, 1), 0);
    EXPECT_EQ(quick_depth_below(two, 1), 2);
    EXPECT_EQ(quick_depth_below(low, 1), 3);
    EXPECT_EQ(max_below(one, 1), 1);
    EXPECT_EQ(max_below(two, 1), 3);
    EXPECT_EQ(max_below(low, 3), 6);  // levels are counted from the one that is given
    EXPECT_EQ(polys_there(two, 1), 3);
    EXPECT_EQ(polys_there(low, 1), 2);
    EXPECT_TRUE(height_is_1(one));
    EXPECT_FALSE(height_is_1(two));
    EXPECT_TRUE(depth_only_2(one));
    EXPECT_FALSE(depth_only_2(two));
    // the fifth term is not looked at
    PolyGuard hidden(poly_of("x^5 + x^4 + x^3 + x^2 + x y z")), seen(poly_of("x^5 + x^4 + x^3 + x y z"));
    EXPECT_TRUE(depth_only_2(hidden));
    EXPECT_FALSE(depth_only_2(seen));
    const int32_t degrees[] = {1, 1, 5, 0, 0};
    for (int32_t lev = 1; lev <= 5; lev++) {
        int32_t d = k_no_degree;
        max_degree(two, lev, &d);
        EXPECT_EQ(d, degrees[lev - 1]) << lev;
        int32_t kept = 9;
        max_degree(two, lev, &kept);
        EXPECT_EQ(kept, 9);
    }
    EXPECT_EQ(sum_degrees(two, 1, 100), 5);
    EXPECT_EQ(sum_degrees(two, 1, 2), 2);  // x y is enough
    PolyGuard tall(poly_of("x^2 y^3 z^4 + x^8"));
    EXPECT_EQ(sum_degrees(tall, 1, 1000), 9);
    EXPECT_EQ(sum_degrees(tall, 1, 9), 9);
}

// The two lowest levels of four stand for a tower.
TEST(SizeEstimates, field_levels_are_numbers) {
    set_up_once();
    use_integers();
    use_variables(4);
    PolyGuard p(poly_of("x^2 z + x^2 z^2 t + y t + 1")), unit(poly_of("z + t"));
    EXPECT_EQ(f_poly_numterms(p, 1), 4);
    EXPECT_EQ(polys_there(p, 1), 4);
    EXPECT_EQ(sum_degrees(p, 1, 100), 5);
    field_depth = 3;
    EXPECT_EQ(f_poly_numterms(p, 1), 3);
    EXPECT_EQ(fast_f_numterms(p, 1), 3);
    EXPECT_EQ(qpoly_numterms(p, 1), 3);
    EXPECT_EQ(f_poly_numterms(p), 4);  // no level given: all terms
    EXPECT_EQ(fast_f_numterms(unit, 1), 1);
    EXPECT_EQ(polys_there(p, 1), 2);
    EXPECT_EQ(sum_degrees(p, 1, 100), 2);
    EXPECT_EQ(max_below(p, 1), 2);
    EXPECT_EQ(quick_depth_below(p, 1), 1);
    EXPECT_EQ(max_below(unit, 1), 0);
    EXPECT_EQ(poly_weight(p, 1), 2 * 1 + 1);
    field_depth = 0;
}

TEST(SizeEstimates, ranges_of_levels) {
    const int32_t sizes[] = {1199, 1200, 9999, 10000}, most[] = {4, 8, 8, 12};
    for (int i = 0; i < 4; i++)
        for (int32_t level = 0; level < 20; level++) {
            int32_t start = 0, lim = 0;
            poly_level_depth(level, 1, sizes[i], &start, &lim);
            EXPECT_EQ(start, 2);
            EXPECT_EQ(lim, std::min(std::max(level, 1), most[i]));
            poly_level_depth(1, level, sizes[i], &start, &lim);
            EXPECT_EQ(lim, std::min(std::max(level, 1), most[i]));
        }
}

TEST(SizeEstimates, bits_of_coefficients) {
    set_up_once();
    use_integers();
    use_variables(2);
    EXPECT_EQ(max_digits(poly_1), 1);
    PolyGuard p(poly_of("255 x + 256 y - 511")), b(poly_of("268435455 x - 268435456 y")), z(poly_of("0"));
    EXPECT_EQ(max_digits(p), 9);
    EXPECT_EQ(max_digits(b), 29);
    EXPECT_EQ(max_digits(z), 0);
    use_ring(101);
    PolyGuard m(poly_of("100 x + 3"));  // 100 is -1
    EXPECT_EQ(max_digits(m), 2);
    PolyGuard h(poly_of("50 x + 51 y"));
    EXPECT_EQ(max_digits(h), 6);
    use_integers();
}

// One walk with a limit against a full one without.
PROPERTY(measures_of_random_polynomials, 500) {
    use_integers();
    use_variables(3);
    PolyGuard p(random_nonzero_poly(rng, 3, 12, 5, Coefs::two_digits));
    EXPECT_EQ(fast_numterms(p), poly_terms(p));
    EXPECT_EQ(node_total(p), bigger_node_total(p));
    int64_t mass = simple_poly_mass(p), chain = 0;
    for (poly t = p; t != nullptr; t = t->next) chain += simple_node_mass(t);
    EXPECT_EQ(mass, chain);
    EXPECT_TRUE(mass <= 250 ? very_simple_poly_mass(p) == mass : very_simple_poly_mass(p) > 250);
    EXPECT_TRUE(mass <= 350 ? more_simple_poly_mass(p) == mass : more_simple_poly_mass(p) > 350);
    int32_t total = sum_degrees(p, 1, 1 << 30);
    for (int32_t stop = 0; stop < 12; stop++) {
        int32_t d = sum_degrees(p, 1, stop);
        EXPECT_TRUE(total < stop ? d == total : d >= stop && d <= total);
    }
    EXPECT_GT(poly_mass(p, 2, 1), 0);
    EXPECT_GT(better_poly_mass(p, 2, 1), 0);
}
