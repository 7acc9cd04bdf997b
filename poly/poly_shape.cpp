#include "poly/poly_shape.h"

#include "numbers/num_shift.h"
namespace tolvex {
poly leading_coef(poly p) {
    while (!p->numb) p = p->pcoef;
    return p;
}

int32_t real_degree(const polynode* p, int32_t n) {
    for (; n > 1 && !p->numb; n--) p = p->pcoef;
    return p->exp;
}

int16_t poly_level(const polynode* p) {
    if (is_number(p)) return 0;
    int16_t level = 1;
    for (; p->exp == 0 && p->next == nullptr; p = p->pcoef) level++;
    return level;
}

int16_t poly_depth(const polynode* p) {
    return is_number(p) ? static_cast<int16_t>(k_leaf_depth) : poly_level(p);
}

int32_t poly_length(const polynode* p) {
    int32_t n = 0;
    for (; p != nullptr; p = p->next) n++;
    return n;
}

int32_t exp_poly_length(const polynode* p, int32_t* last, boolean* flag) {
    bool numbers = true;
    int32_t n = 0, first = p->exp, lowest = first;
    for (; p != nullptr; p = p->next) {
        n++;
        lowest = p->exp;
        if (!p->numb && !is_number(p->pcoef)) numbers = false;
    }
    *last = lowest;
    if (!modularmode || !numbers || lowest < 0) *flag = 0;
    int64_t spread = static_cast<int64_t>(first) - lowest;
    return spread > 6 * static_cast<int64_t>(n) ? -n : n;
}

poly lastnode(poly p) {
    while (p->next != nullptr) p = p->next;
    return p;
}

poly lastnum(poly p) {
    p = lastnode(p);
    return p->numb ? p : p->pcoef;
}

int32_t lastexp(const polynode* p) {
    for (;;) {
        while (p->next != nullptr) p = p->next;
        if (p->numb || is_number(p->pcoef)) return p->exp;
        p = p->pcoef;
    }
}

int32_t p_size_of(const polynode* p) {
    const number* n = p->ncoef;
    if (lintmode) return word_top_bit(n->lint);
    int64_t bits = word_top_bit(n->head->value) + static_cast<int64_t>(n->size - 1) * k_digit_bits;
    return bits > INT32_MAX ? INT32_MAX : static_cast<int32_t>(bits);
}

int64_t poly_terms(const polynode* p) {
    int64_t n = 0;
    for (; p != nullptr; p = p->next) n += p->numb ? 1 : poly_terms(p->pcoef);
    return n;
}

bool has_negative_exponent(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (p->exp < 0 || (!p->numb && has_negative_exponent(p->pcoef))) return true;
    return false;
}
}  // namespace tolvex
