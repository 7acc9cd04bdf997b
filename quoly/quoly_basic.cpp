#include "quoly/quoly_basic.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_sign.h"
#include "numbers/shape_num.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "quoly/quoly_internal.h"
namespace tolvex {
/// A number that is right in either mode: its chain and its word.
static quoly make_constant(const number& n) {
    quoly q;
    init_quoly_node(&q);
    spec_num_assign(&n, q->ncoef);
    q->ncoef->lint = n.lint;
    return q;
}

void init_quoly_constants() {
    if (quol_num_0 != nullptr) return;
    quol_num_0 = make_constant(number_0);
    quol_num_1 = make_constant(number_1);
}

void quoly_set(int32_t n, quolyptr q) { setvalue(n, numb_target(q)); }

// A source inside the old value of *q is still read here: the old value goes last.
void scalar_to_quoly(const number* n, quolyptr q) {
    if (*q != nullptr && (*q)->numb) {
        num_assign(n, numb_target(q));
        return;
    }
    imptr copy;
    newimag(&copy);
    num_assign(n, copy);
    receive_number(q, copy);
}

/// *q := the fraction of the two trees, which are used up.
static void receive_fraction(quolyptr q, poly numer, poly denom, boolean rat) {
    quoly r = quoly_target(q);
    r->numer = numer;
    r->denom = denom;
    r->rat = rat;
}

void quoly_assign(const quolynode* p, quolyptr q) {
    if (p == *q) return;
    if (p->numb) {
        scalar_to_quoly(p->ncoef, q);
        return;
    }
    poly numer = nullptr, denom = nullptr;
    poly_assign(p->numer, &numer);
    if (p->denom != nullptr) poly_assign(p->denom, &denom);
    receive_fraction(q, numer, denom, p->rat);
}

void quoly_assign_polled(const quolynode* p, quolyptr q) {
    if (p == *q) return;
    if (p->numb) {
        imptr copy;
        newimag(&copy);
        num_assign_polled(p->ncoef, copy);
        receive_number(q, copy);
        return;
    }
    poly numer = nullptr, denom = nullptr;
    poly_assign_polled(p->numer, &numer);
    if (p->denom != nullptr) poly_assign_polled(p->denom, &denom);
    receive_fraction(q, numer, denom, p->rat);
}

void quoly_inplace(quoly q) {
    q->word = 0;
    if (q->numb) {
        in_place_neg(q->ncoef);
    } else {
        poly_inplace(q->numer);
    }
}

void quoly_makeneg(const quolynode* p, quolyptr q) {
    quoly_assign(p, q);
    quoly_inplace(*q);
}

void quoly_abs(quoly q) {
    q->word = 0;
    if (q->numb) {
        abs_value(q->ncoef);
    } else {
        poly_abs(q->numer);
    }
}

/// True if a = b, or a = -b with `negated`.
static bool same_polys(const polynode* a, const polynode* b, bool negated) {
    return negated ? poly_neg(a, b) : poly_equal(a, b);
}

/// Compares p with q or -q. A quotient whose gcd the user vouched for, and fractions over a ring with zero
/// divisors, have several forms; cross products decide those.
static bool same_values(const quolynode* p, const quolynode* q, bool negated) {
    if (p->numb && q->numb) return negated ? negtive(p->ncoef, q->ncoef) : equal(p->ncoef, q->ncoef);
    QuolyView a(p), b(q);
    if (a.denom == nullptr && b.denom == nullptr) return same_polys(a.numer, b.numer, negated);
    if (a.denom != nullptr && b.denom != nullptr && poly_equal(a.denom, b.denom))
        return same_polys(a.numer, b.numer, negated);
    if (p->rat || q->rat)  // rational numbers have one form
        if (is_rational(p) && is_rational(q)) return false;
    poly left = nullptr, right = nullptr;
    if (b.denom == nullptr) {
        poly_assign(a.numer, &left);
    } else {
        poly_mult(a.numer, b.denom, &left, polynames);
    }
    if (a.denom == nullptr) {
        poly_assign(b.numer, &right);
    } else {
        poly_mult(b.numer, a.denom, &right, polynames);
    }
    bool same = same_polys(left, right, negated);
    free_poly(&left);
    free_poly(&right);
    return same;
}

boolean quoly_equal(const quolynode* p, const quolynode* q) { return p == q || same_values(p, q, false); }
boolean quoly_negtive(const quolynode* p, const quolynode* q) { return same_values(p, q, true); }
boolean quoly_iszero(const quolynode* q) { return q->numb ? iszero(q->ncoef) : poly_iszero(q->numer); }

void quoly_consume(quolyptr q, polyptrr p) {
    poly n;
    if ((*q)->numb) {
        newpoly(&n);
        n->numb = 1;
        n->exp = 0;
        n->next = nullptr;
        n->ncoef = (*q)->ncoef;
    } else {
        n = (*q)->numer;
        free_poly(&(*q)->denom);
    }
    free_quoly_record(q);
    free_poly(p);
    *p = n;
}

void polynum_to_quoly(quoly q) {
    poly leaf = q->numer;
    imptr n = leaf->ncoef;
    free_node(leaf);
    q->ncoef = n;
    q->numb = 1;
    q->rat = 0;
    q->denom = nullptr;
}

void poly_to_quoly(polyptrr p, quolyptr q) {
    poly n = *p;
    *p = nullptr;
    receive_poly(q, n);
}

int32_t big_quoly_convert_to_int(const quolynode* q) {
    return q->numb ? convert_to_int(q->ncoef) : k_no_word;
}
}  // namespace tolvex
