#include "poly/poly.h"

#include "numbers/num_compare.h"
#include "storage/memory.h"

#include <cstdlib>
namespace tolvex {
void free_poly(polyptrr p) {
    if (*p == nullptr) return;
    poly last = nullptr;
    for (poly t = *p; t != nullptr; t = t->next) {
        if (t->numb)
            free_imag(&t->ncoef);
        else
            free_poly(&t->pcoef);
        last = t;
    }
    pool_splice<&polynode::next>(polygarb, *p, last);
    *p = nullptr;
}

void special_free_poly(polyptrr p) {
    if (*p == nullptr) return;
    poly last = nullptr;
    for (poly t = *p; t != nullptr; t = t->next) {
        if (t->numb) {
            special_free(t->ncoef);
            pool_push<&number::imag>(imhead, t->ncoef);
        } else {
            special_free_poly(&t->pcoef);
        }
        last = t;
    }
    pool_splice<&polynode::next>(polygarb, *p, last);
    *p = nullptr;
}

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
