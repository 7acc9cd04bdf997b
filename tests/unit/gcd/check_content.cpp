// Contents in one and several variables against the plain gcd of all coefficients.
#include "gcd/content.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/poly_add.h"
#include "poly/poly_vars.h"
#include "poly/size_estimates.h"
#include "storage/progress.h"
#include "tests/unit/gcd/engines_support.h"

#include <map>
#include <vector>
using namespace tolvex;
using namespace tolvex::test;
namespace {
const Ring gcd_rings[] = {{0, false, "Z"},           {2, false, "Z/2"},
                          {3, false, "Z/3"},         {101, false, "Z/101"},
                          {65521, false, "Z/65521"}, {2147483629, false, "Z/2147483629"},
                          {256, true, "GF(2^8)"},    {65536, true, "GF(2^16)"}};
const Ring& ring_of(int round) { return gcd_rings[round % 8]; }

/// *g := gcd(*g, c) by the entry of the language; nil *g: c.
void plain_step(polyptrr g, poly c, polypt pt) {
    poly r = nullptr;
    if (*g == nullptr)
        Lpolygcd2(c, c, &r, pt);
    else
        Lpolygcd2(*g, c, &r, pt);
    free_poly(g);
    *g = r;
}

/// The gcd of all coefficients below `depth` levels, one by one and in order.
void plain_content(poly p, int32_t depth, polypt pt, polyptrr g) {
    for (; p != nullptr; p = p->next) {
        PolyGuard c(coefficient_copy(p));
        if (depth == 1 || is_number(c))
            plain_step(g, c, pt);
        else
            plain_content(c, depth - 1, pt, g);
    }
}

/// The parts of p by its exponents in the levels below `depth`, found term by term.
void collect_parts(const polynode* p, std::vector<int32_t> exps, int32_t depth,
                   std::map<std::vector<int32_t>, poly>* parts) {
    for (; p != nullptr; p = p->next) {
        std::vector<int32_t> e = exps;
        e.push_back(p->exp);
        if (!p->numb) {
            collect_parts(p->pcoef, e, depth, parts);
            continue;
        }
        e.resize(5);
        PolyGuard leaf;
        node_assign(p, &leaf);
        leaf.p->exp = 0;
        for (int32_t level = depth - 1; level >= 0; level--)
            if (e[static_cast<size_t>(level)] != 0 || !is_number(leaf)) {
                poly t;
                new_term(&t, e[static_cast<size_t>(level)], leaf.p);
                leaf.p = t;
            }
        poly& part = (*parts)[std::vector<int32_t>(e.begin() + depth, e.end())];
        if (part == nullptr) poly_set(0, &part);
        poly_add(part, leaf, &part);
    }
}

void plain_content_below(poly p, int32_t depth, polyptrr g) {
    std::map<std::vector<int32_t>, poly> parts;
    collect_parts(p, {}, depth, &parts);
    for (auto& [e, part] : parts) {
        plain_step(g, part, polynames);
        free_poly(&part);
    }
}

/// A random polynomial with a random content in the variables below the top ones.
poly with_content(Rng& rng, int32_t terms) {
    Shape s{4, terms, 2};
    poly p = random_nonzero_poly(rng, s), c = random_nonzero_poly(rng, Shape{3, 2, 2}), product = nullptr;
    add_pad(&c, 1);
    poly_mult(p, c, &product, polynames);
    free_poly(&p), free_poly(&c);
    return product;
}
}  // namespace

