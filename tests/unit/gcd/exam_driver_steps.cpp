// Steps of the driver that few problems end in, each with operands made for it.
#include "tests/unit/gcd/driver_support.h"

#include <cstring>
using namespace tolvex;
using namespace tolvex::test;
namespace {
struct Steps : DriverTest {
    Rng rng{20261121};
    /// A polynomial of `terms` terms in the levels first to last.
    poly part(int32_t first, int32_t last, int32_t terms, int32_t max_exp) {
        poly p = nullptr;
        poly_set(0, &p);
        for (int32_t i = 0; i < terms; i++) {
            int32_t e[6] = {};
            for (int32_t level = first; level <= last; level++) e[level - 1] = random_int(rng, 0, max_exp);
            best_poly_add(p, term_poly(random_int(rng, 1, 30), e, 6), &p);
        }
        return p;
    }
    /// gcd(a c, b c) in normal form divides both and is divided by c; the word engines give the same.
    void expect_gcd(poly a, poly b, poly c) {
        PolyGuard u, v, g, h;
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        polygcd(u, v, &g, 0, 1, 1, polynames, 1, 1, 1);
        word_engines = 1;
        polygcd(u, v, &h, 0, 1, 1, polynames, 1, 1, 1);
        word_engines = 0;
        EXPECT_TRUE(poly_equal(g, h)) << text_of(g) << " and " << text_of(h);
    }
};

int64_t ended_by(const char* step) {
    int64_t calls = 0;
    for (int32_t i = 0; i < k_gcd_steps; i++)
        if (strcmp(gcd_step_name(i), step) == 0) calls += gcd_ended_by[i];
    return calls;
}
}  // namespace

// u = c(x, y) a(x, y, z, t) and v = c: the content of u in the upper levels, of a dozen terms and more, takes
// all of v away.
TEST_F(Steps, contents_in_levels_end_a_call) {
    tripval = 16384;
    for (int32_t ring : {0, 65521}) {
        use_ring(ring);
        for (int i = 0; i < 10; i++) {
            PolyGuard a, one, c;
            a.p = part(1, 4, 6, 2), c.p = part(1, 2, 40, 9);
            poly_set(1, &one.p);
            expect_gcd(a, one, c);
        }
    }
    EXPECT_GT(ended_by("contents_in_levels"), 0);
}

// Common contents in the upper levels, small and large, come back as factors of the gcd.
TEST_F(Steps, contents_in_levels_of_both_operands) {
    for (int32_t ring : {0, 65521}) {
        use_ring(ring);
        for (int32_t terms : {2, 5, 20}) {
            PolyGuard a, b, c, d;
            a.p = part(1, 4, 6, 2), b.p = part(1, 4, 6, 2), c.p = part(1, 2, terms, 6),
            d.p = part(1, 3, 4, 2);
            poly_mult(c, d, &d, polynames);
            expect_gcd(a, b, d);
        }
    }
}

// One operand without the deeper variables is its own content.
TEST_F(Steps, contents_in_levels_of_few_variables) {
    use_ring(65521);
    for (int i = 0; i < 3; i++) {
        PolyGuard a, b, c;
        a.p = part(1, 2, 12, 8), b.p = part(1, 4, 10, 3), c.p = part(1, 2, 5, 3);
        expect_gcd(a, b, c);
        expect_gcd(b, a, c);
        expect_gcd(a, a, c);
    }
}

// Without evaluation tests a call that wants the degree alone ends before the engines.
TEST_F(Steps, early_degree_without_tests) {
    use_ring(65521);
    PolyGuard a, b, c, g;
    a.p = poly_of("x^2*y + z + 1"), b.p = poly_of("x*y^2 + x*z + 3"), c.p = poly_of("x^3*z + x*y + 5");
    poly_mult(a, c, &a, polynames);
    poly_mult(b, c, &b, polynames);
    polygcd(a, b, &g, 1, 0, 0, polynames, 1, 1, 1);
    EXPECT_GT(g.p->exp, 0);
    EXPECT_GT(ended_by("early_degree"), 0);
}

