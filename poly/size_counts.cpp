// Counters of nodes and terms. They differ in where they give up and in what a coefficient of the field
// counts.
#include "poly/field_shape.h"
#include "poly/size_estimates.h"
namespace tolvex {
// ---- nodes ---------------------------------------------------------------------------------------------

/// Nodes of the chain n, no more than limit.
static int32_t count_nodes(const polynode* n, int32_t limit) {
    int32_t count = 0;
    for (; n != nullptr && count < limit; n = n->next) {
        count++;
        if (!n->numb && count < limit) count += count_nodes(n->pcoef, limit - count);
    }
    return count;
}

int16_t node_total(const polynode* n) { return static_cast<int16_t>(count_nodes(n, 1000)); }
int16_t big_node_total(const polynode* n) { return static_cast<int16_t>(count_nodes(n, 8000)); }
int16_t new_node_total(const polynode* n) { return big_node_total(n); }
int32_t bigg_node_total(const polynode* n) { return count_nodes(n, 1000000); }
int32_t bigger_node_total(const polynode* n) { return bigg_node_total(n); }

int32_t fast_poly_length(const polynode* n, int32_t limit) {
    int32_t count = 0;
    for (; n != nullptr && count <= limit; n = n->next) count++;
    return count;
}

int16_t poly_nodes(const polynode* n) {
    constexpr int32_t limit = 2000;
    int32_t count = 0;
    for (; n != nullptr && count < limit; n = n->next) {
        count++;
        if (!n->numb && count < limit) count += fast_poly_length(n->pcoef, limit - count - 1);
    }
    return static_cast<int16_t>(count);
}

// ---- terms ---------------------------------------------------------------------------------------------

/// Terms of the chain n, no more than limit. n stands at level depth of a tower, or depth is 0.
static int32_t count_terms(const polynode* n, int32_t depth, int32_t limit) {
    int32_t count = 0, below = depth == 0 ? 0 : depth + 1;
    for (; n != nullptr && count < limit; n = n->next) {
        bool one = n->numb || is_number(n->pcoef) || (below > 0 && is_field_element(n->pcoef, below));
        count += one ? 1 : count_terms(n->pcoef, below, limit - count);
    }
    return count;
}

static int16_t terms_up_to(const polynode* n, int32_t depth, int32_t limit) {
    if (field_depth == 0) depth = 0;
    if (depth > 0 && is_field_element(n, depth)) return 1;
    return static_cast<int16_t>(count_terms(n, depth, limit));
}

int16_t fast_numterms(const polynode* n) { return terms_up_to(n, 0, 2000); }
int16_t poly_numterms(const polynode* n) { return terms_up_to(n, 0, 20000); }
int16_t qpoly_numterms(const polynode* n, int32_t depth) { return terms_up_to(n, depth, 1001); }
int16_t q_poly_numterms(const polynode* n, int32_t depth) { return terms_up_to(n, depth, 2000); }
int16_t fast_f_numterms(const polynode* n, int16_t depth) { return terms_up_to(n, depth, 2000); }
int16_t f_poly_numterms(const polynode* n, int32_t depth) { return terms_up_to(n, depth, 20000); }

// ---- the dense box of exponents ------------------------------------------------------------------------

static constexpr int32_t k_large = 1600;

/// Places that the exponents 0..e take.
static int32_t places(int32_t e) { return e < 0 ? 1 : e == INT32_MAX ? e : e + 1; }

static int32_t walk_box(const polynode* n, int32_t depth) {
    int32_t count = 0;
    for (; n != nullptr; n = n->next) {
        if (places(n->exp) > deglist[depth]) deglist[depth] = places(n->exp);
        bool pad = n->exp == 0 && !n->numb;
        if (!pad) count++;
        if (n->numb) continue;
        if (is_number(n->pcoef))
            count++;
        else
            count += walk_box(n->pcoef, depth + 1);
        if (count > k_large) break;
    }
    return count > 2 * k_large ? 2 * k_large : count;
}

int32_t expon_node_total(const polynode* n, int32_t depth, boolean init, int32_t* expop) {
    if (init) {
        for (int32_t d = depth; d < k_levels; d++) deglist[d] = 0;
        deglist[depth] = places(n->exp);
    }
    int32_t count = walk_box(n, depth);
    if (!init) return count;
    int64_t box = 1;
    for (int32_t d = depth; d < k_levels && deglist[d] > 0 && box < k_box_overflow; d++) box *= deglist[d];
    *expop = box > k_box_overflow ? k_box_overflow : static_cast<int32_t>(box);
    return count;
}
}  // namespace tolvex
