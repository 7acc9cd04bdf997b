#include "matrix/growth.h"

#include "quoly/quoly_basic.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
/// The box grows to hold the exponents of one more entry, which has `levels` of them.
static void widen(PackMeasure* box, const PackMeasure& here) {
    for (int32_t i = box->levels; i < here.levels; i++) box->most[i] = box->least[i] = 0;
    box->levels = std::max(box->levels, here.levels);
    for (int32_t i = 0; i < here.levels; i++) {
        box->most[i] = std::max(box->most[i], here.most[i]);
        box->least[i] = std::min(box->least[i], here.least[i]);
    }
}

void measure_entries(const quolynode* const* a, int64_t count, EntryMeasure* e) {
    *e = {};
    int64_t terms = 0, entries = 0;
    for (int64_t k = 0; k < count; k++) {
        if (a[k] == nullptr || quoly_iszero(a[k])) continue;
        PackMeasure here = {};
        here.terms = 1;
        if (!a[k]->numb) pack_measure(a[k]->numer, &here);
        terms += here.terms;
        entries++;
        widen(&e->box, here);
        poll_interrupt();
    }
    e->filled = static_cast<double>(entries) / static_cast<double>(count);
    e->entry_terms = static_cast<double>(terms) / static_cast<double>(std::max<int64_t>(entries, 1));
}

double product_monomials(const EntryMeasure& e, int32_t k) {
    double monomials = 1;
    for (int32_t i = 0; i < e.box.levels; i++) {
        double degree = static_cast<double>(k) * (e.box.most[i] - e.box.least[i]);
        monomials *= degree + 1;
    }
    return monomials;
}

double minor_terms(const EntryMeasure& e, int32_t k) {
    double products = 1, row_terms = e.filled * e.entry_terms;
    for (int32_t i = 1; i <= k; i++) products *= std::max(1.0, i * row_terms);
    return std::min(products, product_monomials(e, k));
}
}  // namespace tolvex
