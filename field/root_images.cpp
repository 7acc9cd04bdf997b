#include "field/root_images.h"

#include "field/aux_primes.h"
#include "field/tower_divide.h"
#include "field/tower_words.h"
#include "gcd/gcd_modes.h"
#include "gcd/polygcd.h"
#include "numbers/ring_switch.h"
#include "poly/div_internal.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"

#include <initializer_list>
namespace tolvex {
namespace {
/// The roots of the tower modulo one prime.
struct RootImage {
    int32_t prime;
    uint32_t root[k_levels + 1];
};
}  // namespace

/// The image of p, whose top variable is that of pt, in the ring of the prime, which is in force; p has
/// chains.
static poly image_at_roots(const polynode* p, polypt pt, const RootImage& image) {
    if (is_number(p) || pt->depth >= field_depth) {
        const int32_t h = is_number(p) ? 0 : number_polys - pt->depth + 1;
        lintmode = 0;
        uint32_t v = value_at_roots(word_field_ring(), p, h, image.root, image.root[h]);
        lintmode = 1;
        poly leaf = zero_leaf();
        leaf->ncoef->lint = static_cast<int32_t>(v);
        return leaf;
    }
    poly head = nullptr;
    polyptrr tail = &head;
    for (; p != nullptr; p = p->next) {
        poll_interrupt();
        poly c = nullptr;
        if (p->numb) {
            polynode lone = *p;
            lone.next = nullptr;
            c = image_at_roots(&lone, pt, image);
        } else {
            c = image_at_roots(p->pcoef, pt->next, image);
        }
        if (poly_iszero(c))
            free_poly(&c);
        else
            tail = append_term(tail, p->exp, c);
    }
    fix_top(&head);
    return head;
}

/// The leading element of p does not vanish at the roots.
static bool keeps_lead(const polynode* p, polypt pt, const RootImage& image) {
    polypt level;
    const polynode* a = leading_element(p, pt, &level);
    polynode lone = *a;
    if (a->numb) lone.next = nullptr;
    poly value = image_at_roots(a->numb ? &lone : a, level, image);
    bool kept = !poly_iszero(value);
    free_poly(&value);
    return kept;
}

/// A root that is none of the derivative: then the image is that of the ring of integers of the field.
static bool roots_are_simple(const RootImage& image) {
    LevelSource level[k_levels];
    const int32_t height = tower_levels(level);
    const WordField f = word_field_ring();
    lintmode = 0;
    bool simple = true;
    for (int32_t h = 1; h <= height && simple; h++) {
        const uint32_t x = image.root[h];
        const auto n = static_cast<uint64_t>(level[h - 1].n);
        uint32_t d = wf_mul(f, wf_reduce(f, n), wf_power(f, x, n - 1));  // of t^n + a
        const polynode* c = is_number(level[h - 1].p) ? nullptr : level[h - 1].p->next;
        for (; c != nullptr && !c->numb; c = c->next) {
            uint32_t a = value_at_roots(f, c->pcoef, h - 1, image.root, image.root[h - 1]);
            auto e = static_cast<uint64_t>(c->exp);
            if (e > 0) d = wf_add(f, d, wf_mul(f, wf_mul(f, wf_reduce(f, e), a), wf_power(f, x, e - 1)));
        }
        simple = d != 0;
    }
    lintmode = 1;
    return simple;
}

static bool coprime_in_image(poly u, poly v, polypt pt, const RootImage& image) {
    if (!roots_are_simple(image) || !keeps_lead(u, pt, image) || !keeps_lead(v, pt, image)) return false;
    poly a = image_at_roots(u, pt, image), b = image_at_roots(v, pt, image), g = nullptr;
    polygcd(a, b, &g, 0, 1, 1, pt, 1, 1, 1);
    bool coprime = is_number(g);
    for (poly* p : {&a, &b, &g}) free_poly(p);
    return coprime;
}

bool coprime_by_roots(poly u, poly v, polypt pt) {
    if (no_aux_primes2) return false;
    RootImage image = {};
    roots_of_prime(0, &image.prime, image.root);
    GcdCounters counters = gcd_counters_save();
    RingState ring = ring_save();
    ring_enter_prime(image.prime);
    lookupgcd = -1000;
    alg_c_count = 0;
    bool coprime = coprime_in_image(u, v, pt, image);
    ring_restore(ring);
    gcd_counters_restore(counters);
    return coprime;
}
}  // namespace tolvex
