#include "poly/poly_test.h"

#include "poly/leaf_number.h"
namespace tolvex {
boolean poly_iszero(const polynode* p) { return is_number(p) && iszero(p->ncoef); }

boolean node_iszero(const polynode* p) { return p->numb && iszero(p->ncoef); }

boolean poly_eq_1(const polynode* p) {
    if (!is_number(p)) return 0;
    return lintmode ? p->ncoef->lint == 1 : is_longint(p->ncoef, 1);
}

boolean poly_eq_m1(const polynode* p) {
    if (!is_number(p)) return 0;
    if (!lintmode) return is_longint(p->ncoef, -1);
    int32_t minus_1 = modularmode ? (finf ? 1 : modulus - 1) : -1;
    return p->ncoef->lint == minus_1;
}

boolean poly_eq_pm1(const polynode* p) { return poly_eq_1(p) || poly_eq_m1(p); }

boolean poly_equal(const polynode* p, const polynode* q) {
    for (; p != nullptr && q != nullptr; p = p->next, q = q->next) {
        if (p == q) return 1;
        if (p->exp != q->exp || p->numb != q->numb) return 0;
        if (p->numb ? !equal(p->ncoef, q->ncoef) : !poly_equal(p->pcoef, q->pcoef)) return 0;
    }
    return p == q;
}

boolean poly_neg(const polynode* p, const polynode* q) {
    for (; p != nullptr && q != nullptr; p = p->next, q = q->next) {
        if (p->exp != q->exp || p->numb != q->numb) return 0;
        if (p->numb ? !negtive(p->ncoef, q->ncoef) : !poly_neg(p->pcoef, q->pcoef)) return 0;
    }
    return p == q;
}

boolean monomial(const polynode* p) {
    for (; p->next == nullptr; p = p->pcoef)
        if (p->numb) return 1;
    return 0;
}

boolean neg_leading_term(const polynode* p) {
    while (!p->numb) p = p->pcoef;
    if (modularmode) return 0;
    return lintmode ? p->ncoef->lint < 0 : p->ncoef->head->value < 0;
}
}  // namespace tolvex
