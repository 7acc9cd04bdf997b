#include "poly/dense_mult.h"

#include "poly/dense_kernels.h"
#include "poly/dense_ntt.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
namespace {
// Entries of the shorter operand from which the next method pays; measured on 256-bit vectors.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_karatsuba_entries = 4;
constexpr int32_t k_table_karatsuba_entries = 4;
constexpr int32_t k_ntt_entries = 12;
#else
constexpr int32_t k_karatsuba_entries = 160;
constexpr int32_t k_table_karatsuba_entries = 32;
constexpr int32_t k_ntt_entries = 360;
#endif
}  // namespace

static void copy_entries(uint32_t* to, const uint32_t* from, int32_t n) {
    scratch_copy(to, from, static_cast<size_t>(n) * sizeof(uint32_t));
}
static void clear_entries(uint32_t* x, int32_t n) {
    if (n > 0) scratch_clear(x, static_cast<size_t>(n) * sizeof(uint32_t));
}

// c := a b for bn <= an < 2 bn, with the low parts of `half` entries: three products of half the size
// (Karatsuba, Ofman 1962). The sums of parts may cancel wholly or at their top; as plain arrays they need no
// trimming.
static void karatsuba(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                      uint32_t* c) {
    constexpr int32_t k_unpolled = 1024;
    if (bn >= k_unpolled) poll_interrupt();
    int32_t half = bn / 2, a_high = an - half, b_high = bn - half;
    bool square = a == b && an == bn;
    wf_mult(f, a, half, b, half, c);
    c[2 * half - 1] = 0;
    wf_mult(f, a + half, a_high, b + half, b_high, c + 2 * half);

    ScratchMark mark = scratch_mark();
    auto* a_sum = scratch_array<uint32_t>(a_high);
    auto* b_sum = square ? a_sum : scratch_array<uint32_t>(b_high);
    int32_t n = a_high + b_high - 1;
    auto* middle = scratch_array<uint32_t>(n);
    row_add(f, a, a + half, a_sum, half);
    copy_entries(a_sum + half, a + 2 * half, a_high - half);
    if (!square) {
        row_add(f, b, b + half, b_sum, half);
        copy_entries(b_sum + half, b + 2 * half, b_high - half);
    }
    wf_mult(f, a_sum, a_high, b_sum, b_high, middle);
    row_sub(f, middle, c, middle, 2 * half - 1);
    row_sub(f, middle, c + 2 * half, middle, n);
    row_add(f, c + half, middle, c + half, n);
    scratch_release(mark);
}

// c := a b, a longer: pieces of a of `step` entries each times b, joined where they overlap by bn - 1
// entries.
static void piecewise(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                      uint32_t* c, int32_t step) {
    ScratchMark mark = scratch_mark();
    auto* piece = scratch_array<uint32_t>(step + bn - 1);
    wf_mult(f, a, step, b, bn, c);
    for (int32_t at = step; at < an; at += step) {
        if (an > k_dense_entries) poll_interrupt();
        int32_t n = an - at < step ? an - at : step;
        wf_mult(f, a + at, n, b, bn, piece);
        row_add(f, c + at, piece, c + at, bn - 1);
        copy_entries(c + at + bn - 1, piece + bn - 1, n);
    }
    scratch_release(mark);
}

void wf_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn, uint32_t* c) {
    if (an < bn) {
        const uint32_t* other = a;
        int32_t n = an;
        a = b, an = bn;
        b = other, bn = n;
    }
    if (bn < (f.table ? k_table_karatsuba_entries : k_karatsuba_entries))
        school_mult(f, a, an, b, bn, c);
    else if (!f.table && bn >= k_ntt_entries && an / 8 < bn)
        ntt_mult(f, a, an, b, bn, c);
    else if (!f.table && bn >= k_ntt_entries && an / 8 >= bn)
        piecewise(f, a, an, b, bn, c, 4 * bn);
    else if (an / 2 >= bn)
        piecewise(f, a, an, b, bn, c, bn);
    else
        karatsuba(f, a, an, b, bn, c);
}

void dense_mult(const int32_t* a, int32_t an, const int32_t* b, int32_t bn, int32_t* c) {
    wf_mult(word_field_ring(), reinterpret_cast<const uint32_t*>(a), an, reinterpret_cast<const uint32_t*>(b),
            bn, reinterpret_cast<uint32_t*>(c));
}

void onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                 int32_t yb) {
    if (xa > xb || ya > yb || xa < 0 || ya < 0) {
        printf(" ** bad exps onevar %d, %d, %d, %d\n", xa, xb, ya, yb);
        tolvex_error("potential 0 in onevar_mult.");
    }
    if (a[xb] == 0 || b[yb] == 0) {
        printf(" ** bad upper limits, onevar %d, %d, %d, %d, %d, %d\n", xa, xb, ya, yb, a[xb], b[yb]);
        tolvex_error("0 upper value in onevar_mult.");
    }
    school_mult(word_field_ring(), reinterpret_cast<const uint32_t*>(a) + xa, xb - xa + 1,
                reinterpret_cast<const uint32_t*>(b) + ya, yb - ya + 1,
                reinterpret_cast<uint32_t*>(c) + xa + ya);
}

void fast_array_onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb,
                            int32_t ya, int32_t yb) {
    int32_t given_xa = xa, given_ya = ya;
    while (xa <= xb && a[xa] == 0) xa++;
    while (ya <= yb && b[ya] == 0) ya++;
    if (xa > xb || ya > yb) {
        printf(" ** bad exps fast_array_onevar %d, %d, %d, %d, %d, %d, %d, %d\n", given_xa, xb, given_ya, yb,
               xa, ya, xb - xa, yb - ya);
        tolvex_error("bad exps in fast_array_onevar_mult.");
    }
    clear_entries(reinterpret_cast<uint32_t*>(c), xa + ya);
    dense_mult(a + xa, xb - xa + 1, b + ya, yb - ya + 1, c + xa + ya);
}
}  // namespace tolvex
