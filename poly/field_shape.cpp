#include "poly/field_shape.h"

#include "poly/poly_shape.h"
namespace tolvex {
static bool uses_modded(const polynode* p, const polydata* pt) {
    const bool modded = is_modded(pt);
    for (; p != nullptr; p = p->next) {
        if (p->exp != 0 && modded) return true;
        if (!p->numb && pt->next != nullptr && uses_modded(p->pcoef, pt->next)) return true;
    }
    return false;
}

bool uses_modded_level(const polynode* p, const polydata* pt) {
    return pseudo_polynames != nullptr && pt != nullptr && uses_modded(p, pt);
}

bool exists_field_element(const polynode* p, int32_t depth) {
    if (field_depth == 0 || is_number(p)) return false;
    for (; p != nullptr; p = p->next) {
        if (depth >= field_depth && p->exp != 0) return true;
        if (!p->numb && exists_field_element(p->pcoef, depth + 1)) return true;
    }
    return false;
}

bool both_above_field_depth(const polynode* u, const polynode* v, int32_t depth) {
    return !exists_field_element(u, depth) && !exists_field_element(v, depth);
}

bool is_field_element(const polynode* p, int32_t depth) {
    return field_depth > 0 && poly_depth(p) + depth > field_depth;
}

bool all_coefs_invrtble(const polynode* p, int32_t depth) {
    if (field_depth == 0) return false;
    for (; p != nullptr; p = p->next)
        if (!p->numb && !is_field_element(p->pcoef, depth + 1)) return false;
    return true;
}

bool all_coefs_invrtble_both(const polynode* u, const polynode* v, int32_t depth) {
    return all_coefs_invrtble(u, depth) && all_coefs_invrtble(v, depth);
}
}  // namespace tolvex
