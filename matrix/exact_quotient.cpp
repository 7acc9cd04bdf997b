#include "matrix/exact_quotient.h"

#include "numbers/num_divide.h"
#include "poly/div_trial.h"
#include "poly/poly_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
namespace tolvex {
/// True if the numerators divide: neither has a denominator, no exponent can be negative, and no product is
/// reduced.
static bool divide_polynomials(quoly n, const quolynode* d) {
    if (n->denom != nullptr || d->denom != nullptr || laurent || field_depth > 0 ||
        pseudo_polynames != nullptr)
        return false;
    poly q = nullptr;
    if (!trial_poly_divide(n->numer, d->numer, &q, polynames, 0, 0, 0)) return false;
    free_poly(&n->numer);
    n->numer = q;
    if (is_number(q)) polynum_to_quoly(n);
    return true;
}

void exact_quotient(quolyptr n, quoly d) {
    if (!lintmode && (*n)->numb && d->numb)
        divide_exact((*n)->ncoef, d->ncoef);
    else if ((*n)->numb || d->numb || !divide_polynomials(*n, d))
        fast_quoly_quot(n, d, 0);
}
}  // namespace tolvex
