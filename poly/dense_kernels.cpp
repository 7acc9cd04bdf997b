#include "poly/dense_kernels.h"

#include "poly/dense_school.h"

#include <cstring>
namespace tolvex {
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
