#include "poly/div_general.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "poly/div_internal.h"
#include "poly/div_user.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
#include "storage/interrupt.h"
namespace tolvex {
bool number_divides(const number* n, const number* d, imptr q) {
    if (modularmode) {
        int32_t inverse = mod_inverse_or_0(d->lint);
        if (inverse == 0) return false;
        q->lint = modmult(static_cast<uint32_t>(n->lint), static_cast<uint32_t>(inverse));
        return true;
    }
    if (lintmode) {
        int64_t a = n->lint, b = d->lint;
        if (b == 0 || a % b != 0) return false;
        q->lint = static_cast<int32_t>(a / b);
        return true;
    }
    if (iszero(d)) return false;
    if (n->size == 1 && d->size == 1) {
        int32_t a = n->head->value, b = d->head->value;
        if (a % b != 0) return false;
        special_set(a / b, q);
        return true;
    }
    number quotient = {}, rest = {};
    trunc_divide(n, d, &quotient, &rest);
    bool exact = iszero(&rest);
    special_free(&rest);
    if (!exact) {
        special_free(&quotient);
        return false;
    }
    special_free(q);
    q->head = quotient.head;
    q->tail = quotient.tail;
    q->size = quotient.size;
    return true;
}

poly divide_by_number(const polynode* n, const number* d) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (; n != nullptr; n = n->next) {
        poll_interrupt();
        poly node;
        if (n->numb) {
            newpoly(&node);
            init_poly_node(node);
            *tail = node;
            tail = &node->next;
            if (number_divides(n->ncoef, d, node->ncoef)) continue;
            free_poly(&head);
            return nullptr;
        }
        poly c = divide_by_number(n->pcoef, d);
        if (c == nullptr) {
            free_poly(&head);
            return nullptr;
        }
        new_term(&node, n->exp, c);
        *tail = node;
        tail = &node->next;
    }
    return head;
}

poly coefficient_copy(const polynode* term) {
    poly c = nullptr;
    if (term->numb)
        node_assign(term, &c);
    else
        poly_assign(term->pcoef, &c);
    return c;
}

polyptrr append_term(polyptrr tail, int32_t exp, poly c) {
    if (exp == 0 && is_number(c)) {
        *tail = c;
        return &c->next;
    }
    new_term(tail, exp, c);
    return &(*tail)->next;
}

void drop_first_term(polyptrr r) {
    poly first = *r, rest = first->next;
    first->next = nullptr;
    free_poly(&first);
    *r = rest;
    if (rest == nullptr) poly_set(0, r);
}

// m has the one term c x^e: each coefficient of n by c, exponents down by e.
static bool divide_by_one_term(poly n, poly m, polyptrr q, polypt pt) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (poly t = n; t != nullptr; t = t->next) {
        if (t->exp < m->exp) {
            free_poly(&head);
            return false;
        }
        polynode lone;  // a leaf of the chain as a coefficient
        poly coefficient = t->pcoef;
        if (t->numb) {
            lone = *t;
            lone.next = nullptr;
            coefficient = &lone;
        }
        poly c = nullptr;
        if (!divide_trees(coefficient, m->pcoef, &c, pt->next)) {
            free_poly(&head);
            return false;
        }
        tail = append_term(tail, t->exp - m->exp, c);
    }
    *q = head;
    return true;
}

// Schoolbook: the leading coefficient of what is left is divided by that of m one level down, so that over Z
// and in several variables the first coefficient that does not divide ends it.
static bool divide_chains(poly n, poly m, polyptrr q, polypt pt) {
    poly head = nullptr, r = nullptr;
    polyptrr tail = &head;
    poly_assign_polled(n, &r);
    bool exact = true;
    while (!poly_iszero(r)) {
        poll_interrupt();
        poly c = nullptr;
        exact = !r->numb && r->exp >= m->exp && divide_trees(r->pcoef, m->pcoef, &c, pt->next);
        if (!exact) break;
        int32_t e = r->exp - m->exp;
        poly factor = nullptr, product = nullptr;
        tail = append_term(tail, e, c);
        if (c->numb && e == 0)
            node_assign(c, &factor);
        else {
            poly copy = nullptr;
            poly_assign(c, &copy);
            new_term(&factor, e, copy);
        }
        drop_first_term(&r);
        poly_mult(factor, m->next, &product, pt);
        free_poly(&factor);
        best_poly_sub(r, product, &r);
    }
    free_poly(&r);
    if (!exact) {
        free_poly(&head);
        return false;
    }
    *q = head;
    return true;
}

