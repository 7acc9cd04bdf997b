// Fractions whose denominators hold field elements: the forms that rational functions ask for.
#include "field/tower_divide.h"
#include "field/tower_words.h"
#include "gcd/field_hooks.h"
#include "gcd/num_content.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "poly/div_general.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "quoly/ports.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
/// Divides the integers that numer and denom have in common out of both.
static void drop_common_integers(polyptrr numer, polyptrr denom) {
    number g = {}, other = {};
    find_gcdcoefs(*denom, &g);
    if (!is_longint(&g, 1)) {
        find_gcdcoefs(*numer, &other);
        binary_gcd(&g, &other, &g);
    }
    if (!is_longint(&g, 1)) {
        num_poly_quot(numer, &g, 0);
        num_poly_quot(denom, &g, 0);
    }
    special_free(&g);
    special_free(&other);
}

bool tower_normal_fraction(polyptrr numer, polyptrr denom) {
    poly factor = nullptr;
    polypt level;
    if (!leading_element(*denom, polynames, &level)->numb || modularmode) {
        if (!tower_normalise(denom, polynames, &factor)) return false;
        if (!poly_eq_1(factor)) poly_mult(*numer, factor, numer, polynames);
        free_poly(&factor);
    }
    if (!lintmode) drop_common_integers(numer, denom);
    return true;
}

bool tower_lead_is_unit(poly p) {
    poly copy = nullptr;
    poly_assign(p, &copy);
    bool unit = tower_normalise(&copy, polynames, nullptr);
    free_poly(&copy);
    return unit;
}

bool tower_reduce(poly n, poly m, poly common, polyptrr num, polyptrr den, polypt pt) {
    poly q = nullptr, r = nullptr, c = nullptr, d = nullptr;
    bool divides = tower_quotient(n, common, &q, &c, pt) && tower_quotient(m, common, &r, &d, pt);
    if (divides) {  // (q / c) / (r / d)
        if (!poly_eq_1(d)) poly_mult(q, d, &q, pt);
        if (!poly_eq_1(c)) poly_mult(r, c, &r, pt);
        if (!lintmode) drop_common_integers(&q, &r);
        free_poly(num);
        free_poly(den);
        *num = q;
        *den = r;
    } else {
        free_poly(&q);
        free_poly(&r);
    }
    free_poly(&c);
    free_poly(&d);
    return divides;
}

bool tower_pth_root(polyptrr a, polypt pt) {
    constexpr int32_t k_doublings_256 = 8, k_doublings_65536 = 16;
    const TowerWords& t = tower_words();
    const int32_t h = number_polys - pt->depth + 1;
    const int64_t below = finf ? (f256 ? k_doublings_256 : k_doublings_65536) : 1;
    const auto p = static_cast<uint64_t>(finf ? 2 : modulus);
    ScratchMark mark = scratch_mark();
    auto *x = scratch_array<uint32_t>(t.at[h].size), *root = scratch_array<uint32_t>(t.at[h].size);
    bool good = tw_from_poly(t, h, *a, x);
    memcpy(root, x, static_cast<size_t>(t.at[h].size) * sizeof(uint32_t));
    for (int64_t i = 1; i < below * t.at[h].size;
         i++) {  // the p-th power map, one time less than it takes to come back
        poll_interrupt();
        tw_power(tower_words(), h, root, p, root);
    }
    poly fresh = good ? tw_to_poly(t, h, root) : nullptr;
    tw_power(tower_words(), h, root, p, root);
    good = good && memcmp(root, x, static_cast<size_t>(t.at[h].size) * sizeof(uint32_t)) == 0;
    scratch_release(mark);
    if (good) {
        free_poly(a);
        *a = fresh;
    } else {
        free_poly(&fresh);
    }
    return good;
}

bool tower_integer_lead(polyptrr m, polyptrr factor) { return tower_normalise(m, polynames, factor); }
}  // namespace tolvex
