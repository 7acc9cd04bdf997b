#include "poly/poly_vars.h"

#include "numbers/num_assign.h"
#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "storage/failure.h"
#include "storage/memory.h"

#include <cstring>
namespace tolvex {
static polypt sorted_names[k_levels];  // the variables of polynames by name

static int compare_names(const tokentipe& a, const tokentipe& b) { return strcmp(tok_text(a), tok_text(b)); }

/// Numbers the levels from 1 and rebuilds the table sorted by name (insertion sort: at most 150 entries).
static void renumber() {
    int32_t count = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) {
        int32_t at = count++;
        for (; at > 0 && compare_names(sorted_names[at - 1]->let, v->let) > 0; at--)
            sorted_names[at] = sorted_names[at - 1];
        sorted_names[at] = v;
        v->depth = static_cast<int16_t>(count);
    }
    number_polys = count;
}

boolean is_poly_name2(const tokentipe& name, int32_t* depth, polypt* p) {
    int32_t level = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) {
        level++;
        if (compare_names(v->let, name) != 0) continue;
        *depth = level;
        *p = v;
        return 1;
    }
    return 0;
}

boolean is_poly_name(const tokentipe& name, int32_t* depth) {
    polypt v;
    return is_poly_name2(name, depth, &v);
}

int32_t its_a_polyname(const tokentipe& name) {
    int32_t low = 0, high = number_polys;
    while (low < high) {
        int32_t mid = (low + high) / 2;
        int c = compare_names(sorted_names[mid]->let, name);
        if (c == 0) return sorted_names[mid]->depth;
        if (c < 0)
            low = mid + 1;
        else
            high = mid;
    }
    return 0;
}

void insert_poly_name(const tokentipe& name, boolean at_end) {
    if (number_polys >= k_max_polys) {
        error(Err::too_many_polyvars, tok_text(name));
        return;
    }
    polypt v;
    newpt(&v);
    v->let = name;
    polypt* at = &polynames;
    while (at_end && *at != nullptr) at = &(*at)->next;
    v->next = *at;
    *at = v;
    renumber();
}

void delete_poly_name(int32_t depth) {
    polypt* at = &polynames;
    for (; depth > 1; depth--) at = &(*at)->next;
    polypt v = *at;
    *at = v->next;
    free_pt(&v);
    renumber();
}

/// Marks levels `level` and deeper; the leaf stands for exponent 0 everywhere.
static void mark_levels(const polynode* n, int32_t level, bool* seen) {
    for (; n != nullptr; n = n->next) {
        if (n->numb) continue;
        if (n->exp != 0) seen[level] = true;
        mark_levels(n->pcoef, level + 1, seen);
    }
}

int32_t poly_vars(const polynode* n, int32_t level, int16_t* list) {
    bool seen[k_levels] = {};
    mark_levels(n, level + 1, seen);
    int32_t count = 0;
    for (int32_t i = 1; i < k_levels; i++)
        if (seen[i]) {
            list[i] = 1;
            count++;
        }
    return count;
}

int32_t driver_poly_vars(const polynode* n) {
    int16_t list[k_levels] = {};
    return poly_vars(n, 0, list);
}

boolean poly_contains_level(const polynode* p, int32_t level) {
    for (; p != nullptr; p = p->next) {
        if (p->numb) continue;
        if (level == 1 ? p->exp != 0 : poly_contains_level(p->pcoef, level - 1)) return 1;
    }
    return 0;
}

void reset_cutoffs(int32_t fresh) {
    for (polypt v = polynames; v != nullptr; v = v->next)
        if (v->polycut == poly_cutoff) v->polycut = fresh;
}

void poly_insert_level(polyptrr p, int32_t level) {
    if (is_number(*p)) return;
    if (level == 1) {
        new_term(p, 0, *p);
        return;
    }
    for (poly t = *p; t != nullptr; t = t->next)
        if (!t->numb) poly_insert_level(&t->pcoef, level - 1);
}

void remove_one(polyptrr p, int32_t level) {
    poly t = *p;
    if (is_number(t)) return;
    if (level == 1) {
        *p = t->pcoef;  // a pad
        free_node(t);
        return;
    }
    for (; t != nullptr; t = t->next)
        if (!t->numb) remove_one(&t->pcoef, level - 1);
}

/// The names a1, a2, a3, b1 ... z3.
static void make_dodo() {
    polypt* at = &dodo;
    int16_t depth = 0;
    for (char c = 'a'; c <= 'z'; c++)
        for (char digit = '1'; digit <= '3'; digit++) {
            const char name[3] = {c, digit, 0};
            newpt(at);
            tok_set((*at)->let, name);
            (*at)->depth = ++depth;
            at = &(*at)->next;
        }
}

/// The first stock of the free list: one array, so that the first trees are written in memory order.
static void stock_free_nodes() {
#ifndef TOLVEX_POOLS_DIRECT
    constexpr int32_t k_stock = 5001;
    auto* nodes = static_cast<poly>(checked_malloc(k_stock * sizeof(polynode)));
    for (int32_t i = k_stock - 1; i >= 0; i--) {
        nodes[i].next = polygarb;
        polygarb = &nodes[i];
    }
#endif
}

void init_poly_constants() {
    stock_free_nodes();
    poly_set(1, &poly_1);
    poly_1->ncoef->lint = 1;
    make_dodo();
}
}  // namespace tolvex
