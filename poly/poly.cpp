#include "poly/poly.h"

#include "numbers/num_compare.h"
#include "storage/memory.h"

#include <cstdlib>
namespace tolvex {
// ---- giving back ---------------------------------------------------------------------------------------

// A caller that gives a polynomial back may stand where no safe point is possible, and a long one takes a
// while. So one call gives back at most k_terms_at_once terms; the rest waits, and is given back before new
// memory is taken for nodes.
#ifdef TOLVEX_SMALL_LIMITS
static constexpr int64_t k_terms_at_once = 50;
#else
static constexpr int64_t k_terms_at_once = int64_t{1} << 16;  // three lines of cache a term
#endif
enum class Shape : int32_t { chains, words };  // of the numbers

template <Shape shape> static void free_leaf_number(imptr c) {
    if constexpr (shape == Shape::chains) special_free(c);
    pool_push<&number::imag>(imhead, c);
}

/// Gives back terms of *p in order, at most `left`; *p becomes what remains. Returns how many may still go.
template <Shape shape> static int64_t free_terms(polyptrr p, int64_t left) {
    poly last = nullptr, t = *p;
    for (; t != nullptr; t = t->next) {
        if (--left < 0) break;
        if (t->numb) {
            free_leaf_number<shape>(t->ncoef);
        } else {
            left = free_terms<shape>(&t->pcoef, left);
            if (t->pcoef != nullptr) break;
        }
        last = t;
    }
    if (last != nullptr) pool_splice<&polynode::next>(polygarb, *p, last);
    *p = t;
    return left;
}

static int64_t free_shaped(Shape shape, polyptrr p, int64_t left) {
    return shape == Shape::chains ? free_terms<Shape::chains>(p, left) : free_terms<Shape::words>(p, left);
}

// The exponent of a node of polywait tells the shape of the numbers below it.
static void free_some(Shape shape, polyptrr p) {
    if (*p == nullptr) return;
    free_shaped(shape, p, k_terms_at_once);
    if (*p == nullptr) return;
    poly node = pool_pop<&polynode::next>(polygarb, polystash);  // some have just been given back
    *node = {static_cast<int32_t>(shape), 0, polywait, {.pcoef = *p}};
    polywait = node;
    *p = nullptr;
}

bool free_waiting(int64_t terms) {
    while (polywait != nullptr && terms > 0) {
        terms = free_shaped(static_cast<Shape>(polywait->exp), &polywait->pcoef, terms);
        if (polywait->pcoef != nullptr) break;
        poly done = polywait;
        polywait = done->next;
        free_node(done);
    }
    return polywait != nullptr;
}

void refill_nodes() {
    constexpr int64_t k_refill = 4096;
    free_waiting(k_refill);
}

void free_poly(polyptrr p) { free_some(lintmode ? Shape::words : Shape::chains, p); }

void special_free_poly(polyptrr p) { free_some(Shape::chains, p); }

void newpt(polypt* p) {
    *p = pool_pop<&polydata::next>(pt_garb, nullptr);
    **p = polydata{};
    (*p)->let.address = -1;
    (*p)->polycut = poly_cutoff;
}

void free_pt(polypt* p) {
    polypt v = *p;
    free_poly(&v->p);
    special_free_poly(&v->rational_p);
    free(v->gcd_data);
    pool_push<&polydata::next>(pt_garb, v);
    *p = nullptr;
}

/// The number of a leaf is in normal form for the mode in force.
static bool leaf_check(const polynode* p) {
    if (p->exp != 0 || p->ncoef == nullptr) return false;
    if (modularmode) return p->ncoef->lint >= 0 && p->ncoef->lint < modulus;
    return lintmode || num_check(p->ncoef);
}

/// A coefficient or a whole polynomial that is not the number 0.
static bool chain_check(const polynode* p, int32_t levels) {
    if (p == nullptr) return false;
    if (is_number(p)) return leaf_check(p) && !iszero(p->ncoef);
    if (levels < 1) return false;
    for (const polynode* t = p; t != nullptr; t = t->next) {
        if (t->next != nullptr && t->next->exp >= t->exp) return false;
        if (!laurent && (t->exp < 0 || (t->numb && t->next != nullptr))) return false;
        if (t->numb) {
            if (!leaf_check(t) || iszero(t->ncoef)) return false;
        } else {
            if (!chain_check(t->pcoef, levels - 1)) return false;
            if (t->exp == 0 && is_number(t->pcoef)) return false;
        }
    }
    return true;
}

bool poly_check(const polynode* p, int32_t levels) {
    if (p == nullptr) return false;
    if (is_number(p) && leaf_check(p) && iszero(p->ncoef)) return true;
    return chain_check(p, levels);
}
}  // namespace tolvex
