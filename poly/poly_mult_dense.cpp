#include "poly/dense_mult.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_shape.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
namespace {
const number* leaf_number(const polynode* t) { return t->numb ? t->ncoef : t->pcoef->ncoef; }

/// The residues of a one-level polynomial, index = exponent; scratch memory.
int32_t* residue_row(const polynode* n) {
    const int32_t degree = n->exp;
    auto* row = scratch_array<int32_t>(degree + int64_t{1});
    fill_poly_array(n, row);
    return row;
}

/// How the terms of a polynomial of two levels lie.
struct TwoLevels {
    int32_t terms;         // of the top chain
    int32_t inner_degree;  // largest exponent of the second level
};

/// False if p has a third level, a negative exponent, or too few terms for its span.
bool dense_in_two_levels(const polynode* p, TwoLevels* s) {
    *s = {0, 0};
    const int32_t first = p->exp;
    int32_t last = first;
    for (; p != nullptr; p = p->next) {
        last = p->exp;
        s->terms++;
        if (p->numb) continue;
        s->inner_degree = maxx(s->inner_degree, p->pcoef->exp);
        for (const polynode* t = p->pcoef; t != nullptr; t = t->next)
            if (t->exp < 0 || (!t->numb && !is_number(t->pcoef))) return false;
    }
    return last >= 0 && s->terms >= 26 && 3 * s->terms > first - last;
}

/// Writes p, of two levels, at x[i * stride + j] for x^i y^j; the array is clear.
void fill_two_levels(const polynode* p, int32_t stride, int32_t* x) {
    for (; p != nullptr; p = p->next) {
        int32_t* row = x + static_cast<int64_t>(p->exp) * stride;
        if (p->numb) {
            row[0] = p->ncoef->lint;
            continue;
        }
        for (const polynode* t = p->pcoef; t != nullptr; t = t->next) row[t->exp] = leaf_number(t)->lint;
    }
}

/// The polynomial of two levels with the rows x[i * stride ..], exponents 0..degree by 0..stride-1.
poly read_two_levels(const int32_t* x, int32_t degree, int32_t stride) {
    poly head = nullptr;
    polyptrr at = &head;
    for (int32_t i = degree; i >= 0; i--) {
        const int32_t* row = x + static_cast<int64_t>(i) * stride;
        int32_t top = dense_degree(row, stride - 1);
        if (top < 0) continue;
        poly c = nullptr;
        array_to_poly(row, top, &c);
        *at = chain_node(i, c);
        at = &(*at)->next;
    }
    *at = nullptr;
    return head != nullptr ? head : zero_leaf();
}
}  // namespace

void k_fastest_poly_mult(poly n, poly m, polyptrr p) {
    ScratchMark mark = scratch_mark();
    const int32_t n_degree = n->exp, m_degree = m->exp, degree = n_degree + m_degree;
    int32_t* a = residue_row(n);
    int32_t* b = n == m ? a : residue_row(m);
    if (a[n_degree] == 0 || b[m_degree] == 0) printf("BAD 4: %d, %d\n", a[n_degree], b[m_degree]);
    auto* c = scratch_array<int32_t>(degree + int64_t{1});
    dense_mult(a, n_degree + 1, b, m_degree + 1, c);
    poly fresh = nullptr;
    array_to_poly(c, dense_degree(c, degree), &fresh);
    scratch_release(mark);
    free_poly(p);
    *p = fresh;
}

void fastest_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p) {
    if (4 * static_cast<int64_t>(size1) > n->exp && 4 * static_cast<int64_t>(size2) > m->exp)
        k_fastest_poly_mult(n, m, p);
    else
        simplest_standard(n, m, size1, size2, p);
}

boolean try_fast_2_var(poly n, poly m) {
    if (field_depth > 0 || finf) return 0;
    int32_t high = maxx(n->exp, m->exp), low = minn(n->exp, m->exp);
    if (high > 9 * static_cast<int64_t>(low)) return 0;
    TwoLevels n_shape, m_shape;
    if (!dense_in_two_levels(n, &n_shape) || !dense_in_two_levels(m, &m_shape)) return 0;
    return static_cast<int64_t>(high) + low < k_bivariate &&
           static_cast<int64_t>(n_shape.inner_degree) + m_shape.inner_degree < k_bivariate;
}

void fastest_poly2_mult(poly n, poly m, polyptrr p) {
    TwoLevels n_shape, m_shape;
    dense_in_two_levels(n, &n_shape);
    dense_in_two_levels(m, &m_shape);
    // Rows of one length, wide enough for a row of the product: the two levels become one (Kronecker).
    const int32_t stride = n_shape.inner_degree + m_shape.inner_degree + 1, degree = n->exp + m->exp;
    const int32_t n_entries = n->exp * stride + n_shape.inner_degree + 1;
    const int32_t m_entries = m->exp * stride + m_shape.inner_degree + 1;
    ScratchMark mark = scratch_mark();
    auto* a = scratch_array<int32_t>(n_entries);
    scratch_clear(a, static_cast<size_t>(n_entries) * sizeof(int32_t));
    fill_two_levels(n, stride, a);
    int32_t* b = a;
    if (n != m) {
        b = scratch_array<int32_t>(m_entries);
        scratch_clear(b, static_cast<size_t>(m_entries) * sizeof(int32_t));
        fill_two_levels(m, stride, b);
    }
    auto* c = scratch_array<int32_t>(static_cast<int64_t>(n_entries) + m_entries - 1);
    dense_mult(a, n_entries, b, m_entries, c);
    poly fresh = read_two_levels(c, degree, stride);
    scratch_release(mark);
    poll_interrupt();
    free_poly(p);
    *p = fresh;
}
}  // namespace tolvex