bool divide_trees(poly n, poly m, polyptrr q, polypt pt) {
    if (is_number(m)) {
        if (node_iszero(m)) return false;
        *q = divide_by_number(n, m->ncoef);
        return *q != nullptr;
    }
    if (is_number(n)) {
        if (!node_iszero(n)) return false;
        poly_set(0, q);
        return true;
    }
    if (m->next == nullptr) return divide_by_one_term(n, m, q, pt);
    if (n->exp < m->exp) return false;
    return divide_chains(n, m, q, pt);
}

void gen_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean* failed) {
    poly fresh = nullptr;
    if (pt == nullptr && !is_number(m) && !is_number(n)) tolvex_error("pt nil in poly_divide");
    if (pt != nullptr && field_depth > 0 && exists_field_element(m, pt->depth)) {
        *failed = !tower_divide(n, m, &fresh, pt);
        free_poly(q);
        *q = fresh;
        return;
    }
    Packed verdict = is_number(m) || is_number(n) ? Packed::declined : divide_packed(n, m, &fresh);
    *failed = verdict == Packed::declined ? !divide_trees(n, m, &fresh, pt) : verdict == Packed::no;
    free_poly(q);
    *q = fresh;
}

void clear_and_operate(poly n, poly m, polyptrr q, polyptrr r, boolean want_div, polypt pt, boolean* failed) {
    poly n2 = nullptr, m2 = nullptr, quotient = nullptr, rest = nullptr;
    poly_assign(n, &n2);
    poly_assign(m, &m2);
    poly n_shift = clear_bads(&n2, INT32_MAX, k_leaf_depth),
         m_shift = clear_bads(&m2, INT32_MAX, k_leaf_depth);
    *failed = 0;
    if (want_div)
        gen_poly_divide(n2, m2, &quotient, pt, failed);
    else
        poly_mod_and_div(n2, m2, &rest, &quotient, pt);
    free_poly(&n2);
    free_poly(&m2);
    if (!*failed) {
        eliminate_bads(&quotient, n_shift, 1);
        eliminate_bads(&quotient, m_shift, -1);
        if (!want_div) eliminate_bads(&rest, n_shift, 1);
    }
    free_exponent_list(&n_shift);
    free_exponent_list(&m_shift);
    free_poly(q);
    *q = quotient;
    if (!want_div) {
        free_poly(r);
        *r = rest;
    }
}

void Lpoly_divide(poly n, poly m, polyptrr q, polypt pt, boolean* failed) {
    if (laurent && (has_negative_exponent(n) || has_negative_exponent(m) || !is_number(m)))
        clear_and_operate(n, m, q, nullptr, 1, pt, failed);
    else
        gen_poly_divide(n, m, q, pt, failed);
}

void quot(const number* n1, const number* n2, imptr n3) {
    if (modularmode) {
        int32_t inverse;
        mod_inverse(n2->lint, &inverse);
        n3->lint = modmult(static_cast<uint32_t>(n1->lint), static_cast<uint32_t>(inverse));
    } else if (lintmode) {
        if (n2->lint == 0) {
            error(Err::division_by_zero);
            n3->lint = 0;
            return;
        }
        n3->lint = static_cast<int32_t>(int64_t{n1->lint} / n2->lint);  // -2^31 / -1 wraps
    } else {
        trunc_divide(n1, n2, n3, nullptr);
    }
}

void simple_quot(imptr n1, const number* n2, int32_t x) {
    if (modularmode)
        n1->lint = modmult(static_cast<uint32_t>(n1->lint), static_cast<uint32_t>(x));
    else if (lintmode)
        quot(n1, n2, n1);
    else
        divide_exact(n1, n2);
}

static void quot_in_place(poly n, const number* m, int32_t x) {
    for (; n != nullptr; n = n->next) {
        if (n->numb)
            simple_quot(n->ncoef, m, x);
        else
            quot_in_place(n->pcoef, m, x);
    }
}

void num_poly_quot(polyptrr n, const number* m, int32_t x) {
    int32_t inverse = 0;
    if (modularmode) mod_inverse(x, &inverse);
    if (modularmode && inverse == 0) {  // error 85 has come back from a pushed command level
        poly_set(0, n);
        return;
    }
    quot_in_place(*n, m, inverse);
}

void poly_quot(poly n, poly m, polyptrr p) {
    poly fresh = nullptr;
    poly_assign(n, &fresh);
    if (!poly_eq_1(m)) num_poly_quot(&fresh, m->ncoef, m->ncoef->lint);
    free_poly(p);
    *p = fresh;
}

void trial_poly_quot(poly n, poly m, polyptrr p, boolean* success) {
    poly fresh = node_iszero(m) ? nullptr : divide_by_number(n, m->ncoef);
    *success = fresh != nullptr;
    free_poly(p);
    *p = fresh;
}
}  // namespace tolvex