// The same problem again, and with operands exchanged and scaled.
TEST_F(Steps, stash_lookup_answers_for_associated_operands) {
    for (int32_t ring : {0, 65521}) {
        use_ring(ring);
        DriverSettings::defaults();
        word_engines = 0;
        tripval = 16384;
        trial_cutoff = 1000000;
        gcd_stash_cutoff = 0;
        init_gcd_stash();
        PolyGuard a, b, c, u, v, minus, g, h;
        a.p = part(1, 3, 5, 2), b.p = part(1, 3, 5, 2), c.p = poly_of("x^3*y + x*z + y^2 + 7");
        poly_mult(a, c, &u, polynames);
        poly_mult(b, c, &v, polynames);
        polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1);
        int64_t before = ended_by("stash_lookup");
        poly_makeneg(v, &minus);
        polygcd(minus, u, &h, 0, 0, 0, polynames, 1, 1, 1);
        EXPECT_TRUE(poly_equal(g, h));
        EXPECT_GT(ended_by("stash_lookup"), before);
        EXPECT_EQ(polygcd_stack_depth, 0);
        EXPECT_EQ(lookupgcd, 1);
        free_gcd_stash();
    }
}

// An error out of a gcd whose slot is open: the level of the stash stays, the slot is closed.
TEST_F(Steps, the_stash_keeps_its_level_after_an_error) {
    tripval = 16384;
    trial_cutoff = 1000000;
    gcd_stash_cutoff = 0;
    init_gcd_stash();
    init_gcd_stash();
    PolyGuard a, b, c, u, v, g;
    a.p = part(1, 3, 6, 2), b.p = part(1, 3, 6, 2), c.p = poly_of("x^3*y + x*z + y^2 + 7");
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    gcd_fault = [](polyptrr, polypt) {
        if (polygcd_stack_depth > 0) tolvex_error("out of a gcd");
    };
    EXPECT_TRUE(RAISES(polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1)));
    gcd_fault = nullptr;
    EXPECT_GT(polygcd_stack_depth, 0);
    gcd_counters_clear();
    EXPECT_EQ(polygcd_stack_depth, 0);
    EXPECT_EQ(lookupgcd, 2);
    polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1);
    PolyGuard h;
    word_engines = 1;
    Lpolygcd2(u, v, &h, polynames);
    EXPECT_TRUE(poly_equal(g, h));
    pop_gcd_stash();
    EXPECT_EQ(lookupgcd, 1);
    pop_gcd_stash();
    EXPECT_EQ(lookupgcd, 0);
    EXPECT_EQ(gcdmass, 0);
}

// Statements of a pushed level compute gcds of their own while a frame of the level below holds a slot.
TEST_F(Steps, gcds_of_a_nested_level_leave_the_open_slot_alone) {
    tripval = 16384;
    trial_cutoff = 1000000;
    gcd_stash_cutoff = 0;
    init_gcd_stash();
    PolyGuard a, b, c, u, v, g, h;
    a.p = part(1, 3, 6, 2), b.p = part(1, 3, 6, 2), c.p = poly_of("x^3*y + x*z + y^2 + 7");
    poly_mult(a, c, &u, polynames);
    poly_mult(b, c, &v, polynames);
    static int32_t nested;
    nested = 0;
    gcd_fault = [](polyptrr, polypt) {
        if (polygcd_stack_depth == 0 || nested++ != 0) return;
        GcdCounters saved = gcd_counters_save();
        gcd_counters_push();
        int32_t depth = polygcd_stack_depth;
        PolyGuard p, q, r, right;
        p.p = poly_of("x^2 - y^2"), q.p = poly_of("x^2 + 2*x*y + y^2"), right.p = poly_of("x + y");
        polygcd(p, q, &r, 0, 1, 1, polynames, 1, 1, 1);
        EXPECT_TRUE(poly_equal(r, right)) << text_of(r);
        init_gcd_stash();
        pop_gcd_stash();
        EXPECT_EQ(polygcd_stack_depth, depth);
        gcd_counters_restore(saved);
    };
    polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1);
    gcd_fault = nullptr;
    EXPECT_GT(nested, 0);
    EXPECT_EQ(polygcd_stack_depth, 0);
    EXPECT_EQ(lookupgcd, 1);
    word_engines = 1;
    lookupgcd = -1000;
    Lpolygcd2(u, v, &h, polynames);
    lookupgcd = 1;
    EXPECT_TRUE(poly_equal(g, h));
    free_gcd_stash();
}
