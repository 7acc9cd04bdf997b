#include "quoly/quoly.h"

#include "numbers/num_compare.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "quoly/quoly_internal.h"
namespace tolvex {
/// Gives back what q holds. Parts that an operation has taken are nil.
static void free_parts(quoly q) {
    if (q->numb) {
        if (q->ncoef != nullptr) free_imag(&q->ncoef);
    } else {
        free_poly(&q->numer);
        free_poly(&q->denom);
    }
}

void free_whole_quoly(quolyptr q) {
    free_parts(*q);
    free_quoly_record(q);
}

// `rat` of a value that waits tells the shape of its numbers.
void free_quoly_later(quolyptr q) {
    if (*q == nullptr) return;
    (*q)->rat = lintmode;
    (*q)->next = quolywait;
    quolywait = *q;
    *q = nullptr;
}

bool free_waiting_quolys(int64_t count) {
    boolean shape = lintmode;
    for (; quolywait != nullptr && count > 0; count--) {
        quoly q = quolywait;
        quolywait = q->next;
        lintmode = q->rat;
        free_quoly(&q);
    }
    lintmode = shape;
    return quolywait != nullptr;
}

void refill_quolys() {
    constexpr int64_t k_refill = 1024;
    free_waiting_quolys(k_refill);
}

quoly quoly_target(quolyptr p) {
    if (*p == nullptr) {
        newquoly(p);
        return *p;
    }
    quoly q = *p;
    free_parts(q);
    q->numb = q->rat = 0;
    forget_marks(q);
    q->denom = nullptr;
    return q;
}

imptr numb_target(quolyptr p) {
    if (*p != nullptr && (*p)->numb) {
        forget_marks(*p);
        return (*p)->ncoef;
    }
    quoly q = quoly_target(p);
    q->numb = 1;
    newimag(&q->ncoef);
    return q->ncoef;
}

void drop_used(quoly n, quoly m, quolyptr p, uint32_t uses) {
    if ((uses & k_use_n) && *p != n) free_quoly(&n);
    if ((uses & k_use_m) && *p != m) free_quoly(&m);
}

/// The exponents of the lowest terms of p, level by level: true if a variable divides p.
static bool has_monomial_factor(const polynode* p) {
    poly copy = nullptr;
    poly_assign(p, &copy);
    poly list = clear_bads(&copy, INT32_MAX, k_leaf_depth);
    bool found = list != nullptr;
    free_exponent_list(&list);
    free_poly(&copy);
    return found;
}

bool quoly_check(const quolynode* q) {
    if (q->numb)
        return !q->rat && q->denom == nullptr && q->ncoef != nullptr && (lintmode || num_check(q->ncoef));
    if (q->numer == nullptr || !poly_check(q->numer, number_polys)) return false;
    if (q->denom == nullptr) return !q->rat && !is_number(q->numer);
    if (!poly_check(q->denom, number_polys) || poly_iszero(q->numer) || poly_iszero(q->denom)) return false;
    if (poly_eq_1(q->denom)) return false;
    bool constants = is_number(q->numer) && is_number(q->denom);
    if (q->rat != (constants && !lintmode)) return false;
    if (!lintmode && neg_leading_term(q->denom)) return false;
    if (lintmode && is_number(q->denom)) return false;
    if (modularmode && leading_coef(q->denom)->ncoef->lint != 1) return false;
    return !laurent || is_number(q->denom) || !has_monomial_factor(q->denom);
}
}  // namespace tolvex
