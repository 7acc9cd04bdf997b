// A variable taken out of its level: coefficients in it, and substitutions that move it.
#include "poly/div_internal.h"
#include "poly/evaluate.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- coefficients --------------------------------------------------------------------------------------

static poly reversed(poly p) {
    poly r = nullptr;
    while (p != nullptr) {
        poly next = p->next;
        p->next = r;
        r = p;
        p = next;
    }
    return r;
}

/// Puts the term x^exp c in front of the chain *front; c is used up.
static void put_in_front(polyptrr front, int32_t exp, poly c) {
    poly rest = *front;
    append_term(front, exp, c);
    (*front)->next = rest;
}

/// Adds x^exp times each coefficient of the chain split to the chain of buckets, both with falling exponents.
/// A bucket holds its terms last first. split is used up.
static void sort_in(polyptrr buckets, int32_t exp, poly split) {
    polyptrr at = buckets;
    while (split != nullptr) {
        poly next = split->next, c = split->pcoef;
        while (*at != nullptr && (*at)->exp > split->exp) at = &(*at)->next;
        if (*at != nullptr && (*at)->exp == split->exp) {
            free_node(split);
        } else {
            split->next = *at;
            split->pcoef = nullptr;
            *at = split;
        }
        put_in_front(&(*at)->pcoef, exp, c);
        split = next;
    }
}

/// A node with this exponent over c, which may be a leaf at exponent 0 as well.
static poly bucket_of(int32_t exp, poly c) {
    poly b = nullptr;
    new_term(&b, exp, c);
    return b;
}

/// The parts of split_by_level; here every node stands over its part, numbers at exponent 0 as well.
static poly split_parts(const polynode* p, int32_t lev) {
    poly buckets = nullptr;
    if (lev == 1) {
        polyptrr tail = &buckets;
        for (; p != nullptr; p = p->next, tail = &(*tail)->next) {
            *tail = bucket_of(p->exp, coefficient_copy(p));
            add_pad(&(*tail)->pcoef, 1);
        }
        return buckets;
    }
    for (; p != nullptr; p = p->next) {
        poll_interrupt();
        bool number = p->numb || is_number(p->pcoef);
        sort_in(&buckets, p->exp,
                number ? bucket_of(0, coefficient_copy(p)) : split_parts(p->pcoef, lev - 1));
    }
    for (poly b = buckets; b != nullptr; b = b->next) b->pcoef = reversed(b->pcoef);
    return buckets;
}

poly split_by_level(const polynode* p, int32_t lev) {
    poly parts = split_parts(p, lev);
    fix_top(&parts);
    return parts;
}

void extract_coef(poly v, polyptrr s, int32_t k, int32_t e) {
    poly c = nullptr;
    if (is_number(v)) {
        c = zero_leaf();
        if (e == 0) poly_assign(v, &c);
    } else if (k == 0) {
        while (v != nullptr && v->exp > e) v = v->next;
        c = v != nullptr && v->exp == e ? coefficient_copy(v) : zero_leaf();
        add_pad(&c, 1);
    } else {
        polyptrr tail = &c;
        for (; v != nullptr; v = v->next) {
            poly below = nullptr;
            if (v->numb) {
                if (e == 0) {
                    node_assign(v, tail);
                    tail = &(*tail)->next;
                }
                continue;
            }
            extract_coef(v->pcoef, &below, k - 1, e);
            if (poly_iszero(below))
                free_poly(&below);
            else
                tail = append_term(tail, v->exp, below);
        }
        fix_top(&c);
    }
    free_poly(s);
    *s = c;
}

// ---- substitutions -------------------------------------------------------------------------------------

static bool is_pad(const polynode* p) { return p->exp == 0 && !p->numb && p->next == nullptr; }

/// The relative level of the variable that y is; 0 if it is none.
static int32_t level_of_variable(const polynode* y) {
    int32_t lev = 1;
    for (; is_pad(y); y = y->pcoef) lev++;
    return !y->numb && y->exp == 1 && y->next == nullptr && poly_eq_1(y->pcoef) ? lev : 0;
}

/// True if no exponent other than 0 stands at relative level lev of p.
static bool lacks_level(const polynode* p, int32_t lev) {
    if (is_number(p)) return true;
    if (lev == 1) return is_pad(p);
    for (; p != nullptr; p = p->next)
        if (!p->numb && !lacks_level(p->pcoef, lev - 1)) return false;
    return true;
}

/// p z^e, where z is the variable of relative level lev, which p lacks; p is used up.
static poly shifted(poly p, int32_t lev, int32_t e) {
    if (e == 0) return p;
    if (is_number(p)) {
        new_term(&p, e, p);
        add_pad(&p, lev - 1);
        return p;
    }
    if (lev == 1) {
        p->exp = e;
        return p;
    }
    poly head = nullptr;
    polyptrr tail = &head;
    while (p != nullptr) {
        poly next = p->next, c = p;
        int32_t exp = p->exp;
        p->next = nullptr;
        if (!p->numb) {
            c = p->pcoef;
            free_node(p);
        }
        tail = append_term(tail, exp, shifted(c, lev - 1, e));
        p = next;
    }
    return head;
}

/// The sum of the parts of a split chain times powers of the variable of relative level lev, which they lack.
/// The chain is used up.
static poly gathered(poly parts, int32_t lev) {
    poly sum = zero_leaf();
    while (parts != nullptr) {
        poll_interrupt();
        poly next = parts->next, c = parts;
        int32_t e = parts->exp;
        parts->next = nullptr;
        if (!parts->numb) {
            c = parts->pcoef;
            free_node(parts);
        }
        best_poly_add(sum, shifted(c, lev, e), &sum);
        parts = next;
    }
    return sum;
}

void case_one(poly p, polyptrr r, poly y, polypt pt) {
    poly t = nullptr;
    int32_t lev = level_of_variable(y);
    if (is_number(p)) {
        poly_assign(p, &t);
    } else if (lev > 1 && lacks_level(p, lev)) {
        poly_assign(p, &t);
        t = gathered(t, lev - 1);
        add_pad(&t, 1);
    } else {
        poly_at_numb(&t, p, is_number(y) ? y : y->pcoef, pt, 1);
    }
    free_poly(r);
    *r = t;
}

void case_two(poly p, polyptrr r, int16_t lev, poly x, polypt pt) {
    poly t = nullptr;
    if (is_number(p)) {
        poly_assign(p, &t);
    } else if (level_of_variable(x) == 1 && lev > 1 && is_pad(p)) {
        t = split_by_level(p->pcoef, lev - 1);
    } else {
        // one level up, so that the coefficients stand where x does
        poly parts = split_by_level(p, lev);
        polydata above = {};
        above.next = pt;
        poly_at_numb(&t, parts, x, &above, 0);
        free_poly(&parts);
    }
    free_poly(r);
    *r = t;
}
}  // namespace tolvex
