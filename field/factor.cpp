#include "field/factor.h"

#include "field/factor_words.h"
#include "gcd/gcd_modes.h"
#include "gcd/square_free.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
constexpr int64_t k_most_words = int64_t{1} << 23;  // of a polynomial in arrays
}  // namespace

// ---- what can be factored ------------------------------------------------------------------------------

/// The element of the tower of h levels that stands below the level of pt, nil if another variable occurs.
static const polynode* field_coefficient(const polynode* c, polypt pt, int32_t h) {
    for (; !is_number(c) && pt->depth <= number_polys - h; pt = pt->next) {
        if (c->exp != 0 || c->next != nullptr || c->numb) return nullptr;
        c = c->pcoef;
    }
    return c;
}

/// A variable occurs between the main one and the coefficient field.
static bool nogood(const FactorTask& task) {
    for (const polynode* t = task.p; t != nullptr; t = t->next) {
        poll_interrupt();
        if (!t->numb && field_coefficient(t->pcoef, task.main->next, task.h) == nullptr) return true;
    }
    return false;
}

bool cant_factor(const polynode* p, int32_t k, FactorTask* task, Err* why) {
    const int32_t height = field_depth > 0 ? number_polys - field_depth + 1 : 0;
    if (k < 0 || k > height) {
        *why = Err::level_outside_field;
        return true;
    }
    polypt pt = polynames;
    for (; p->exp == 0 && !p->numb && p->next == nullptr; p = p->pcoef) pt = pt->next;
    *task = {pt, p, k == 0 ? height : k};
    bool in_the_way = pt->depth > number_polys - task->h;
    for (polypt below = pt->next; below != nullptr && !in_the_way; below = below->next)
        in_the_way = below->p != nullptr && !below->field;
    if (in_the_way) {
        *why = Err::modded_in_the_way;
        return true;
    }
    int64_t size = 1;
    for (polypt v = pt->next; v != nullptr; v = v->next)
        if (v->depth > number_polys - task->h && size < k_most_words) size *= v->expon;
    if (p->exp >= k_most_words / size) {
        *why = Err::exponent_too_long;
        return true;
    }
    if (!nogood(*task)) return false;
    *why = Err::second_variable;
    return true;
}

// ---- between polynomials and arrays --------------------------------------------------------------------

/// out[0..degree] := the coefficients of the task's polynomial.
static bool words_of_poly(const CoefficientField& k, const FactorTask& task, uint32_t* out) {
    clear_elements(k, out, int64_t{task.p->exp} + 1);
    bool good = true;
    for (const polynode* t = task.p; t != nullptr && good; t = t->next) {
        uint32_t* at = out + t->exp * k.size;
        if (t->numb)
            tw_set(k.t, k.h, wf_of_number(k.t.f, t->ncoef), at);
        else
            good = tw_from_poly(k.t, k.h, field_coefficient(t->pcoef, task.main->next, task.h), at);
    }
    return good;
}

/// A fresh polynomial in the main variable, at level 1.
static poly poly_of_words(const CoefficientField& k, polypt main, const uint32_t* a, int32_t degree) {
    poly head = nullptr;
    polyptrr tail = &head;
    for (int32_t e = degree; e >= 0; e--) {
        if (tw_iszero(k.t, k.h, a + e * k.size)) continue;
        poly c = tw_to_poly(k.t, k.h, a + e * k.size);
        add_pad(&c, number_polys - k.h - main->depth);
        if (e == 0 && is_number(c))
            *tail = c;
        else
            new_term(tail, e, c);
        tail = &(*tail)->next;
    }
    add_pad(&head, main->depth - 1);
    return head;
}

/// The coefficients as a field of their own, and the polynomial in arrays; false: it is not of this field.
static bool open_task(const FactorTask& task, CoefficientField* k, uint32_t** f) {
    open_field(k, tower_words(), task.h);
    *f = new_elements(*k, int64_t{task.p->exp} + 1);
    return words_of_poly(*k, task, *f) && tw_make_monic(k->t, k->h, *f, task.p->exp);
}

// ---- entries -------------------------------------------------------------------------------------------

/// Appends the factors of a polynomial in one variable, their multiplicities times `times`. False: the tower
/// is no field.
static bool factor_one_variable(const FactorTask& task, int32_t times, polyptrr list) {
    ScratchMark mark = scratch_mark();
    CoefficientField k;
    FactorList factors;
    uint32_t* f = nullptr;
    bool good = open_task(task, &k, &f);
    if (good) {
        open_list(&factors, k, task.p->exp);
        good = factor_words(k, f, task.p->exp, &factors);
        while (*list != nullptr) list = &(*list)->next;
        for (int32_t i = 0; i < factors.count; i++, list = &(*list)->next) {
            poll_interrupt();
            const FactorPart& part = factors.part[i];
            new_term(list, part.multiplicity * times, poly_of_words(k, task.main, part.c, part.degree));
        }
    }
    scratch_release(mark);
    return good;
}

/// The square-free factors over all levels, of which those in one variable are split.
static bool factor_several_variables(poly p, polyptrr list, Err* why) {
    poly x = nullptr, parts = nullptr;
    int32_t count = 0;
    poly_assign(p, &x);
    alg_c_count = 0;
    original_depth = 1;
    total_sq_free(&x, &parts, &count, 1, polynames);
    free_poly(&x);
    bool split = false, good = true;
    while (parts != nullptr && good) {
        poly part = parts;
        FactorTask task;
        if (cant_factor(part->pcoef, 0, &task, why)) {
            parts = part->next;
            part->next = nullptr;
            polyptrr tail = list;
            while (*tail != nullptr) tail = &(*tail)->next;
            *tail = part;
            continue;
        }
        split = true;
        good = factor_one_variable(task, part->exp, list);
        parts = part->next;
        part->next = nullptr;
        free_factor_list(&part);
    }
    free_factor_list(&parts);
    *why = good ? Err::second_variable : Err::prime_modulus_needed;
    return split && good;
}

bool factor_poly(poly p, int32_t k, polyptrr list, Err* why) {
    FactorTask task;
    if (!cant_factor(p, k, &task, why)) {
        *why = Err::prime_modulus_needed;
        return factor_one_variable(task, 1, list);
    }
    return *why == Err::second_variable && k == 0 && factor_several_variables(p, list, why);
}

int32_t irreducible_poly(const FactorTask& task) {
    ScratchMark mark = scratch_mark();
    const int32_t n = task.p->exp;
    CoefficientField k;
    uint32_t* f = nullptr;
    int32_t value = 0;
    if (open_task(task, &k, &f)) {
        const int32_t repeated = has_repeated_factor(k, f, n);
        const int32_t least = repeated != 0 ? 0 : least_degree(k, f, n);
        value = repeated > 0 ? -1 : least == 0 ? 0 : n / least;
    }
    scratch_release(mark);
    return value;
}
}  // namespace tolvex
