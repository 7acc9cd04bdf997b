// What a declaration leaves in the records, and what follows from the list of variables.
#include "field/aux_primes.h"
#include "field/field_modes.h"
#include "gcd/gcd_modes.h"
#include "numbers/ring_switch.h"
#include "poly/ports.h"
#include "storage/scratch.h"
#include "tests/unit/field/tower_support.h"

#include <string>
using namespace tolvex;
using namespace tolvex::test;

static std::string reduced(const char* text) {
    PolyGuard p(poly_of(text));
    reduce_product(&p.p, polynames);
    EXPECT_TRUE(poly_check(p, number_polys)) << text;
    return text_of(p);
}
static std::string plain(const char* text) { return text_of(PolyGuard(poly_of(text))); }

TEST(Modding, a_binomial_is_kept_as_its_number) {
    TowerSetting setting(1);
    mod_out(1, "x^2 + 1");
    ASSERT_TRUE(is_number(variable(1)->p));
    EXPECT_EQ(text_of(variable(1)->p), plain("-1"));
    PolyGuard whole;
    whole_modding(variable(1), &whole.p);
    EXPECT_EQ(text_of(whole), plain("x^2 + 1"));
    EXPECT_EQ(field_depth, 1);
    EXPECT_EQ(reduced("x^7 + 3*x^2 + 5"), plain("-x + 2"));
    EXPECT_EQ(reduced("x^1000000001"), plain("x"));
}

TEST(Modding, the_end_of_the_only_modding) {
    TowerSetting setting(2);
    mod_out(2, "x^2 - 2");
    aux_prime1[0] = 3;
    aux_prime1_number = 1;
    no_aux_primes2 = 0;
    remove_modding(variable(2));
    EXPECT_EQ(field_depth, 0);
    EXPECT_EQ(aux_prime1_number, 0);
    EXPECT_TRUE(no_aux_primes2);
    EXPECT_EQ(pseudo_polynames, nullptr);
    EXPECT_EQ(reduced("y^3"), plain("y^3"));
}

TEST(Modding, the_field_is_the_unbroken_run_at_the_deep_end) {
    TowerSetting setting(4);
    mod_out(4, "x^2 - 2");
    EXPECT_EQ(field_depth, 4);
    mod_out(3, "x^2 - y");
    EXPECT_EQ(field_depth, 3);
    poly f = poly_of("x^3 - x - 1");
    install_modding(variable(1), &f, false);
    EXPECT_EQ(field_depth, 3);
    EXPECT_TRUE(modout_above_field);
    remove_modding(variable(4));  // the deepest: what stands on it is no field any more
    EXPECT_EQ(field_depth, 0);
    EXPECT_FALSE(variable(3)->field);
    EXPECT_EQ(reduced("z^2*x^4"), plain("t*x^2 + t*x"));
}

TEST(Modding, plain_above_the_field) {
    TowerSetting setting(2);
    mod_out(2, "x^2 - 2");
    poly f = poly_of("x^2 - x - 1");
    install_modding(variable(1), &f, false);
    EXPECT_EQ(reduced("x^2*y^3"), plain("2*x*y + 2*y"));
    plain_above_field = 1;
    EXPECT_EQ(reduced("x^2*y^3"), plain("2*x^2*y"));
    plain_above_field = 0;
}

TEST(Modding, nilpotent_variable) {
    TowerSetting setting(2);
    poly f = poly_of("x^3");
    install_modding(variable(2), &f, false);
    EXPECT_EQ(reduced("x*y^2 + y^3 + y^5"), plain("x*y^2"));
    EXPECT_EQ(variable(2)->polycut, 60);
}

TEST(Modding, an_image_reduces_by_the_image) {
    TowerSetting setting(2);
    mod_out(2, "x^3 - 102*x + 7");
    RingState ring = ring_save();
    ring_enter_prime(101);
    EXPECT_EQ(reduced("y^3"), plain("y + 94"));
    ring_restore(ring);
    EXPECT_EQ(reduced("y^3"), plain("102*y - 7"));
}

TEST(Modding, there_and_back) {
    TowerSetting setting(1);
    mod_out(1, "x^2 - 12");
    use_ring(5);
    modding_to_mod();
    EXPECT_EQ(reduced("x^2"), plain("2"));
    use_integers();
    modularmode = lintmode = 0;
    set_modulus(5);  // as while values come back
    modding_from_mod();
    use_integers();
    EXPECT_EQ(reduced("x^2"), plain("2"));
}

TEST(Modding, secondary_primes_have_the_roots_they_say) {
    TowerSetting setting(2);
    PolyGuard f(poly_of("x^2 - 2")), g(poly_of("x^3 - x - y"));
    SecondLists lists = make_and_reconcile_gcd_lists({f, 0});
    EXPECT_GT(lists.count, 50);
    mod_out(2, copy_of(f));
    install_second_lists(lists);
    lists = make_and_reconcile_gcd_lists({g, 1});
    mod_out(1, copy_of(g));
    install_second_lists(lists);
    ASSERT_GT(variable(1)->aux_num, 50);
    EXPECT_EQ(variable(1)->aux_num, variable(2)->aux_num);
    for (int32_t k = 0; k < variable(1)->aux_num; k++) {
        int32_t p;
        uint32_t root[3];
        roots_of_prime(k, &p, root);
        auto q = static_cast<uint64_t>(p), s = static_cast<uint64_t>(root[1]),
             r = static_cast<uint64_t>(root[2]);
        EXPECT_EQ(s * s % q, 2u % q);
        EXPECT_EQ((r * r % q * r + 2 * q - r - s) % q, 0u) << p;
        if (k > 0) {
            EXPECT_LT(p, variable(1)->gcd_data[k - 1].prime);
        }
    }
    scratch_release({nullptr, 0});
}

TEST(Modding, first_primes_keep_it_irreducible) {
    TowerSetting setting(1);
    PolyGuard f(poly_of("x^2 - 2"));
    EXPECT_TRUE(irreducible_modulo({f, 0}, 3));
    EXPECT_FALSE(irreducible_modulo({f, 0}, 7));
    EXPECT_EQ(first_candidate(0), 3001);
    EXPECT_EQ(first_candidate(4), 19997);
    EXPECT_EQ(first_candidate(5), 42359);
    int32_t twice = 0;
    for (int32_t k = 0; k < k_first_aux_primes; k++) twice += first_candidate(k) == 19997;
    EXPECT_EQ(twice, 1);
}
