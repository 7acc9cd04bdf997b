#include "poly/dense_kernels.h"

#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
// Four rows of the schoolbook square at a time: acc[k] += a0 b[k] + a1 b[k-1] + a2 b[k-2] + a3 b[k-3], where
// b has three zeros on either side. Four products of residues below 2^31 fit 64 bits.
WIDE_VECTORS static void four_rows(uint64_t* __restrict acc, const uint32_t* __restrict b, int32_t n,
                                   const uint32_t* __restrict a) {
    uint64_t a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    for (int32_t k = 0; k < n; k++) acc[k] += a0 * b[k + 3] + a1 * b[k + 2] + a2 * b[k + 1] + a3 * b[k];
}

// The same when the whole sum may pass 2^64: halves of the partial sums are kept apart.
WIDE_VECTORS static void four_rows_split(uint64_t* __restrict low, uint64_t* __restrict high,
                                         const uint32_t* __restrict b, int32_t n,
                                         const uint32_t* __restrict a) {
    uint64_t a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    for (int32_t k = 0; k < n; k++) {
        uint64_t s = a0 * b[k + 3] + a1 * b[k + 2] + a2 * b[k + 1] + a3 * b[k];
        low[k] += s & 0xffffffffu;
        high[k] += s >> 32;
    }
}

static void reduce_split(const WordField& f, const uint64_t* low, const uint64_t* high, uint32_t* c,
                         int32_t n) {
    uint32_t two32 = wf_reduce(f, uint64_t{1} << 32);
    for (int32_t k = 0; k < n; k++)
        c[k] = wf_reduce(f, static_cast<uint64_t>(wf_reduce(f, high[k])) * two32 + wf_reduce(f, low[k]));
}

// bn <= an. Reduction once a coefficient: see "Modern Computer Arithmetic" (Brent, Zimmermann), 2.5.
static void school_residues(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                            uint32_t* c) {
    ScratchMark mark = scratch_mark();
    int32_t bn4 = (bn + 3) & ~3, row = an + 3;
    auto* factors = scratch_array<uint32_t>(bn4);
    auto* padded = scratch_array<uint32_t>(an + 6);
    auto* low = scratch_array<uint64_t>(int64_t{an} + bn4);
    memset(factors + bn4 - 4, 0, 4 * sizeof(uint32_t));
    memcpy(factors, b, static_cast<size_t>(bn) * sizeof(uint32_t));
    memset(padded, 0, 3 * sizeof(uint32_t));
    memcpy(padded + 3, a, static_cast<size_t>(an) * sizeof(uint32_t));
    memset(padded + 3 + an, 0, 3 * sizeof(uint32_t));
    memset(low, 0, (static_cast<size_t>(an) + static_cast<size_t>(bn4)) * sizeof(uint64_t));
    uint64_t square = static_cast<uint64_t>(f.p - 1) * (f.p - 1);
    int32_t n = an + bn - 1;
    if (square <= UINT64_MAX / static_cast<uint32_t>(bn)) {
        for (int32_t i = 0; i < bn4; i += 4) four_rows(low + i, padded, row, factors + i);
        for (int32_t k = 0; k < n; k++) c[k] = wf_reduce(f, low[k]);
    } else {
        auto* high = scratch_array<uint64_t>(int64_t{an} + bn4);
        memset(high, 0, (static_cast<size_t>(an) + static_cast<size_t>(bn4)) * sizeof(uint64_t));
        for (int32_t i = 0; i < bn4; i += 4) four_rows_split(low + i, high + i, padded, row, factors + i);
        reduce_split(f, low, high, c, n);
    }
    scratch_release(mark);
}

// The field need not be the one in force: GF(2^8) is enlarged to GF(2^16).
static void xor_row(const WordField& f, uint32_t* x, const uint32_t* y, int32_t n, uint32_t q) {
    if (q == 0) return;
    if (f.p == 256) {
        const int16_t* products = f256prod[q];
        for (int32_t i = 0; i < n; i++) x[i] ^= static_cast<uint32_t>(products[y[i]]);
        return;
    }
    uint32_t log_q = f2t16log[q];
    for (int32_t i = 0; i < n; i++) {
        if (y[i] == 0) continue;
        uint32_t s = log_q + f2t16log[y[i]];
        x[i] ^= f2t16exp[s > 65534 ? s - 65535 : s];
    }
}

