#include "field/tower_inverse.h"

#include "field/reconstruct.h"
#include "field/tower_words.h"
#include "gcd/num_content.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "poly/div_general.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
/// The inverse in the ring of words in force, at the level of pt; nil: there is none.
static poly inverse_in_words(const polynode* a, polypt pt) {
    const TowerWords& t = tower_words();
    const int32_t h = number_polys - pt->depth + 1;
    ScratchMark mark = scratch_mark();
    auto* words = scratch_array<uint32_t>(t.at[h].size);
    poly inverse = nullptr;
    if (tw_from_poly(t, h, a, words) && tw_inverse(t, h, words, words)) inverse = tw_to_poly(t, h, words);
    scratch_release(mark);
    return inverse;
}

/// The same modulo p, of a polynomial with chains, as symmetric chains.
static poly inverse_modulo(const polynode* a, polypt pt, int32_t p) {
    RingState ring = ring_save();
    ring_enter_prime(p);
    poly image = nullptr;
    poly_image(a, &image);
    poly inverse = poly_iszero(image) ? nullptr : inverse_in_words(image, pt);
    free_poly(&image);
    if (inverse != nullptr) poly_change_from_mod_symmetric(&inverse);
    ring_restore(ring);
    return inverse;
}

/// y := y (2 - a y) modulo m: an inverse modulo the square of what it was one for.
static void newton_step(poly a, polyptrr y, const number* m, polypt pt) {
    poly e = nullptr, two = nullptr;
    poly_mult(a, *y, &e, pt);
    poly_set(2, &two);
    best_poly_sub(two, e, &e);
    symmetric_leaves(&e, m);
    poly_mult(*y, e, y, pt);
    symmetric_leaves(y, m);
    free_poly(&e);
}

/// a numer = denom?
static bool is_inverse(poly a, poly numer, const number* denom, polypt pt) {
    poly product = nullptr;
    poly_mult(a, numer, &product, pt);
    bool right = is_number(product) && equal(product->ncoef, denom);
    free_poly(&product);
    return right;
}

/// Lifts y, an inverse of a modulo p, until the inverse over Q shows.
static void lift_inverse(poly a, polypt pt, int32_t p, polyptrr y, polyptrr numer, imptr denom) {
    number m = {};
    setvalue_any(p, &m);
    for (;;) {
        poll_interrupt();
        if (reconstruct_poly(*y, &m, numer, denom) && is_inverse(a, *numer, denom, pt)) break;
        fast_mult(&m, &m, &m);
        newton_step(a, y, &m, pt);
    }
    special_free(&m);
}

/// Over Q, a primitive. Only a zero divisor has no inverse modulo all of the primes: their product exceeds
/// every norm that fits memory in practice.
static bool invert_rational(poly a, polypt pt, polyptrr numer, imptr denom) {
    for (int32_t i = k_lrg_primes - 1; i >= 0; i--) {
        poll_interrupt();
        poly y = inverse_modulo(a, pt, lrgpme[i]);
        if (y == nullptr) continue;
        lift_inverse(a, pt, lrgpme[i], &y, numer, denom);
        free_poly(&y);
        return true;
    }
    return false;
}

/// numer / (denom c) in lowest terms; numer is primitive against denom as it comes.
static void divide_by_content(polyptrr numer, imptr denom, const number* c) {
    fast_mult(denom, c, denom);
    number g = {};
    find_gcdcoefs(*numer, &g);
    binary_gcd(&g, denom, &g);
    if (!is_longint(&g, 1)) {
        num_poly_quot(numer, &g, 0);
        divide_exact(denom, &g);
    }
    special_free(&g);
}

bool tower_invert(poly a, polypt pt, polyptrr numer, polyptrr denom) {
    int32_t pads = 0;
    for (; a->exp == 0 && !a->numb && a->next == nullptr; a = a->pcoef, pt = pt->next) pads++;
    poly inverse = nullptr;
    number d = {};
    if (lintmode) {
        inverse = inverse_in_words(a, pt);
        if (inverse == nullptr) return false;
        poly_set(1, denom);
    } else {
        number c = {};
        find_gcdcoefs(a, &c);
        poly primitive = nullptr;
        poly_assign(a, &primitive);
        num_poly_quot(&primitive, &c, 0);
        bool unit = invert_rational(primitive, pt, &inverse, &d);
        if (unit) {
            divide_by_content(&inverse, &d, &c);
            scalar_to_poly(&d, denom);
        }
        free_poly(&primitive);
        special_free(&c);
        special_free(&d);
        if (!unit) return false;
    }
    add_pad(&inverse, pads);
    free_poly(numer);
    *numer = inverse;
    return true;
}
}  // namespace tolvex
