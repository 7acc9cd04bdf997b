// The driver in fixed cases: each step with the operands that it is for, and what is promised on every way
// out.
#include "gcd/engines.h"
#include "poly/div_trial.h"
#include "poly/poly_monic.h"
#include "poly/word_field.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "tests/unit/gcd/driver_support.h"

#include <cstring>
using namespace tolvex;
using namespace tolvex::test;
namespace {
using Driver = DriverTest;

int64_t ended_by(const char* step) {
    int64_t calls = 0;
    for (int32_t i = 0; i < k_gcd_steps; i++)
        if (strcmp(gcd_step_name(i), step) == 0) calls += gcd_ended_by[i];
    return calls;
}

std::string plain(const char* text) {
    PolyGuard p;
    p.p = poly_of(text);
    return text_of(p);
}

std::string driver_gcd(const char* u, const char* v, boolean leave_early = 0) {
    PolyGuard a, b, a2, b2, g;
    a.p = poly_of(u), b.p = poly_of(v), a2.p = poly_of(u), b2.p = poly_of(v);
    polygcd(a, b, &g, leave_early, 1, 1, polynames, 1, 1, 1);
    EXPECT_TRUE(poly_equal(a, a2) && poly_equal(b, b2)) << "an operand has changed";
    EXPECT_TRUE(poly_check(g, number_polys));
    return text_of(g);
}

void expect_gcd(const char* u, const char* v, const char* g) {
    EXPECT_EQ(driver_gcd(u, v), plain(g)) << u << " and " << v;
    EXPECT_EQ(driver_gcd(v, u), plain(g)) << v << " and " << u;
}

poly product(const char* a, const char* b) {
    poly p = poly_of(a), q = poly_of(b);
    poly_mult(p, q, &p, polynames);
    free_poly(&q);
    return p;
}
}  // namespace

// ---- small cases ---------------------------------------------------------------------------------------

TEST_F(Driver, numbers) {
    EXPECT_EQ(driver_gcd("12", "-18"), plain("6"));
    EXPECT_EQ(driver_gcd("0", "6*x + 9"), plain("3"));
    EXPECT_EQ(driver_gcd("6*x + 9", "1"), plain("1"));
    EXPECT_EQ(driver_gcd("0", "0"), plain("0"));
    EXPECT_EQ(ended_by("one_is_number"), 4);
    use_ring(7);
    EXPECT_EQ(driver_gcd("4", "6"), plain("1"));
    EXPECT_EQ(driver_gcd("0", "6*x + 5"), plain("1"));
}

TEST_F(Driver, no_variable_left) {
    PolyGuard x, g;
    x.p = poly_of("x");
    EXPECT_TRUE(RAISES(polygcd(x, x, &g, 0, 1, 1, nullptr, 1, 1, 1)));
    EXPECT_STREQ(caught.text, "pt nil in polygcd.");
    gcd_counters_clear();
}

TEST_F(Driver, the_same_object_gives_a_copy_in_normal_form) {
    PolyGuard u, g;
    u.p = poly_of("-6*x^2 + 4*y");
    polygcd(u, u, &g, 0, 1, 1, polynames, 1, 1, 1);
    EXPECT_EQ(text_of(g), plain("6*x^2 - 4*y"));
    EXPECT_EQ(text_of(u), plain("-6*x^2 + 4*y"));
    Lpolygcd3(u, &g, polynames);
    EXPECT_EQ(text_of(g), plain("6*x^2 - 4*y"));
    EXPECT_EQ(ended_by("same_operands"), 2);
    use_ring(7);
    PolyGuard w;
    w.p = poly_of("3*x^2 + y");
    Lpolygcd3(w, &g, polynames);
    EXPECT_EQ(text_of(g), plain("x^2 + 5*y"));
}

