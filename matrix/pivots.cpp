#include "matrix/pivots.h"

#include "numbers/num_compare.h"
#include "numbers/num_sign.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mass.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
namespace tolvex {
/// By size: the bits of a chain; of a residue its value.
static int64_t size_of_number(const number* n) {
    if (lintmode) return n->lint;
    return int64_t{k_digit_bits} * (n->size - 1) +
           std::bit_width(static_cast<uint32_t>(std::abs(n->head->value)));
}

static bool is_unit_number(const number* n) {
    if (lintmode) return n->lint == 1 || (modularmode && !finf && n->lint == modulus - 1);
    return n->size == 1 && std::abs(n->head->value) == 1;
}

namespace {
struct Spot {
    int32_t row, column;
    int64_t size;
};
}  // namespace

bool find_good_spot(const quoly* a, int32_t m, int32_t i, int32_t num_cols, int32_t* row, int32_t* column) {
    Spot number_spot = {-1, -1, INT64_MAX}, other = {-1, -1, INT64_MAX};
    for (int32_t c = i; c < std::min(m, i + num_cols); c++) {
        for (int32_t r = i; r < m; r++) {
            const quolynode* q = a[r + int64_t{c} * m];
            if (quoly_iszero(q)) continue;
            int64_t size = q->numb ? size_of_number(q->ncoef) : quoly_mass(q);
            Spot& best = q->numb ? number_spot : other;
            if (size < best.size) best = {r, c, size};
            if (!q->numb || !is_unit_number(q->ncoef)) continue;
            *row = r;
            *column = c;
            return true;
        }
        if (c == i && number_spot.row < 0 && other.row < 0) return false;
    }
    const Spot& best = number_spot.row >= 0 ? number_spot : other;
    *row = best.row;
    *column = best.column;
    return true;
}

void exchange_rows(quoly* a, int32_t m, int32_t r, int32_t s) {
    if (r == s) return;
    for (int64_t c = 0; c < m; c++) std::swap(a[r + c * m], a[s + c * m]);
}

void exchange_columns(quoly* a, int32_t m, int32_t r, int32_t s) {
    if (r == s) return;
    std::swap_ranges(a + int64_t{r} * m, a + int64_t{r} * m + m, a + int64_t{s} * m);
}
}  // namespace tolvex
