// Square-free decompositions: products that come back, factors that are square-free and coprime.
#include "gcd/polygcd.h"
#include "gcd/square_free.h"
#include "numbers/num_compare.h"
#include "poly/div_general.h"
#include "poly/poly_deriv.h"
#include "poly/poly_vars.h"
#include "tests/unit/gcd/engines_support.h"
using namespace tolvex;
using namespace tolvex::test;
namespace {
const Ring small_rings[] = {
    {0, false, "Z"},        {2, false, "Z/2"},         {3, false, "Z/3"},
    {5, false, "Z/5"},      {7, false, "Z/7"},         {32003, false, "Z/32003"},
    {256, true, "GF(2^8)"}, {65536, true, "GF(2^16)"}, {2147483629, false, "Z/2147483629"}};
constexpr int k_rings = 9;

/// p is square-free: no square of positive degree in some variable divides it. In characteristic p a
/// derivative may vanish for one variable and not for another.
bool square_free(poly p) {
    if (is_number(p)) return true;
    bool proved = false;
    for (int32_t level = 1; level <= number_polys && !proved; level++) {
        PolyGuard d, g;
        poly_differentiate(p, &d, level);
        if (poly_iszero(d)) continue;
        Lpolygcd2(p, d, &g, polynames);
        proved = is_number(g);
        if (!modularmode && !proved && poly_contains_level(g, level)) return false;
    }
    return proved || !modularmode;
}

/// The decomposition of p, checked. False: it ended in an error.
bool expect_decomposition(poly p) {
    PolyGuard x(copy_of(p)), list, product(copy_of(poly_1));
    int32_t count = -1;
    bool raised = RAISES(total_sq_free(&x, &list, &count, 1, polynames));
    if (raised) return false;
    int32_t n = 0;
    for (poly f = list; f != nullptr; f = f->next, n++) {
        EXPECT_GE(f->exp, 1);
        EXPECT_FALSE(is_number(f->pcoef));
        EXPECT_TRUE(poly_check(f->pcoef, number_polys));
        EXPECT_TRUE(square_free(f->pcoef)) << text_of(f->pcoef) << " of " << text_of(p);
        for (poly g = f->next; g != nullptr; g = g->next) {
            PolyGuard common;
            Lpolygcd2(f->pcoef, g->pcoef, &common, polynames);
            EXPECT_TRUE(is_number(common)) << text_of(f->pcoef) << " and " << text_of(g->pcoef);
        }
        PolyGuard power(copy_of(f->pcoef));
        compute_power(&power, f->exp, polynames);
        poly_mult(product, power, &product, polynames);
    }
    EXPECT_EQ(n, count);
    PolyGuard q;
    boolean failed = 0;
    gen_poly_divide(p, product, &q, polynames, &failed);
    EXPECT_FALSE(failed) << text_of(product) << " of " << text_of(p);
    EXPECT_TRUE(failed || is_number(q)) << text_of(product) << " of " << text_of(p);
    return true;
}

std::string decomposition(const char* text) {
    PolyGuard x(poly_of(text)), list;
    int32_t count = 0;
    total_sq_free(&x, &list, &count, 1, polynames);
    std::string s;
    for (poly f = list; f != nullptr; f = f->next) {
        s.append(1, '(').append(text_of(f->pcoef)).append(")^");
        s.append(std::to_string(f->exp));
    }
    return s;
}

/// The factor of multiplicity m in the decomposition of p is f.
bool lists(poly p, poly f, int32_t m) {
    PolyGuard x(copy_of(p)), list;
    int32_t count = 0;
    total_sq_free(&x, &list, &count, 1, polynames);
    bool found = false;
    for (poly t = list; t != nullptr; t = t->next) {
        boolean failed = 0;
        PolyGuard q;
        gen_poly_divide(t->pcoef, f, &q, polynames, &failed);
        if (t->exp == m && !failed) found = true;
    }
    return found;
}
}  // namespace

