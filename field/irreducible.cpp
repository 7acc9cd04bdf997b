#include "field/irreducible.h"

#include "field/factor_words.h"
#include "storage/scratch.h"
namespace tolvex {
bool tw_irreducible(const TowerWords& t, int32_t h) {
    const int32_t n = t.at[h].n;
    ScratchMark mark = scratch_mark();
    CoefficientField k;
    open_field(&k, t, h - 1);
    auto* f = new_elements(k, n + 1);
    copy_elements(k, t.at[h].p, n, f);
    tw_set(k.t, k.h, 1, f + n * k.size);
    const bool irreducible = least_degree(k, f, n) == n;
    scratch_release(mark);
    return irreducible;
}
}  // namespace tolvex
