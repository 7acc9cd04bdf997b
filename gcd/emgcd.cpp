#include "gcd/emgcd.h"

#include "gcd/engines.h"
#include "poly/dense_basic.h"
#include "poly/dense_internal.h"
#include "poly/div_field.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <initializer_list>
namespace tolvex {
namespace {
// Degree below which a half-gcd is done by division steps on the lists; from it up to poly_cutoff on arrays.
constexpr int32_t emgcd_basic_cut = 10;
}  // namespace

static int32_t degree_of(const polynode* p) { return poly_iszero(p) ? -1 : p->exp; }

static poly product(poly a, poly b) {
    poly p = nullptr;
    poly_mult(a, b, &p, nullptr);
    return p;
}

void free_half_gcd_matrix(HalfGcdMatrix* matrix) {
    for (int i = 0; i < 2; i++) {
        free_poly(&matrix->w[i]);
        free_poly(&matrix->v[i]);
    }
}

static HalfGcdMatrix identity() {
    HalfGcdMatrix m = {};
    for (int i = 0; i < 2; i++) {
        poly_set(i == 0, &m.w[i]);
        poly_set(i == 1, &m.v[i]);
    }
    return m;
}

// *low := the terms of *u below x^k; *u := the others, divided by x^k.
static void split(polyptrr u, int32_t k, polyptrr low) {
    polyptrr at = u;
    while (*at != nullptr && (*at)->exp >= k) at = &(*at)->next;
    *low = *at != nullptr ? *at : zero_leaf();
    *at = nullptr;
    if (*u == nullptr)
        *u = zero_leaf();
    else
        sub_expons(u, k);
}

// One division step: (u0, u1) := (u1, u0 mod u1).
static void division_step(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, bool needmult) {
    poly q = nullptr, r = nullptr;
    if (needmult)
        simplest_poly_divide(*u0, *u1, &q, &r);
    else
        poly_div_no_q(*u0, *u1, &r);
    free_poly(u0);
    *u0 = *u1;
    *u1 = r;
    if (!needmult) return;
    for (polyptrr column : {matrix->w, matrix->v}) {
        poly next = nullptr;
        best_poly_sub(column[0], product(q, column[1]), &next);
        column[0] = column[1];
        column[1] = next;
    }
    free_poly(&q);
}

void emgcd_basic(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, boolean needmult) {
    int32_t half = ((*u0)->exp + 1) / 2;
    if (needmult) *matrix = identity();
    while (degree_of(*u1) >= half && !is_number(*u1)) division_step(u0, u1, matrix, needmult);
}

static DensePoly dense_form(const polynode* p) {
    DensePoly d = {scratch_array<uint32_t>(int64_t{p->exp} + 1), degree_of(p)};
    fill_poly_array(p, reinterpret_cast<int32_t*>(d.c));
    return d;
}

static void list_form(const DensePoly& d, polyptrr p) {
    array_to_poly(reinterpret_cast<const int32_t*>(d.c), d.degree, p);
}

void emgcd_fastest(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, boolean needmult) {
    int32_t n = (*u0)->exp, half = (n + 1) / 2;
    if (needmult) *matrix = identity();
    if (half == 0 || degree_of(*u1) < half) return;
    ScratchMark mark = scratch_mark();
    DensePoly x = dense_form(*u0), y = dense_form(*u1);
    CofactorMatrix forms;
    for (auto& row : forms.entry)
        for (DensePoly& e : row) e = {scratch_array<uint32_t>(n - half + 2), -1};
    bool units = euclid_onevar(word_field_ring(), &x, &y, half - 1, &forms);
    if (units) {
        list_form(x, u0);
        list_form(y, u1);
        for (int i = 0; needmult && i < 2; i++) {
            list_form(forms.entry[i][0], &matrix->w[i]);
            list_form(forms.entry[i][1], &matrix->v[i]);
        }
    }
    scratch_release(mark);
    if (!units) emgcd_basic(u0, u1, matrix, needmult);  // for its error
}

// *u := *u x^k + w low0 + v low1, used up.
static void recombine(polyptrr u, int32_t k, poly w, poly v, poly low0, poly low1) {
    poly sum = nullptr;
    best_poly_add(product(w, low0), product(v, low1), &sum);
    if (poly_iszero(*u)) {
        free_poly(u);
        *u = sum;
        return;
    }
    sub_expons(u, -k);
    best_poly_add(*u, sum, u);
}

// The half-gcd of the tops of u0, u1 from x^k on, and its forms applied to the rest.
static void reduce_by_tops(polyptrr u0, polyptrr u1, int32_t k, HalfGcdMatrix* matrix) {
    poly low0 = nullptr, low1 = nullptr;
    split(u0, k, &low0);
    split(u1, k, &low1);
    emgcd_full(u0, u1, matrix, 1);
    recombine(u0, k, matrix->w[0], matrix->v[0], low0, low1);
    recombine(u1, k, matrix->w[1], matrix->v[1], low0, low1);
    free_poly(&low0);
    free_poly(&low1);
}

// *first := second times *first.
static void multiply_matrices(const HalfGcdMatrix& second, HalfGcdMatrix* first) {
    for (polyptrr column : {first->w, first->v}) {
        poly sum[2] = {};
        for (int i = 0; i < 2; i++)
            best_poly_add(product(second.w[i], column[0]), product(second.v[i], column[1]), &sum[i]);
        for (int i = 0; i < 2; i++) {
            free_poly(&column[i]);
            column[i] = sum[i];
        }
    }
}

void emgcd_full(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, boolean needmult) {
    poll_interrupt();
    int32_t n = (*u0)->exp, half = (n + 1) / 2;
    if (degree_of(*u1) < half) {
        if (needmult) *matrix = identity();
        return;
    }
    if (n < maxx(poly_cutoff, 4)) {
        (n < emgcd_basic_cut ? emgcd_basic : emgcd_fastest)(u0, u1, matrix, needmult);
        return;
    }
    HalfGcdMatrix first;
    reduce_by_tops(u0, u1, half, &first);
    if (degree_of(*u1) >= half) division_step(u0, u1, &first, needmult);
    int32_t k = 2 * half - (*u0)->exp;
    if (degree_of(*u1) >= half && k > 0) {
        HalfGcdMatrix second;
        reduce_by_tops(u0, u1, k, &second);
        if (needmult) multiply_matrices(second, &first);
        free_half_gcd_matrix(&second);
    }
    if (needmult)
        *matrix = first;
    else
        free_half_gcd_matrix(&first);
}

// Ends at the remainder r, a number, of something by u: the gcd is u, or 1. Both are used up.
static poly last_divisor(poly u, poly r) {
    poly g = u;
    if (!poly_iszero(r)) {
        free_poly(&u);
        g = nullptr;
        poly_set(1, &g);
    }
    free_poly(&r);
    return g;
}

// The gcd of the private u and v, deg u >= deg v, v not a number.
static poly gcd_by_halves(poly u, poly v, polypt pt) {
    for (;;) {
        poly g = nullptr, r = nullptr;
        poly_div_no_q(u, v, &r);
        free_poly(&u);
        if (is_number(r)) return last_divisor(v, r);
        u = v;
        v = r;
        if (int64_t{u->exp} + v->exp < poly_cutoff) {
            basic_poly_gcd(u, v, &g, 0, pt);
            free_poly(&u);
            free_poly(&v);
            return g;
        }
        emgcd_full(&u, &v, nullptr, 0);
        if (is_number(v)) return last_divisor(u, v);
    }
}

void emgcd_poly(poly a0, poly a1, polyptrr p, polypt pt, boolean savea01) {
    poly u = a0, v = a1;
    if (savea01) {
        u = v = nullptr;
        poly_assign(a0, &u);
        poly_assign(a1, &v);
    }
    poly g = gcd_by_halves(u, v, pt);
    free_poly(p);
    *p = g;
}
}  // namespace tolvex