void school_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                 uint32_t* c) {
    if (f.table) {
        memset(c, 0, static_cast<size_t>(an + bn - 1) * sizeof(uint32_t));
        for (int32_t i = 0; i < bn; i++) xor_row(f, c + i, a, an, b[i]);
    } else if (an < bn) {
        school_residues(f, b, bn, a, an, c);
    } else {
        school_residues(f, a, an, b, bn, c);
    }
}

WIDE_VECTORS static void residue_row_add(const uint32_t* a, const uint32_t* b, uint32_t* c, int32_t n,
                                         uint32_t m) {
    for (int32_t i = 0; i < n; i++) c[i] = reduce_once(a[i] + b[i], m);
}

WIDE_VECTORS static void residue_row_sub(const uint32_t* a, const uint32_t* b, uint32_t* c, int32_t n,
                                         uint32_t m) {
    for (int32_t i = 0; i < n; i++) {
        uint32_t d = a[i] - b[i], e = d + m;  // d wraps exactly when it is the greater of the two
        c[i] = d < e ? d : e;
    }
}

void row_add(const WordField& f, const uint32_t* a, const uint32_t* b, uint32_t* c, int32_t n) {
    if (f.table)
        for (int32_t i = 0; i < n; i++) c[i] = a[i] ^ b[i];
    else
        residue_row_add(a, b, c, n, f.p);
}

void row_sub(const WordField& f, const uint32_t* a, const uint32_t* b, uint32_t* c, int32_t n) {
    if (f.table)
        for (int32_t i = 0; i < n; i++) c[i] = a[i] ^ b[i];
    else
        residue_row_sub(a, b, c, n, f.p);
}

WIDE_VECTORS static void residue_row_scale(uint32_t* x, int32_t n, FixedFactor q, uint32_t m) {
    for (int32_t i = 0; i < n; i++) x[i] = fixed_mult(x[i], q, m);
}

void row_scale(const WordField& f, uint32_t* x, int32_t n, uint32_t q) {
    if (f.table)
        for (int32_t i = 0; i < n; i++) x[i] = wf_mul(f, x[i], q);
    else
        residue_row_scale(x, n, fixed_factor(q, f.p), f.p);
}

// minus_q is m - q, so that the row is an addition.
WIDE_VECTORS static void residue_row_submul(uint32_t* __restrict x, const uint32_t* __restrict y, int32_t n,
                                            FixedFactor minus_q, uint32_t m) {
    for (int32_t i = 0; i < n; i++) x[i] = reduce_once(x[i] + fixed_mult(y[i], minus_q, m), m);
}

WIDE_VECTORS static void residue_row_submul_2(uint32_t* __restrict x, const uint32_t* __restrict y, int32_t n,
                                              FixedFactor minus_q1, FixedFactor minus_q0, uint32_t m) {
    for (int32_t i = 0; i < n; i++) {
        uint32_t t = reduce_once(x[i] + fixed_mult(y[i], minus_q0, m), m);
        x[i] = reduce_once(t + fixed_mult(y[i - 1], minus_q1, m), m);
    }
}

static FixedFactor negated_factor(const WordField& f, uint32_t q) {
    return fixed_factor(q == 0 ? 0 : f.p - q, f.p);
}

void row_submul(const WordField& f, uint32_t* x, const uint32_t* y, int32_t n, uint32_t q) {
    if (f.table)
        xor_row(f, x, y, n, q);
    else if (q != 0)
        residue_row_submul(x, y, n, negated_factor(f, q), f.p);
}

void row_submul_2(const WordField& f, uint32_t* x, const uint32_t* y, int32_t n, uint32_t q1, uint32_t q0) {
    if (n <= 0) return;
    if (f.table) {
        xor_row(f, x, y, n, q0);
        xor_row(f, x + 1, y, n - 1, q1);
        return;
    }
    FixedFactor f1 = negated_factor(f, q1), f0 = negated_factor(f, q0);
    x[0] = reduce_once(x[0] + fixed_mult(y[0], f0, f.p), f.p);
    residue_row_submul_2(x + 1, y + 1, n - 1, f1, f0, f.p);
}
}  // namespace tolvex
