#pragma once
/// tests/unit/gcd/engines_support.h: planted problems and a second method for the engines.
#include "gcd/engines.h"
#include "gcd/gcd_modes.h"
#include "gcd/word_gcd.h"
#include "numbers/number_modes.h"
#include "poly/poly_basic.h"
#include "poly/poly_monic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "tests/support/random_poly.h"
#include "tests/unit/gcd/remainder_gcd.h"

#include <string>
namespace tolvex::test {
/// The prime fields and table fields in which the engines are tried.
inline constexpr Ring field_rings[] = {
    {2, false, "Z/2"},         {3, false, "Z/3"},
    {7, false, "Z/7"},         {101, false, "Z/101"},
    {32003, false, "Z/32003"}, {65521, false, "Z/65521"},
    {65537, false, "Z/65537"}, {2147483629, false, "Z/2147483629"},
    {256, true, "GF(2^8)"},    {65536, true, "GF(2^16)"},
};
inline constexpr int field_ring_count = static_cast<int>(sizeof field_rings / sizeof field_rings[0]);

/// The remainder sequence on operands that need not be primitive: contents apart.
inline poly gcd_by_remainders(poly u, poly v, polypt pt) {
    poly g = nullptr;
    if (is_number(u) || is_number(v)) {
        poly_set(1, &g);
        return g;
    }
    poly cu = content_fresh(u, pt), cv = content_fresh(v, pt), u2 = copy_of(u), v2 = copy_of(v);
    u2 = without_content(u2, cu, pt);
    v2 = without_content(v2, cv, pt);
    if (u2->exp == 0 || v2->exp == 0)
        poly_set(1, &g);
    else
        g = prs_gcd(u2, v2, pt);
    poly c = nullptr, padded = nullptr;
    if (pt->next != nullptr && !is_number(cu) && !is_number(cv)) {
        c = gcd_by_remainders(cu, cv, pt->next);
        padded = copy_of(c);
        add_pad(&padded, 1);
        poly_mult(g, padded, &g, pt);
    }
    free_poly(&cu), free_poly(&cv), free_poly(&u2), free_poly(&v2), free_poly(&c), free_poly(&padded);
    gcd_normal_form(&g);
    return g;
}
}  // namespace tolvex::test
