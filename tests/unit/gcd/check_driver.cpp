// The driver under permuted settings, with and without the word engines, against itself and a reference: the
// settings choose the way, never the result. TOLVEX_GCD_PROBLEMS sets the number of problems; then a table of
// families, rings and steps is printed.
#include "tests/unit/gcd/driver_support.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
using namespace tolvex;
using namespace tolvex::test;
namespace {
const Ring rings[] = {{0, false, "Z"},         {2, false, "Z/2"},         {3, false, "Z/3"},
                      {5, false, "Z/5"},       {7, false, "Z/7"},         {101, false, "Z/101"},
                      {3001, false, "Z/3001"}, {65521, false, "Z/65521"}, {2147483629, false, "Z/2147483629"},
                      {256, true, "GF(2^8)"},  {65536, true, "GF(2^16)"}, {0, false, "Z again"}};
constexpr int k_rings = sizeof rings / sizeof rings[0];
constexpr int k_families = static_cast<int>(Family::count);
int table[k_families][k_rings];

void expect_same(poly g, poly h, const char* what, const Problem& p) {
    EXPECT_TRUE(poly_equal(g, h)) << what << ": " << text_of(g) << "  against  " << text_of(h) << "\n of "
                                  << text_of(p.u) << "\n and " << text_of(p.v);
}

/// The gcd once more under settings of chance, as Lpolygcd2 or as polygcd with its operands exchanged.
void another_way(Rng& rng, const Problem& p, poly g, bool raw) {
    DriverSettings::permute(rng);
    if (!p.modest && modularmode && modulus < 1000) return;
    if (!p.modest) {  // the sequence alone would take minutes
        chinhensel = 1;
        tripval = 20;
        mod_method_diff = 6;
    }
    SCOPED_TRACE(::testing::Message() << "tripval " << tripval << " trial_cutoff " << trial_cutoff
                                      << " mod_method_diff " << mod_method_diff << " chinhensel "
                                      << chinhensel << " try_rat " << try_rat << " rat_yes " << rat_yes);
    PolyGuard h;
    if (raw)
        polygcd(p.v, p.u, &h, 0, !p.modest || random_int(rng, 0, 1), random_int(rng, 0, 1), polynames, 1, 1,
                1);
    else
        Lpolygcd2(p.u, p.v, &h, polynames);
    expect_same(h, g, "permuted", p);
    if (lookupgcd <= 0) return;
    Lpolygcd2(p.u, p.v, &h, polynames);
    expect_same(h, g, "with the stash filled", p);
}

void one_problem(Rng& rng, int round) {
    auto family = static_cast<Family>(round % k_families);
    const Ring& ring = rings[(round / k_families) % k_rings];
    use_variables(12);
    use_ring(ring);
    SCOPED_TRACE(std::string(family_name(family)) + " in " + ring.name);
    DriverSettings settings;
    int64_t before = live_records();
    {
        Problem p;
        make_problem(family, rng, &p);
        if (getenv("TOLVEX_GCD_TRACE") != nullptr) {
            printf("%s %d\n u = %s\n v = %s\n", family_name(family), modulus, text_of(p.u).c_str(),
                   text_of(p.v).c_str());
            fflush(stdout);
        }
        PolyGuard u, v, g;
        u.p = copy_of(p.u);
        v.p = copy_of(p.v);
        Lpolygcd2(p.u, p.v, &g, polynames);
        ASSERT_TRUE(poly_check(g, number_polys));
        EXPECT_TRUE(divides(g, p.u) && divides(g, p.v));
        PolyGuard monic;
        monic.p = copy_of(p.c);
        gcd_normal_form(&monic.p);
        EXPECT_TRUE(divides(monic, g)) << text_of(g) << " is too small";
        another_way(rng, p, g, false);
        another_way(rng, p, g, true);
        DriverSettings::defaults();
        if (p.small) {
            PolyGuard r;
            r.p = reference_gcd(p.u, p.v, polynames);
            expect_same(g, r, "reference", p);
        }
        EXPECT_TRUE(poly_equal(u, p.u) && poly_equal(v, p.v)) << "an operand has changed";
    }
    EXPECT_EQ(live_records(), before);
    table[static_cast<int>(family)][(round / k_families) % k_rings]++;
    use_integers();
}

void print_table() {
    printf("%-10s", "");
    for (const Ring& r : rings) printf(" %12s", r.name);
    for (int f = 0; f < k_families; f++) {
        printf("\n%-10s", family_name(static_cast<Family>(f)));
        for (int r = 0; r < k_rings; r++) printf(" %12d", table[f][r]);
    }
    printf("\ncalls ended by\n");
    for (int32_t i = 0; i < k_gcd_steps; i++)
        if (gcd_ended_by[i] > 0)
            printf("  %-24s %12lld\n", gcd_step_name(i), static_cast<long long>(gcd_ended_by[i]));
}
}  // namespace

TEST(DriverSettings, never_change_the_result) {
    set_up_once();
    const char* wanted = getenv("TOLVEX_GCD_PROBLEMS");
    int count = wanted != nullptr ? atoi(wanted) : rounds(k_families * k_rings * 2);
    for (int i = 0; i < count && !::testing::Test::HasFailure(); i++) {
        uint64_t seed = run_seed() * 1000003u + static_cast<uint64_t>(i);
        Rng rng(seed);
        SCOPED_TRACE(::testing::Message() << "TOLVEX_SEED=" << run_seed() << " problem " << i);
        auto start = std::chrono::steady_clock::now();
        one_problem(rng, i);
        std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        if (wanted != nullptr && taken.count() > 2) {
            printf("problem %d took %.1f s\n", i, taken.count());
            fflush(stdout);
        }
    }
    if (wanted != nullptr) print_table();
}