TEST_F(Driver, powers_of_the_main_variable) {
    expect_gcd("x^2*y", "x^3*y", "x^2*y");
    expect_gcd("x^5*y + x^2", "x^4*y + x^3", "x^2");
    expect_gcd("x^3", "x^5*y + x^2", "x^2");
    expect_gcd("6*x^4*y^2 + 6*x^2", "4*x^6*y + 4*x^3*y", "2*x^2");
    EXPECT_EQ(driver_gcd("x^5*y + x^2", "x^4*y + x^3", 1), plain("x^2"));
    EXPECT_GE(ended_by("strip_powers"), 1);
}

TEST_F(Driver, levels_that_do_not_occur) {
    expect_gcd("z^2 - t^2", "z^2 + 2*z*t + t^2", "z + t");
    expect_gcd("t^2 - 1", "t^3 - 1", "t - 1");
    EXPECT_EQ(ended_by("both_free_of_main"), 4);
    expect_gcd("x*z + z*y", "z^2*y - z", "z");
    EXPECT_GE(ended_by("one_free_of_main"), 2);
}

TEST_F(Driver, gaps_between_exponents) {
    use_ring(7);
    expect_gcd("x^6*y + 6*y", "x^4*y^2 + 6*y^2", "x^2*y + 6*y");
    expect_gcd("x^6 + 6", "x^4 + 6", "x^2 + 6");
    expect_gcd("x^12*y*z + x^9*z + x^6*y^2", "x^12*y*z*t + x^9*z*t + x^6*y^2*t",
               "x^12*y*z + x^9*z + x^6*y^2");
}

// ---- leave_early ---------------------------------------------------------------------------------------

TEST_F(Driver, leave_early_tells_the_degree_alone) {
    EXPECT_EQ(driver_gcd("x^2*y - y", "x*y^2 + y^2", 1), plain("x"));
    EXPECT_EQ(driver_gcd("x*y + y", "x*y + 2*y", 1), plain("y"));  // degree 0, but not a number
    EXPECT_EQ(driver_gcd("x*y + 1", "x*y + 2", 1), plain("1"));
    EXPECT_EQ(driver_gcd("6", "4*x", 1), plain("1"));
    for (int ring : {2, 3, 101, 65521}) {
        use_ring(ring);
        EXPECT_EQ(driver_gcd("x*y + 1", "x*y*z + z", 1), plain("x"));
        EXPECT_EQ(driver_gcd("x*y + 1", "x + y", 1).find('z'), std::string::npos);
    }
}

TEST_F(Driver, leave_early_of_degree_0_is_a_proof) {
    for (int round = 0; round < 200; round++) {
        Rng rng(static_cast<uint64_t>(round));
        use_ring(round % 3 == 0 ? 0 : round % 3 == 1 ? 3 : 65521);
        use_variables(12);
        Problem p;
        make_problem(static_cast<Family>(round % static_cast<int>(Family::count)), rng, &p);
        word_engines = round & 1;
        PolyGuard e, g;
        polygcd(p.u, p.v, &e, 1, 1, 1, polynames, 1, 1, 1);
        polygcd(p.u, p.v, &g, 0, 1, 1, polynames, 1, 1, 1);
        if (is_number(e)) {
            EXPECT_TRUE(is_number(g)) << text_of(g);
        } else if (e.p->exp == 0) {
            EXPECT_EQ(g.p->exp, 0) << text_of(g);
        }
        EXPECT_LE(e.p->next == nullptr ? 1 : 2, 1);
    }
}

// ---- images --------------------------------------------------------------------------------------------

TEST_F(Driver, one_image_proves_coprimality) {
    tripval = 0;
    expect_gcd("6*x^3*y + 4*z + 10", "4*x^2*y*z + 6*x + 2", "2");
    EXPECT_EQ(ended_by("one_image"), 2);
    expect_gcd("x^3*y*z + y*z", "x^2*y^2 + y^2*z", "y");
    EXPECT_GE(ended_by("one_image"), 4);
}

