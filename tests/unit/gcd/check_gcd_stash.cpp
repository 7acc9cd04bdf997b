// The table of known gcds: look-ups, eviction, levels of use, changes that make entries wrong.
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "gcd/polygcd.h"
#include "numbers/ring_switch.h"
#include "poly/poly_vars.h"
#include "poly/size_estimates.h"
#include "tests/unit/gcd/engines_support.h"
using namespace tolvex;
using namespace tolvex::test;
namespace {
/// An empty table in the state of a fresh session, with a budget; everything is put back at the end.
class Stash : public ::testing::Test {
  protected:
    void SetUp() override {
        set_up_once();
        use_integers();
        use_variables(3);
        initial_memory = 1 << 20;
        gcd_stash_outdated();
        before = live_records();
    }
    void TearDown() override {
        laurent = 0;
        field_depth = 0;
        polygcd_stack_depth = 0;
        lookupgcd = gcd_stash_level = 0;
        prev_modulus = -1;
        gcd_stash_outdated();
        EXPECT_EQ(gcdmass, 0);
        EXPECT_EQ(live_records(), before);
        initial_memory = 0;
        use_integers();
    }
    int64_t before = 0;
};

poly slot_of(poly u, poly v) {
    poly slot = nullptr;
    gcdhash(u, v, &slot, polynames);
    return slot;
}
poly slot_of(const char* u, const char* v) {
    PolyGuard a(poly_of(u)), b(poly_of(v));
    return slot_of(a, b);
}
void store(const char* u, const char* v, const char* g) {
    PolyGuard r(poly_of(g));
    gcd_stash_store(slot_of(u, v), r);
}
std::string known(const char* u, const char* v) {
    poly slot = slot_of(u, v);
    return slot->next == nullptr ? "unknown" : text_of(slot->next);
}
int64_t entries_there() {
    static int64_t n;
    n = 0;
    walk_gcd_stash([] { n++; }, [](const polynode*) {});
    return n;
}
}  // namespace

TEST_F(Stash, a_pair_is_found_again) {
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");
    store("x^2 + y", "x^3 + z", "x + 1");
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "1*x + 1");
    EXPECT_EQ(known("x^3 + z", "x^2 + y"), "1*x + 1");  // either order
    EXPECT_EQ(known("x^2 + y", "x^3 + 2 z"), "unknown");
    EXPECT_EQ(known("x^2 + y", "x^3 + z + 1"), "unknown");
    EXPECT_EQ(entries_there(), 3);
    // equal degrees, in either order one slot
    store("x^2 + 5 y", "x^2 + 7 z", "x");
    EXPECT_EQ(known("x^2 + 7 z", "x^2 + 5 y"), "1*x");
    EXPECT_EQ(slot_of("x^2 + 7 z", "x^2 + 5 y"), slot_of("x^2 + 5 y", "x^2 + 7 z"));
}

TEST_F(Stash, masses_are_counted) {
    PolyGuard u(poly_of("x^2 + y")), v(poly_of("x^3 + z")), g(poly_of("x + 1"));
    poly slot = slot_of(u, v);
    int64_t pair = simple_poly_mass(u) + simple_poly_mass(v);
    EXPECT_EQ(gcdmass, pair);
    EXPECT_EQ(slot->exp, pair);
    gcd_stash_store(slot, g);
    EXPECT_EQ(gcdmass, pair + simple_poly_mass(g));
    EXPECT_EQ(slot->exp, gcdmass);
    EXPECT_GT(mass_gcd_stash(), 0);
    gcd_stash_forget(u, v, polynames);
    EXPECT_EQ(gcdmass, pair);
    EXPECT_EQ(slot_of(u, v)->next, nullptr);
    gcd_stash_forget(g, v, polynames);  // not there: nothing happens
    EXPECT_EQ(entries_there(), 1);
}

TEST_F(Stash, levels_of_use) {
    init_gcd_stash();
    init_gcd_stash();
    EXPECT_EQ(lookupgcd, 2);
    store("x^2 + y", "x^3 + z", "x + 1");
    pop_gcd_stash();
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "1*x + 1");
    pop_gcd_stash();
    EXPECT_EQ(lookupgcd, 0);
    EXPECT_EQ(entries_there(), 0);  // over Z the last level empties the table
    EXPECT_EQ(gcdmass, 0);
    use_ring(101);
    init_gcd_stash();
    store("x^2 + y", "x^3 + z", "x + 1");
    pop_gcd_stash();
    EXPECT_EQ(prev_modulus, 101);
    EXPECT_EQ(entries_there(), 1);  // in modular mode it stays
    init_gcd_stash();
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "1*x + 1");
    free_gcd_stash();
    EXPECT_EQ(lookupgcd, 0);
    use_ring(103);
    init_gcd_stash();
    EXPECT_EQ(entries_there(), 0);
    pop_gcd_stash();
}

TEST_F(Stash, changes_empty_it) {
    store("x^2 + y", "x^3 + z", "x + 1");
    use_ring(101);
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");
    store("x^2 + y", "x^3 + z", "x + 2");
    use_ring(256, true);
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");
    use_ring(256);  // residues modulo 256 are another ring than the table field
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");
    store("x^2 + y", "x^3 + z", "x + 3");
    laurent = 1;
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");
    store("x^2 + y", "x^3 + z", "x + 4");
    gcd_stash_outdated();  // the variables have changed
    EXPECT_EQ(entries_there(), 0);
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");
}

