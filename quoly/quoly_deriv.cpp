#include "quoly/quoly_deriv.h"

#include "poly/poly_add.h"
#include "poly/poly_deriv.h"
#include "poly/poly_mult.h"
#include "quoly/canonical.h"
#include "quoly/quoly_basic.h"
namespace tolvex {
void quoly_differentiate(quolyptr q, int32_t level) {
    if ((*q)->numb || (*q)->rat) {
        quoly_set(0, q);
        return;
    }
    poly numer = (*q)->numer, denom = (*q)->denom;
    poly result = nullptr;
    poly_differentiate(numer, &result, level);
    if (denom == nullptr) {
        poly_to_quoly(&result, q);
        return;
    }
    // (n/d)' = (n' d - n d') / d^2
    poly other = nullptr, square = nullptr;
    poly_differentiate(denom, &other, level);
    poly_mult(result, denom, &result, polynames);
    poly_mult(numer, other, &other, polynames);
    best_poly_sub(result, other, &result);
    poly_mult(denom, denom, &square, polynames);
    quoly value = nullptr;
    newquoly(&value);
    value->numer = result;
    value->denom = square;
    check_quoly(&value, laurent);
    free_quoly(q);
    *q = value;
}
}  // namespace tolvex