TEST_F(Driver, use_modular_keeps_what_it_came_upon) {
    PolyGuard u, v;
    u.p = product("x*y + 3", "x^2 + y");
    v.p = product("x*y + 3", "x - y");
    boolean success = 1, isnumb = 1;
    int32_t expo = 77;
    int16_t lookup = lookupgcd = 1;
    alg_c_count = 2;
    use_modular(u, v, &success, &isnumb, polynames, 10, &expo);
    EXPECT_FALSE(success || isnumb || modularmode || lintmode);
    EXPECT_EQ(expo, 1);
    EXPECT_EQ(modulus, -1);
    EXPECT_EQ(lookupgcd, lookup);
    EXPECT_EQ(alg_c_count, 2);
    lookupgcd = 0;
    use_modular(u, v, &success, &isnumb, polynames, 0, &expo);  // no prime
    EXPECT_FALSE(success || isnumb);
    EXPECT_EQ(expo, 1);
    PolyGuard one, line, square;
    one.p = poly_of("x + y + 1");
    use_modular(u, one, &success, &isnumb, polynames, 10, &expo);
    EXPECT_TRUE(success);
    line.p = poly_of("x + 1"), square.p = poly_of("x^2 + 1");
    use_modular(line, square, &success, &isnumb, polynames, 10, &expo);
    EXPECT_TRUE(success && isnumb);
}

TEST_F(Driver, evaluation_at_one_point) {
    use_ring(65521);
    PolyGuard u, v;
    u.p = poly_of("x^2*y + z"), v.p = poly_of("x*y*z + 1");
    polygcd_EnvRec env = {};
    env.u = u, env.v = v, env.pt = polynames;
    assign_levels(env);
    EXPECT_EQ(env.field_level, 3);
    EXPECT_EQ(env.us.levels, 2);
    int32_t expo = 0;
    bool valid = false;
    while (!valid) {
        bool coprime = fast_test_2(1, &expo, &valid, env);
        EXPECT_EQ(coprime, valid);
    }
    EXPECT_EQ(expo, 0);
    use_integers();
    PolyGuard a, b;
    a.p = poly_of("x*y + 1"), b.p = poly_of("x*y + 2");
    env.u = a, env.v = b;
    assign_levels(env);
    EXPECT_EQ(env.field_level, 2);
    EXPECT_TRUE(fast_test_2(1, &expo, &valid, env) && valid);
    EXPECT_EQ(tripval, 20);
}

// ---- trial division by points --------------------------------------------------------------------------

TEST_F(Driver, rounds_of_evaluations_say_yes_without_a_proof) {
    PolyGuard u, v, w;
    v.p = poly_of("x^2*y*z + 3*t*u + y*z - 7*x");
    u.p = product("x^2*y*z + 3*t*u + y*z - 7*x", "x*t + 2*y*u - z + 5");
    w.p = product("x^2*y*z + 3*t*u + y*z - 8*x", "x*t + 2*y*u - z + 5");
    gcd_unproved = 0;
    EXPECT_TRUE(trial_poly_divide_noq(u, v, polynames, 1, 1));
    EXPECT_TRUE(gcd_unproved);
    gcd_unproved = 0;
    EXPECT_FALSE(trial_poly_divide_noq(w, v, polynames, 1, 1));
    EXPECT_TRUE(trial_poly_divide_noq(u, v, polynames, 1, 0));
    gcd_sure = 1;
    EXPECT_TRUE(trial_poly_divide_noq(u, v, polynames, 1, 1));
    gcd_sure = 0;
    rat_yes = 0;
    EXPECT_TRUE(trial_poly_divide_noq(u, v, polynames, 1, 1));
    EXPECT_FALSE(gcd_unproved);
    rat_yes = 1;
    use_ring(997);
    PolyGuard a, b;
    b.p = poly_of("x^2*y*z + 3*t*u + y*z + x");
    a.p = product("x^2*y*z + 3*t*u + y*z + x", "x*t + 2*y*u + z + 5");
    EXPECT_TRUE(trial_poly_divide_noq(a, b, polynames, 1, 1));
    EXPECT_FALSE(gcd_unproved) << "points of a small field prove nothing";
}

