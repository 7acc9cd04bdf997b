#include "poly/poly_convert.h"

#include "numbers/num_divide.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"
namespace tolvex {
/// A chain as an element of the ring in force: its residue; in a table field its parity.
static int32_t residue_of_chain(const number* n) {
    const auto m = static_cast<uint32_t>(finf ? 2 : modulus);
    if (n->size == 1) {
        auto r = static_cast<int32_t>(static_cast<int64_t>(n->head->value) % m);
        return r < 0 ? r + static_cast<int32_t>(m) : r;
    }
    return static_cast<int32_t>(chain_mod_word(n, m));
}

/// A word of any size as the element of the ring in force that it stands for.
static void word_to_residue(imptr x) { x->lint = residue_of_int(x->lint); }

/// Every leaf of the chain; terms that vanish are taken out, nil if all do.
static void reduce_chain(polyptrr at) {
    while (*at != nullptr) {
        poly t = *at;
        bool vanishes;
        if (t->numb) {
            word_to_residue(t->ncoef);
            vanishes = t->ncoef->lint == 0;
            if (vanishes) pool_push<&number::imag>(imhead, t->ncoef);
        } else {
            reduce_chain(&t->pcoef);
            vanishes = t->pcoef == nullptr;
        }
        if (vanishes) {
            *at = t->next;
            free_node(t);
            continue;
        }
        if (!t->numb && t->exp == 0 && is_number(t->pcoef)) remove_dummy(at);
        at = &(*at)->next;
    }
}

/// A leaf whose number holds the residue v, in whatever mode.
static poly residue_leaf(int32_t v) {
    imptr c;
    newimag(&c);
    c->lint = v;
    return leaf_of(c);
}

void poly_reduce_words(polyptrr p) {
    reduce_chain(p);
    if (*p == nullptr) *p = residue_leaf(0);
}

/// Every residue becomes a chain; above `line` it becomes negative.
static void chain_from_mod(poly p, int64_t line) {
    for (; p != nullptr; p = p->next) {
        if (!p->numb) {
            chain_from_mod(p->pcoef, line);
            continue;
        }
        int64_t v = p->ncoef->lint;
        special_free(p->ncoef);
        leaf_set_chain(p->ncoef, v > line ? v - modulus : v);
    }
}

void poly_change_from_mod(polyptrr p) { chain_from_mod(*p, INT64_MAX); }

void poly_change_from_mod_symmetric(polyptrr p) { chain_from_mod(*p, half_modulus); }

/// A fresh leaf with the chain of the word v.
static poly chain_leaf(int64_t v) {
    imptr c;
    newimag(&c);
    leaf_set_chain(c, v);
    return leaf_of(c);
}

/// The chains of residues; above `line` they become negative.
static poly lifted_chain(const polynode* p, int64_t line) {
    constexpr int64_t k_unpolled = 256;
    poly head = nullptr;
    polyptrr at = &head;
    for (int64_t k = 0; p != nullptr; p = p->next, k++) {
        if (p->numb) {
            int64_t v = p->ncoef->lint;
            *at = chain_leaf(v > line ? v - modulus : v);
            (*at)->exp = p->exp;
        } else {
            poly c = lifted_chain(p->pcoef, line);
            new_term(at, p->exp, c);
        }
        at = &(*at)->next;
        poll_every<k_unpolled>(k);
    }
    *at = nullptr;
    return head;
}

void poly_lift(const polynode* p, bool symmetric, polyptrr q) {
    poly fresh = lifted_chain(p, symmetric ? half_modulus : INT64_MAX);
    special_free_poly(q);
    *q = fresh;
}

/// The image of a chain, without vanished terms; nil if none is left.
static poly image_chain(const polynode* p) {
    constexpr int64_t k_unpolled = 256;
    poly head = nullptr;
    polyptrr at = &head;
    for (int64_t k = 0; p != nullptr; p = p->next, k++) {
        poll_every<k_unpolled>(k);
        if (p->numb) {
            int32_t r = residue_of_chain(p->ncoef);
            if (r == 0) continue;
            *at = residue_leaf(r);
        } else {
            poly c = image_chain(p->pcoef);
            if (c == nullptr) continue;
            *at = chain_node(p->exp, c);
        }
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}

void poly_image(const polynode* p, polyptrr q) {
    poly fresh = image_chain(p);
    special_free_poly(q);
    *q = fresh != nullptr ? fresh : residue_leaf(0);
}
}  // namespace tolvex
