// Nested gcds that go wrong: whatever the engines find without a proof may be too large or foreign, and the
// outermost call must give the right result all the same, in a bounded number of attempts.
#include "poly/poly_add.h"
#include "tests/unit/gcd/driver_support.h"
using namespace tolvex;
using namespace tolvex::test;
namespace {
Rng* fault_rng;
int32_t fault_rate;   // one call in so many goes wrong,
int32_t fault_limit;  // up to so many
int64_t faults;

// Times x + c in the main variable or in the one below it: an image is a multiple of the gcd's, whatever the
// point.
void spoil(polyptrr g, polypt pt) {
    if (pt == nullptr || fault_limit == 0 || random_int(*fault_rng, 1, fault_rate) != 1) return;
    fault_limit--;
    int32_t level = pt->next == nullptr ? 1 : random_int(*fault_rng, 1, 2);
    PolyGuard x, c;
    base_poly(&x, level);
    poly_set(random_int(*fault_rng, 1, 2) % (modularmode && !finf ? modulus : 3), &c);
    poly_add(x, c, &x);
    poly_mult(*g, x, g, pt);
    gcd_unproved = 1;
    faults++;
}

struct Retry : ::testing::Test {
    void SetUp() override { set_up_once(); }
    void TearDown() override {
        gcd_fault = nullptr;
        DriverSettings::defaults();
        use_integers();
    }
};

const Ring rings[] = {{0, false, "Z"},           {2, false, "Z/2"},    {7, false, "Z/7"},
                      {65521, false, "Z/65521"}, {0, false, "Z"},      {2147483629, false, "Z/2147483629"},
                      {256, true, "GF(2^8)"},    {101, false, "Z/101"}};

void expect_state_at_rest() {
    EXPECT_FALSE(gcd_unproved || gcd_sure);
    EXPECT_EQ(gcd_attempt, 0);
    EXPECT_EQ(gcd_nesting, 0);
    EXPECT_EQ(polygcd_stack_depth, 0);
}

void one_problem(Rng& rng, int round) {
    use_variables(12);
    use_ring(rings[round / 14 % 8]);
    auto family = static_cast<Family>(round % static_cast<int>(Family::count));
    SCOPED_TRACE(std::string(family_name(family)) + " in " + rings[round / 14 % 8].name);
    int64_t before = live_records();
    {
        DriverSettings settings;
        Problem p;
        make_problem(family, rng, &p);
        PolyGuard g, h, u, v;
        u.p = copy_of(p.u);
        v.p = copy_of(p.v);
        Lpolygcd2(p.u, p.v, &g, polynames);
        DriverSettings::permute(rng);
        if (!p.modest) {
            chinhensel = 1;
            tripval = 20;
            mod_method_diff = 6;
        }
        fault_rng = &rng;
        fault_rate = 1 << random_int(rng, 0, 5);
        fault_limit = random_int(rng, 1, 12);
        gcd_fault = spoil;
        Lpolygcd2(p.u, p.v, &h, polynames);
        EXPECT_TRUE(poly_equal(g, h))
            << text_of(h) << " for " << text_of(g) << "\n of " << text_of(p.u) << "\n and " << text_of(p.v);
        expect_state_at_rest();
        PolyGuard w;
        fault_limit = random_int(rng, 1, 12);
        polygcd(p.v, p.u, &w, 0, 1, random_int(rng, 0, 1), polynames, 1, 1, 1);
        EXPECT_TRUE(poly_equal(g, w)) << text_of(w) << " for " << text_of(g);
        expect_state_at_rest();
        gcd_fault = nullptr;
        EXPECT_TRUE(poly_equal(u, p.u) && poly_equal(v, p.v)) << "an operand has changed";
    }
    EXPECT_EQ(live_records(), before);
    use_integers();
}
}  // namespace

TEST_F(Retry, wrong_gcds_at_any_depth_do_not_show) {
    faults = 0;
    for (int i = 0; i < rounds(1500) && !HasFailure(); i++) {
        Rng rng(run_seed() * 1000003u + static_cast<uint64_t>(i));
        SCOPED_TRACE(::testing::Message() << "TOLVEX_SEED=" << run_seed() << " round " << i);
        one_problem(rng, i);
    }
    EXPECT_GT(faults, rounds(750));
}
