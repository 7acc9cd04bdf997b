#include "gcd/multivar_chinese.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
/// Polynomials that are read side by side; label[i] is the exponent that the terms of the i-th get in the
/// rows.
struct Merge {
    MainRows* out;
    const int32_t* label;
    int32_t n;
};
}  // namespace

// A leaf for the numbers among c[0..n), nil where there is none.
static poly new_row(const Merge& m, const poly* c) {
    MainRows& out = *m.out;
    int32_t at = out.start[out.rows];
    for (int32_t i = 0; i < m.n; i++) {
        if (c[i] == nullptr) continue;
        out.exp[at] = m.label[i];
        out.residue[at++] = static_cast<uint32_t>(c[i]->ncoef->lint);
    }
    poly leaf = zero_leaf();
    leaf->ncoef->lint = out.rows++;
    out.start[out.rows] = at;
    return leaf;
}

static bool only_numbers(const poly* c, int32_t n) {
    for (int32_t i = 0; i < n; i++)
        if (c[i] != nullptr && !is_number(c[i])) return false;
    return true;
}

// The tree of rows of the chains c[0..n), nil where there is none. c is used as room for the places reached.
static poly merge_chains(const Merge& m, poly* c) {
    if (only_numbers(c, m.n)) return new_row(m, c);
    ScratchMark mark = scratch_mark();
    poly* sub = scratch_array<poly>(m.n);
    poly head = nullptr;
    polyptrr tail = &head;
    for (;;) {
        poll_interrupt();
        int32_t top = -1;
        for (int32_t i = 0; i < m.n; i++)
            if (c[i] != nullptr && c[i]->exp > top) top = c[i]->exp;
        if (top < 0) break;
        for (int32_t i = 0; i < m.n; i++) {
            sub[i] = nullptr;
            if (c[i] == nullptr || c[i]->exp != top) continue;
            sub[i] = c[i]->numb ? c[i] : c[i]->pcoef;
            c[i] = c[i]->next;
        }
        *tail = chain_node(top, merge_chains(m, sub));
        tail = &(*tail)->next;
    }
    *tail = nullptr;
    scratch_release(mark);
    return head;
}

// Rows of the n polynomials c, whose numbers are `terms` together.
static MainRows merge_all(poly* c, const int32_t* label, int32_t n, int64_t terms) {
    MainRows out = {};
    out.start = scratch_array<int32_t>(terms + 1);
    out.exp = scratch_array<int32_t>(terms);
    out.residue = scratch_array<uint32_t>(terms);
    out.start[0] = 0;
    Merge m = {&out, label, n};
    out.tree = merge_chains(m, c);
    return out;
}

MainRows main_rows(poly p) {
    int32_t n = poly_length(p), i = 0;
    poly* c = scratch_array<poly>(n);
    auto* label = scratch_array<int32_t>(n);
    for (poly t = p; t != nullptr; t = t->next, i++) {
        c[i] = t->numb ? t : t->pcoef;
        label[i] = t->exp;
    }
    MainRows rows = merge_all(c, label, n, poly_terms(p));
    rows.degree = p->exp;
    return rows;
}

namespace {
/// One value of the main variable.
struct RowPoint {
    const WordField* f;
    const MainRows* rows;
    uint32_t point;
    const uint32_t* power;  // of the point, up to the highest exponent; nil: too many
};
constexpr int32_t k_power_table = 1 << 14;
}  // namespace

// Horner over one row.
static uint32_t row_by_horner(const RowPoint& at, int32_t from, int32_t end) {
    const WordField& f = *at.f;
    uint32_t v = 0;
    for (int32_t i = from; i < end; i++) {
        v = wf_add(f, v, at.rows->residue[i]);
        int32_t gap = at.rows->exp[i] - (i + 1 < end ? at.rows->exp[i + 1] : 0);
        if (gap == 1)
            v = wf_mul(f, v, at.point);
        else if (gap > 1)
            v = wf_mul(f, v, wf_power(f, at.point, static_cast<uint64_t>(gap)));
    }
    return v;
}

// The value of one row. With powers at hand the products do not wait for each other: their sum stays below 2
// p^2, and is reduced once.
static uint32_t row_value(const RowPoint& at, int32_t row) {
    int32_t i = at.rows->start[row], end = at.rows->start[row + 1];
    if (at.power == nullptr || at.f->table) return row_by_horner(at, i, end);
    uint64_t square = uint64_t{at.f->p} * at.f->p, sum = 0;
    for (; i < end; i++) {
        sum += uint64_t{at.rows->residue[i]} * at.power[at.rows->exp[i]];
        if (sum >= square) sum -= square;
    }
    return wf_reduce(*at.f, sum);
}

// The powers of the point that a row may need, in scratch memory.
static const uint32_t* powers_of(const WordField& f, const MainRows& rows, uint32_t point) {
    if (f.table || rows.degree >= k_power_table) return nullptr;
    auto* power = scratch_array<uint32_t>(int64_t{rows.degree} + 1);
    power[0] = 1;
    for (int32_t e = 1; e <= rows.degree; e++) power[e] = wf_mul(f, power[e - 1], point);
    return power;
}

