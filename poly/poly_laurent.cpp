#include "poly/poly_laurent.h"

#include "numbers/num_compare.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
namespace tolvex {
/// The levels that stand in the tree: the longest way down.
static int32_t tree_depth(const polynode* p) {
    int32_t deepest = 0;
    for (; p != nullptr; p = p->next) {
        if (p->numb) continue;
        int32_t below = 1 + tree_depth(p->pcoef);
        if (below > deepest) deepest = below;
    }
    return deepest;
}

struct LeastExponents {
    int32_t least[k_levels];  // by level, from 1
    int32_t levels;           // levels that are looked at
};

/// A leaf stands for the exponent 0 in its own level and in all deeper ones.
static void note_exponents(const polynode* p, int32_t level, LeastExponents& e) {
    if (level > e.levels) return;
    for (; p != nullptr; p = p->next) {
        if (p->exp < e.least[level]) e.least[level] = p->exp;
        if (!p->numb) {
            note_exponents(p->pcoef, level + 1, e);
            continue;
        }
        for (int32_t deeper = level + 1; deeper <= e.levels; deeper++)
            if (e.least[deeper] > 0) e.least[deeper] = 0;
    }
}

/// The product of the number c (used up) with the monomial.
static poly number_times_monomial(poly c, const polynode* list, int32_t factor) {
    if (list == nullptr) return c;
    c = number_times_monomial(c, list->next, factor);
    return chain_node(list->exp * factor, c);
}

/// *p := *p times the monomial, in place; *p is not 0.
static void times_monomial(polyptrr p, const polynode* list, int32_t factor) {
    if (list == nullptr) return;
    int32_t shift = list->exp * factor;
    for (polyptrr at = p; *at != nullptr; at = &(*at)->next) {
        poly t = *at, rest = t->next;
        if (t->numb) {
            t->next = nullptr;
            t = number_times_monomial(t, list->next, factor);
            t = chain_node(shift, t);
        } else {
            times_monomial(&t->pcoef, list->next, factor);
            t->exp += shift;
            if (t->exp == 0 && is_number(t->pcoef)) {
                t->next = nullptr;
                remove_dummy(&t);
            }
        }
        t->next = rest;
        *at = t;
    }
}

poly clear_bads(polyptrr p, int32_t value, int32_t depth) {
    if (field_depth > 0) depth = minn(depth, field_depth - 1);  // powers of field elements are units already
    if (is_number(*p)) return nullptr;
    LeastExponents e;
    e.levels = minn(minn(tree_depth(*p), depth), k_levels - 1);
    for (int32_t level = 1; level <= e.levels; level++) e.least[level] = value;
    note_exponents(*p, 1, e);
    while (e.levels > 0 && e.least[e.levels] == 0) e.levels--;
    poly list = nullptr;
    for (int32_t level = e.levels; level > 0; level--) {
        poly rest = list;
        new_term(&list, e.least[level], nullptr);
        list->next = rest;
    }
    if (list != nullptr) times_monomial(p, list, -1);
    return list;
}

void eliminate_bads(polyptrr q, const polynode* list, int32_t factor) {
    if (list == nullptr || (is_number(*q) && iszero((*q)->ncoef))) return;
    times_monomial(q, list, factor);
}

void free_exponent_list(polyptrr list) {
    while (*list != nullptr) {
        poly t = *list;
        *list = t->next;
        free_node(t);
    }
}

void sub_expons(polyptrr p, int32_t e) {
    if (e == 0) return;
    polynode monomial = {};
    monomial.exp = e;
    eliminate_bads(p, &monomial, -1);
}
}  // namespace tolvex
