// The gcd in two variables x, y over a prime field or table field: one image at y = c is lifted in powers of
// y - c. Not part of the strategy of polygcd: a second method, which tests compare with the others.
#include "gcd/engines.h"
#include "gcd/gcd_modes.h"
#include "gcd/hensel.h"
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "poly/dense_basic.h"
#include "poly/div_general.h"
#include "poly/div_trial.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_deriv.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "poly/word_field.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr int32_t k_points_tried = 3;
constexpr int64_t k_box = 1 << 22;  // entries of a dense operand

/// A polynomial in x and z = y - c: part[n] is the coefficient of z^n, in x alone.
struct ZSeries {
    poly* part;
    int32_t count;
};
/// x = g h modulo z^n.
struct ModHensel {
    WordField f;
    poly x, y;
    polypt pt;
    uint32_t c;
    HenselPair pair;  // modulo z
    ZSeries operand;  // x
    ZSeries g, h, candidate;
    uint32_t* lc;  // gcd of the leading coefficients, by powers of z
    int32_t lc_degree;
    int32_t steps;  // powers of z that any candidate needs
};
}  // namespace

// a(z) := a(z + c), degrees 0..degree, by repeated synthetic division.
static void taylor_shift(const WordField& f, uint32_t* a, int32_t degree, uint32_t c) {
    if (c == 0) return;
    for (int32_t low = 0; low < degree; low++) {
        poll_interrupt();
        for (int32_t i = degree - 1; i >= low; i--) a[i] = wf_add(f, a[i], wf_mul(f, c, a[i + 1]));
    }
}

static int32_t degree_level_two(const polynode* p) {
    int32_t degree = k_no_degree;
    max_degree(p, 2, &degree);
    return maxx(degree, 0);
}

static bool two_variables(const polynode* p) {
    for (; p != nullptr; p = p->next) {
        if (p->numb) continue;
        for (const polynode* c = p->pcoef; c != nullptr; c = c->next)
            if (!c->numb && !is_number(c->pcoef)) return false;
    }
    return true;
}

// ---- from trees to series and back ----

// The powers of z in the coefficient of one term of p, a[0..degree].
static void shifted_coefficient(const WordField& f, const polynode* term, int32_t degree, uint32_t c,
                                uint32_t* a) {
    std::fill(a, a + degree + 1, 0);
    const polynode* p = term->numb ? term : term->pcoef;
    if (is_number(p)) {
        a[0] = static_cast<uint32_t>(p->ncoef->lint);
        return;
    }
    fill_poly_array(p, reinterpret_cast<int32_t*>(a));
    taylor_shift(f, a, p->exp, c);
}

static ZSeries zero_series(int32_t count) {
    ZSeries s = {scratch_array<poly>(count), count};
    for (int32_t n = 0; n < count; n++) s.part[n] = nullptr;
    return s;
}

static void free_series(ZSeries* s) {
    for (int32_t n = 0; n < s->count; n++) free_poly(&s->part[n]);
    s->count = 0;
}

static poly word_leaf(uint32_t v) {
    poly leaf = zero_leaf();
    leaf->ncoef->lint = static_cast<int32_t>(v);
    return leaf;
}

// p as a series with `count` parts, which are all there are.
static ZSeries series_of(const WordField& f, poly p, int32_t count, uint32_t c) {
    ZSeries s = zero_series(count);
    ScratchMark mark = scratch_mark();
    auto* tail = scratch_array<polyptrr>(count);
    auto* a = scratch_array<uint32_t>(count);
    for (int32_t n = 0; n < count; n++) tail[n] = &s.part[n];
    for (poly t = p; t != nullptr; t = t->next) {
        poll_interrupt();
        shifted_coefficient(f, t, count - 1, c, a);
        for (int32_t n = 0; n < count; n++) {
            if (a[n] == 0) continue;
            *tail[n] = chain_node(t->exp, word_leaf(a[n]));
            tail[n] = &(*tail[n])->next;
            *tail[n] = nullptr;
        }
    }
    for (int32_t n = 0; n < count; n++)
        if (s.part[n] == nullptr) s.part[n] = zero_leaf();
    scratch_release(mark);
    return s;
}

// The polynomial in x and y of the first n parts.
static poly series_value(const WordField& f, const ZSeries& s, int32_t n, uint32_t c) {
    ScratchMark mark = scratch_mark();
    poly* at = scratch_array<poly>(n);
    auto* a = scratch_array<uint32_t>(n);
    uint32_t back = wf_neg(f, c);
    int32_t top = 0;
    for (int32_t i = 0; i < n; i++) {
        at[i] = s.part[i];
        if (!poly_iszero(at[i])) top = maxx(top, at[i]->exp);
    }
    poly r = nullptr;
    polyptrr tail = &r;
    for (int32_t e = top; e >= 0; e--) {
        for (int32_t i = 0; i < n; i++) {
            a[i] = 0;
            if (at[i] == nullptr || at[i]->exp != e) continue;
            a[i] = static_cast<uint32_t>((at[i]->numb ? at[i] : at[i]->pcoef)->ncoef->lint);
            at[i] = at[i]->next;
        }
        int32_t degree = wf_degree(a, n - 1);
        if (degree < 0) continue;
        taylor_shift(f, a, degree, back);
        poly coefficient = nullptr;
        array_to_poly(reinterpret_cast<int32_t*>(a), degree, &coefficient);
        *tail = chain_node(e, coefficient);
        tail = &(*tail)->next;
    }
    *tail = nullptr;
    scratch_release(mark);
    return r != nullptr ? r : zero_leaf();
}

