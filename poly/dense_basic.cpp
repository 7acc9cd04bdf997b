#include "poly/dense_basic.h"

#include "poly/dense_kernels.h"
#include "poly/poly_basic.h"
#include "storage/failure.h"

#include <cstring>
namespace tolvex {
int32_t dense_degree(const int32_t* x, int32_t top) {
    while (top >= 0 && x[top] == 0) top--;
    return top;
}

void fill_poly_array(const polynode* n, int32_t* x) {
    int32_t at = n->exp;
    for (; n != nullptr; n = n->next) {
        while (at > n->exp) x[at--] = 0;
        x[at--] = n->numb ? n->ncoef->lint : n->pcoef->ncoef->lint;
    }
    while (at >= 0) x[at--] = 0;
}

static poly residue_leaf(int32_t value) {
    poly p;
    newpoly(&p);
    init_poly_node(p);
    p->ncoef->lint = value;
    return p;
}

// The chain of the non-zero entries of x[0..degree], nil if there are none.
static poly chain_of_array(const int32_t* x, int32_t degree) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (int32_t e = degree; e >= 0; e--) {
        if (x[e] == 0) continue;
        poly leaf = residue_leaf(x[e]);
        if (e == 0)
            *tail = leaf;
        else
            new_term(tail, e, leaf);
        tail = &(*tail)->next;
    }
    return head;
}

void array_to_poly(const int32_t* x, int32_t degree, polyptrr p) {
    if (degree == 0 && x[0] == 0) tolvex_error("bad x[0] in array_to_poly");
    poly fresh = degree < 0 ? residue_leaf(0) : chain_of_array(x, degree);
    free_poly(p);
    *p = fresh;
}

void array_to_poly2(const int32_t* x, int32_t degree, const int32_t* row_degree, polyptrr p) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (int32_t e = degree; e >= 0; e--) {
        poly c = chain_of_array(x + static_cast<ptrdiff_t>(e) * k_bivariate, row_degree[e]);
        if (c == nullptr) continue;
        if (e == 0 && is_number(c))
            *tail = c;
        else
            new_term(tail, e, c);
        tail = &(*tail)->next;
    }
    if (head == nullptr) head = residue_leaf(0);
    free_poly(p);
    *p = head;
}

static const uint32_t* entries(const int32_t* x) { return reinterpret_cast<const uint32_t*>(x); }
static uint32_t* entries(int32_t* x) { return reinterpret_cast<uint32_t*>(x); }

void onevar_add(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                int32_t yb, int32_t* deg) {
    int32_t an = xb >= xa ? xb - xa + 1 : 0, bn = yb >= ya ? yb - ya + 1 : 0, both = an < bn ? an : bn;
    const int32_t* longer = an > bn ? a + xa : b + ya;
    int32_t top = an > bn ? an : bn;
    row_add(word_field_ring(), entries(a) + xa, entries(b) + ya, entries(c), both);
    if (top > both) memmove(c + both, longer + both, static_cast<size_t>(top - both) * sizeof(int32_t));
    *deg = dense_degree(c, top - 1);
}

void onevar_sub(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                int32_t yb, int32_t* deg) {
    int32_t an = xb >= xa ? xb - xa + 1 : 0, bn = yb >= ya ? yb - ya + 1 : 0, both = an < bn ? an : bn;
    row_sub(word_field_ring(), entries(a) + xa, entries(b) + ya, entries(c), both);
    if (an > bn)
        memmove(c + both, a + xa + both, static_cast<size_t>(an - both) * sizeof(int32_t));
    else
        for (int32_t i = both; i < bn; i++) c[i] = mod_neg(b[ya + i]);
    *deg = dense_degree(c, (an > bn ? an : bn) - 1);
}
}  // namespace tolvex
