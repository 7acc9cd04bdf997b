#include "poly/pack_measure.h"

#include "poly/poly_basic.h"
#include "storage/interrupt.h"
namespace tolvex {
static void open_level(PackMeasure* m, int32_t level) {
    m->levels = level + 1;
    m->least[level] = INT32_MAX;
    m->most[level] = INT32_MIN;
}

static void measure_any(const polynode* p, int32_t level, PackMeasure* m, int32_t* zero_from);

/// zero_from: below the leaf nearest to the top the exponent 0 occurs in every level.
template <bool polled>
static void measure_chain(const polynode* p, int32_t level, PackMeasure* m, int32_t* zero_from) {
    int32_t least = m->least[level], most = m->most[level], digits = m->digits;
    int64_t leaves = 0;
    for (; p != nullptr; p = p->next) {
        if (p->exp < least) least = p->exp;
        if (p->exp > most) most = p->exp;
        const polynode* leaf = p->numb ? p : is_number(p->pcoef) ? p->pcoef : nullptr;
        if (leaf == nullptr) {
            if (level + 1 >= m->levels) open_level(m, level + 1);
            measure_any(p->pcoef, level + 1, m, zero_from);
            poll_interrupt();
            continue;
        }
        leaves++;
        if (!lintmode && leaf->ncoef->size > digits) digits = leaf->ncoef->size;
        if constexpr (polled) poll_every<k_terms_unpolled>(leaves);
    }
    m->least[level] = least;
    m->most[level] = most;
    if (leaves == 0) return;
    if (digits > m->digits) m->digits = digits;
    if (*zero_from > level + 1) *zero_from = level + 1;
    m->terms += leaves;
}

/// A chain that begins with a small exponent is short.
static void measure_any(const polynode* p, int32_t level, PackMeasure* m, int32_t* zero_from) {
    if (may_be_long(p))
        measure_chain<true>(p, level, m, zero_from);
    else
        measure_chain<false>(p, level, m, zero_from);
}

void pack_measure(const polynode* p, PackMeasure* m) {
    int32_t zero_from = k_levels;
    m->levels = 0;
    m->digits = 1;
    m->terms = 0;
    if (is_number(p)) {
        m->terms = 1;
        if (!lintmode) m->digits = p->ncoef->size;
        return;
    }
    open_level(m, 0);
    measure_any(p, 0, m, &zero_from);
    for (int32_t level = zero_from; level < m->levels; level++) {
        if (m->least[level] > 0) m->least[level] = 0;
        if (m->most[level] < 0) m->most[level] = 0;
    }
}
}  // namespace tolvex
