// Reduction: every product ends here while some variable is modded out.
#include "field/fold.h"

#include "field/field_modes.h"
#include "field/modding.h"
#include "field/tower_words.h"
#include "poly/field_shape.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
/// True if some exponent of p, in the variables from pt on, is not in the range of its modding polynomial.
static bool exceeds(const polynode* p, const polydata* pt) {
    if (pt == nullptr) return false;
    const bool modded = is_modded(pt);
    for (; p != nullptr; p = p->next) {
        if (modded && (p->exp >= pt->expon || p->exp < 0)) return true;
        if (!p->numb && exceeds(p->pcoef, pt->next)) return true;
    }
    return false;
}

static void replace(polyptrr p, poly fresh) {
    free_poly(p);
    *p = fresh;
}

// ---- field levels in modular mode: flat arrays ---------------------------------------------------------

static void reduce_element(polyptrr p, polypt pt) {
    const TowerWords& t = tower_words();
    const int32_t h = number_polys - pt->depth + 1;
    ScratchMark mark = scratch_mark();
    auto* words = scratch_array<uint32_t>(t.at[h].size);
    bool good = tw_from_poly(t, h, *p, words);
    if (good) replace(p, tw_to_poly(t, h, words));
    scratch_release(mark);
    if (good) return;
    if (is_number(pt->p)) {
        error(Err::laurent_no_unit);
        poly_set(0, p);
        return;
    }
    tolvex_error("poly invertibility failure. bad pp2");
}

// ---- t^n = c -------------------------------------------------------------------------------------------

/// c^e for the number c of the modding polynomial. False after error 211: e is negative and c no unit.
static bool constant_power(poly c, int32_t e, polyptrr power) {
    poly_assign(c, power);
    if (e < 0) {
        boolean minus = 0;
        if (modularmode) {
            (*power)->ncoef->lint = mod_inverse_or_0((*power)->ncoef->lint);
        }
        if (modularmode ? (*power)->ncoef->lint == 0 : !equal_to_pm1(c->ncoef, &minus)) {
            free_poly(power);
            error(Err::laurent_no_unit);
            return false;
        }
        e = -e;
    }
    number_power((*power)->ncoef, e);
    return true;
}

/// Each term t^e becomes c^(e div n) t^(e mod n), the quotient floored; terms that meet are summed.
static void num_fold_poly(polyptrr p, poly c, int32_t n) {
    poly sum = zero_leaf(), rest = *p;
    *p = nullptr;
    bool good = true;
    while (rest != nullptr) {
        poll_interrupt();
        poly t = rest, power = nullptr;
        rest = rest->next;
        t->next = nullptr;
        int32_t e = t->exp, q = e >= 0 ? e / n : -((n - 1 - e) / n);
        if (good && q != 0) good = constant_power(c, q, &power);
        if (!good) {
            free_poly(&t);
            continue;
        }
        if (!t->numb) t->exp = e - q * n;
        if (power != nullptr) mult_num(&t, power->ncoef);
        free_poly(&power);
        fix_top(&t);
        best_poly_add(sum, t, &sum);
    }
    if (!good) poly_set(0, &sum);
    *p = sum;
}

void reduce_coefficients(polyptrr at, polypt below) {
    while (*at != nullptr) {
        poly t = *at;
        if (!t->numb) {
            poll_interrupt();
            reduce_product(&t->pcoef, below);
            if (poly_iszero(t->pcoef)) {
                *at = t->next;
                t->next = nullptr;
                free_poly(&t);
                continue;
            }
            if (t->exp == 0 && is_number(t->pcoef)) {
                poly c = t->pcoef;
                c->next = t->next;
                *at = c;
                free_node(t);
            }
        }
        at = &(*at)->next;
    }
}

// ---- any modding polynomial ----------------------------------------------------------------------------

/// Takes off the terms of *p from t^n on, which are left in *high.
static void split_from(polyptrr p, int32_t n, polyptrr high) {
    polyptrr at = p;
    while (*at != nullptr && (*at)->exp >= n) at = &(*at)->next;
    poly low = *at;
    *at = nullptr;
    *high = *p;  // nil if there is none: then at is p
    *p = low;
}

/// The remainder of *p by the monic modder, whose degree is n, from the top down; degrees up to 2n or so.
static void fold_poly(polyptrr p, poly modder, int32_t n, polypt pt) {
    while (!is_number(*p) && (*p)->exp >= n) {
        poll_interrupt();
        poly top = *p;
        *p = top->next != nullptr ? top->next : zero_leaf();
        top->next = nullptr;
        top->exp -= n;
        fix_top(&top);
        poly product = nullptr;
        poly_mult(top, modder->next, &product, nullptr);  // this level is folded by the loop itself
        free_poly(&top);
        if (pt->next != nullptr && !is_number(product)) {
            reduce_coefficients(&product, pt->next);
            fix_top(&product);
        }
        best_poly_sub(*p, product, p);
    }
}

/// t^e reduced, for any e >= n, by squaring.
static poly power_of_variable(int32_t e, polypt pt) {
    poly t = nullptr;
    new_term(&t, 1, nullptr);
    poly_set(1, &t->pcoef);
    compute_power(&t, e, pt);
    return t;
}

/// *p with exponents far above n: each such power of t apart.
static void fold_far(polyptrr p, int32_t n, polypt pt) {
    poly high = nullptr;
    split_from(p, 2 * n, &high);
    if (*p == nullptr) *p = zero_leaf();
    while (high != nullptr) {
        poly t = high;
        high = high->next;
        t->next = nullptr;
        poly power = power_of_variable(t->exp, pt), product = nullptr;
        t->exp = 0;
        fix_top(&t);
        poly_mult(t, power, &product, pt);
        free_poly(&t);
        free_poly(&power);
        best_poly_add(*p, product, p);
    }
}

/// The modding polynomial of pt in the ring in force: its own, or an image in *own.
static poly modder_in_ring(polypt pt, polyptrr own) {
    if (!modularmode || tower_ring > 0) return pt->p;
    poly_image(pt->p, own);
    shorten_modding(own);
    return *own;
}

static bool has_negative(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (p->exp < 0) return true;
    return false;
}

/// Reduces the top level of *p, its coefficients being reduced.
static void fold_level(polyptrr p, polypt pt) {
    const int32_t n = pt->expon;
    if (is_number(*p) || ((*p)->exp < n && !has_negative(*p))) return;
    poly own = nullptr, modder = modder_in_ring(pt, &own);
    if (is_number(modder)) {
        num_fold_poly(p, modder, n);
    } else if (has_negative(*p)) {
        error(Err::laurent_no_unit);  // the inverse of the variable need not be a polynomial over Z
        poly_set(0, p);
    } else {
        if ((*p)->exp >= 2 * n) fold_far(p, n, pt);
        fold_poly(p, modder, n, pt);
    }
    free_poly(&own);
}

void reduce_product(polyptrr p, polypt pt) {
    if (pt == nullptr || is_number(*p) || !exceeds(*p, pt)) return;
    if (modularmode && pt->field) {
        reduce_element(p, pt);
        return;
    }
    if (pt->next != nullptr) {
        reduce_coefficients(p, pt->next);
        fix_top(p);
    }
    if (is_modded(pt)) fold_level(p, pt);
}
}  // namespace tolvex
