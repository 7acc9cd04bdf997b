#include "poly/poly_mult.h"

#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
namespace tolvex {
/// The product when one operand is a number. False: neither is.
static bool number_product(poly n, poly m, polyptrr p) {
    if (is_number(n) && is_number(m)) {
        poly fresh = leaf_of(leaf_product(n->ncoef, m->ncoef));
        free_poly(p);
        *p = fresh;
    } else if (is_number(n)) {
        scalar_by_poly(n->ncoef, m, p);
    } else if (is_number(m)) {
        scalar_by_poly(m->ncoef, n, p);
    } else {
        return false;
    }
    return true;
}

void poly_mult(poly n, poly m, polyptrr p, polypt) {
    if (number_product(n, m, p)) return;
    simple_standard(n, m, poly_length(n), poly_length(m), p);
}

void simplest_poly_mult(poly n, poly m, polyptrr p, int32_t, int32_t, int32_t, int32_t) {
    if (number_product(n, m, p)) return;
    simplest_standard(n, m, poly_length(n), poly_length(m), p);
}

void compute_power(polyptrr n, int32_t expont, polypt pol) {
    int32_t bit = 0;
    while ((expont >> bit) > 1) bit++;
    poly base = *n, power = nullptr;
    poly_assign(base, &power);
    while (bit-- > 0) {
        poly_mult(power, power, &power, pol);
        if ((expont >> bit) & 1) poly_mult(power, base, &power, pol);
    }
    free_poly(n);
    *n = power;
}
}  // namespace tolvex
