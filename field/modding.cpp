#include "field/modding.h"

#include "field/aux_primes.h"
#include "field/field_modes.h"
#include "field/irreducible.h"
#include "numbers/display_modes.h"
#include "numbers/num_sign.h"
#include "numbers/number_modes.h"
#include "numbers/residue.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_test.h"
namespace tolvex {
// ---- what follows from the list of variables -----------------------------------------------------------

static void empty_lists() {
    aux_prime1_number = 0;
    free_gcd_lists();
}

void reset_pseudo_poly() {
    pseudo_polynames = nullptr;
    field_depth = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) {
        if (v->p != nullptr) pseudo_polynames = polynames;
        if (v->p == nullptr || !v->field)
            field_depth = 0;
        else if (field_depth == 0)
            field_depth = v->depth;
    }
    modout_above_field = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) {
        v->field = field_depth > 0 && v->depth >= field_depth;
        if (v->p != nullptr && !v->field) modout_above_field = 1;
    }
    if (field_depth == 0) empty_lists();
    tower_stamp++;
}

// ---- one level -----------------------------------------------------------------------------------------

/// t^n + a with a number a.
static bool is_binomial(const polynode* f) { return !is_number(f) && (f->next == nullptr || f->next->numb); }

void shorten_modding(polyptrr f) {
    if (!is_binomial(*f)) return;
    poly c = nullptr;
    if ((*f)->next == nullptr)
        poly_set(0, &c);
    else
        node_assign((*f)->next, &c);
    poly_inplace(c);
    free_poly(f);
    *f = c;
}

void install_modding(polypt v, polyptrr f, bool field) {
    v->expon = (*f)->exp;
    free_poly(&v->p);
    special_free_poly(&v->rational_p);
    shorten_modding(f);
    v->p = *f;
    *f = nullptr;
    constexpr int32_t k_short_cut = 60;
    if (poly_iszero(v->p)) v->polycut = k_short_cut;
    v->field = field;
    tower_ring = modularmode ? modulus : -1;
    reset_pseudo_poly();
}

void remove_modding(polypt v) {
    free_poly(&v->p);
    special_free_poly(&v->rational_p);
    v->expon = 0;
    v->field = 0;
    reset_pseudo_poly();
}

void whole_modding(const polydata* v, polyptrr whole) {
    poly f = nullptr;
    if (is_number(v->p)) {
        poly power = nullptr, c = nullptr;
        poly_set(1, &c);
        new_term(&power, v->expon, c);
        poly_sub(power, v->p, &f);
        free_poly(&power);
    } else {
        poly_assign(v->p, &f);
    }
    free_poly(whole);
    *whole = f;
}

// ---- changes of the ground ring ------------------------------------------------------------------------

// In modular mode: the polynomials that go back to chains are not those that the auxiliary lists were made
// for.
static bool lists_outdated = false;

void modding_to_mod() {
    for (polypt v = polynames; v != nullptr; v = v->next) {
        if (v->p == nullptr) continue;
        v->rational_p = v->p;
        v->p = nullptr;
        poly_image(v->rational_p, &v->p);
        shorten_modding(&v->p);  // what stood between t^n and the constant may have vanished
    }
    lists_outdated = false;
    tower_ring = modulus;
    tower_stamp++;
}

void modding_exchange() {
    for (polypt v = polynames; v != nullptr; v = v->next) {
        if (v->p == nullptr) continue;
        poly other = v->rational_p;
        v->rational_p = v->p;
        v->p = other;
    }
    const int32_t ring = modding_lifted;
    modding_lifted = ring > 0 ? 0 : tower_ring;
    tower_ring = ring > 0 ? ring : -1;
    tower_stamp++;
}

/// The modding polynomial of v in chains, lifted as values are: of t^n + a that is a, where -a is kept.
static poly lifted_modding(const polydata* v, bool symmetric) {
    poly chains = nullptr;
    if (!is_number(v->p)) {
        poly_lift(v->p, symmetric, &chains);
        return chains;
    }
    number a = {};
    a.lint = mod_neg(v->p->ncoef->lint);
    polynode leaf = {0, 1, nullptr, {&a}};
    poly_lift(&leaf, symmetric, &chains);
    poly_inplace(chains);
    return chains;
}

void modding_lift() {
    const bool symmetric = alt_form_display && !finf;
    const boolean shape = lintmode;
    lintmode = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) {
        if (v->p == nullptr) continue;
        poly chains = lifted_modding(v, symmetric);
        if (v->field && (v->rational_p == nullptr || !poly_equal(chains, v->rational_p)))
            lists_outdated = true;
        special_free_poly(&v->rational_p);
        v->rational_p = chains;
    }
    lintmode = shape;
    modding_exchange();
}

void modding_from_mod() {
    modding_lift();
    modding_lifted = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) special_free_poly(&v->rational_p);
    if (lists_outdated) empty_lists();
    lists_outdated = false;
}

bool level_is_field(polypt v) {
    if (!modularmode || (!mod_is_prime && !finf)) return false;
    const int32_t h = number_polys - v->depth + 1;
    return tw_irreducible(lowest_levels(h), h);
}

// ---- while a new polynomial is read --------------------------------------------------------------------

void suspend_modding() {
    modding_held = 1;
    field_depth = 0;
    pseudo_polynames = nullptr;
    modout_above_field = 0;
}

void resume_modding() {
    if (!modding_held) return;
    modding_held = 0;
    reset_pseudo_poly();
}
}  // namespace tolvex