// ---- points ----

// The value at c of the coefficient of a term; a number stands for itself.
static uint32_t coefficient_at(const WordField& f, const polynode* term, uint32_t c) {
    const polynode* p = term->numb ? term : term->pcoef;
    uint32_t v = 0;
    for (; p != nullptr; p = p->next) {
        v = wf_add(f, v, static_cast<uint32_t>((p->numb ? p : p->pcoef)->ncoef->lint));
        int32_t gap = p->exp - (p->next != nullptr ? p->next->exp : 0);
        if (gap > 0) v = wf_mul(f, v, wf_power(f, c, static_cast<uint64_t>(gap)));
    }
    return v;
}

static bool last_node_becomes_zero(const WordField& f, poly p, uint32_t c) {
    return coefficient_at(f, lastnode(p), c) == 0;
}

// The next point where both leading coefficients stay, and one of the lowest ones: both gone would give the
// images a factor x. False: none left.
static bool next_point(const ModHensel& m, int64_t* c) {
    for (;;) {
        poll_interrupt();
        *c += 1 + wf_random_below(2);
        if (*c >= m.f.p) return false;
        auto at = static_cast<uint32_t>(*c);
        if (coefficient_at(m.f, m.x, at) != 0 && coefficient_at(m.f, m.y, at) != 0 &&
            !(last_node_becomes_zero(m.f, m.x, at) && last_node_becomes_zero(m.f, m.y, at)))
            return true;
    }
}

static poly image_at(const WordField& f, poly p, uint32_t c) {
    poly r = nullptr;
    polyptrr tail = &r;
    for (poly t = p; t != nullptr; t = t->next) {
        uint32_t v = coefficient_at(f, t, c);
        if (v == 0) continue;
        *tail = chain_node(t->exp, word_leaf(v));
        tail = &(*tail)->next;
    }
    *tail = nullptr;
    return r != nullptr ? r : zero_leaf();
}

// ---- lifting ----

// The part of z^n of a b, where the parts from `known` on of either factor count as 0.
static poly product_part(const ZSeries& a, const ZSeries& b, int32_t n, int32_t known) {
    poly sum = zero_leaf(), t = nullptr;
    for (int32_t i = maxx(0, n - known + 1); i <= n && i < known; i++) {
        poly_mult(a.part[i], b.part[n - i], &t, nullptr);
        best_poly_add(sum, t, &sum);
        t = nullptr;
    }
    return sum;
}

// The parts of z^n of g and h.
static void lift_once(ModHensel& m, int32_t n) {
    poly e = product_part(m.g, m.h, n, n);
    if (n < m.operand.count)
        poly_sub(m.operand.part[n], e, &e);
    else
        poly_inplace(e);
    solve_hensel_step(m.pair, e, &m.g.part[n], &m.h.part[n]);
    free_poly(&e);
}

// The part of z^n of the candidate lc g. True: it is 0.
static bool next_part(ModHensel& m, int32_t n) {
    poly sum = zero_leaf();
    for (int32_t j = 0; j <= m.lc_degree && j <= n; j++) {
        if (m.lc[j] == 0) continue;
        poly lc = word_leaf(m.lc[j]), t = nullptr;
        poly_mult(m.g.part[n - j], lc, &t, nullptr);
        free_poly(&lc);
        best_poly_add(sum, t, &sum);
    }
    m.candidate.part[n] = sum;
    return poly_iszero(sum);
}

// The candidate of n parts, if its primitive part divides.
static bool accept_candidate(const ModHensel& m, int32_t n, polyptrr r) {
    poly g = series_value(m.f, m.candidate, n, m.c);
    poly c = content_fresh(g, m.pt);
    g = without_content(g, c, m.pt);
    free_poly(&c);
    if (!testarg(m.x, m.y, g, m.pt)) {
        free_poly(&g);
        return false;
    }
    free_poly(r);
    *r = g;
    return true;
}

static bool lift_to_the_end(ModHensel& m, polyptrr r) {
    poly_assign(m.pair.g, &m.g.part[0]);
    poly_assign(m.pair.h, &m.h.part[0]);
    next_part(m, 0);
    for (int32_t n = 1; n < m.steps; n++) {
        poll_interrupt();
        lift_once(m, n);
        if (next_part(m, n) && n > m.lc_degree && accept_candidate(m, n, r)) return true;
    }
    return false;
}

