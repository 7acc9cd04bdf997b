#include "tests/unit/gcd/remainder_gcd.h"

#include "gcd/word_gcd.h"
#include "poly/div_internal.h"
#include "poly/div_pseudo.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
namespace tolvex::test {
static poly power_of(poly base, int32_t e, polypt pt) {
    poly p = nullptr;
    poly_assign(base, &p);
    if (e == 0)
        poly_set(1, &p);
    else
        compute_power(&p, e, pt);
    return p;
}

// The leading coefficient of p as a polynomial of p's own level.
static poly padded_lead(poly p) {
    poly t = nullptr;
    append_term(&t, 0, coefficient_copy(p));
    return t;
}

// h of the next step: h for delta 0, g^delta / h^(delta - 1) otherwise.
static void next_h(poly g, polyptrr h, int32_t delta, polypt pt) {
    if (delta == 0) return;
    poly power = power_of(g, delta, pt);
    if (delta > 1) {
        poly below = power_of(*h, delta - 1, pt), q = nullptr;
        if (divide_trees(power, below, &q, pt)) {
            free_poly(&power);
            power = q;
        }
        free_poly(&below);
    }
    free_poly(h);
    *h = power;
}

// Collins and Brown; Knuth, The Art of Computer Programming 2, 4.6.1, algorithm C. The divisor of a remainder
// is g h^delta with the old g and h; the pseudo-remainder carries all delta + 1 factors, which makes it
// exact.
poly prs_gcd(poly u, poly v, polypt pt) {
    poly a = nullptr, b = nullptr, g = nullptr, h = nullptr;
    if (u->exp < v->exp) {
        poly t = u;
        u = v;
        v = t;
    }
    poly_assign(u, &a);
    poly_assign(v, &b);
    poly_set(1, &g);
    poly_set(1, &h);
    bool coprime = false;
    for (;;) {
        int32_t delta = a->exp - b->exp;
        poly r = nullptr, divisor = nullptr, q = nullptr;
        pseudo_div_no_q(a, b, &r, pt, 1);
        if (poly_iszero(r)) {
            free_poly(&r);
            break;
        }
        coprime = is_number(r) || r->exp == 0;
        if (coprime) {
            free_poly(&r);
            break;
        }
        divisor = power_of(h, delta, pt);
        poly_mult(divisor, g, &divisor, pt);
        if (divide_trees(r, divisor, &q, pt)) {
            free_poly(&r);
            r = q;
        } else {  // only among zero divisors
            poly c = content_fresh(r, pt);
            r = without_content(r, c, pt);
            free_poly(&c);
        }
        free_poly(&divisor);
        free_poly(&a);
        a = b;
        b = r;
        free_poly(&g);
        g = padded_lead(a);
        next_h(g, &h, delta, pt);
    }
    free_poly(&a);
    free_poly(&g);
    free_poly(&h);
    if (coprime) {
        free_poly(&b);
        poly_set(1, &b);
        return b;
    }
    poly c = content_fresh(b, pt);
    b = without_content(b, c, pt);
    free_poly(&c);
    return b;
}
}  // namespace tolvex::test