// Modulo a prime a factor without the main variable is a unit in every image in it.
TEST_F(Driver, rounds_see_factors_of_the_deeper_levels) {
    for (int ring : {0, 1009, 65521}) {
        use_ring(ring);
        PolyGuard u, v;
        v.p = product("x^2*y*z + 3*t*u + y*z + x", "z*t + u + 1");
        u.p = product("x^2*y*z + 3*t*u + y*z + x", "x*t + 2*y*u + z + 5");
        poly_mult(u, u, &u, polynames);
        for (int i = 0; i < 20; i++) EXPECT_FALSE(trial_poly_divide_noq(u, v, polynames, 1, 1));
    }
}

// ---- contents and engines ------------------------------------------------------------------------------

TEST_F(Driver, associated_operands_after_their_contents) {
    expect_gcd("x^2*y^2 + x*y*z^2 + y*z", "6*x^2*y*z + 6*x*z^3 + 6*z^2", "x^2*y + x*z^2 + z");
    EXPECT_GE(ended_by("one_term_or_equal") + ended_by("try_small_divisor") + ended_by("one_image"), 1);
}

TEST_F(Driver, interpolation_can_be_switched_off) {
    use_ring(65521);
    PolyGuard u, v, c, g;
    c.p = poly_of("x^3*y^2 + x*y*z + 3*z^3 + 5");
    u.p = product("x^2*y + x*z + y^3 + 1", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    v.p = product("x^3 + x*y*z^2 + y + 2", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    for (boolean on : {1, 0}) {
        chinhensel = on;
        polygcd(u, v, &g, 0, 1, 1, polynames, 1, 1, 1);
        EXPECT_TRUE(poly_equal(g, c)) << text_of(g);
    }
}

// ---- ownership, counters, errors -----------------------------------------------------------------------

TEST_F(Driver, operands_may_be_used_up) {
    for (int round = 0; round < 300; round++) {
        Rng rng(static_cast<uint64_t>(round) + 5000);
        use_ring(round % 3 == 0 ? 0 : round % 3 == 1 ? 5 : 65521);
        int64_t before = live_records();
        {
            use_variables(12);
            Problem p;
            make_problem(static_cast<Family>(round % static_cast<int>(Family::count)), rng, &p);
            PolyGuard g, h, u, v, frame;
            polygcd(p.u, p.v, &g, 0, 1, 1, polynames, 1, 1, 1);
            u.p = copy_of(p.u), v.p = copy_of(p.v);
            gcd_nesting++;  // as from inside: there the flags hold
            gcd_unproved = 0;
            polygcd(u, v, &h, 0, 1, 1, polynames, 0, 0, 1);
            if (!gcd_unproved) {
                EXPECT_TRUE(poly_equal(g, h)) << text_of(h);
            }
            free_poly(&v.p);
            v.p = copy_of(p.v);
            free_poly(&u.p);
            u.p = copy_of(p.u);
            gcd_unproved = 0;
            polygcd(u, v, &u, 0, 1, 1, polynames, 0, 1, 0);  // the result takes the operand's place
            if (!gcd_unproved) {
                EXPECT_TRUE(poly_equal(g, u)) << text_of(u);
            }
            EXPECT_TRUE(poly_equal(v, p.v));
            gcd_nesting--;
        }
        EXPECT_EQ(live_records(), before);
    }
}

TEST_F(Driver, counters_come_back) {
    struct Counter {
        int32_t& at;
        int32_t value, cleared;
    } counters[] = {{alg_c_count, 2, 0}, {original_depth, 3, 1}, {c_cntcount, 11, 0}, {g_cutoff, 44, 10}};
    for (const Counter& c : counters) c.at = c.value;
    tripval = 16384;
    lookupgcd = 2;
    gcd_unproved = gcd_sure = 1;
    gcd_attempt = 2;
    GcdCounters saved = gcd_counters_save();
    gcd_counters_clear();
    for (const Counter& c : counters) EXPECT_EQ(c.at, c.cleared) << &c - counters;
    EXPECT_TRUE(tripval == 20 && lookupgcd == 2);
    EXPECT_FALSE(gcd_unproved || gcd_sure || gcd_attempt);
    gcd_counters_restore(saved);
    for (const Counter& c : counters) EXPECT_EQ(c.at, c.value) << &c - counters;
    EXPECT_TRUE(tripval == 16384 && gcd_unproved && gcd_sure && gcd_attempt == 2);
    gcd_counters_clear();
    lookupgcd = 0;
}

TEST_F(Driver, nesting_ends_with_a_message) {
    PolyGuard u, v, g;
    u.p = poly_of("x*y + 1"), v.p = poly_of("x*y + y");
    gcd_nesting = 3000;
    EXPECT_TRUE(RAISES(polygcd(u, v, &g, 0, 1, 1, polynames, 1, 1, 1)));
    EXPECT_STREQ(caught.text, "The gcd is nested too deeply.");
    gcd_counters_clear();
    EXPECT_EQ(gcd_nesting, 0);
    EXPECT_EQ(driver_gcd("x*y + 1", "x*y + y"), plain("1"));
}

TEST_F(Driver, a_pushed_level_computes_for_itself) {
    gcd_nesting = 7;
    gcd_unproved = 1;
    lookupgcd = -1000;
    GcdCounters saved = gcd_counters_save();
    gcd_counters_push();
    EXPECT_EQ(lookupgcd, 0);
    EXPECT_FALSE(gcd_unproved);
    EXPECT_EQ(driver_gcd("x^2 - y^2", "x^2 + 2*x*y + y^2"), plain("x + y"));
    gcd_counters_restore(saved);
    EXPECT_EQ(gcd_nesting, 7);
    EXPECT_EQ(lookupgcd, -1000);
    EXPECT_TRUE(gcd_unproved);
    gcd_counters_clear();
}

TEST_F(Driver, composite_moduli_give_what_units_allow) {
    use_ring(6);
    expect_gcd("x^2 + 5", "x + 1", "x + 1");
    expect_gcd("x^2 + 5", "x^2 + 2*x + 1", "1");
    use_ring(36000);
    for (int round = 0; round < 100; round++) {
        Rng rng(static_cast<uint64_t>(round) + 900);
        Problem p;
        make_problem(Family::small, rng, &p);
        if (poly_iszero(p.u) || poly_iszero(p.v)) continue;
        PolyGuard g;
        Lpolygcd2(p.u, p.v, &g, polynames);
        if (is_number(p.u) || is_number(p.v)) continue;
        EXPECT_TRUE(divides_both_exactly(p.u, p.v, g, polynames)) << text_of(g);
    }
}

TEST_F(Driver, words_that_wrap_have_gcd_1) {
    lintmode = 1;
    PolyGuard a, b, g;
    a.p = poly_of("2*x*y"), b.p = poly_of("4*x");
    polygcd(a, b, &g, 0, 1, 1, polynames, 1, 1, 1);
    EXPECT_TRUE(poly_eq_1(g));
}

// ---- a gcd that is wrong -------------------------------------------------------------------------------

// A wrong gcd in the stash: the check finds it, the slot is emptied, and the next look-up finds none.
TEST_F(Driver, a_wrong_gcd_in_the_stash_is_found_out) {
    PolyGuard u, v, c, wrong, g;
    c.p = poly_of("x^3*y^2 + x*y*z + 3*z^3 + 5");
    u.p = product("x^2*y + x*z + y^3 + 1", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    v.p = product("x^2 + x*y*z^2 + y + 2", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    wrong.p = poly_of("x^4 + y + 7");
    tripval = 16384;
    trial_cutoff = 1000000;
    gcd_stash_cutoff = 0;
    init_gcd_stash();
    poly slot = nullptr;
    gcdhash(u, v, &slot, polynames);
    gcd_stash_store(slot, wrong);
    verbose = 1;
    testing::internal::CaptureStdout();
    polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1);
    verbose = 0;
    std::string said = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(poly_equal(g, c)) << text_of(g);
    EXPECT_NE(said.find(" Warning 1."), std::string::npos) << said;
    EXPECT_FALSE(try_rat);
    EXPECT_TRUE(rat_yes);
    EXPECT_FALSE(gcd_unproved || gcd_sure || gcd_attempt);
    EXPECT_EQ(lookupgcd, 1);
    polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1);
    EXPECT_TRUE(poly_equal(g, c));
    polygcd(u, v, &g, 0, 0, 0, polynames, 1, 1, 1);  // from the stash
    EXPECT_TRUE(poly_equal(g, c));
    EXPECT_GE(ended_by("stash_lookup"), 2);
    EXPECT_EQ(polygcd_stack_depth, 0);
}

// Over half of its budget the table takes no new pair while a slot is open; what it holds is found. With none
// open it makes room. Nested computations, which lower lookupgcd, leave it alone.
TEST_F(Driver, a_full_stash_and_a_suspended_one_take_no_new_pairs) {
    PolyGuard u, v, w, z, g;
    u.p = product("x^2*y + x*z + y^3 + 1", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    v.p = product("x^2 + x*y*z^2 + y + 2", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    w.p = product("x^2 + x*y*z + y + 7", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    z.p = product("x^2 + x*y^2*z + z + 3", "x^3*y^2 + x*y*z + 3*z^3 + 5");
    tripval = 16384;
    trial_cutoff = 1000000;
    gcd_stash_cutoff = 0;
    word_engines = 0;
    init_gcd_stash();
    polygcd(u, v, &g, 0, 1, 1, polynames, 1, 1, 1);
    int64_t mass = gcdmass, room = initial_memory;
    EXPECT_GT(mass, 0);
    initial_memory = 2 * mass - 1;
    polygcd_stack_depth = 1;
    polygcd(u, w, &g, 0, 1, 1, polynames, 1, 1, 1);
    EXPECT_EQ(gcdmass, mass);
    EXPECT_EQ(gcd_stash_known(u, w, polynames), nullptr);
    int64_t found = ended_by("stash_lookup");
    polygcd(u, v, &g, 0, 1, 1, polynames, 1, 1, 1);
    EXPECT_GT(ended_by("stash_lookup"), found);
    polygcd_stack_depth = 0;
    initial_memory = room;
    polygcd(u, w, &g, 0, 1, 1, polynames, 1, 1, 1);
    EXPECT_NE(gcd_stash_known(u, w, polynames), nullptr);
    mass = gcdmass;
    lookupgcd = -1000;
    polygcd(v, z, &g, 0, 1, 1, polynames, 1, 1, 1);
    EXPECT_EQ(lookupgcd, -1000);
    EXPECT_EQ(gcdmass, mass);
    EXPECT_EQ(polygcd_stack_depth, 0);
    lookupgcd = 1;
    initial_memory = gcdmass + gcdmass / 8;  // full: of several in a bucket the newest stays
    for (const char* text : {"x^2 + x*y*z + y + 8", "x^2 + x*y*z + y + 9", "x^2 + x*y*z + y + 10"}) {
        PolyGuard t;
        t.p = product(text, "x^3*y^2 + x*y*z + 3*z^3 + 5");
        polygcd(u, t, &g, 0, 1, 1, polynames, 1, 1, 1);
        EXPECT_EQ(polygcd_stack_depth, 0);
        EXPECT_LE(gcdmass, initial_memory);
    }
}

TEST_F(Driver, warnings_come_in_their_order) {
    verbose = 1;
    testing::internal::CaptureStdout();
    note_wrong_gcd(0, false);
    EXPECT_FALSE(try_rat);
    EXPECT_TRUE(rat_yes);
    note_wrong_gcd(1, false);
    EXPECT_FALSE(rat_yes);
    note_wrong_gcd(1, false);
    try_rat = rat_yes = 1;
    note_wrong_gcd(0, true);
    EXPECT_TRUE(try_rat && rat_yes);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " Warning 1. A fast probabilistic test for exact poly division has been turned off (&_t).\n"
              " Warning 4. Another fast probabilistic test for exact poly division has been turned off.\n"
              " *** Warning 6. A  fast probabilistic gcd algorithm is being retried.\n"
              " *** Warning 5. A  fast probabilistic gcd algorithm is being retried.\n");
}
