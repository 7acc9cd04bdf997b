#include "matrix/bareiss.h"

#include "matrix/denominators.h"
#include "matrix/minors.h"
#include "matrix/pivots.h"
#include "poly/poly_basic.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <algorithm>
namespace tolvex {
// ---- elimination ---------------------------------------------------------------------------------------

namespace {
struct Elimination {
    quoly* a;
    int32_t m;
    quoly previous;  // the pivot before, nil: 1; it belongs to a copy of its own
    bool negative;
};
}  // namespace

/// a[r, c] := (pivot a[r, c] - a[r, k] a[k, c]) / previous.
static void eliminate(Elimination& e, int32_t k, int32_t r, int32_t c) {
    quoly &target = e.a[r + int64_t{c} * e.m], pivot = e.a[k + int64_t{k} * e.m],
          left = e.a[r + int64_t{k} * e.m], above = e.a[k + int64_t{c} * e.m];
    if (!quoly_iszero(target)) fast_quoly_mult(&target, pivot);
    if (!quoly_iszero(left) && !quoly_iszero(above)) {
        quoly product = nullptr;
        quoly_mult(left, above, &product);
        best_quoly_sub(&target, product);
    }
    if (e.previous != nullptr && !quoly_iszero(target)) fast_quoly_quot(&target, e.previous, false);
}

/// A pivot goes to (k, k). False: the determinant is 0.
static bool bring_pivot(Elimination& e, int32_t k) {
    int32_t row = 0, column = 0;
    if (!find_good_spot(e.a, e.m, k, e.m - k, &row, &column)) return false;
    if (row != k) e.negative = !e.negative;
    if (column != k) e.negative = !e.negative;
    exchange_rows(e.a, e.m, k, row);
    exchange_columns(e.a, e.m, k, column);
    return true;
}

static void step(Elimination& e, int32_t k) {
    for (int32_t c = k + 1; c < e.m; c++)
        for (int32_t r = k + 1; r < e.m; r++) {
            eliminate(e, k, r, c);
            poll_interrupt();
        }
    quoly_assign(e.a[k + int64_t{k} * e.m], &e.previous);
}

/// The determinant of the block from (k, k) on, whose elements are minors: their expansion is the determinant
/// of the whole times a power of the pivot before.
static void finish_by_minors(Elimination& e, int32_t k, quolyptr det) {
    int32_t left = e.m - k;
    small_determ(e.a + k + int64_t{k} * e.m, e.m, left, det);
    for (int32_t i = 1; e.previous != nullptr && i < left; i++) fast_quoly_quot(det, e.previous, false);
}

void bareiss_determinant(quoly* a, int32_t m, int32_t minors_at, quolyptr det) {
    quoly divisor = nullptr;
    quoly_set(1, &divisor);
    clear_columns(a, m, &divisor);
    Elimination e = {a, m, nullptr, false};
    int32_t last = std::max(1, std::min(minors_at, k_most_block_rows)), k = 0;
    while (m - k > last && bring_pivot(e, k)) step(e, k++);
    if (m - k > last)
        quoly_set(0, det);
    else
        finish_by_minors(e, k, det);
    free_quoly(&e.previous);
    if (e.negative) quoly_inplace(*det);
    if (!quoly_equal(divisor, quol_num_1)) fast_quoly_quot(det, divisor, false);
    free_quoly(&divisor);
}
}  // namespace tolvex
