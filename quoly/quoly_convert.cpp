#include "quoly/quoly_convert.h"

#include "numbers/display_modes.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "poly/ports.h"
#include "quoly/canonical.h"
#include "quoly/ports.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_internal.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
namespace tolvex {
// ---- ground rings --------------------------------------------------------------------------------------

/// True if the denominator can be made monic (or divided in): then nothing that follows raises an error.
static bool denominator_is_unit(const polynode* denom) {
    int32_t lead = leading_coef(const_cast<poly>(denom))->ncoef->lint;
    return lead != 0 && mod_inverse_or_0(lead) != 0;
}

/// Over a field tower the leading element counts; over Q only it can lack an inverse.
static bool denominator_may_stand(poly denom) {
    if (poly_iszero(denom)) return false;
    if (field_depth > 0) return tower_lead_is_unit(denom);
    return !modularmode || denominator_is_unit(denom);
}

bool quoly_mod_out(quolyptr q) {
    quoly v = *q;
    if (v->numb) return true;
    if (pseudo_polynames != nullptr) {
        reduce_product(&v->numer, polynames);
        if (v->denom != nullptr) reduce_product(&v->denom, polynames);
    }
    bool stands = v->denom == nullptr || denominator_may_stand(v->denom);
    if (stands)
        check_quoly(q, laurent);
    else
        quoly_set(0, q);
    return stands;
}

/// The powers of the variables in the denominator become negative exponents.
static void powers_move_up(quoly q) {
    if (q->denom == nullptr || is_number(q->denom)) return;
    poly powers = clear_bads(&q->denom, INT32_MAX, k_leaf_depth);
    eliminate_bads(&q->numer, powers, -1);
    free_exponent_list(&powers);
    if (poly_eq_1(q->denom)) free_poly(&q->denom);
}

/// The negative exponents of the numerator become powers in the denominator.
static void powers_move_down(quoly q) {
    poly powers = clear_bads(&q->numer, 0, k_leaf_depth);
    if (powers == nullptr) return;
    if (q->denom == nullptr) poly_set(1, &q->denom);
    eliminate_bads(&q->denom, powers, -1);
    free_exponent_list(&powers);
    q->rat = 0;
}

void quoly_follow_laurent(quoly q) {
    if (q->numb) return;
    if (laurent)
        powers_move_up(q);
    else
        powers_move_down(q);
}

/// numer / denom as it stands; quoly_mod_out brings it to canonical form.
static quoly new_fraction(poly numer, poly denom) {
    quoly q = nullptr;
    newquoly(&q);
    q->next = nullptr;
    q->numb = q->rat = q->arr_arg = 0;
    q->numer = numer;
    q->denom = denom;
    return q;
}

static quoly new_word_value(int32_t v) {
    imptr n;
    newimag(&n);
    n->lint = v;
    quoly q = nullptr;
    receive_number(&q, n);
    return q;
}

quoly quoly_image_to_mod(const quolynode* q) {
    if (q->numb)
        return new_word_value(
            static_cast<int32_t>(chain_mod_word(q->ncoef, static_cast<uint32_t>(finf ? 2 : modulus))));
    const boolean was_modular = modularmode, was_lint = lintmode;
    modularmode = lintmode = 1;
    poly numer = nullptr, denom = nullptr;
    poly_image(q->numer, &numer);
    if (q->denom != nullptr) poly_image(q->denom, &denom);
    quoly image = new_fraction(numer, denom);
    (void)quoly_mod_out(&image);
    modularmode = was_modular;
    lintmode = was_lint;
    return image;
}

void quoly_change_to_mod(quolyptr q) {
    quoly image = quoly_image_to_mod(*q);
    const boolean was_lint = lintmode;
    lintmode = 0;
    free_quoly(q);
    lintmode = was_lint;
    *q = image;
}

static bool holds_words(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (p->numb ? p->ncoef->lint < 0 || p->ncoef->lint >= modulus : holds_words(p->pcoef)) return true;
    return false;
}

Err quoly_reduce_words(quolyptr q) {
    quoly v = *q;
    if (v->numb) {
        v->ncoef->lint = residue_of_int(v->ncoef->lint);
        return Err{};
    }
    // A fraction in lowest terms over Z may have a common factor here, whatever its words are.
    if (v->denom == nullptr && !holds_words(v->numer)) return Err{};
    poly_reduce_words(&v->numer);
    if (v->denom != nullptr) {
        poly_reduce_words(&v->denom);
        if (pseudo_polynames != nullptr) reduce_product(&v->denom, polynames);
        if (!denominator_may_stand(v->denom)) {
            Err fault = poly_iszero(v->denom) ? Err::division_by_zero : Err::not_invertible;
            quoly_set(0, q);
            return fault;
        }
    }
    (void)quoly_mod_out(q);
    return Err{};
}

static quoly number_from_mod(int32_t v) {
    const boolean was_lint = lintmode;
    lintmode = 0;
    quoly image = nullptr;
    quoly_set(v, &image);
    lintmode = was_lint;
    return image;
}

// Over Z the image of a monic denominator is reduced already, but one that had no unique form may not be.
quoly quoly_image_from_mod(const quolynode* q) {
    const bool table_field = finf || modulus == 256 || modulus == 65536;
    const bool symmetric = alt_form_display && !table_field;
    if (q->numb) {
        const int32_t v = q->ncoef->lint;
        return number_from_mod(symmetric && v > half_modulus ? v - modulus : v);
    }
    poly numer = nullptr, denom = nullptr;
    poly_lift(q->numer, symmetric, &numer);
    if (q->denom != nullptr) poly_lift(q->denom, symmetric, &denom);
    quoly image = new_fraction(numer, denom);
    const RingState modular_ring = ring_capture();
    ring_enter_integers();
    (void)quoly_mod_out(&image);
    ring_assign(modular_ring);
    return image;
}

void quoly_change_from_mod(quolyptr q) {
    quoly image = quoly_image_from_mod(*q);
    const boolean was_lint = lintmode;
    lintmode = 1;
    free_quoly(q);
    lintmode = was_lint;
    *q = image;
}

// ---- variable lists ------------------------------------------------------------------------------------

void quoly_insert_level(quoly q, int32_t level) {
    if (q->numb) return;
    poly_insert_level(&q->numer, level);
    if (q->denom != nullptr) poly_insert_level(&q->denom, level);
}

void quoly_remove_level(quoly q, int32_t level) {
    if (q->numb) return;
    remove_one(&q->numer, level);
    if (q->denom != nullptr) remove_one(&q->denom, level);
}

boolean quoly_contains_level(const quolynode* q, int32_t level) {
    if (q->numb) return 0;
    return poly_contains_level(q->numer, level) ||
           (q->denom != nullptr && poly_contains_level(q->denom, level));
}

/// What a substitution carries along. Polynomials at depth d stand below d levels.
struct Substitution {
    int32_t level;
    quoly value;
    bool failed;  // a power of the value does not exist
};

/// The polynomial c, which stands below `depth` levels, as a value of its own.
static quoly value_of_coefficient(const polynode* term, int32_t depth) {
    poly c = nullptr;
    if (term->numb) {
        node_assign(term, &c);
    } else {
        poly_assign(term->pcoef, &c);
        add_pad(&c, depth);
    }
    quoly q = nullptr;
    poly_to_quoly(&c, &q);
    return q;
}

/// *q := *q times base^e.
static void times_power(quolyptr q, quoly base, int32_t e, Substitution* s) {
    if (e == 0) return;
    if (e < 0 &&
        (quoly_iszero(base) || (modularmode && base->numb && mod_inverse_or_0(base->ncoef->lint) == 0))) {
        s->failed = true;
        return;
    }
    quoly power = nullptr;
    quoly_assign(base, &power);
    if (e < 0) quoly_reciprocal(&power);
    quoly_compute_power(&power, e < 0 ? -e : e);
    fast_quoly_mult(q, power);
    free_quoly(&power);
}

/// The chain p of the replaced variable, by Horner.
static quoly horner(const polynode* p, int32_t depth, Substitution* s) {
    quoly sum = nullptr;
    quoly_set(0, &sum);
    for (const polynode* t = p; t != nullptr; t = t->next) {
        quoly c = value_of_coefficient(t, depth + 1);
        best_quoly_add(&sum, c);
        times_power(&sum, s->value, t->exp - (t->next != nullptr ? t->next->exp : 0), s);
    }
    return sum;
}

static quoly substituted(const polynode* p, int32_t depth, Substitution* s) {
    if (depth + 1 == s->level) return horner(p, depth, s);
    poly x = nullptr;
    base_poly(&x, depth + 1);
    quoly variable = nullptr, sum = nullptr;
    poly_to_quoly(&x, &variable);
    quoly_set(0, &sum);
    for (const polynode* t = p; t != nullptr; t = t->next) {
        quoly c = t->numb ? value_of_coefficient(t, depth + 1) : substituted(t->pcoef, depth + 1, s);
        times_power(&c, variable, t->exp, s);
        best_quoly_add(&sum, c);
    }
    free_quoly(&variable);
    return sum;
}

bool quoly_put_number(quolyptr q, int32_t level, const quolynode* value) {
    if (!quoly_contains_level(*q, level)) return true;
    Substitution s = {level, const_cast<quoly>(value), false};
    quoly numer = substituted((*q)->numer, 0, &s), denom = nullptr;
    if ((*q)->denom != nullptr) {
        denom = substituted((*q)->denom, 0, &s);
    } else {
        quoly_set(1, &denom);
    }
    if (quoly_iszero(denom)) s.failed = true;
    if (!s.failed && modularmode) {
        QuolyView bottom(denom);
        s.failed = !denominator_is_unit(bottom.numer);
    }
    if (s.failed) {
        quoly_set(1, q);
    } else {
        quoly_quot(numer, denom, q, 0);
    }
    free_quoly(&numer);
    free_quoly(&denom);
    return !s.failed;
}
}  // namespace tolvex
