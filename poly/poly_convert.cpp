#include "poly/poly_convert.h"

#include "numbers/num_divide.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
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

/// Gives the chain back and leaves the residue in lint.
static void number_to_residue(imptr x) {
    if (x->size == 0) {  // a word of lintmode
        x->lint = finf ? x->lint & 1 : residue_of_int(x->lint);
        return;
    }
    int32_t r = residue_of_chain(x);
    special_free(x);
    x->lint = r;
}

/// A word of any size as the element of the ring in force that it stands for.
static void word_to_residue(imptr x) { x->lint = residue_of_int(x->lint); }

/// Every leaf of the chain by `to_residue`; terms that vanish are taken out, nil if all do.
template <void (*to_residue)(imptr)> static void chain_to_mod(polyptrr at) {
    while (*at != nullptr) {
        poly t = *at;
        bool vanishes;
        if (t->numb) {
            to_residue(t->ncoef);
            vanishes = t->ncoef->lint == 0;
            if (vanishes) pool_push<&number::imag>(imhead, t->ncoef);
        } else {
            chain_to_mod<to_residue>(&t->pcoef);
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

void poly_change_to_mod(polyptrr p) {
    chain_to_mod<number_to_residue>(p);
    if (*p == nullptr) *p = residue_leaf(0);
}

void poly_reduce_words(polyptrr p) {
    chain_to_mod<word_to_residue>(p);
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

/// The image of a chain, without vanished terms; nil if none is left.
static poly image_chain(const polynode* p) {
    poly head = nullptr;
    polyptrr at = &head;
    for (; p != nullptr; p = p->next) {
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
