#include "matrix/coefficients.h"
namespace tolvex {
poly poly_of_words(const uint32_t* c, int32_t n, int32_t level) {
    return poly_of_coefficients(n, level, [&](int32_t k) -> imptr {
        if (c[k] == 0) return nullptr;
        imptr leaf;
        newimag(&leaf);
        leaf->lint = static_cast<int32_t>(c[k]);
        return leaf;
    });
}

poly poly_of_crt(CrtTerms& t, int32_t n, int32_t level) {
    int64_t i = 0;
    return poly_of_coefficients(n, level, [&](int32_t k) -> imptr {
        if (i == t.count || t.index[i] != k) return nullptr;
        imptr c;
        newimag(&c);
        leaf_of_crt(&t, i++, c);
        if (!iszero(c)) return c;
        free_imag(&c);
        return nullptr;
    });
}

PackTerms image_terms(const uint32_t* c, int32_t n) {
    PackTerms t = {0, scratch_array<int64_t>(int64_t{n} + 1), {scratch_array<uint32_t>(int64_t{n} + 1)}};
    for (int32_t k = n; k >= 0; k--) {
        if (c[k] == 0) continue;
        t.index[t.count] = k;
        t.residue[t.count++] = c[k];
    }
    return t;
}
}  // namespace tolvex
