#include "poly/div_trial.h"

#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/primes.h"
#include "poly/div_general.h"
#include "poly/div_rounds.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/word_field.h"
#include "storage/scratch.h"
namespace tolvex {
namespace {
constexpr int64_t k_image_terms = 40;  // below, the division itself is as cheap as an image
constexpr int32_t k_image_degree = 1 << 20;
}  // namespace

// Over Z the number d of a leaf of m must divide the number a of the corresponding leaf of n.
static bool leaf_may_divide(const number* a, const number* d) {
    if (lintmode) return true;
    if (a->size == 1 && d->size == 1) return d->head->value != 0 && a->head->value % d->head->value == 0;
    number r = {};
    trunc_divide(a, d, nullptr, &r);
    bool divides = iszero(&r);
    special_free(&r);
    return divides;
}

static const number* trailing_number(const polynode* p) {
    while (!is_number(p)) {
        while (p->next != nullptr) p = p->next;
        if (p->numb) break;
        p = p->pcoef;
    }
    return p->ncoef;
}

// Leading and trailing terms in the order of the recursive form are products of those of the factors.
static bool ends_may_divide(poly n, poly m) {
    const polynode *a = n, *b = m;
    while (!is_number(a) && !is_number(b)) {
        if (b->exp > a->exp) return false;
        if (a->numb || b->numb) break;
        a = a->pcoef;
        b = b->pcoef;
    }
    if (is_number(a) && !is_number(b) && !b->numb) return false;
    return leaf_may_divide(leading_coef(n)->ncoef, leading_coef(m)->ncoef) &&
           leaf_may_divide(trailing_number(n), trailing_number(m));
}

// The value of p with the variables from level on at the points; Horner over each chain.
static uint32_t tree_value(const WordField& f, const polynode* p, const uint32_t* point) {
    if (is_number(p)) return wf_of_number(f, p->ncoef);
    uint32_t v = 0;
    for (const polynode* t = p; t != nullptr; t = t->next) {
        uint32_t c = t->numb ? wf_of_number(f, t->ncoef) : tree_value(f, t->pcoef, point + 1);
        v = wf_add(f, v, c);
        int32_t gap = t->exp - (t->next != nullptr ? t->next->exp : 0);
        if (gap > 0) v = wf_mul(f, v, gap == 1 ? *point : wf_power(f, *point, static_cast<uint64_t>(gap)));
    }
    return v;
}

// The image in the main variable of a chain; returns its degree.
static int32_t main_image(const WordField& f, const polynode* p, const uint32_t* point, uint32_t* image) {
    scratch_clear(image, static_cast<size_t>(p->exp + 1) * sizeof(uint32_t));
    for (const polynode* t = p; t != nullptr; t = t->next)
        image[t->exp] = t->numb ? wf_of_number(f, t->ncoef) : tree_value(f, t->pcoef, point);
    return wf_degree(image, p->exp);
}

// One image in the main variable: if m divides n its image divides that of n. True: it may.
static bool image_may_divide(poly n, poly m) {
    bool domain = modularmode ? mod_is_prime || finf : !lintmode;
    if (!domain || n->exp > k_image_degree || m->exp == 0 || poly_terms(n) < k_image_terms) return true;
    WordField f = modularmode ? word_field_enlarged()
                              : word_field_prime(static_cast<uint32_t>(lrgpme[k_lrg_primes - 1]));
    ScratchMark mark = scratch_mark();
    auto* point = scratch_array<uint32_t>(k_levels);
    for (int32_t i = 0; i < number_polys; i++) point[i] = wf_random_unit(f);
    auto* x = scratch_array<uint32_t>(int64_t{n->exp} + 1);
    auto* y = scratch_array<uint32_t>(int64_t{m->exp} + 1);
    int32_t dx = main_image(f, n, point, x), dy = main_image(f, m, point, y);
    bool may = dy < 0 ? dx < 0 : wf_mod(f, x, dx, y, dy, wf_inverse(f, y[dy])) < 0;
    scratch_release(mark);
    return may;
}

static bool may_divide(poly n, poly m, bool shortcut) {
    if (poly_iszero(n) || is_number(m)) return true;
    if (is_number(n) || m->exp > n->exp) return false;
    if (!shortcut) return true;
    return ends_may_divide(n, m) && image_may_divide(n, m);
}

boolean trial_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean shortcut, boolean, boolean kill_n) {
    boolean failed = 1;
    poly quotient = nullptr;
    if (!poly_iszero(m) && may_divide(n, m, shortcut)) gen_poly_divide(n, m, &quotient, pt, &failed);
    if (kill_n) free_poly(&n);
    free_poly(q);
    *q = quotient;
    return !failed;
}

// May evaluations that all say yes be taken for the answer? Points of a tiny field prove nothing.
static bool evaluations_suffice(poly n, poly m) {
    constexpr int32_t k_small_modulus = 1000;
    if (!rat_yes || gcd_sure || is_number(n) || is_number(m)) return false;
    return modularmode ? mod_is_prime && modulus >= k_small_modulus : !lintmode;
}

boolean trial_poly_divide_noq(poly n, poly m, polypt pt, boolean shortcut, boolean yes_check) {
    if (shortcut && yes_check && evaluations_suffice(n, m)) {
        if (!may_divide(n, m, true)) return 0;
        switch (divides_at_points(n, m, pt)) {
        case Rounds::no:
            return 0;
        case Rounds::yes:
            gcd_unproved = 1;
            return 1;
        case Rounds::undecided:
            break;
        }
    }
    poly q = nullptr;
    boolean divides = trial_poly_divide(n, m, &q, pt, shortcut, yes_check, 0);
    free_poly(&q);
    return divides;
}
}  // namespace tolvex