PROPERTY(one_variable_decompositions, 1800) {
    const Ring& ring = small_rings[round % k_rings];
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(1);
    int64_t before = live_records();
    {
        PolyGuard p(copy_of(poly_1));
        for (int32_t k = random_int(rng, 1, 4); k > 0; k--) {
            PolyGuard f(random_nonzero_poly(rng, Shape{1, 3, 3}));
            if (!is_number(f)) compute_power(&f, random_int(rng, 1, 9), polynames);
            poly_mult(p, f, &p, polynames);
        }
        EXPECT_TRUE(expect_decomposition(p)) << text_of(p);
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

PROPERTY(decompositions_in_several_variables, 900) {
    const Ring& ring = small_rings[round % k_rings];
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(3);
    int64_t before = live_records();
    bool decomposed;
    {
        PolyGuard p(copy_of(poly_1));
        for (int32_t k = random_int(rng, 1, 3); k > 0; k--) {
            PolyGuard f(random_nonzero_poly(rng, Shape{3, 3, 1}));
            if (!is_number(f)) compute_power(&f, random_int(rng, 1, 4), polynames);
            poly_mult(p, f, &p, polynames);
        }
        decomposed = expect_decomposition(p);
        bool small = modularmode && (finf || modulus < 100);
        EXPECT_TRUE(decomposed || small) << text_of(p);
    }
    if (decomposed) {
        EXPECT_EQ(live_records(), before);  // an error loses what it was made of
    }
    use_integers();
}

TEST(SquareFree, multiplicities_that_the_characteristic_divides) {
    set_up_once();
    for (int32_t p : {2, 3, 5, 7}) {
        use_ring(p);
        use_variables(1);
        for (int32_t m : {p - 1, p, p + 1, 2 * p, 2 * p + 1, p * p, p * p + p}) {
            if (m < 1) continue;
            PolyGuard f(poly_of("x^2 + x + 1")), g(poly_of("x")), q(copy_of(f)), r(copy_of(g)), product;
            if (p == 3 || p == 7)
                q.p = (free_poly(&q.p), poly_of("x^2 + 1")), f.p = (free_poly(&f.p), copy_of(q));
            compute_power(&q, m, polynames);
            compute_power(&r, m + 1, polynames);
            poly_mult(q, r, &product, polynames);
            EXPECT_TRUE(expect_decomposition(product));
            EXPECT_TRUE(lists(product, f, m)) << p << " " << m;
            EXPECT_TRUE(lists(product, g, m + 1)) << p << " " << m;
        }
    }
    use_integers();
}

TEST(SquareFree, small_cases) {
    set_up_once();
    use_integers();
    use_variables(2);
    EXPECT_EQ(decomposition("12"), "");
    EXPECT_EQ(decomposition("-4 x - 8"), "(1*x + 2)^1");
    EXPECT_EQ(decomposition("x^3 y^2"), "(1*x)^3(1*y)^2");
    EXPECT_EQ(decomposition("4 x^2 + 4 x + 1"), "(2*x + 1)^2");
    EXPECT_EQ(decomposition("x^2 y - y"), "(1*x^2 + -1)^1(1*y)^1");
    use_ring(2);
    EXPECT_EQ(decomposition("x^4 + x^2 + 1"), "(1*x^2 + 1*x + 1)^2");
    EXPECT_EQ(decomposition("x^6 + x^5"), "(1*x + 1)^1(1*x)^5");
    use_integers();
}

// y^p: the derivative vanishes at once; the caller's polynomial stays as it is.
TEST(SquareFree, pth_powers_leave_the_operand_alone) {
    set_up_once();
    use_ring(3);
    use_variables(1);
    PolyGuard x(poly_of("x^6 + 2 x^3 + 1")), kept(copy_of(x)), list;
    int32_t count = 0;
    square_free_factor(x, &list, &count, polynames);
    EXPECT_TRUE(poly_equal(x, kept));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(list.p->exp, 6);
    EXPECT_EQ(text_of(list.p->pcoef), "1*x + 1");
    use_ring(256, true);
    PolyGuard y(poly_of("x^2 + 3")), sq;
    count = 0;
    square_free_factor(y, &sq, &count, polynames);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(sq.p->exp, 2);
    compute_power(&sq.p->pcoef, 2, polynames);
    EXPECT_TRUE(poly_equal(sq.p->pcoef, y));
    use_integers();
}

TEST(SquareFree, coefficients_in_ordinary_variables_have_no_root) {
    set_up_once();
    use_variables(2);
    PolyGuard list;
    int32_t count = 0;
    use_ring(2);
    PolyGuard x(poly_of("x^2 + y^2"));
    EXPECT_TRUE(RAISES(total_sq_free(&x, &list, &count, 1, polynames)));
    EXPECT_EQ(caught.code, 352);
    free_poly(&list);
    use_ring(256, true);
    PolyGuard z(poly_of("x^2 + y^2"));
    EXPECT_TRUE(RAISES(total_sq_free(&z, &list, &count, 1, polynames)));
    EXPECT_EQ(caught.code, 308);
    use_integers();
}
