// Polynomials over towers, over Q and modulo primes: products, inverses, division, gcds.
#include "field/reconstruct.h"
#include "field/tower_divide.h"
#include "field/tower_inverse.h"
#include "gcd/field_hooks.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "poly/div_general.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/ports.h"
#include "quoly/ports.h"
#include "tests/unit/field/tower_support.h"
using namespace tolvex;
using namespace tolvex::test;

static const int32_t k_rings[] = {0, 0, 101, 0, 65521, 0, 2147483629, 5};
static Coefs coefs_of(int round) {
    return round % 3 == 0 ? Coefs::small : round % 3 == 1 ? Coefs::digit : Coefs::two_digits;
}
static poly product(poly a, poly b) {
    poly p = nullptr;
    poly_mult(a, b, &p, polynames);
    EXPECT_TRUE(poly_check(p, number_polys));
    return p;
}

namespace {
/// Two levels of a tower with `above` variables above it.
struct Round {
    TowerSetting setting;
    Round(Rng& rng, int round, int32_t above) : setting(above + 1 + round / 8 % 2, k_rings[round % 8]) {
        random_tower(rng, above + 1, Coefs::small);
    }
};
}  // namespace

PROPERTY(products, 160) {
    Round r(rng, round, 1);
    PolyGuard a(random_over_tower(rng, 3, coefs_of(round))), b(random_over_tower(rng, 3, coefs_of(round))),
        c(random_over_tower(rng, 3, coefs_of(round)));
    PolyGuard ab(product(a, b)), bc(product(b, c)), left(product(ab, c)), right(product(a, bc));
    EXPECT_TRUE(poly_equal(left, right));
    PolyGuard sum, ac(product(a, c)), apart;
    poly_add(b, c, &sum.p);
    PolyGuard whole(product(a, sum));
    poly_add(ab, ac, &apart.p);
    EXPECT_TRUE(poly_equal(whole, apart));
    PolyGuard power(copy_of(a)), step(copy_of(a));
    compute_power(&power.p, 6, polynames);
    for (int i = 1; i < 6; i++) poly_mult(step, a, &step.p, polynames);
    EXPECT_TRUE(poly_equal(power, step));
}

PROPERTY(inverses, 160) {
    Round r(rng, round, 0);
    PolyGuard a(random_over_tower(rng, 1, coefs_of(round))), numer, denom;
    if (is_number(a)) return;
    if (!tower_invert(a, polynames, &numer.p, &denom.p)) return;
    PolyGuard one(product(a, numer));
    EXPECT_TRUE(poly_equal(one, denom)) << text_of(a);
    EXPECT_TRUE(modularmode ? poly_eq_1(denom) : chain_sign(denom.p->ncoef) > 0);
}

PROPERTY(quotients, 160) {
    Round r(rng, round, 1 + round % 2);
    PolyGuard q(random_over_tower(rng, 3, coefs_of(round))), m(random_over_tower(rng, 2, Coefs::small)),
        found, c;
    if (poly_iszero(m) || poly_iszero(q)) return;
    PolyGuard n(product(q, m));
    if (!tower_lead_is_unit(m)) return;
    ASSERT_TRUE(tower_quotient(n, m, &found.p, &c.p, polynames)) << text_of(n) << " / " << text_of(m);
    PolyGuard back(product(found, m)), scaled(product(n, c));
    EXPECT_TRUE(poly_equal(back, scaled));
    if (!exists_field_element(m, 1)) return;
    boolean failed = 1;
    PolyGuard exact;
    gen_poly_divide(n, m, &exact.p, polynames, &failed);
    EXPECT_FALSE(failed);
    if (!failed) {
        EXPECT_TRUE(poly_equal(exact, q));
    }
}

PROPERTY(remainders, 120) {
    Round r(rng, round, 1);
    PolyGuard n(random_over_tower(rng, 6, coefs_of(round))), m(random_over_tower(rng, 3, Coefs::small)), q,
        rest, c;
    if (is_number(m) || m.p->exp == 0) return;
    if (!tower_quotient_rest(n, m, &q.p, &rest.p, &c.p, polynames)) return;
    PolyGuard left(product(n, c)), right(product(q, m));
    poly_add(right, rest, &right.p);
    EXPECT_TRUE(poly_equal(left, right));
    EXPECT_TRUE(is_number(rest) || rest.p->exp < m.p->exp);
}

