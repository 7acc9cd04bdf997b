#include "poly/poly_scale.h"

#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
namespace tolvex {
static bool is_one(const number* x) { return lintmode ? x->lint == 1 : is_longint(x, 1); }

static void replace(polyptrr q, poly fresh) {
    free_poly(q);
    *q = fresh;
}

/// x y for a chain y as a chain: nil if nothing is left, never an exponent 0 over a number.
static poly scaled_chain(const number* x, const polynode* y) {
    poly head = nullptr;
    polyptrr at = &head;
    for (; y != nullptr; y = y->next) {
        if (y->numb) {
            imptr c = leaf_product(x, y->ncoef);
            if (iszero(c)) {
                free_imag(&c);
                continue;
            }
            *at = leaf_of(c);
        } else {
            poly c = scaled_chain(x, y->pcoef);
            if (c == nullptr) continue;
            *at = chain_node(y->exp, c);
        }
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}

void scalar_by_poly(const number* x, poly y, polyptrr q) {
    if (is_one(x)) {
        poly_assign(y, q);
        return;
    }
    poly fresh = scaled_chain(x, y);
    replace(q, fresh != nullptr ? fresh : zero_leaf());
}

void node_by_poly(poly x, poly y, polyptrr q) {
    int64_t y_last = x->exp < 0 ? lastnode(y)->exp : 0;
    if (!exponents_fit(int64_t{x->exp} + y->exp, x->exp < 0 ? x->exp + y_last : 0)) {
        poly_set(0, q);
        return;
    }
    polynode x_leaf = leaf_alone(x);
    poly c = x->numb ? &x_leaf : x->pcoef;
    poly head = nullptr;
    polyptrr at = &head;
    bool y_is_zero = is_number(y) && iszero(y->ncoef);
    for (const polynode* t = y_is_zero ? nullptr : y; t != nullptr; t = t->next) {
        polynode t_leaf = leaf_alone(t);
        poly product = nullptr;
        poly_mult(c, t->numb ? &t_leaf : t->pcoef, &product, nullptr);
        if (is_number(product) && iszero(product->ncoef)) {
            free_leaf(product);
            continue;
        }
        *at = chain_node(x->exp + t->exp, product);
        at = &(*at)->next;
    }
    replace(q, head != nullptr ? head : zero_leaf());
}

/// What is done to the number of every leaf in place.
struct ScaleBy {
    const number* factor;  // chains
    int32_t word;          // residues and words
};

/// Multiplies every leaf; terms that vanish are taken out, nil if all do. Needed only where there are zero
/// divisors, but the test costs nothing.
static void scale_chain(polyptrr at, const ScaleBy& by) {
    while (*at != nullptr) {
        poly t = *at;
        if (t->numb) {
            if (lintmode)
                t->ncoef->lint = lint_product(t->ncoef->lint, by.word);
            else
                fast_mult(t->ncoef, by.factor, t->ncoef);
            if (iszero(t->ncoef)) {
                *at = t->next;
                free_leaf(t);
                continue;
            }
        } else {
            scale_chain(&t->pcoef, by);
            if (t->pcoef == nullptr) {
                *at = t->next;
                free_node(t);
                continue;
            }
            if (t->exp == 0 && is_number(t->pcoef)) remove_dummy(at);
        }
        at = &(*at)->next;
    }
}

static void scale(polyptrr p, const ScaleBy& by) {
    scale_chain(p, by);
    if (*p == nullptr) *p = zero_leaf();
}

void num_poly_mult(polyptrr n, const number* m) {
    if (is_longint(m, 1)) return;
    number factor = {};  // m may be the number of a leaf of *n
    spec_num_assign(m, &factor);
    scale(n, {&factor, 0});
    special_free(&factor);
}

void mod_num_poly_mult(polyptrr n, int32_t x) {
    if (x != 1) scale(n, {nullptr, x});
}

void mult_num(polyptrr x, const number* nm) {
    if (lintmode)
        mod_num_poly_mult(x, nm->lint);
    else
        num_poly_mult(x, nm);
}
}  // namespace tolvex
