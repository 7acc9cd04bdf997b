#include "tests/unit/gcd/driver_support.h"

#include "poly/poly_vars.h"
#include "poly/size_estimates.h"

#include <algorithm>
namespace tolvex::test {
// ---- a gcd by another method ---------------------------------------------------------------------------

static poly coefficient(const polynode* t) {
    poly c = nullptr;
    if (t->numb) {
        node_assign(t, &c);
        c->exp = 0;
    } else {
        poly_assign(t->pcoef, &c);
    }
    return c;
}

static poly reference_content(poly u, polypt pt) {
    poly g = coefficient(u);
    gcd_normal_form(&g);
    for (poly t = u->next; t != nullptr && !poly_eq_1(g); t = t->next) {
        poly c = coefficient(t), h = reference_gcd(g, c, pt->next);
        free_poly(&g), free_poly(&c);
        g = h;
    }
    return g;
}

static poly without(poly u, poly c, polypt pt) {
    poly q = nullptr, padded = copy_of(c);
    boolean failed = 0;
    add_pad(&padded, 1);
    gen_poly_divide(u, padded, &q, pt, &failed);
    EXPECT_FALSE(failed);
    free_poly(&padded);
    return q;
}

static poly primitive(poly u, polypt pt) {
    poly c = reference_content(u, pt), q = without(u, c, pt);
    free_poly(&c);
    return q;
}

poly reference_gcd(poly u, poly v, polypt pt) {
    poly g = nullptr;
    if (is_number(u) || is_number(v)) {
        poly_set(1, &g);
        common_content(is_number(u) ? u : v, is_number(u) ? v : u, g->ncoef);
        return g;
    }
    poly cu = reference_content(u, pt), cv = reference_content(v, pt);
    poly c = reference_gcd(cu, cv, pt->next);
    add_pad(&c, 1);
    poly a = without(u, cu, pt), b = without(v, cv, pt);
    free_poly(&cu), free_poly(&cv);
    if (a->exp < b->exp) std::swap(a, b);
    while (!is_number(b) && b->exp > 0) {
        poly r = nullptr;
        pseudo_div_no_q(a, b, &r, pt, 0);
        free_poly(&a);
        a = b;
        b = poly_iszero(r) || is_number(r) ? copy_of(r) : primitive(r, pt);
        free_poly(&r);
    }
    if (!poly_iszero(b)) poly_set(1, &a);
    free_poly(&b);
    poly_mult(a, c, &a, pt);
    free_poly(&c);
    gcd_normal_form(&a);
    return a;
}

// ---- problems ------------------------------------------------------------------------------------------

const char* family_name(Family f) {
    static const char* const names[] = {"small",   "sparse",    "dense",  "missing", "divides",
                                        "coprime", "deep",      "1 term", "gaps",    "powers",
                                        "levels",  "associate", "long",   "many"};
    return names[static_cast<int>(f)];
}

static int64_t random_coefficient(Rng& rng) {
    return modularmode             ? random_int(rng, 1, modulus - 1)
           : random_int(rng, 0, 1) ? random_int(rng, 1, 50)
                                   : -random_int(rng, 1, 50);
}

// A polynomial of `terms` terms in the levels of a mask (bit 0: level 1), not 0.
static poly part(Rng& rng, uint32_t mask, int32_t terms, int32_t max_exp) {
    poly p = nullptr;
    poly_set(0, &p);
    for (int i = 0; i < terms; i++) {
        int32_t e[12] = {};
        for (int k = 0; k < 12; k++)
            if (mask >> k & 1) e[k] = random_int(rng, 0, max_exp);
        best_poly_add(p, term_poly(random_coefficient(rng), e, 12), &p);
    }
    if (poly_iszero(p)) poly_set(1, &p);
    return p;
}

static void combine(poly a, poly b, poly c, Problem* p) {
    poly_mult(a, c, &p->u, polynames);
    poly_mult(b, c, &p->v, polynames);
    p->c.p = c;
    free_poly(&a), free_poly(&b);
}

static void times_part(Rng& rng, polyptrr p, uint32_t mask, int32_t terms, int32_t max_exp) {
    poly f = part(rng, mask, terms, max_exp);
    poly_mult(*p, f, p, polynames);
    free_poly(&f);
}

// x1 := x1^k.
static void spread(polyptrr p, int32_t k) {
    if (is_number(*p)) return;
    for (poly t = *p; t != nullptr; t = t->next) t->exp *= k;
}

static void make_shapes(Family f, Rng& rng, poly* a, poly* b, poly* c) {
    int32_t levels = random_int(rng, 1, 4);
    uint32_t all = (1u << levels) - 1;
    int32_t terms = random_int(rng, 2, 5), top = random_int(rng, 1, 3);
    switch (f) {
    case Family::sparse:
        terms = random_int(rng, 2, 4);
        top = levels == 1 ? 40 : levels == 2 ? 7 : 3;
        break;
    case Family::dense:
        levels = random_int(rng, 1, 2);
        all = (1u << levels) - 1;
        terms = 12;
        top = 3;
        break;
    case Family::many_variables:
        all = 0xff;
        terms = random_int(rng, 2, 4);
        top = 1;
        break;
    default:
        break;
    }
    uint32_t ma = all, mb = all, mc = all;
    if (f == Family::missing) ma = rng() & 63, mb = rng() & 63, mc = ma & mb;
    if (f == Family::deep_content) mc = all << 1;
    *a = part(rng, ma, terms, top);
    *b = part(rng, mb, terms, top);
    *c = part(rng, mc, terms, top);
}

void make_problem(Family f, Rng& rng, Problem* p) {
    poly a, b, c;
    make_shapes(f, rng, &a, &b, &c);
    switch (f) {
    case Family::divides:
        poly_set(1, &b);
        break;
    case Family::coprime:
        poly_set(1, &c);
        break;
    case Family::one_term:
        free_poly(&b);
        b = part(rng, rng() & 15, 1, 4);
        free_poly(&c);
        c = part(rng, rng() & 15, 1, 4);
        break;
    case Family::gaps: {
        int32_t k = random_int(rng, 2, 5);
        spread(&a, k), spread(&b, k), spread(&c, k);
        break;
    }
    case Family::powers:
        times_part(rng, &a, 1, 1, 4);
        times_part(rng, &b, 1, 1, 4);
        times_part(rng, &c, 1, 1, 4);
        break;
    case Family::level_contents:
        for (uint32_t mask : {1u, 2u, 3u, 7u, 12u}) {
            if (random_int(rng, 0, 1)) times_part(rng, &a, mask, 2, 2);
            if (random_int(rng, 0, 1)) times_part(rng, &b, mask, 2, 2);
            if (random_int(rng, 0, 1)) times_part(rng, &c, mask, 2, 2);
        }
        break;
    case Family::associated:
        poly_set(static_cast<int32_t>(random_int(rng, 1, 6)), &a);
        poly_set(static_cast<int32_t>(random_int(rng, 1, 6)), &b);
        if (modularmode) {
            a->ncoef->lint = random_int(rng, 1, modulus - 1);
            b->ncoef->lint = random_int(rng, 1, modulus - 1);
        }
        break;
    case Family::long_numbers: {
        PolyGuard n;
        for (poly* q : {&a, &b, &c}) {
            n.p = random_nonzero_poly(rng, 1, 1, 0, Coefs::huge);
            if (is_number(n)) poly_mult(*q, n, q, polynames);
            free_poly(&n.p);
        }
        break;
    }
    default:
        break;
    }
    combine(a, b, c, p);
    int32_t variables = driver_poly_vars(p->u) + driver_poly_vars(p->v);
    int64_t terms = poly_terms(p->u) + poly_terms(p->v);
    int32_t degrees = sum_degrees(p->u, 1, 1000) + sum_degrees(p->v, 1, 1000);
    p->modest = variables <= 2 || (variables <= 4 && degrees < 20) || degrees < 12;
    p->small =
        variables <= 2 || (variables <= 4 && terms < 50 && degrees < 20) || (terms < 20 && degrees < 16);
}
}  // namespace tolvex::test