PROPERTY(content_is_the_gcd_of_the_coefficients, 1500) {
    const Ring& ring = ring_of(round);
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(4);
    int64_t before = live_records();
    {
        PolyGuard p(with_content(rng, 6)), kept(copy_of(p)), r, plain;
        if (round % 7 == 0) c_cntcount = 200001;  // out of budget: no search
        content(p, &r, polynames, 0, rng() & 1, 1);
        EXPECT_TRUE(poly_equal(p, kept));
        plain_content(p, 1, polynames->next, &plain);
        EXPECT_TRUE(poly_equal(r, plain))
            << text_of(p) << ": " << text_of(r) << " against " << text_of(plain);
        content(p, &r, polynames, 0, 1, 0);  // p is used up
        EXPECT_TRUE(poly_equal(r, plain));
        c_cntcount = 0;
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

PROPERTY(aux_and_dual_content_of_two_operands, 1500) {
    const Ring& ring = ring_of(round);
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(4);
    int64_t before = live_records();
    {
        Shape s{3, 4, 2};
        PolyGuard common(random_nonzero_poly(rng, s)), a(random_nonzero_poly(rng, s)), p,
            q(with_content(rng, 5));
        PolyGuard plain, both, r;
        poly_mult(common, a, &p, polynames->next);
        add_pad(&common, 1);
        poly_mult(q, common, &q, polynames);
        plain_content(q, 1, polynames->next, &plain);
        both.p = copy_of(plain);
        plain_step(&plain, p, polynames->next);
        bool number = is_number(p);
        add_pad(&p, 1);
        PolyGuard p2(copy_of(p)), q2(copy_of(q));
        if (!is_number(q) || !modularmode) {
            aux_content(p, q, &r, polynames, 0, rng() & 1, 1, 1);
            EXPECT_TRUE(poly_equal(r, plain)) << text_of(p) << " and " << text_of(q) << ": " << text_of(r);
            EXPECT_TRUE(poly_equal(p, p2) && poly_equal(q, q2));
            if (!number) {
                dual_content(p, q, &r, polynames, 0, rng() & 1, 1, 1);
                EXPECT_TRUE(poly_equal(r, plain))
                    << text_of(p) << " and " << text_of(q) << ": " << text_of(r);
                EXPECT_TRUE(poly_equal(p, p2) && poly_equal(q, q2));
            }
            PolyGuard w(with_content(rng, 4));
            if (!is_number(w)) {
                plain_content(w, 1, polynames->next, &both);
                dual_content(w, q, &r, polynames, 0, 1, 1, 0);  // q is used up
                EXPECT_TRUE(poly_equal(r, both))
                    << text_of(w) << " and " << text_of(q2) << ": " << text_of(r);
            }
        }
        a_cntcount = d_cntcount = c_cntcount = 0;
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

PROPERTY(contents_in_several_variables, 1500) {
    const Ring& ring = ring_of(round);
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(5);
    int64_t before = live_records();
    {
        int16_t depth = static_cast<int16_t>(random_int(rng, 1, 5));
        PolyGuard p(random_nonzero_poly(rng, Shape{5, 5, 2})),
            c(random_nonzero_poly(rng, Shape{depth, 2, 1}));
        PolyGuard r, plain;
        poly_mult(p, c, &p, polynames);
        if (!is_number(p) && p.p->exp > 0) {
            boolean want = 1;
            PolyGuard kept(copy_of(p));
            general_content(p, depth, &r, polynames, &want, rng() & 1);
            EXPECT_TRUE(poly_equal(p, kept));
            plain_content_below(p, depth, &plain);
            EXPECT_TRUE(poly_equal(r, plain)) << text_of(p) << " at " << depth << ": " << text_of(r);
            want = 0;
            general_content(p, depth, &r, polynames, &want, 0);
            if (want)
                EXPECT_TRUE(poly_eq_1(r));
            else
                EXPECT_TRUE(poly_equal(r, plain));
        }
        c_cntcount = 0;
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

// The content in the second variable times what is left gives the polynomial back, and nothing more comes
// out.
PROPERTY(content_in_the_second_variable, 1000) {
    const Ring& ring = ring_of(round);
    SCOPED_TRACE(ring.name);
    use_ring(ring);
    use_variables(3);
    int64_t before = live_records();
    {
        PolyGuard p(random_nonzero_poly(rng, Shape{3, 4, 2})), c, rest, again, q;
        PolyGuard x(random_nonzero_poly(rng, Shape{1, 3, 2}));
        poly_mult(p, x, &p, polynames);
        c.p = content_2(p, polynames);
        EXPECT_TRUE(poly_check(c, 3));
        EXPECT_FALSE(poly_contains_level(c, 2)) << text_of(c);
        boolean failed = 0;
        gen_poly_divide(p, c, &rest, polynames, &failed);
        ASSERT_FALSE(failed) << text_of(p) << " by " << text_of(c);
        again.p = content_2(rest, polynames);
        EXPECT_TRUE(poly_eq_1(again)) << text_of(rest);
        if (!is_number(x)) {
            gen_poly_divide(c, x, &q, polynames, &failed);
            EXPECT_FALSE(failed);
        }
        c_cntcount = 0;
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}

TEST(Content, numbers_end_it_at_once) {
    set_up_once();
    use_integers();
    use_variables(3);
    // a constant term, or any coefficient that is a number, leaves only the integers in common
    const char* const texts[] = {"6 x^2 y z + 4 x y + 10", "6 x^2 y z + 4 x + 10 y", "8 x + 6", "-4"};
    const int32_t contents[] = {2, 2, 2, 4};
    for (int i = 0; i < 4; i++) {
        PolyGuard p(poly_of(texts[i])), r;
        c_cntcount = 0;
        content(p, &r, polynames, 0, 1, 1);
        EXPECT_EQ(text_of(r), std::to_string(contents[i])) << texts[i];
        EXPECT_EQ(c_cntcount, 0);
        use_ring(101);
        PolyGuard m(poly_of(texts[i]));
        content(m, &r, polynames, 0, 1, 1);
        EXPECT_TRUE(poly_eq_1(r));
        free_poly(&r);
        use_integers();
    }
}

TEST(Content, field_coefficients_are_units) {
    set_up_once();
    use_variables(3);
    field_depth = 2;
    for (int32_t m : {0, 101}) {
        use_ring(m);
        PolyGuard p(poly_of("6 x^2 y + 6 x^2 + 4 x y^2 + 4 x y")), low(poly_of("6 y^2 + 4 y")), r;
        content(p, &r, polynames, 0, 1, 1);
        EXPECT_EQ(text_of(r), m == 0 ? "2" : "1");
        PolyGuard inside(low.p->pcoef);
        low.p->pcoef = nullptr;
        free_node(low.p);
        low.p = nullptr;
        content(inside, &r, polynames->next, 0, 1, 1);  // at the level of the field itself
        EXPECT_EQ(text_of(r), m == 0 ? "2" : "1");
    }
    field_depth = 0;
    use_integers();
}

TEST(Content, search_stops_at_small_coefficients) {
    set_up_once();
    use_integers();
    use_variables(3);
    PolyGuard p(poly_of("x^9 y + x^8 y z + x^7 y z^2 + x^6 y z^3 + x^5 y z^4")), r;
    c_cntcount = 0;
    content(p, &r, polynames, 0, 1, 1);
    EXPECT_EQ(text_of(r), "1*x");
    EXPECT_EQ(c_cntcount, 1);  // the first is small enough
    EXPECT_EQ(c_cntdepth, 1);
    c_cntcount = 200001;
    content(p, &r, polynames, 0, 1, 1);
    EXPECT_EQ(text_of(r), "1*x");
    EXPECT_EQ(c_cntcount, 200001);
    c_cntcount = 5, c_cntdepth = -20;  // counting began far above
    content(p, &r, polynames, 0, 1, 1);
    EXPECT_EQ(text_of(r), "1*x");
    EXPECT_EQ(c_cntcount, 5);
    c_cntcount = c_cntdepth = 0;
}

TEST(Content, general_content_wants_a_degree) {
    set_up_once();
    use_variables(3);
    PolyGuard p(poly_of("y + 1")), r;
    boolean want = 0;
    EXPECT_TRUE(RAISES(general_content(p, 2, &r, polynames, &want, 0)));
    EXPECT_STREQ(caught.text, " 0 exp head node in general_content");
}
