#include "quoly/quoly_mass.h"

#include "poly/field_shape.h"
#include "poly/poly_shape.h"
#include "poly/size_estimates.h"
namespace tolvex {
using MassOf = int32_t (*)(const polynode*, int32_t, int32_t);

static int32_t mass_of(const quolynode* n, MassOf of_poly) {
    if (n->numb) return lintmode ? 1 : n->ncoef->size;
    if (n->rat && !lintmode) return n->numer->ncoef->size + n->denom->ncoef->size;
    int64_t mass = of_poly(n->numer, depthnum, 1);
    if (n->denom != nullptr) {
        if (is_number(n->denom))
            mass += 1 + (max_digits(n->denom) - 1) / 3;
        else
            mass += int64_t{massnum} * of_poly(n->denom, depthnum, 1);
    }
    return mass > INT32_MAX ? INT32_MAX : static_cast<int32_t>(mass);
}

int32_t quoly_mass(const quolynode* n) { return mass_of(n, poly_mass); }
int32_t better_quoly_mass(const quolynode* n) { return mass_of(n, better_poly_mass); }

/// n stands at level depth.
static int64_t field_terms(const polynode* n, int32_t depth) {
    if (is_number(n) || is_field_element(n, depth)) return 1;
    int64_t count = 0;
    for (; n != nullptr; n = n->next) count += n->numb ? 1 : field_terms(n->pcoef, depth + 1);
    return count;
}

int64_t numterms(const quolynode* n) {
    if (n->numb) return 1;
    return poly_terms(n->numer) + (n->denom == nullptr ? 0 : poly_terms(n->denom));
}

int64_t f_numterms(const quolynode* n) {
    if (n->numb) return 1;
    return field_terms(n->numer, 1) + (n->denom == nullptr ? 0 : field_terms(n->denom, 1));
}
}  // namespace tolvex