static poly leaf_of_word(uint32_t v) {
    if (v == 0) return nullptr;
    poly leaf = zero_leaf();
    leaf->ncoef->lint = static_cast<int32_t>(v);
    return leaf;
}

// The values of all rows of a chain; nil if all are 0.
static poly chain_at(const RowPoint& at, const polynode* t) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (; t != nullptr; t = t->next) {
        poly c = t->numb ? leaf_of_word(row_value(at, t->ncoef->lint)) : chain_at(at, t->pcoef);
        if (c == nullptr) continue;
        *tail = chain_node(t->exp, c);
        tail = &(*tail)->next;
    }
    *tail = nullptr;
    return head;
}

poly main_rows_at(const WordField& f, const MainRows& rows, uint32_t point) {
    ScratchMark mark = scratch_mark();
    RowPoint at = {&f, &rows, point, powers_of(f, rows, point)};
    poly p = chain_at(at, rows.tree);
    scratch_release(mark);
    return p != nullptr ? p : zero_leaf();
}

uint32_t mod_Chinese(const WordField& f, const uint32_t* a, const uint32_t* point, int32_t n, uint32_t c) {
    if (n == 0) return 0;
    uint32_t v = a[n - 1];
    for (int32_t k = n - 2; k >= 0; k--) v = wf_add(f, wf_mul(f, v, wf_sub(f, c, point[k])), a[k]);
    return v;
}

// Values v[0..n) at the points become the coefficients of the powers of x: Newton's divided differences, then
// the Newton form expanded by Horner. inverse[k]: of the product of point[k] - point[j], j < k.
static void interpolate_row(const WordField& f, const uint32_t* point, const uint32_t* inverse, int32_t n,
                            uint32_t* v) {
    for (int32_t k = 1; k < n; k++) {
        poll_interrupt();
        v[k] = wf_mul(f, wf_sub(f, v[k], mod_Chinese(f, v, point, k, point[k])), inverse[k]);
    }
    for (int32_t k = n - 2; k >= 0; k--) {
        poll_interrupt();
        for (int32_t i = k; i + 1 < n; i++) v[i] = wf_sub(f, v[i], wf_mul(f, point[k], v[i + 1]));
    }
}

// Transposes back: part[j] := the tree whose leaf of row i is coef[i n + j], nil if that is 0 throughout.
static void spread_rows(const polynode* t, const uint32_t* coef, int32_t n, poly* part) {
    if (is_number(t)) {
        for (int32_t j = 0; j < n; j++) part[j] = leaf_of_word(coef[int64_t{t->ncoef->lint} * n + j]);
        return;
    }
    ScratchMark mark = scratch_mark();
    poly* child = scratch_array<poly>(n);
    auto* tail = scratch_array<polyptrr>(n);
    for (int32_t j = 0; j < n; j++) {
        part[j] = nullptr;
        tail[j] = &part[j];
    }
    for (; t != nullptr; t = t->next) {
        poll_interrupt();
        spread_rows(t->numb ? t : t->pcoef, coef, n, child);
        for (int32_t j = 0; j < n; j++) {
            if (child[j] == nullptr) continue;
            *tail[j] = chain_node(t->exp, child[j]);
            tail[j] = &(*tail[j])->next;
            *tail[j] = nullptr;
        }
    }
    scratch_release(mark);
}

static uint32_t* inverse_products(const WordField& f, const uint32_t* point, int32_t n) {
    auto* inverse = scratch_array<uint32_t>(n);
    for (int32_t k = 0; k < n; k++) {
        poll_interrupt();
        uint32_t product = 1;
        for (int32_t j = 0; j < k; j++) product = wf_mul(f, product, wf_sub(f, point[k], point[j]));
        inverse[k] = wf_inverse(f, product);
    }
    return inverse;
}

poly interpolate_main(const WordField& f, poly* image, const uint32_t* point, int32_t n) {
    ScratchMark mark = scratch_mark();
    int64_t terms = 0;
    auto* label = scratch_array<int32_t>(n);
    poly* c = scratch_array<poly>(n);
    for (int32_t i = 0; i < n; i++) {
        terms += poly_terms(image[i]);
        label[i] = i;
        c[i] = image[i];
    }
    MainRows rows = merge_all(c, label, n, terms);
    uint32_t* inverse = inverse_products(f, point, n);
    auto* coef = scratch_array<uint32_t>(int64_t{rows.rows} * n);
    for (int32_t row = 0; row < rows.rows; row++) {
        uint32_t* v = coef + int64_t{row} * n;
        std::fill(v, v + n, 0);
        for (int32_t i = rows.start[row]; i < rows.start[row + 1]; i++) v[rows.exp[i]] = rows.residue[i];
        interpolate_row(f, point, inverse, n, v);
    }
    spread_rows(rows.tree, coef, n, c);
    poly r = nullptr;
    polyptrr tail = &r;
    for (int32_t j = n - 1; j >= 0; j--) {
        if (c[j] == nullptr) continue;
        *tail = chain_node(j, c[j]);
        tail = &(*tail)->next;
    }
    *tail = nullptr;
    free_poly(&rows.tree);
    scratch_release(mark);
    return r != nullptr ? r : zero_leaf();
}
}  // namespace tolvex
