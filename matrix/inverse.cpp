#include "matrix/inverse.h"

#include "matrix/pivots.h"
#include "numbers/residue.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "storage/interrupt.h"

#include <numeric>
namespace tolvex {
/// How good a pivot is: 0 none, 1 usable, 2 a number.
static int32_t pivot_rank(const quolynode* q) {
    if (quoly_iszero(q)) return 0;
    if (!q->numb) return 1;
    return !modularmode || finf || mod_is_prime || std::gcd(q->ncoef->lint, modulus) == 1 ? 2 : 0;
}

/// A pivot of column k among the rows from k on goes to row k. False if there is none.
static bool bring_pivot(workptr a, workptr b, int32_t n, int32_t k) {
    int32_t best = -1, rank = 0;
    for (int32_t r = k; r < n && rank < 2; r++) {
        int32_t here = pivot_rank(a[r + int64_t{k} * n]);
        if (here <= rank) continue;
        rank = here;
        best = r;
    }
    if (best < 0) return false;
    exchange_rows(a, n, k, best);
    exchange_rows(b, n, k, best);
    return true;
}

/// Row k times f.
static void scale_row(workptr a, int32_t n, int32_t k, quoly f) {
    for (int64_t c = 0; c < n; c++)
        if (!quoly_iszero(a[k + c * n])) fast_quoly_mult(&a[k + c * n], f);
}

/// Row r minus f times row k.
static void reduce_row(workptr a, int32_t n, int32_t r, int32_t k, quoly f) {
    for (int64_t c = 0; c < n; c++) {
        if (quoly_iszero(a[k + c * n])) continue;
        quoly term = nullptr;
        quoly_mult(f, a[k + c * n], &term);
        best_quoly_sub(&a[r + c * n], term);
    }
}

bool invert_by_elimination(workptr a, workptr result, int32_t n) {
    for (int64_t k = 0; k < int64_t{n} * n; k++) quoly_set(k % (n + 1) == 0, &result[k]);
    for (int32_t k = 0; k < n; k++) {
        if (!bring_pivot(a, result, n, k)) return false;
        quoly f = nullptr;
        quoly_assign(a[k + int64_t{k} * n], &f);
        quoly_reciprocal(&f);
        scale_row(a, n, k, f);
        scale_row(result, n, k, f);
        for (int32_t r = 0; r < n; r++) {
            if (r == k || quoly_iszero(a[r + int64_t{k} * n])) continue;
            poll_interrupt();
            quoly_assign(a[r + int64_t{k} * n], &f);
            reduce_row(a, n, r, k, f);
            reduce_row(result, n, r, k, f);
        }
        free_quoly(&f);
    }
    return true;
}
}  // namespace tolvex
