// No field tower can be declared yet: field_depth is 0, and the arithmetic of towers is asked for only above.
#include "gcd/field_hooks.h"
namespace tolvex {
int32_t aux_prime_count() { return 0; }
bool gorwin_modular(poly, poly, polypt, bool*) { return false; }
void rat_monic_poly(polyptrr) {}
bool special_div(poly, poly, polyptrr, polypt) { return false; }
void field_coef_remainder(poly, poly, polyptrr, polypt) {}
bool mod_trial_poly_divide(poly, poly, bool, bool* worked, polypt) {
    *worked = false;
    return false;
}
}  // namespace tolvex
