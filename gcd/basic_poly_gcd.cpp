#include "gcd/emgcd.h"
#include "gcd/engines.h"
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "poly/dense_gcd.h"
#include "poly/div_field.h"
#include "poly/poly_basic.h"
#include "poly/poly_monic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
// Sum of degrees from which the half-gcd is taken where arrays are out of reach.
static constexpr int32_t k_half_gcd_degrees = 20;

static poly power_of_variable(int32_t e) {
    poly leaf = nullptr;
    poly_set(1, &leaf);
    if (e == 0) return leaf;
    poly p;
    new_term(&p, e, leaf);
    return p;
}

void monomial2(poly u, poly v, polyptrr p) {
    poly g = power_of_variable(minn(u->exp, lastnode(v)->exp));
    free_poly(p);
    *p = g;
}

void fastest_poly_gcd(poly n, poly m, polyptrr p, polypt pt) {
    if (n->exp >= fast_gcd_size) {
        emgcd_poly(n, m, p, pt, 1);
        return;
    }
    ScratchMark mark = scratch_mark();
    auto* x = scratch_array<int32_t>(int64_t{n->exp} + 1);
    auto* y = scratch_array<int32_t>(int64_t{m->exp} + 1);
    fill_poly_array(n, x);
    fill_poly_array(m, y);
    int32_t *g, degree;
    poly result = nullptr;
    if (dense_gcd(x, n->exp, y, m->exp, &g, &degree))
        array_to_poly(g, degree, &result);
    else
        poly_set(1, &result);
    scratch_release(mark);
    free_poly(p);
    *p = result;
}

// Euclid's algorithm on lists. n and m are the caller's; every remainder is private.
static poly classical_gcd(poly n, poly m) {
    int32_t steps = 0;
    for (;;) {
        poll_interrupt();
        poly r = nullptr;
        poly_div_no_q(n, m, &r);
        if (steps > 1) free_poly(&n);
        steps++;
        n = m;
        m = r;
        if (!is_number(r)) continue;
        poly g = nullptr;
        if (!poly_iszero(r)) {
            poly_set(1, &g);
            if (steps > 1) free_poly(&n);
        } else if (steps > 1) {
            g = n;
        } else {
            poly_assign(n, &g);
        }
        free_poly(&r);
        return g;
    }
}

// Is the gcd known? It is taken as one that may rest on a check still due. Otherwise *slot, unless nil, stays
// open for the result.
static bool look_up(poly n, poly m, polyptrr p, poly* slot, polypt pt) {
    *slot = nullptr;
    if (lookupgcd <= 0 || int64_t{n->exp} + m->exp <= small_gcd_stash_cut || m->exp < 2 ||
        !gcd_stash_has_room())
        return false;
    poly u = nullptr, v = nullptr, known;
    poly_assign(n, &u);
    poly_assign(m, &v);
    monic_poly(&u);
    monic_poly(&v);
    gcdhash(u, v, slot, pt);
    free_poly(&u);
    free_poly(&v);
    known = (*slot)->next;
    if (known == nullptr) {
        polygcd_stack_depth++;
        return false;
    }
    *slot = nullptr;
    poly_assign(known, p);
    gcd_unproved = 1;
    return true;
}

static void store(poly slot, polyptrr p) {
    if (slot == nullptr) return;
    if (!is_number(*p)) monic_poly(p);
    gcd_stash_store(slot, *p);
    if (--polygcd_stack_depth < 0) {
        printf("negative polygcd_stack_depth 2\n");
        polygcd_stack_depth = 0;
    }
}

void basic_poly_gcd(poly n, poly m, polyptrr p, boolean need_monic, polypt pt) {
    if (is_number(n) || is_number(m)) tolvex_error(" number in basic_poly_gcd ");
    if (n->exp < m->exp) {
        poly t = n;
        n = m;
        m = t;
    }
    if (n->next == nullptr) {
        monomial2(n, m, p);
        return;
    }
    if (m->next == nullptr) {
        monomial2(m, n, p);
        return;
    }
    poly slot;
    if (look_up(n, m, p, &slot, pt)) return;
    if (n->exp < fast_gcd_size) {
        fastest_poly_gcd(n, m, p, pt);
    } else if (int64_t{n->exp} + m->exp >= k_half_gcd_degrees) {
        emgcd_poly(n, m, p, pt, 1);
    } else {
        poly g = classical_gcd(n, m);
        free_poly(p);
        *p = g;
    }
    if (need_monic && !is_number(*p)) monic_poly(p);
    store(slot, p);
}
}  // namespace tolvex