TEST_F(Stash, fields_tell_levels_apart) {
    PolyGuard u(poly_of("x^2 + y")), v(poly_of("x^3 + y")), g(poly_of("x + 1"));
    poly at_1 = nullptr, at_2 = nullptr;
    gcdhash(u, v, &at_1, polynames);
    gcdhash(u, v, &at_2, polynames->next);
    EXPECT_EQ(at_1, at_2);  // without a field a gcd depends on positions alone
    field_depth = 3;
    gcd_stash_outdated();
    gcdhash(u, v, &at_1, polynames);
    gcd_stash_store(at_1, g);
    gcdhash(u, v, &at_2, polynames->next);
    EXPECT_NE(at_1, at_2);
    EXPECT_EQ(at_2->next, nullptr);
}

TEST_F(Stash, open_slots_outlive_everything) {
    PolyGuard u(poly_of("x^2 + y")), v(poly_of("x^3 + z")), g(poly_of("x + 1"));
    store("x^5 + y", "x^4 + z", "x");
    poly slot = slot_of(u, v);
    polygcd_stack_depth = 1;
    purge_gcd_stash(-1);
    EXPECT_EQ(entries_there(), 2);  // no eviction
    free_gcd_stash();
    EXPECT_EQ(entries_there(), 1);  // the open one
    gcd_stash_store(slot, g);
    polygcd_stack_depth = 0;
    EXPECT_EQ(known("x^2 + y", "x^3 + z"), "unknown");  // it was out of the table by then
    EXPECT_EQ(entries_there(), 1);
}

TEST_F(Stash, eviction_keeps_the_newest_of_each_bucket) {
    initial_memory = 60000;
    Rng rng(run_seed());
    for (int i = 0; i < 4000; i++) {
        PolyGuard u(random_nonzero_poly(rng, Shape{3, 5, 5})), v(random_nonzero_poly(rng, Shape{3, 5, 5}));
        poly slot = slot_of(u, v);
        EXPECT_LE(gcdmass, initial_memory);
        EXPECT_EQ(slot_of(u, v), slot);  // the new one is protected
    }
    EXPECT_GT(entries_there(), 20);
    initial_memory = 0;  // as if all memory were wanted
    purge_gcd_stash(-1);
    EXPECT_EQ(entries_there(), 0);
    EXPECT_EQ(gcdmass, 0);
}

// Gcds from the table are those that are computed, under eviction and changes of ring.
TEST_F(Stash, answers_are_those_of_polygcd) {
    Rng rng(run_seed() + 1);
    int hits = 0;
    for (int i = 0; i < rounds(40); i++) {
        static const Ring kinds[] = {{0, false, ""}, {101, false, ""}, {65521, false, ""}, {256, true, ""}};
        use_ring(kinds[i % 4]);
        initial_memory = i % 3 == 0 ? 20000 : 1 << 20;
        poly pool[8];
        for (poly& p : pool) {
            p = random_nonzero_poly(rng, Shape{3, 4, 2});
            gcd_normal_form(&p);
        }
        for (int k = 0; k < 100; k++) {
            poly u = pool[rng() % 8], v = pool[rng() % 8];
            PolyGuard g;
            Lpolygcd2(u, v, &g, polynames);
            poly slot = slot_of(u, v);
            if (slot->next != nullptr) {
                EXPECT_TRUE(poly_equal(slot->next, g)) << text_of(u) << " and " << text_of(v);
                hits++;
            } else {
                gcd_stash_store(slot, g);
            }
        }
        for (poly& p : pool) free_poly(&p);
    }
    EXPECT_GT(hits, rounds(40) * 20);
}

// The driver with the table on and off.
TEST_F(Stash, the_driver_agrees_with_itself) {
    Rng rng(run_seed() + 2);
    int32_t cutoff = gcd_stash_cutoff;
    gcd_stash_cutoff = 1;
    boolean words = word_engines;
    word_engines = 0;  // they answer before the table is asked
    int64_t entries = 0;
    for (int i = 0; i < rounds(40); i++) {
        static const Ring kinds[] = {
            {0, false, ""}, {101, false, ""}, {65521, false, ""}, {2147483629, false, ""}};
        use_ring(kinds[i % 4]);
        poly pool[6];
        for (poly& p : pool) {
            PolyGuard a(random_nonzero_poly(rng, Shape{3, 4, 2})),
                b(random_nonzero_poly(rng, Shape{3, 12, 3}));
            p = nullptr;
            poly_mult(a, b, &p, polynames);
        }
        for (int k = 0; k < 30; k++) {
            poly u = pool[rng() % 6], v = pool[rng() % 6];
            PolyGuard on, off;
            init_gcd_stash();
            Lpolygcd2(u, v, &on, polynames);
            lookupgcd = 0;  // the table stays filled
            Lpolygcd2(u, v, &off, polynames);
            EXPECT_TRUE(poly_equal(on, off)) << text_of(on) << " against " << text_of(off) << " of "
                                             << text_of(u) << " and " << text_of(v);
            EXPECT_EQ(polygcd_stack_depth, 0);
        }
        entries += entries_there();
        for (poly& p : pool) free_poly(&p);
    }
    EXPECT_GT(entries, rounds(40) / 2);  // most problems end before the table is asked
    gcd_stash_cutoff = cutoff;
    word_engines = words;
}
