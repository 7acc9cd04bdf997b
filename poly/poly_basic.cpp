#include "poly/poly_basic.h"

#include "poly/leaf_number.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
/// Puts the new tree in the place of the old one, which goes back only now: it may have been the source.
static void replace(polyptrr p, poly fresh) {
    free_poly(p);
    *p = fresh;
}

void poly_set(int32_t num, polyptrr p) {
    poly fresh;
    newpoly(&fresh);
    init_poly_node(fresh);
    if (lintmode)
        fresh->ncoef->lint = num;
    else
        leaf_set_chain(fresh->ncoef, num);
    replace(p, fresh);
}

void scalar_to_poly(const number* n, polyptrr p) { replace(p, leaf_of(leaf_clone(n))); }

void poly_to_scalar(const polynode* p, imptr n) { num_assign(p->ncoef, n); }

void base_poly(polyptrr p, int32_t depth) {
    poly fresh = nullptr;
    poly_set(1, &fresh);
    new_term(&fresh, 1, fresh);
    add_pad(&fresh, depth - 1);
    replace(p, fresh);
}

void remove_dummy(polyptrr u) {
    poly leaf = (*u)->pcoef;
    leaf->next = (*u)->next;
    free_node(*u);
    *u = leaf;
}

void fix_top(polyptrr u) {
    if (*u == nullptr) {
        *u = zero_leaf();
        return;
    }
    polyptrr at = u;
    while ((*at)->exp > 0 && (*at)->next != nullptr) at = &(*at)->next;
    if ((*at)->exp == 0 && !(*at)->numb && is_number((*at)->pcoef)) remove_dummy(at);
}

/// Which form of the numbers a copy takes over.
enum class Leaves { by_mode, chains, polled };  // polled: by the mode, with safe points

template <Leaves leaves> static poly copy_node(const polynode* p);

template <Leaves leaves> static poly copy_chain(const polynode* p) {
    poly head = nullptr;
    polyptrr at = &head;
    for (; p != nullptr; p = p->next) {
        if constexpr (leaves == Leaves::polled) poll_interrupt();
        *at = copy_node<leaves>(p);
        at = &(*at)->next;
    }
    return head;
}

template <Leaves leaves> static poly copy_node(const polynode* p) {
    poly c;
    newpoly(&c);
    c->exp = p->exp;
    c->numb = p->numb;
    c->next = nullptr;
    if (!p->numb) {
        c->pcoef = copy_chain<leaves>(p->pcoef);
    } else if constexpr (leaves == Leaves::by_mode) {
        c->ncoef = leaf_clone(p->ncoef);
    } else if constexpr (leaves == Leaves::polled) {
        newimag(&c->ncoef);
        num_assign_polled(p->ncoef, c->ncoef);
    } else {
        newimag(&c->ncoef);
        spec_num_assign(p->ncoef, c->ncoef);
    }
    return c;
}

void poly_assign(const polynode* p, polyptrr q) { replace(q, copy_chain<Leaves::by_mode>(p)); }

void poly_assign_polled(const polynode* p, polyptrr q) { replace(q, copy_chain<Leaves::polled>(p)); }

void node_assign(const polynode* p, polyptrr q) { replace(q, copy_node<Leaves::by_mode>(p)); }

void mini_copy(polyptrr p, polyptrr q) {
    poly head;
    newpoly(&head);
    *head = **p;
    poly shell = zero_leaf();  // what is left in the old head is an empty shell that its owner gives back
    **p = *shell;
    free_node(shell);
    replace(q, head);
}

void spec_poly_assign(const polynode* p, polyptrr q) { replace(q, copy_chain<Leaves::chains>(p)); }

static poly negative_chain(const polynode* p) {
    poly head = nullptr;
    polyptrr at = &head;
    for (; p != nullptr; p = p->next) {
        newpoly(at);
        poly c = *at;
        c->exp = p->exp;
        c->numb = p->numb;
        if (p->numb) {
            c->ncoef = leaf_clone(p->ncoef);
            leaf_negate(c->ncoef);
        } else {
            c->pcoef = negative_chain(p->pcoef);
        }
        at = &c->next;
    }
    *at = nullptr;
    return head;
}

void poly_makeneg(const polynode* p, polyptrr q) { replace(q, negative_chain(p)); }

void poly_inplace(poly p) {
    for (; p != nullptr; p = p->next) {
        if (p->numb)
            leaf_negate(p->ncoef);
        else
            poly_inplace(p->pcoef);
    }
}

void poly_abs(poly p) {
    if (neg_leading_term(p)) poly_inplace(p);
}

void add_pad(polyptrr p, int32_t depth) {
    if (is_number(*p)) return;
    for (; depth > 0; depth--) new_term(p, 0, *p);
}
}  // namespace tolvex
