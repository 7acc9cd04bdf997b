#include "poly/packed_form.h"
namespace tolvex {
/// zero_from: below the leaf nearest to the top the exponent 0 occurs in every level.
static void survey_chain(const polynode* p, int32_t level, TreeSurvey* s, int32_t* zero_from) {
    for (; p != nullptr; p = p->next) {
        if (p->exp < s->least[level]) s->least[level] = p->exp;
        if (p->exp > s->most[level]) s->most[level] = p->exp;
        const polynode* leaf = p->numb ? p : is_number(p->pcoef) ? p->pcoef : nullptr;
        if (leaf == nullptr) {
            if (level + 1 > s->depth) {
                s->depth = level + 1;
                s->least[level + 1] = INT32_MAX;
                s->most[level + 1] = INT32_MIN;
            }
            survey_chain(p->pcoef, level + 1, s, zero_from);
            continue;
        }
        s->terms++;
        if (*zero_from > level + 1) *zero_from = level + 1;
        if (!lintmode && leaf->ncoef->size > s->digits) s->digits = leaf->ncoef->size;
    }
}

void survey_tree(const polynode* p, TreeSurvey* s) {
    int32_t zero_from = k_levels;
    s->depth = is_number(p) ? 0 : 1;
    s->digits = 0;
    s->terms = 0;
    s->least[1] = INT32_MAX;
    s->most[1] = INT32_MIN;
    survey_chain(p, 1, s, &zero_from);
    for (int32_t level = zero_from; level <= s->depth; level++) {
        if (s->least[level] > 0) s->least[level] = 0;
        if (s->most[level] < 0) s->most[level] = 0;
    }
}

bool plan_product(const TreeSurvey& n, const TreeSurvey& m, PackedPlan* plan) {
    plan->count = plan->bits = 0;
    for (int32_t level = 1; level <= maxx(n.depth, m.depth); level++) {
        int32_t n_least = 0, n_most = 0, m_least = 0, m_most = 0;
        if (level <= n.depth) n_least = n.least[level], n_most = n.most[level];
        if (level <= m.depth) m_least = m.least[level], m_most = m.most[level];
        if (n_least == 0 && n_most == 0 && m_least == 0 && m_most == 0) continue;
        int64_t span_n = static_cast<int64_t>(n_most) - n_least,
                span_m = static_cast<int64_t>(m_most) - m_least;
        int64_t most = static_cast<int64_t>(n_most) + m_most, least = static_cast<int64_t>(n_least) + m_least;
        if (span_n + span_m > INT32_MAX || most > INT32_MAX || least < INT32_MIN) return false;
        PackedLevel& l = plan->level[plan->count++];
        l.real = level;
        l.least_n = n_least;
        l.least_m = m_least;
        l.span_n = static_cast<int32_t>(span_n);
        l.span_m = static_cast<int32_t>(span_m);
        l.bits = span_n + span_m == 0 ? 0 : 64 - __builtin_clzll(static_cast<uint64_t>(span_n + span_m));
        plan->bits += l.bits;
    }
    int32_t shift = plan->bits;
    for (int32_t i = 0; i < plan->count; i++) {
        shift -= plan->level[i].bits;
        plan->level[i].shift = shift;
    }
    return true;
}
}  // namespace tolvex
