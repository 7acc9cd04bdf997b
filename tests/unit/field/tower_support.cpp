#include "tests/unit/field/tower_support.h"

#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/ports.h"
namespace tolvex::test {
static poly random_leaf(Rng& rng, Coefs coefs) {
    poly leaf = zero_leaf();
    random_number(rng, coefs, leaf->ncoef);
    return leaf;
}

/// Dense in the levels level..last, with the degrees of the tower in its levels and `degree` elsewhere.
static poly dense(Rng& rng, int32_t level, int32_t degree, Coefs coefs) {
    if (level > number_polys) return random_leaf(rng, coefs);
    polypt v = variable(level);
    int32_t top = v->p != nullptr ? v->expon - 1 : degree;
    poly sum = zero_leaf();
    for (int32_t e = top; e >= 0; e--) {
        if (random_int(rng, 0, 3) == 0 && e != top) continue;
        poly c = dense(rng, level + 1, degree, coefs), t = nullptr;
        if (poly_iszero(c)) {
            free_poly(&c);
            continue;
        }
        new_term(&t, e, c);
        fix_top(&t);
        best_poly_add(sum, t, &sum);
    }
    return sum;
}

poly random_over_tower(Rng& rng, int32_t degree, Coefs coefs, int32_t from_level) {
    return dense(rng, from_level, random_int(rng, 1, degree), coefs);
}

poly random_modder(Rng& rng, int32_t level, int32_t n, Coefs coefs) {
    poly lead = nullptr, one = nullptr, rest = zero_leaf();
    poly_set(1, &one);
    new_term(&lead, n, one);
    for (int32_t e = n - 1; e >= 0; e--) {
        poly c = dense(rng, level + 1, 0, coefs), t = nullptr;
        if (poly_iszero(c)) {
            free_poly(&c);
            continue;
        }
        new_term(&t, e, c);
        fix_top(&t);
        best_poly_add(rest, t, &rest);
    }
    best_poly_add(lead, rest, &lead);
    return lead;
}

void random_tower(Rng& rng, int32_t top, Coefs coefs) {
    for (int32_t level = number_polys; level >= top; level--)
        mod_out(level, random_modder(rng, level, random_int(rng, 2, level == number_polys ? 4 : 3), coefs));
}
}  // namespace tolvex::test
