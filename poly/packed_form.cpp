#include "poly/packed_form.h"
namespace tolvex {
bool plan_product(const PackMeasure& n, const PackMeasure& m, PackedPlan* plan) {
    plan->count = plan->bits = 0;
    for (int32_t level = 0; level < maxx(n.levels, m.levels); level++) {
        int32_t n_least = 0, n_most = 0, m_least = 0, m_most = 0;
        if (level < n.levels) n_least = n.least[level], n_most = n.most[level];
        if (level < m.levels) m_least = m.least[level], m_most = m.most[level];
        if (n_least == 0 && n_most == 0 && m_least == 0 && m_most == 0) continue;
        int64_t span_n = static_cast<int64_t>(n_most) - n_least,
                span_m = static_cast<int64_t>(m_most) - m_least;
        int64_t most = static_cast<int64_t>(n_most) + m_most, least = static_cast<int64_t>(n_least) + m_least;
        if (span_n + span_m > INT32_MAX || most > INT32_MAX || least < INT32_MIN) return false;
        PackedLevel& l = plan->level[plan->count++];
        l.real = level + 1;
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