// Series and lifting for a pair that stands open.
static bool lift_pair(ModHensel& m, poly lc, polyptrr r) {
    int32_t degree = degree_level_two(m.x), room = is_number(lc) ? 0 : lc->exp;
    m.lc_degree = room;
    m.lc = scratch_array<uint32_t>(int64_t{room} + 1);
    polynode whole = {0, 0, nullptr, {}};
    whole.pcoef = lc;
    shifted_coefficient(m.f, &whole, room, m.c, m.lc);
    m.operand = series_of(m.f, m.x, degree + 1, m.c);
    m.steps = degree + room + 2;
    m.g = zero_series(m.steps);
    m.h = zero_series(m.steps);
    m.candidate = zero_series(m.steps);
    bool found = lift_to_the_end(m, r);
    for (ZSeries* s : {&m.operand, &m.g, &m.h, &m.candidate}) free_series(s);
    return found;
}

// One image at the next point after *c, lifted. True: *r is the gcd.
static bool sub_mod_hensel_2(poly x, poly y, poly lc, polyptrr r, polypt pt, int64_t* c) {
    ModHensel m = {};
    m.f = word_field_ring();
    m.x = x;
    m.y = y;
    m.pt = pt;
    if (!next_point(m, c)) return false;
    m.c = static_cast<uint32_t>(*c);
    poly xi = image_at(m.f, x, m.c), yi = image_at(m.f, y, m.c), g = nullptr;
    basic_poly_gcd(xi, yi, &g, 1, pt);
    bool found = false;
    if (is_number(g)) {  // the point keeps the leading coefficients
        poly_set(1, r);
        found = true;
    } else if (g->exp == x->exp && trial_poly_divide_noq(y, x, pt, 1, 1)) {
        poly_assign(x, r);
        found = true;
    } else if (g->exp < x->exp && open_hensel_pair(xi, g, &m.pair)) {
        ScratchMark mark = scratch_mark();
        found = lift_pair(m, lc, r);
        scratch_release(mark);
        close_hensel_pair(&m.pair);
    }
    free_poly(&xi);
    free_poly(&yi);
    free_poly(&g);
    return found;
}

static bool fits(poly p) {
    return !is_number(p) && p->exp > 0 && two_variables(p) &&
           (int64_t{p->exp} + 1) * (int64_t{degree_level_two(p)} + 1) <= k_box;
}

// Up to three points; the operand of smaller degree is lifted.
static bool try_points(poly x, poly y, polyptrr r, polypt pt) {
    if (x->exp > y->exp) std::swap(x, y);
    poly lc = nullptr;
    polygcd(x->pcoef, y->pcoef, &lc, 0, 1, 1, pt->next, 1, 1, 1);
    int64_t c = -1;
    bool found = false;
    for (int32_t tries = 0; tries < k_points_tried && !found && c < modulus; tries++) {
        found = sub_mod_hensel_2(x, y, lc, r, pt, &c);
        c += wf_random_below(static_cast<uint32_t>(modulus) / 4 + 1);
    }
    free_poly(&lc);
    return found;
}

// False, *q nil: y does not divide x.
static bool quotient(poly x, poly y, polyptrr q, polypt pt) {
    boolean failed = 0;
    gen_poly_divide(x, y, q, pt, &failed);
    return !failed;
}

// x = part * rest with `part` square-free and divisible by every factor of x; rest is the gcd of x and its
// derivative. The characteristic exceeds the degree.
static bool square_free_part(poly x, polyptrr part, polyptrr rest, polypt pt) {
    poly derivative = nullptr;
    poly_differentiate(x, &derivative, 1);
    polygcd(x, derivative, rest, 0, 1, 1, pt, 1, 1, 1);
    free_poly(&derivative);
    return quotient(x, *rest, part, pt);
}

// Multiple factors of x never make a coprime pair. The factors that x and y share, each once, are found with
// the square-free part of x; what is left of x and y may share them again.
static bool by_square_free_parts(poly x, poly y, polyptrr r, polypt pt) {
    if (finf || modulus <= x->exp) return false;  // a derivative may vanish
    poly u = nullptr, v = nullptr, product = nullptr;
    poly_assign(x, &u);
    poly_assign(y, &v);
    poly_set(1, &product);
    bool found = true;
    for (bool first = true; found && u->exp > 0 && v->exp > 0; first = false) {
        poll_interrupt();
        poly part = nullptr, rest = nullptr, g = nullptr, q = nullptr;
        found = square_free_part(u, &part, &rest, pt) && !(first && is_number(rest)) &&
                try_points(part, v, &g, pt);
        bool more = found && !is_number(g);
        if (more) {
            poly_mult(product, g, &product, pt);
            found = quotient(v, g, &q, pt);
            if (found) std::swap(v, q);
        }
        free_poly(&q);
        free_poly(&u);
        u = rest;
        free_poly(&part);
        free_poly(&g);
        if (!more) break;
    }
    free_poly(&u);
    free_poly(&v);
    if (found) {
        free_poly(r);
        *r = product;
    } else {
        free_poly(&product);
    }
    return found;
}

boolean mod_hensel_2(poly x, poly y, polyptrr r, polypt pt) {
    if (!fits(x) || !fits(y)) return 0;
    return try_points(x, y, r, pt) || by_square_free_parts(x, y, r, pt);
}
}  // namespace tolvex
