#pragma once
/// tests/unit/field/tower_support.h: towers for tests.
#include "field/field_modes.h"
#include "field/modding.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"

#include <initializer_list>
namespace tolvex::test {
/// Variables x, y, z, t of levels 1.. in a ring; taken away again at the end.
struct TowerSetting {
    explicit TowerSetting(int32_t levels, int32_t ring = 0, bool table_field = false) {
        use_ring(ring, table_field);
        use_variables(levels);
        reset_pseudo_poly();
        tower_ring = modularmode ? modulus : -1;
    }
    ~TowerSetting() {
        for (polypt v = polynames; v != nullptr; v = v->next)
            if (v->p != nullptr) remove_modding(v);
        use_integers();
        use_variables(0);
        reset_pseudo_poly();
        tower_ring = -1;
    }
    TowerSetting(const TowerSetting&) = delete;
    TowerSetting& operator=(const TowerSetting&) = delete;
};
inline polypt variable(int32_t level) {
    polypt v = polynames;
    while (--level > 0) v = v->next;
    return v;
}
/// f, used up, in the variables from `level` on, becomes the modding polynomial of that level, a field.
inline void mod_out(int32_t level, poly f) { install_modding(variable(level), &f, true); }
/// The polynomial of a text in x, y, z, t taken one to three levels down: "x^2 - y" at level 3 is z^2 - t.
inline void mod_out(int32_t level, const char* text) { mod_out(level, poly_of(text)); }
/// A random monic polynomial of degree n in the variables from `level` on, reduced by those below.
poly random_modder(Rng& rng, int32_t level, int32_t n, Coefs coefs);
/// A random polynomial with coefficients in the tower: `degree` in each variable above it.
poly random_over_tower(Rng& rng, int32_t degree, Coefs coefs, int32_t from_level = 1);
/// A tower at the levels from `top` to the deepest, irreducible or not, degrees 2 to 4.
void random_tower(Rng& rng, int32_t top, Coefs coefs);
}  // namespace tolvex::test
