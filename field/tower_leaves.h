#pragma once
/// field/tower_leaves.h: what is done to the numbers of a polynomial, one after another.
///
/// Purpose    the one walk for all changes of ring and of representation.
/// Invariant  the chain is in normal form again when change_leaves returns: no zero term, no dummy over a
///            leaf.
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
namespace tolvex {
/// Calls change(number) for each leaf of the chain *at; terms that vanish are taken out, nil if all do.
template <class Change> inline void change_leaves_of(polyptrr at, Change change) {
    while (*at != nullptr) {
        poly t = *at;
        bool vanishes;
        if (t->numb) {
            change(t->ncoef);
            vanishes = iszero(t->ncoef);
        } else {
            change_leaves_of(&t->pcoef, change);
            vanishes = t->pcoef == nullptr;
        }
        if (vanishes) {
            *at = t->next;
            t->next = nullptr;
            if (t->numb)
                free_poly(&t);
            else
                free_node(t);
            continue;
        }
        if (!t->numb && t->exp == 0 && is_number(t->pcoef)) remove_dummy(at);
        at = &(*at)->next;
    }
}
/// The same for a whole polynomial: nothing left is the number 0.
template <class Change> inline void change_leaves(polyptrr p, Change change) {
    change_leaves_of(p, change);
    if (*p == nullptr) *p = zero_leaf();
}
/// Calls visit(number) for each leaf until it answers false; then false.
template <class Visit> inline bool each_leaf(const polynode* p, Visit visit) {
    for (; p != nullptr; p = p->next)
        if (p->numb ? !visit(p->ncoef) : !each_leaf(p->pcoef, visit)) return false;
    return true;
}
}  // namespace tolvex
