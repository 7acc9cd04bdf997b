// Planted factors: every engine on words finds what was planted, or declines.
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "gcd/word_lane.h"
#include "gcd/word_sparse.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
#include "tests/unit/gcd/remainder_gcd.h"

#include <string>
using namespace tolvex;
using namespace tolvex::test;
namespace {
const Ring word_rings[] = {
    {0, false, "Z"},           {32003, false, "Z/32003"}, {2147483629, false, "Z/2147483629"},
    {65537, false, "Z/65537"}, {4099, false, "Z/4099"},   {7, false, "Z/7"},
    {2, false, "Z/2"},         {256, true, "GF(2^8)"},    {65536, true, "GF(2^16)"}};
constexpr int word_ring_count = sizeof word_rings / sizeof word_rings[0];

bool divides(poly d, poly n, polyptrr q) {
    boolean failed = 0;
    gen_poly_divide(n, d, q, polynames, &failed);
    return !failed;
}

/// u = a h, v = b h.
struct Planted {
    poly a, b, h, u = nullptr, v = nullptr;
    Planted(Rng& rng, const Shape& cofactor, const Shape& common)
        : a(random_nonzero_poly(rng, cofactor)), b(random_nonzero_poly(rng, cofactor)),
          h(random_nonzero_poly(rng, common)) {
        poly_mult(a, h, &u, polynames);
        poly_mult(b, h, &v, polynames);
    }
    ~Planted() { free_poly(&a), free_poly(&b), free_poly(&h), free_poly(&u), free_poly(&v); }
};

// g divides u and v, what is left has nothing in common by the remainder sequence's account when that is
// cheap, and the planted factor divides g.
void expect_gcd(const Planted& p, poly g, const char* engine) {
    poly qu = nullptr, qv = nullptr, q = nullptr;
    bool right = divides(g, p.u, &qu) && divides(g, p.v, &qv) && divides(p.h, g, &q);
    EXPECT_TRUE(right) << engine << "\nu = " << text_of(p.u) << "\nv = " << text_of(p.v)
                       << "\ng = " << text_of(g) << "\nh = " << text_of(p.h);
    if (right && poly_terms(qu) < 5 && poly_terms(qv) < 5 && !is_number(qu) && !is_number(qv) &&
        qu->exp > 0 && qv->exp > 0 && qu->exp + qv->exp < 8) {
        poly rest = prs_gcd(qu, qv, polynames);
        EXPECT_TRUE(is_number(rest)) << engine << " left " << text_of(rest);
        free_poly(&rest);
    }
    free_poly(&qu), free_poly(&qv), free_poly(&q);
}

int32_t max_degree(const polynode* p, int32_t level) {
    PackMeasure m;
    pack_measure(p, &m);
    return level < m.levels ? m.most[level] : 0;
}

void try_engines(const Planted& p) {
    if (is_number(p.u) || is_number(p.v)) return;
    poly g = nullptr;
    int64_t box = 1;  // interpolation in a small field takes a while
    for (int32_t i = 0; i < 6; i++) box *= 1 + max_degree(p.h, i);
    if (box > 2000 && modularmode && (finf || modulus < 4096)) return;
    if (word_gcd(p.u, p.v, &g, polynames, false)) expect_gcd(p, g, "word_gcd");
    free_poly(&g);
    WordGcdEnv env;
    open_operands(env, p.u, p.v, polynames);
    if (env.um.terms == 1 || env.vm.terms == 1 || bound_by_images(env)) return;
    if (gcd_of_few_terms(env, 4096, &g)) expect_gcd(p, g, "gcd_of_few_terms");
    free_poly(&g);
    if (gcd_of_values(env, &g)) expect_gcd(p, g, "values");
    free_poly(&g);
    int64_t images = 1;
    for (int32_t i = 0; i < env.levels; i++) images *= env.bound[i] + 1;
    if (images > 100) return;
    if (modularmode ? gcd_over_field(env, &g) : gcd_over_integers(env, &g)) expect_gcd(p, g, "interpolation");
    free_poly(&g);
}

Shape shape_of(Rng& rng, int32_t levels, int32_t terms, int32_t degree) {
    const Coefs styles[] = {Coefs::small, Coefs::digit, Coefs::two_digits, Coefs::huge, Coefs::ones};
    Shape s{};
    s.levels = levels;
    s.terms = random_int(rng, 1, terms);
    s.max_exp = degree;
    s.coefs = styles[random_int(rng, 0, 4)];
    return s;
}

void open_round(int round) {
    use_variables(6);
    use_ring(word_rings[round % word_ring_count]);
}
}  // namespace

PROPERTY(planted_factors_small, 20000) {
    open_round(round);
    int32_t levels = random_int(rng, 1, 4), degree = random_int(rng, 1, 3);
    Planted p(rng, shape_of(rng, levels, 6, degree), shape_of(rng, levels, 6, degree));
    try_engines(p);
    use_integers();
}

// One variable and long numbers: the values at a power of two settle it nearly always.
PROPERTY(planted_factors_long_numbers, 4000) {
    use_variables(2);
    use_integers();
    int32_t degree = random_int(rng, 1, 6);
    Shape cofactor = shape_of(rng, 1, 5, degree), common = shape_of(rng, 1, 5, degree);
    common.coefs = Coefs::huge;
    Planted p(rng, cofactor, common);
    try_engines(p);
}

PROPERTY(planted_factors_sparse, 4000) {
    open_round(round);
    int32_t levels = random_int(rng, 3, 6), degree = random_int(rng, 1, 8);
    Planted p(rng, shape_of(rng, levels, 10, degree), shape_of(rng, levels, 10, degree));
    try_engines(p);
    use_integers();
}

PROPERTY(planted_factors_of_high_degree, 1000) {
    open_round(round);
    int32_t levels = random_int(rng, 1, 3), degree = random_int(rng, 20, 90);
    Planted p(rng, shape_of(rng, levels, 4, degree), shape_of(rng, levels, 4, degree));
    try_engines(p);
    use_integers();
}

PROPERTY(planted_factors_dense, 500) {
    open_round(round);
    int32_t levels = random_int(rng, 1, 3), degree = random_int(rng, 2, 5);
    Planted p(rng, shape_of(rng, levels, 60, degree), shape_of(rng, levels, 60, degree));
    try_engines(p);
    use_integers();
}

// The common factor misses variables, the cofactors share none: levels are set to points.
PROPERTY(planted_factors_in_some_variables, 4000) {
    open_round(round);
    int32_t levels = random_int(rng, 1, 5);
    Planted p(rng, shape_of(rng, random_int(rng, 1, 5), 5, 3), shape_of(rng, levels, 5, 3));
    try_engines(p);
    use_integers();
}
