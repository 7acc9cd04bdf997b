#pragma once
// What the tests of the gcd driver share: its settings, a gcd by another method, operands of all kinds.
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "gcd/polygcd.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "numbers/number_modes.h"
#include "poly/div_general.h"
#include "poly/div_pseudo.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/progress.h"
#include "tests/support/random_poly.h"

#include <cstring>
#include <string>
namespace tolvex::test {
/// The settings of the driver; the destructor puts the defaults back.
struct DriverSettings {
    DriverSettings() { defaults(); }
    ~DriverSettings() { defaults(); }
    static void defaults() {
        gcd_counters_clear();
        initial_memory = 1 << 26;  // room for the stash
        word_engines = 1;
        chinhensel = 1;
        try_rat = rat_yes = 1;
        trial_cutoff = 25;
        mod_method_diff = 6;
        gcd_stash_cutoff = 200;
        if (lookupgcd > 0) {
            free_gcd_stash();
            gcd_stash_outdated();
            init_gcd_stash();  // empties the table
            free_gcd_stash();
        }
        lookupgcd = 0;
    }
    /// One of many combinations, the word engines off.
    static void permute(Rng& rng) {
        defaults();
        word_engines = 0;
        const int16_t trips[] = {0, 20, 60, 16384};
        tripval = trips[rng() % 4];
        const int32_t trials[] = {0, 25, 1000000};
        trial_cutoff = trials[rng() % 3];
        const int32_t diffs[] = {-1, 6, 1000};
        mod_method_diff = diffs[rng() % 3];
        chinhensel = rng() % 4 != 0;
        try_rat = rng() % 2;
        rat_yes = rng() % 4 != 0;
        if (rng() % 3 == 0) {
            init_gcd_stash();
            gcd_stash_cutoff = 0;
        }
    }
};

/// gcd by contents and a primitive remainder sequence, written for the tests alone. Any domain.
poly reference_gcd(poly u, poly v, polypt pt);

/// Kinds of problems: u = a c, v = b c.
enum class Family {
    small,
    sparse,
    dense,
    missing,
    divides,
    coprime,
    deep_content,
    one_term,
    gaps,
    powers,
    level_contents,
    associated,
    long_numbers,
    many_variables,
    count
};
const char* family_name(Family f);
struct Problem {
    PolyGuard u, v, c;    // c divides both
    bool small = false;   // the reference is quick
    bool modest = false;  // so is the remainder sequence, the only way without interpolation
};
void make_problem(Family f, Rng& rng, Problem* p);

#ifndef TOLVEX_NO_GTEST
/// A test of the steps on records, the word engines being off. Records are not counted: the stash keeps some,
/// and tests change the ring while polynomials of another live.
struct DriverTest : ::testing::Test {
    DriverSettings settings;
    void SetUp() override {
        set_up_once();
        use_variables(6);
        use_integers();
        word_engines = 0;
        memset(gcd_ended_by, 0, sizeof gcd_ended_by);
    }
    void TearDown() override {
        laurent = 0;
        verbose = 0;
        use_integers();
    }
};
#endif
}  // namespace tolvex::test
