#include "poly/poly_mult.h"

#include "poly/field_shape.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
namespace tolvex {
/// The product when one operand is a number. False: neither is.
static bool number_product(poly n, poly m, polyptrr p) {
    if (is_number(n) && is_number(m)) {
        poly fresh = leaf_of(leaf_product(n->ncoef, m->ncoef));
        free_poly(p);
        *p = fresh;
    } else if (is_number(n)) {
        scalar_by_poly(n->ncoef, m, p);
    } else if (is_number(m)) {
        scalar_by_poly(m->ncoef, n, p);
    } else {
        return false;
    }
    return true;
}

/// Terms of p, counted no further than to `cap`.
static int64_t terms_up_to(const polynode* p, int64_t cap) {
    int64_t count = 0;
    for (; p != nullptr && count < cap; p = p->next)
        count += p->numb ? 1 : terms_up_to(p->pcoef, cap - count);
    return count;
}

/// The packed method pays when neither operand is nearly a monomial and there are enough products of terms
/// (measured by bench/time_poly_mult).
static bool worth_packing(const polynode* n, const polynode* m) {
    constexpr int64_t k_least_terms = 2, k_least_products = 4;
    int64_t n_terms = terms_up_to(n, k_least_products), m_terms = terms_up_to(m, k_least_products);
    return n_terms >= k_least_terms && m_terms >= k_least_terms && n_terms * m_terms >= k_least_products;
}

/// The product in free variables.
static void free_product(poly n, poly m, polyptrr p, polypt pol) {
    if (number_product(n, m, p)) return;
    boolean one_level_residues = 1;
    int32_t n_last, m_last;
    int32_t size1 = exp_poly_length(n, &n_last, &one_level_residues), size2 = size1;
    m_last = n_last;
    if (n != m) size2 = exp_poly_length(m, &m_last, &one_level_residues);
    if (!exponents_fit(int64_t{n->exp} + m->exp, int64_t{n_last} + m_last)) {
        poly_set(0, p);
        return;
    }
    if (one_level_residues) {
        simplest_poly_mult(n, m, p, size1, size2, n_last, m_last);
        return;
    }
    if (modularmode && n->exp > 30 && m->exp > 30 && !laurent && try_fast_2_var(n, m)) {
        fastest_poly2_mult(n, m, p);
        return;
    }
    if (worth_packing(n, m) && packed_poly_mult(n, m, p)) return;
    int32_t cutoff = pol != nullptr ? pol->polycut : poly_cutoff;
    if (size1 < cutoff || size2 < cutoff)  // a sparse chain has a negative size
        simple_standard(n, m, size1 < 0 ? -size1 : size1, size2 < 0 ? -size2 : size2, p);
    else
        karatsuba_poly_mult(n, m, p, pol);
}

void poly_mult(poly n, poly m, polyptrr p, polypt pol) {
    free_product(n, m, p, pol);
    if (pseudo_polynames != nullptr && pol != nullptr) reduce_product(p, pol);
}

void simplest_poly_mult(poly n, poly m, polyptrr p, int32_t size1, int32_t size2, int32_t expon,
                        int32_t exp2) {
    if (number_product(n, m, p)) return;
    if (size1 == 0) {
        boolean flag = 1;
        size1 = exp_poly_length(n, &expon, &flag);
        size2 = exp_poly_length(m, &exp2, &flag);
    }
    const bool long_enough = size1 >= fast_mult_cut && size2 >= fast_mult_cut;
    const int64_t degrees = static_cast<int64_t>(n->exp) + m->exp;
    if (!exponents_fit(degrees, int64_t{expon} + exp2)) {
        poly_set(0, p);
        return;
    }
    if (size1 < 0) size1 = -size1;
    if (size2 < 0) size2 = -size2;
    const bool arrays =
        long_enough && modulus > 2 && !finf && degrees <= fast_gcd_size && expon >= 0 && exp2 >= 0;
    if (arrays && 4 * static_cast<int64_t>(size1) > n->exp && 4 * static_cast<int64_t>(size2) > m->exp)
        fastest_standard(n, m, size1, size2, p);
    else if (worth_packing(n, m) && packed_poly_mult(n, m, p))
        return;
    else if (arrays)
        fastest_standard(n, m, size1, size2, p);
    else if (long_enough)
        karatsuba_poly_mult(n, m, p, nullptr);
    else
        simplest_standard(n, m, size1, size2, p);
}

/// The number at the end of a single term is 0.
static bool is_zero_term(const polynode* p) {
    while (!p->numb) p = p->pcoef;
    return iszero(p->ncoef);
}

/// Whether every exponent of p times k is a word. Exponents of variables that are modded out do not count.
static bool exponents_scale(const polynode* p, int64_t k, polypt pt) {
    const bool counts = pt == nullptr || !is_modded(pt);
    polypt below = pt == nullptr ? nullptr : pt->next;
    for (; p != nullptr; p = p->next) {
        int64_t e = counts ? k * p->exp : 0;
        if (e > INT32_MAX || e < INT32_MIN || (!p->numb && !exponents_scale(p->pcoef, k, below)))
            return false;
    }
    return true;
}

/// p := p^k for a single term, in place: the number to the power k, every exponent times k. They fit.
static void power_of_term(poly p, int32_t k) {
    for (; !p->numb; p = p->pcoef) p->exp *= k;
    number_power(p->ncoef, k);
}

/// p := p^q where q is the characteristic: exponents, which fit, are multiplied; residues of a prime field
/// stay as they are.
static void frobenius(poly p, int32_t q) {
    for (; p != nullptr; p = p->next) {
        p->exp *= q;
        if (!p->numb)
            frobenius(p->pcoef, q);
        else if (finf)
            p->ncoef->lint =
                table_mult(static_cast<uint32_t>(p->ncoef->lint), static_cast<uint32_t>(p->ncoef->lint));
    }
}

/// A fresh base^expont, expont >= 1, by squaring from the top bit down (Knuth, TAOCP 2, 4.6.3).
static poly power_by_squaring(poly base, int32_t expont, polypt pol) {
    int32_t bit = 0;
    while ((expont >> bit) > 1) bit++;
    poly power = nullptr;
    poly_assign(base, &power);
    while (bit-- > 0) {
        poly_mult(power, power, &power, pol);
        if ((expont >> bit) & 1) poly_mult(power, base, &power, pol);
    }
    return power;
}

/// A fresh base^expont in characteristic q: one factor for each digit of expont to the base q.
static poly power_by_digits(const polynode* base, int32_t expont, int32_t q, polypt pol) {
    poly image = nullptr, power = nullptr;  // image: base^(q^i)
    poly_assign(base, &image);
    for (;;) {
        int32_t digit = expont % q;
        expont /= q;
        if (digit > 0) {
            poly part = power_by_squaring(image, digit, pol);
            if (power == nullptr) {
                power = part;
            } else {
                poly_mult(power, part, &power, pol);
                free_poly(&part);
            }
        }
        if (expont == 0) break;
        frobenius(image, q);
    }
    free_poly(&image);
    return power;
}

void compute_power(polyptrr n, int32_t expont, polypt pol) {
    if (expont == 1) return;
    if (!exponents_scale(*n, expont, pol)) {
        error(Err::exponent_too_long);
        poly_set(0, n);
        return;
    }
    if (uses_modded_level(*n, pol)) {  // reduced after every product
        poly power = power_by_squaring(*n, expont, pol);
        free_poly(n);
        *n = power;
        return;
    }
    if (monomial(*n)) {
        power_of_term(*n, expont);
        if (is_zero_term(*n)) poly_set(0, n);  // a nilpotent number
        return;
    }
    const int32_t q = finf ? 2 : modulus;
    poly power = modularmode && mod_is_prime && expont >= q ? power_by_digits(*n, expont, q, pol)
                                                            : power_by_squaring(*n, expont, pol);
    free_poly(n);
    *n = power;
}
}  // namespace tolvex
