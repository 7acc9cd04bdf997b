#include "matrix/word_determinant.h"

#include "matrix/float_lu.h"
#include "matrix/word_rows.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <numeric>
namespace tolvex {
/// The first row from k on whose entry in column k is not 0, n if there is none.
static int32_t pivot_row(const uint32_t* a, int32_t n, int32_t k) {
    int32_t r = k;
    while (r < n && a[int64_t{r} * n + k] == 0) r++;
    return r;
}

static void exchange_rows(uint32_t* a, int32_t n, int32_t r, int32_t s, int32_t from) {
    std::swap_ranges(a + int64_t{r} * n + from, a + int64_t{r} * n + n, a + int64_t{s} * n + from);
}

// ---- table fields --------------------------------------------------------------------------------------

/// Characteristic 2: exchanges change no sign.
static uint32_t table_determinant(const WordField& f, uint32_t* a, int32_t n) {
    uint32_t det = 1;
    for (int32_t k = 0; k < n; k++) {
        int32_t r = pivot_row(a, n, k);
        if (r == n) return 0;
        if (r != k) exchange_rows(a, n, r, k, k);
        const uint32_t* pivot = a + int64_t{k} * n;
        det = wf_mul(f, det, pivot[k]);
        uint32_t inverse = wf_inverse(f, pivot[k]);
        for (r = k + 1; r < n; r++) {
            uint32_t* row = a + int64_t{r} * n;
            if (row[k] == 0) continue;
            uint32_t factor = wf_mul(f, row[k], inverse);
            add_row_multiple(f, row + k, pivot + k, factor, n - k);
        }
        poll_interrupt();
    }
    return det;
}

uint32_t word_determinant(const WordField& f, uint32_t* a, int32_t n) {
    return f.table ? table_determinant(f, a, n) : float_lu_determinant(f, a, n);
}

// ---- composite moduli ----------------------------------------------------------------------------------

/// A unit of column k, if there is one among the rows from k on, goes to row k, else any entry that is not 0.
/// False: the column is empty.
static bool bring_unit(uint32_t m, uint32_t* a, int32_t n, int32_t k, bool* negative) {
    int32_t best = n;
    for (int32_t r = k; r < n; r++) {
        uint32_t entry = a[int64_t{r} * n + k];
        if (entry == 0) continue;
        if (best == n) best = r;
        if (std::gcd(entry, m) != 1) continue;
        best = r;
        break;
    }
    if (best == n) return false;
    if (best == k) return true;
    exchange_rows(a, n, best, k, k);
    *negative = !*negative;
    return true;
}

/// Row r has 0 in column k afterwards: remainders of the two entries until one is 0.
static void clear_by_remainders(const WordField& f, uint32_t* a, int32_t n, int32_t k, int32_t r,
                                bool* negative) {
    uint32_t *pivot = a + int64_t{k} * n, *row = a + int64_t{r} * n;
    while (row[k] != 0) {
        add_row_multiple(f, row + k, pivot + k, wf_neg(f, row[k] / pivot[k]), n - k);
        if (row[k] == 0) return;
        exchange_rows(a, n, r, k, k);
        *negative = !*negative;
    }
}

uint32_t euclid_determinant(uint32_t m, uint32_t* a, int32_t n) {
    WordField f = word_field_prime(m);  // its arithmetic, without inverses, is right for every modulus
    uint32_t det = 1 % m;
    bool negative = false;
    for (int32_t k = 0; k < n; k++) {
        if (!bring_unit(m, a, n, k, &negative)) return 0;
        for (int32_t r = k + 1; r < n; r++) {
            clear_by_remainders(f, a, n, k, r, &negative);
            if (r % 64 == 0) poll_interrupt();
        }
        det = wf_mul(f, det, a[int64_t{k} * n + k]);
        poll_interrupt();
    }
    return negative ? wf_neg(f, det) : det;
}
}  // namespace tolvex
