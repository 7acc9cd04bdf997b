#pragma once
/// poly/leaf_number.h: what the inner loops of polynomial arithmetic do with the number of a leaf.
///
/// Purpose    one-digit integers and residues, which most coefficients are, are handled inline; all else goes
///            to numbers/.
/// Ownership  a `fresh` number owns no chain yet; results of clone, sum and product are new records.
/// Modes      any.
/// Raises     exponents_fit: exponent_too_long.
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "poly/poly.h"
#include "storage/failure.h"
namespace tolvex {
/// Word arithmetic of lintmode outside modular mode wraps around.
inline int32_t word_add(int32_t x, int32_t y) {
    return static_cast<int32_t>(static_cast<uint32_t>(x) + static_cast<uint32_t>(y));
}
inline int32_t word_sub(int32_t x, int32_t y) {
    return static_cast<int32_t>(static_cast<uint32_t>(x) - static_cast<uint32_t>(y));
}
inline int32_t word_mult(int32_t x, int32_t y) {
    return static_cast<int32_t>(static_cast<uint32_t>(x) * static_cast<uint32_t>(y));
}
inline int32_t lint_sum(int32_t x, int32_t y) {
    return modularmode ? mod_add(x, y, modulus) : word_add(x, y);
}
inline int32_t lint_difference(int32_t x, int32_t y) {
    return modularmode ? mod_sub(x, y, modulus) : word_sub(x, y);
}
inline int32_t lint_product(int32_t x, int32_t y) {
    return modularmode ? modmult(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) : word_mult(x, y);
}
inline int32_t lint_negative(int32_t x) { return modularmode ? mod_neg(x) : word_sub(0, x); }

/// x, a fresh number, becomes the chain v, |v| < 2^56.
inline void leaf_set_chain(imptr x, int64_t v) {
    if (v >= -k_max_digit && v <= k_max_digit) {
        num_make_digit(x, static_cast<int32_t>(v));
        return;
    }
    numptr low = newnum(), high = newnum();
    high->value = static_cast<int32_t>(v / k_base);
    low->value = static_cast<int32_t>(v % k_base);
    high->next = low;
    low->next = nullptr;
    x->head = high;
    x->tail = low;
    x->size = 2;
}

/// A new number equal to x in the mode in force.
inline imptr leaf_clone(const number* x) {
    imptr r;
    newimag(&r);
    if (lintmode) {
        r->lint = x->lint;
    } else if (x->size == 1) {
        num_make_digit(r, x->head->value);
    } else {
        num_assign(x, r);
    }
    return r;
}

/// A new number x + y.
inline imptr leaf_sum(const number* x, const number* y) {
    imptr r;
    newimag(&r);
    if (lintmode) {
        r->lint = lint_sum(x->lint, y->lint);
    } else if (x->size == 1 && y->size == 1) {
        leaf_set_chain(r, static_cast<int64_t>(x->head->value) + y->head->value);
    } else {
        medsum(x->size, y->size, x->head, y->head, r);
    }
    return r;
}

/// A new number x - y.
inline imptr leaf_difference(const number* x, const number* y) {
    imptr r;
    newimag(&r);
    if (lintmode) {
        r->lint = lint_difference(x->lint, y->lint);
    } else if (x->size == 1 && y->size == 1) {
        leaf_set_chain(r, static_cast<int64_t>(x->head->value) - y->head->value);
    } else {
        meddiff(x->size, y->size, x->head, y->head, r);
    }
    return r;
}

/// x := x + y in place.
inline void leaf_add(imptr x, const number* y) {
    if (lintmode) {
        x->lint = lint_sum(x->lint, y->lint);
        return;
    }
    if (x->size == 1 && y->size == 1) {
        int32_t s = x->head->value + y->head->value;  // fits: digits have 28 bits
        if (s >= -k_max_digit && s <= k_max_digit) {
            x->head->value = s;
            return;
        }
    }
    fastsum(x, y);
}

/// x := x - y in place.
inline void leaf_sub(imptr x, const number* y) {
    if (lintmode) {
        x->lint = lint_difference(x->lint, y->lint);
        return;
    }
    if (x->size == 1 && y->size == 1) {
        int32_t s = x->head->value - y->head->value;
        if (s >= -k_max_digit && s <= k_max_digit) {
            x->head->value = s;
            return;
        }
    }
    fastdiff(x, y);
}

/// x := -x in place.
inline void leaf_negate(imptr x) {
    if (lintmode) {
        x->lint = lint_negative(x->lint);
    } else {
        for (numptr d = x->head; d != nullptr; d = d->next) d->value = -d->value;
    }
}

/// A new number x y.
inline imptr leaf_product(const number* x, const number* y) {
    imptr r;
    newimag(&r);
    if (lintmode) {
        r->lint = lint_product(x->lint, y->lint);
    } else if (x->size == 1 && y->size == 1) {
        leaf_set_chain(r, static_cast<int64_t>(x->head->value) * y->head->value);
    } else {
        fast_mult(x, y, r);
    }
    return r;
}

/// A leaf that owns the number c.
inline poly leaf_of(imptr c) {
    poly p;
    newpoly(&p);
    p->exp = 0;
    p->numb = 1;
    p->next = nullptr;
    p->ncoef = c;
    return p;
}
/// A new leaf 0.
inline poly zero_leaf() {
    imptr c;
    newimag(&c);
    if (lintmode)
        c->lint = 0;
    else
        num_make_digit(c, 0);
    return leaf_of(c);
}
/// Gives back a leaf node with its number.
inline void free_leaf(poly p) {
    free_imag(&p->ncoef);
    free_node(p);
}
/// The node p seen as a polynomial of its own: a leaf inside a chain without what follows it.
inline polynode leaf_alone(const polynode* p) {
    polynode shell = *p;
    shell.next = nullptr;
    return shell;
}
/// Whether exponents from least to most are words. If not that is an error, and after a return from it the
/// result is to be 0.
inline bool exponents_fit(int64_t most, int64_t least) {
    if (most <= INT32_MAX && least >= INT32_MIN) return true;
    error(Err::exponent_too_long);
    return false;
}
/// x^exp c as one node of a chain, next nil; c is used up and not 0. At exponent 0 a number stands bare.
inline poly chain_node(int32_t exp, poly c) {
    if (exp == 0 && is_number(c)) return c;
    poly t;
    new_term(&t, exp, c);
    return t;
}
}  // namespace tolvex
