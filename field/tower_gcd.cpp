// Greatest common divisors of polynomials in which elements of a field tower occur.
//
// Modulo a prime: Euclid on flat arrays where all coefficients lie in the tower, else interpolation in a
// further variable, or a primitive remainder sequence where the field has too few elements. Over Q: monic
// images modulo word primes, Chinese remainders, rational reconstruction; the divisions at the end are the
// proof (Encarnacion 1995; van Hoeij and Monagan 2004). Modulo a prime that leaves the modding polynomials
// square-free and the leading elements units an image is never too small.
#include "field/reconstruct.h"
#include "field/root_images.h"
#include "field/tower_divide.h"
#include "field/tower_interpolate.h"
#include "field/tower_leaves.h"
#include "field/tower_words.h"
#include "gcd/field_hooks.h"
#include "gcd/num_content.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/div_pseudo.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_convert.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <utility>
namespace tolvex {
// ---- modulo a prime, one variable above the field ------------------------------------------------------

/// The coefficients of p, all in the field, as an array of elements; pads: levels between its variable and
/// the field.
static void fill_elements(const polynode* p, int32_t pads, uint32_t* out) {
    const TowerWords& t = tower_words();
    const int64_t size = t.at[t.height].size;
    scratch_clear(out, static_cast<size_t>((p->exp + 1) * size) * sizeof(uint32_t));
    for (; p != nullptr; p = p->next) {
        poll_interrupt();
        (void)tower_words();
        const polynode* c = p->numb ? p : p->pcoef;
        for (int32_t i = 0; i < pads && !c->numb; i++) c = c->pcoef;
        if (c->numb)
            tw_set(t, t.height, static_cast<uint32_t>(c->ncoef->lint), out + p->exp * size);
        else
            (void)tw_from_poly(t, t.height, c, out + p->exp * size);
    }
}

static poly poly_of_elements(const uint32_t* a, int32_t degree, int32_t pads) {
    const TowerWords& t = tower_words();
    const int64_t size = t.at[t.height].size;
    poly head = nullptr;
    polyptrr tail = &head;
    for (int32_t e = degree; e >= 0; e--) {
        if (tw_iszero(t, t.height, a + e * size)) continue;
        poly c = tw_to_poly(t, t.height, a + e * size);
        add_pad(&c, pads);
        tail = append_term(tail, e, c);
    }
    fix_top(&head);
    return head;
}

/// u and v have their coefficients in the field. False: a zero divisor has been met.
static bool gcd_in_arrays(poly u, poly v, polyptrr g, polypt pt) {
    const int64_t size = tower_words().at[tower_words().height].size;
    const int32_t pads = field_depth - pt->depth - 1;
    ScratchMark mark = scratch_mark();
    auto *a = scratch_array<uint32_t>((u->exp + 1) * size), *b = scratch_array<uint32_t>((v->exp + 1) * size);
    fill_elements(u, pads, a);
    fill_elements(v, pads, b);
    uint32_t* found = nullptr;
    int32_t degree =
        u->exp >= v->exp ? tw_gcd(a, u->exp, b, v->exp, &found) : tw_gcd(b, v->exp, a, u->exp, &found);
    if (degree >= 0) *g = poly_of_elements(found, degree, pads);
    scratch_release(mark);
    return degree >= 0;
}

// ---- modulo a prime, several variables above the field -------------------------------------------------

static bool is_unit(const polynode* p, polypt pt) { return is_number(p) || is_field_element(p, pt->depth); }

/// *c, at the level below pt, := the gcd of *c, unless nil, and the coefficients of p.
static bool take_in_coefficients(const polynode* p, polyptrr c, polypt pt) {
    for (; p != nullptr; p = p->next) {
        if (*c != nullptr && is_number(*c)) return true;
        if (p->numb || is_unit(p->pcoef, pt->next)) {
            free_poly(c);
            poly_set(1, c);
            return true;
        }
        poly g = nullptr;
        bool good = gcd_in_words(*c != nullptr ? *c : p->pcoef, p->pcoef, &g, pt->next);
        free_poly(c);
        *c = g;
        if (!good) return false;
    }
    return true;
}

/// *p := *p / c, c standing one level down; monic.
static bool divide_by_content(polyptrr p, poly c, polypt pt) {
    if (is_number(c)) return tower_monic(p, pt);
    poly padded = nullptr, q = nullptr;
    poly_assign(c, &padded);
    add_pad(&padded, 1);
    bool divides = tower_divide(*p, padded, &q, pt);
    free_poly(&padded);
    if (!divides) return false;
    free_poly(p);
    *p = q;
    return tower_monic(p, pt);
}

static bool make_primitive(polyptrr p, polyptrr content, polypt pt) {
    return take_in_coefficients(*p, content, pt) && divide_by_content(p, *content, pt);
}

/// *a, *b primitive and monic, of positive degree: their gcd is left in *a. Every remainder is made monic:
/// what vanishes in one of the fields of which the tower may be a product is noticed.
static bool primitive_sequence(polyptrr a, polyptrr b, polypt pt) {
    if ((*a)->exp < (*b)->exp) std::swap(*a, *b);
    for (;;) {
        poll_interrupt();
        poly r = nullptr, c = nullptr;
        pseudo_div_no_q(*a, *b, &r, pt, 0);
        std::swap(*a, *b);
        if (poly_iszero(r)) {
            free_poly(&r);
            return true;
        }
        bool good = tower_monic(&r, pt), constant = is_number(r) || r->exp == 0;
        if (good && !constant) good = make_primitive(&r, &c, pt);
        free_poly(&c);
        free_poly(b);
        *b = r;
        if (!good) return false;
        if (constant) {
            poly_set(1, a);
            return true;
        }
    }
}

/// out := the element that p, in the variables from pt on, has for its value where the ordinary ones take the
/// words of `point` (by level).
static void element_at(const polynode* p, polypt pt, const uint32_t* point, uint32_t* out) {
    poll_interrupt();
    const TowerWords& t = tower_words();
    const int64_t size = t.at[t.height].size;
    if (p->numb && p->next == nullptr) {
        tw_set(t, t.height, static_cast<uint32_t>(p->ncoef->lint), out);
        return;
    }
    if (pt->depth >= field_depth) {
        (void)tw_from_poly(t, t.height, p, out);
        return;
    }
    tw_set(t, t.height, 0, out);
    ScratchMark mark = scratch_mark();
    auto* c = scratch_array<uint32_t>(size);
    for (; p != nullptr; p = p->next) {
        if (p->numb)
            tw_set(t, t.height, static_cast<uint32_t>(p->ncoef->lint), c);
        else
            element_at(p->pcoef, pt->next, point, c);
        (void)tower_words();
        tw_add(t, t.height, out, c, out);
        const int32_t gap = p->exp - (p->next != nullptr ? p->next->exp : 0);
        const uint32_t power = wf_power(t.f, point[pt->depth], static_cast<uint64_t>(gap));
        for (int64_t i = 0; i < size; i++) out[i] = wf_mul(t.f, out[i], power);
    }
    scratch_release(mark);
}

/// The image of the chain p in its main variable; false: its degree is lost.
static bool image_in_main(const polynode* p, polypt pt, const uint32_t* point, uint32_t* out) {
    const int64_t size = tower_words().at[tower_words().height].size;
    const int32_t degree = p->exp;
    scratch_clear(out, static_cast<size_t>((degree + 1) * size) * sizeof(uint32_t));
    for (; p != nullptr; p = p->next) {
        uint32_t* at = out + p->exp * size;
        if (p->numb)
            *at = static_cast<uint32_t>(p->ncoef->lint);
        else
            element_at(p->pcoef, pt->next, point, at);
    }
    return !tw_iszero(tower_words(), tower_words().height, out + degree * size);
}

/// The degree of the gcd in the main variable is at most this: by images at points for the other variables. 0
/// is exact.
static int32_t degree_bound(poly u, poly v, polypt pt) {
    constexpr int32_t k_points = 3;
    int32_t bound = minn(u->exp, v->exp);
    const int64_t size = tower_words().at[tower_words().height].size;
    for (int32_t i = 0; i < k_points && bound > 0; i++) {
        uint32_t point[k_levels];
        for (uint32_t& x : point) x = wf_random_unit(tower_words().f);
        ScratchMark mark = scratch_mark();
        auto *a = scratch_array<uint32_t>((u->exp + 1) * size),
             *b = scratch_array<uint32_t>((v->exp + 1) * size);
        uint32_t* g = nullptr;
        int32_t degree = -1;
        if (image_in_main(u, pt, point, a) && image_in_main(v, pt, point, b))
            degree = u->exp >= v->exp ? tw_gcd(a, u->exp, b, v->exp, &g) : tw_gcd(b, v->exp, a, u->exp, &g);
        scratch_release(mark);
        if (degree >= 0) bound = minn(bound, degree);
    }
    return bound;
}

/// a and b are primitive and monic: their gcd is left in *a, by what the images promise.
static bool gcd_of_primitives(polyptrr a, polyptrr b, int32_t bound, polypt pt) {
    if (bound == 0) {
        poly_set(1, a);
        return true;
    }
    if ((*a)->exp < (*b)->exp) std::swap(*a, *b);
    poly q = nullptr;
    if (bound == (*b)->exp && tower_divide(*a, *b, &q, pt)) {
        free_poly(&q);
        std::swap(*a, *b);
        return true;
    }
    poly g = nullptr;
    const Interpolated outcome = gcd_by_interpolation(*a, *b, &g, pt);
    if (outcome == Interpolated::declined) return primitive_sequence(a, b, pt);
    free_poly(a);
    *a = g;
    return outcome == Interpolated::found;
}

static bool gcd_by_sequence(poly u, poly v, polyptrr g, polypt pt) {
    const int32_t bound = degree_bound(u, v, pt);
    poly a = nullptr, b = nullptr, cu = nullptr, cv = nullptr, c = nullptr;
    poly_assign(u, &a);
    poly_assign(v, &b);
    bool good = make_primitive(&a, &cu, pt) && make_primitive(&b, &cv, pt) &&
                gcd_in_words(cu, cv, &c, pt->next) && gcd_of_primitives(&a, &b, bound, pt);
    if (good) {
        add_pad(&c, 1);
        poly_mult(a, c, g, pt);
    }
    for (poly* p : {&a, &b, &cu, &cv, &c}) free_poly(p);
    return good;
}

/// u is free of the main variable, v is not.
static bool gcd_with_coefficients(poly u, poly v, polyptrr g, polypt pt) {
    poly c = nullptr;
    poly_assign(u->pcoef, &c);
    bool good = take_in_coefficients(v, &c, pt);
    if (good) {
        add_pad(&c, 1);
        free_poly(g);
        *g = c;
    } else {
        free_poly(&c);
    }
    return good;
}

bool gcd_in_words(poly u, poly v, polyptrr g, polypt pt) {
    if (is_unit(u, pt) || is_unit(v, pt)) {
        poly_set(1, g);
        return true;
    }
    if (u == v || poly_equal(u, v)) {
        poly_assign(u, g);
        return tower_monic(g, pt);
    }
    if (u->exp == 0 && v->exp == 0) {
        bool good = gcd_in_words(u->pcoef, v->pcoef, g, pt->next);
        if (good) add_pad(g, 1);
        return good;
    }
    if (u->exp == 0) return gcd_with_coefficients(u, v, g, pt);
    if (v->exp == 0) return gcd_with_coefficients(v, u, g, pt);
    if (all_coefs_invrtble_both(u, v, pt->depth)) return gcd_in_arrays(u, v, g, pt);
    return gcd_by_sequence(u, v, g, pt);
}

// ---- over Q --------------------------------------------------------------------------------------------

/// The exponents of the leading monomials compared: positive if that of u is greater.
static int32_t compare_leads(const polynode* u, const polynode* v, polypt pt) {
    for (; pt != nullptr && pt->depth < field_depth; pt = pt->next) {
        int32_t eu = u->numb ? 0 : u->exp, ev = v->numb ? 0 : v->exp;
        if (eu != ev) return eu > ev ? 1 : -1;
        if (!u->numb) u = u->pcoef;
        if (!v->numb) v = v->pcoef;
    }
    return 0;
}

enum class Image { good, bad_prime, not_separable, no_inverse };

/// *g := the monic gcd modulo p, as symmetric chains.
static Image image_gcd(poly u, poly v, int32_t p, polyptrr g, polypt pt) {
    RingState ring = ring_save();
    ring_enter_prime(p);
    poly a = nullptr, b = nullptr;
    poly_image(u, &a);
    poly_image(v, &b);
    Image outcome = Image::bad_prime;
    if (!tower_words().separable) {
        outcome = Image::not_separable;
    } else if (compare_leads(a, u, pt) == 0 && compare_leads(b, v, pt) == 0) {
        bool good = tower_monic(&a, pt) && tower_monic(&b, pt) && gcd_in_words(a, b, g, pt);
        outcome = good ? Image::good : Image::no_inverse;
        if (good)
            poly_change_from_mod_symmetric(g);
        else
            free_poly(g);
    }
    free_poly(&a);
    free_poly(&b);
    ring_restore(ring);
    return outcome;
}

/// acc := the polynomial that is acc modulo m and image modulo p; m := m p.
static void combine(polyptrr acc, imptr m, poly image, int32_t p) {
    const auto q = static_cast<uint32_t>(p);
    RingState ring = ring_save();
    ring_enter_prime(p);
    auto inverse = static_cast<uint64_t>(mod_inverse_or_0(static_cast<int32_t>(chain_mod_word(m, q))));
    ring_restore(ring);
    poly digit = nullptr;
    poly_sub(image, *acc, &digit);
    change_leaves(&digit, [&](imptr x) {
        auto r = static_cast<int64_t>(chain_mod_word(x, q) * inverse % q);
        setvalue_any(r > q / 2 ? r - q : r, x);
    });
    if (!poly_iszero(digit)) num_poly_mult(&digit, m);
    best_poly_add(*acc, digit, acc);
    number factor = {};
    setvalue_any(p, &factor);
    fast_mult(m, &factor, m);
    special_free(&factor);
}

static bool divides(poly n, poly m, polypt pt) {
    poly q = nullptr, c = nullptr;
    bool yes = tower_quotient(n, m, &q, &c, pt);
    free_poly(&q);
    free_poly(&c);
    return yes;
}

/// The primes that images are taken modulo: those of the table from the top, then smaller ones.
static int32_t next_prime(int32_t* index, int32_t last) {
    constexpr int32_t k_first_beyond = 1 << 30;
    if (*index > 0) return lrgpme[--*index];
    return nextprime(last > k_first_beyond + 1 && last < lrgpme[0] ? last : k_first_beyond);
}

/// *g := the gcd of u and v, primitive, with a positive integer as leading element. False: no field.
static bool gcd_over_rationals(poly u, poly v, polyptrr g, polypt pt) {
    constexpr int32_t k_most_refusals = 40;  // so many primes: a unit is none or a discriminant 0, no field
    poly acc = nullptr, image = nullptr, candidate = nullptr;
    number m = {}, denom = {};
    int32_t index = k_lrg_primes, p = 0, refusals = 0, images = 0, next_try = 1;
    bool found = false;
    while (!found && refusals < k_most_refusals) {
        poll_interrupt();
        p = next_prime(&index, p);
        Image outcome = image_gcd(u, v, p, &image, pt);
        if (outcome == Image::no_inverse || outcome == Image::not_separable) refusals++;
        if (outcome != Image::good) continue;
        int32_t order = acc == nullptr ? -1 : compare_leads(image, acc, pt);
        if (order < 0) {  // the first, or all before were too large
            free_poly(&acc);
            acc = image, image = USED_UP;
            setvalue_any(p, &m);
            images = next_try = 1;
        } else if (order == 0) {
            combine(&acc, &m, image, p);
            images++;
        }
        free_poly(&image);
        if (is_unit(acc, pt)) {
            poly_set(1, g);
            found = true;
        } else if (order <= 0 && images >= next_try) {
            next_try = images + images / 2 + 1;
            found = reconstruct_poly(acc, &m, &candidate, &denom) && divides(u, candidate, pt) &&
                    divides(v, candidate, pt);
            if (found) poly_assign(candidate, g);
        }
    }
    free_poly(&acc);
    free_poly(&candidate);
    special_free(&m);
    special_free(&denom);
    return found;
}

// ---- the entries ---------------------------------------------------------------------------------------

/// The gcd of the integer contents of u and v.
static void common_integers(poly u, poly v, imptr c) {
    number other = {};
    find_gcdcoefs(u, c);
    find_gcdcoefs(v, &other);
    binary_gcd(c, &other, c);
    special_free(&other);
}

static void rational_tower_gcd(poly u, poly v, polyptrr r, polypt pt) {
    number c = {};
    poly g = nullptr;
    common_integers(u, v, &c);
    if (coprime_by_roots(u, v, pt) || !gcd_over_rationals(u, v, &g, pt)) poly_set(1, &g);
    if (!is_longint(&c, 1)) num_poly_mult(&g, &c);
    special_free(&c);
    free_poly(r);
    *r = g;
}

void tower_gcd(poly u, poly v, polyptrr r, polypt pt) {
    if (!lintmode) {
        rational_tower_gcd(u, v, r, pt);
        return;
    }
    poly g = nullptr;
    bool field = modularmode && (mod_is_prime || finf);
    if (!field || !gcd_in_words(u, v, &g, pt)) {
        free_poly(&g);
        poly_set(1, &g);
    }
    free_poly(r);
    *r = g;
}

void tower_gcd_form(polyptrr r, polypt pt) {
    if (is_number(*r)) return;
    if (!tower_normalise(r, pt, nullptr) || lintmode) return;
    number c = {};
    find_gcdcoefs(*r, &c);
    if (!is_longint(&c, 1)) num_poly_quot(r, &c, 0);
    special_free(&c);
}
}  // namespace tolvex