/// The planted factor divides the gcd, the gcd both operands; in normal form.
PROPERTY(gcds, 160) {
    Round r(rng, round, 1 + round % 3 % 2);
    PolyGuard g(random_over_tower(rng, 2, Coefs::small)), a(random_over_tower(rng, 2, coefs_of(round))),
        b(random_over_tower(rng, 2, coefs_of(round)));
    PolyGuard u(product(g, a)), v(product(g, b)), d, q, c;
    if (is_number(u) || is_number(v)) return;
    if (both_above_field_depth(u, v, 1) || is_field_element(u, 1) || is_field_element(v, 1)) return;
    if (!tower_lead_is_unit(g) || !tower_lead_is_unit(u) || !tower_lead_is_unit(v)) return;
    tower_gcd(u, v, &d.p, polynames);
    if (poly_eq_1(d) && !is_field_element(g, 1)) return;  // no field
    EXPECT_TRUE(tower_quotient(u, d, &q.p, &c.p, polynames)) << text_of(d);
    EXPECT_TRUE(tower_quotient(v, d, &q.p, &c.p, polynames)) << text_of(d);
    EXPECT_TRUE(tower_quotient(d, g, &q.p, &c.p, polynames)) << text_of(d) << " by " << text_of(g);
    polypt level;
    const polynode* lead = leading_element(d, polynames, &level);
    EXPECT_TRUE(lead->numb && (modularmode ? lead->ncoef->lint == 1 : chain_sign(lead->ncoef) > 0));
}

/// Planted gcds in three variables above the field: values for two of them, and what contents and leading
/// coefficients have in common. Rings of few elements, where the values are those of the field.
PROPERTY(gcds_by_interpolation, 120) {
    const struct {
        int32_t ring, low, high;  // the modulus or table field, and the degrees of the tower
    } fields[] = {{101, 2, 3}, {32003, 2, 3}, {2147483629, 2, 3}, {65536, 2, 3},
                  {2, 2, 9},   {3, 2, 6},     {13, 2, 3},         {256, 2, 3}};
    const auto& [ring, low, high] = fields[round % 8];
    TowerSetting setting(4, ring, ring == 65536 || ring == 256);
    do {
        mod_out(4, random_modder(rng, 4, random_int(rng, low, high), Coefs::small));
    } while (!level_is_field(variable(4)));
    auto operand = [&](int32_t degree) { return random_over_tower(rng, degree, Coefs::small); };
    PolyGuard g(operand(2)), a(operand(1)), b(operand(1)), c(operand(1));
    PolyGuard gc(product(g, c)), u(product(gc, a)), v(product(gc, b)), d, q;
    if (is_number(u) || is_number(v) || is_field_element(u, 1) || is_field_element(v, 1)) return;
    if (!exists_field_element(u, 1) && !exists_field_element(v, 1)) return;
    tower_gcd(u, v, &d.p, polynames);
    EXPECT_TRUE(tower_divide(u, d, &q.p, polynames)) << text_of(d);
    EXPECT_TRUE(tower_divide(v, d, &q.p, polynames)) << text_of(d);
    EXPECT_TRUE(tower_divide(d, gc, &q.p, polynames)) << text_of(d) << " by " << text_of(gc);
}

PROPERTY(reconstruction, 200) {
    TowerSetting setting(2);
    PolyGuard y(random_poly(rng, 2, 5, 3, Coefs::digit)), numer;
    number m = {}, d = {}, denom = {}, inverse = {};
    setvalue_any(random_int(rng, 2, 1000000), &d);
    setvalue_any((int64_t{1} << 55) - random_int(rng, 1, 1000), &inverse);
    number_power(&inverse, 4);
    fast_mult(&inverse, &d, &m);  // m = d k - 1: the inverse of d is k
    fastdiff(&m, &number_1);
    PolyGuard residue(copy_of(y));
    num_poly_mult(&residue.p, &inverse);
    symmetric_leaves(&residue.p, &m);
    ASSERT_TRUE(reconstruct_poly(residue, &m, &numer.p, &denom));
    num_poly_mult(&numer.p, &d);
    num_poly_mult(&y.p, &denom);
    EXPECT_TRUE(poly_equal(numer, y));
    for (imptr x : {&m, &d, &denom, &inverse}) special_free(x);
}
