// Heights, depths and degrees.
#include "poly/field_shape.h"
#include "poly/poly_shape.h"
#include "poly/size_estimates.h"
namespace tolvex {
static bool is_pad(const polynode* p) { return p->exp == 0 && !p->numb && p->next == nullptr; }

/// Levels on the deepest path from p on, pads not counted.
static int32_t levels_used(const polynode* p) {
    if (is_number(p)) return 0;
    int32_t here = is_pad(p) ? 0 : 1, deepest = 0;
    for (; p != nullptr; p = p->next) {
        int32_t below = p->numb ? 0 : levels_used(p->pcoef);
        if (below > deepest) deepest = below;
    }
    return deepest + here;
}

int32_t poly_height(const polynode* p) { return is_number(p) ? 0 : levels_used(p) - 1; }

/// Level d lies in the tower.
static bool in_field(int32_t d) { return field_depth > 0 && d >= field_depth; }

int32_t max_below(const polynode* p, int32_t depth) {
    if (is_number(p) || in_field(depth)) return 0;
    int32_t deepest = 0;
    for (; p != nullptr; p = p->next) {
        int32_t below = p->numb ? 0 : max_below(p->pcoef, depth + 1);
        if (below == 0 && p->exp != 0) below = depth;
        if (below > deepest) deepest = below;
    }
    return deepest;
}

static int32_t depth_below_top(const polynode* p) {
    int32_t deepest = 0;
    for (; p != nullptr; p = p->next) {
        if (p->numb || is_number(p->pcoef)) continue;
        int32_t below = 1 + depth_below_top(p->pcoef);
        if (below > deepest) deepest = below;
    }
    return deepest;
}

int32_t quick_depth_below(const polynode* p, int32_t depth) {
    if (field_depth == 0) return depth_below_top(p);
    int32_t deepest = max_below(p, depth);
    return deepest > depth ? deepest - depth : 0;
}

static void mark_levels(const polynode* p, int32_t depth, bool* used) {
    if (in_field(depth)) return;
    for (; p != nullptr; p = p->next) {
        if (p->exp != 0) used[depth] = true;
        if (!p->numb && !is_number(p->pcoef)) mark_levels(p->pcoef, depth + 1, used);
    }
}

int32_t polys_there(const polynode* p, int32_t depth) {
    bool used[k_levels] = {};
    mark_levels(p, depth, used);
    int32_t count = 0;
    for (bool u : used) count += u;
    return count;
}

boolean height_is_1(const polynode* n) {
    for (; n != nullptr; n = n->next)
        if (!n->numb && !is_number(n->pcoef)) return 0;
    return 1;
}

static constexpr int32_t k_terms_looked_at = 4;

boolean depth_only_2(const polynode* n) {
    for (int32_t i = 0; n != nullptr && i < k_terms_looked_at; i++, n = n->next) {
        if (n->numb) continue;
        const polynode* c = n->pcoef;
        for (int32_t j = 0; c != nullptr && j < k_terms_looked_at; j++, c = c->next)
            if (!c->numb && !is_number(c->pcoef)) return 0;
    }
    return 1;
}

void max_degree(const polynode* q, int32_t lev, int32_t* ans) {
    if (lev == 1 || is_number(q)) {
        if (q->exp > *ans) *ans = q->exp;  // falling exponents: the first one is the largest
        return;
    }
    for (; q != nullptr; q = q->next) {
        if (!q->numb)
            max_degree(q->pcoef, lev - 1, ans);
        else if (*ans < 0)
            *ans = 0;
    }
}

int32_t sum_degrees(const polynode* p, int32_t depth, int32_t stop) {
    if (is_number(p) || in_field(depth)) return 0;
    int32_t most = k_no_degree;
    for (; p != nullptr && most < stop; p = p->next) {
        int64_t sum = p->exp;
        if (!p->numb) sum += sum_degrees(p->pcoef, depth + 1, stop);
        if (sum > INT32_MAX) sum = INT32_MAX;
        if (sum > most) most = static_cast<int32_t>(sum);
    }
    return most;
}

void poly_level_depth(int32_t ulevel, int32_t vlevel, int32_t size, int32_t* start, int32_t* lim) {
    int32_t deeper = ulevel > vlevel ? ulevel : vlevel;
    int32_t most = size < 1200 ? 4 : size < 10000 ? 8 : 12;
    *start = 2;
    *lim = deeper < most ? deeper : most;
}
}  // namespace tolvex
