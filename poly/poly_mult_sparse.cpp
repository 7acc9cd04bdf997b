#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_scale.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
/// Partial products are merged like the carries of a binary counter: the pile at place k is the sum of 2^k of
/// them, so that each term takes part in at most log2 of their number of merges.
struct Piles {
    poly pile[32] = {};
    void (*add)(poly, poly, polyptrr);
};

void pile_up(Piles& piles, poly product) {
    int32_t k = 0;
    for (; piles.pile[k] != nullptr; k++) {
        piles.add(piles.pile[k], product, &product);
        piles.pile[k] = nullptr;
    }
    piles.pile[k] = product;
}

poly sum_of_piles(Piles& piles) {
    poly sum = nullptr;
    for (poly& pile : piles.pile) {
        if (pile == nullptr) continue;
        if (sum == nullptr)
            sum = pile;
        else
            piles.add(sum, pile, &sum);
    }
    return sum;
}

/// One-level residues: a copy of m's chain with every exponent raised and every residue multiplied. The
/// exponents fit.
poly simplest_row(int32_t exp, int32_t residue, const polynode* m) {
    poly head = nullptr;
    polyptrr at = &head;
    for (; m != nullptr; m = m->next) {
        const number* y = m->numb ? m->ncoef : m->pcoef->ncoef;
        int32_t v = modmult(static_cast<uint32_t>(residue), static_cast<uint32_t>(y->lint));
        if (v == 0) continue;
        imptr c;
        newimag(&c);
        c->lint = v;
        *at = chain_node(exp + m->exp, leaf_of(c));
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}

void replace(polyptrr p, poly fresh) {
    free_poly(p);
    *p = fresh;
}
}  // namespace

void simple_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p) {
    if (size1 > size2) {
        poly swap = n;
        n = m;
        m = swap;
    }
    Piles piles = {{}, best_poly_add};
    for (poly t = n; t != nullptr; t = t->next) {
        poly row = nullptr;
        if (t->numb)
            scalar_by_poly(t->ncoef, m, &row);
        else
            node_by_poly(t, m, &row);
        pile_up(piles, row);
        poll_interrupt();
    }
    replace(p, sum_of_piles(piles));
}

void simplest_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p) {
    if (size1 > size2) {
        poly swap = n;
        n = m;
        m = swap;
    }
    Piles piles = {{}, simplest_poly_add};
    for (const polynode* t = n; t != nullptr; t = t->next) {
        poly row = simplest_row(t->exp, (t->numb ? t->ncoef : t->pcoef->ncoef)->lint, m);
        if (row != nullptr) pile_up(piles, row);
        poll_interrupt();
    }
    poly sum = sum_of_piles(piles);
    replace(p, sum != nullptr ? sum : zero_leaf());
}
}  // namespace tolvex
