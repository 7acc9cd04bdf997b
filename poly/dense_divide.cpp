#include "poly/dense_divide.h"

#include "numbers/residue.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_newton_entries = 6;
#else
constexpr int32_t k_newton_entries = 400;  // of the divisor and of the quotient, from which the inverse pays
#endif
}  // namespace

// Two quotient entries a pass while they come in pairs, then one: the top entries first.
static void school_div_mod(const WordField& f, uint32_t* x, int32_t xdeg, const uint32_t* y, int32_t ydeg,
                           uint32_t inverse, uint32_t* q) {
    int32_t at = xdeg - ydeg;  // exponent of the next quotient entry
    for (; at > 0; at -= 2) {
        uint32_t q1 = wf_mul(f, x[at + ydeg], inverse), q0 = 0;
        if (ydeg > 0) {
            uint32_t below = wf_sub(f, x[at + ydeg - 1], wf_mul(f, q1, y[ydeg - 1]));
            q0 = wf_mul(f, below, inverse);
        } else {
            q0 = wf_mul(f, x[at - 1], inverse);
        }
        row_submul_2(f, x + at - 1, y, ydeg + 1, q1, q0);
        x[at + ydeg] = 0;
        if (q != nullptr) q[at] = q1, q[at - 1] = q0;
    }
    if (at == 0) {
        uint32_t q0 = wf_mul(f, x[ydeg], inverse);
        row_submul(f, x, y, ydeg + 1, q0);
        if (q != nullptr) q[0] = q0;
    }
}

// The precision doubles (von zur Gathen, Gerhard, "Modern Computer Algebra", 9.1).
void wf_series_inverse(const WordField& f, const uint32_t* h, int32_t n, uint32_t inverse, uint32_t* g) {
    constexpr int32_t first = 32;
    g[0] = inverse;
    int32_t have = 1;
    uint32_t minus_inverse = wf_neg(f, inverse);
    for (; have < n && have < first; have++) {
        uint32_t s = 0;
        for (int32_t i = 1; i <= have; i++) s = wf_add(f, s, wf_mul(f, h[i], g[have - i]));
        g[have] = wf_mul(f, s, minus_inverse);
    }
    ScratchMark mark = scratch_mark();
    auto* error_terms = scratch_array<uint32_t>(int64_t{2} * n);
    auto* correction = scratch_array<uint32_t>(int64_t{2} * n);
    while (have < n) {
        int32_t next = have < n - have ? 2 * have : n, fresh = next - have;
        wf_mult(f, h, next, g, have, error_terms);  // 1 + t^have (...)
        wf_mult(f, error_terms + have, fresh, g, fresh, correction);
        for (int32_t i = 0; i < fresh; i++) g[have + i] = wf_neg(f, correction[i]);
        have = next;
    }
    scratch_release(mark);
}

// Quotient entries in blocks of at most ydeg, each from the inverse of the reversed y.
static void newton_div_mod(const WordField& f, uint32_t* x, int32_t xdeg, const uint32_t* y, int32_t ydeg,
                           uint32_t inverse, uint32_t* q) {
    ScratchMark mark = scratch_mark();
    int32_t left = xdeg - ydeg + 1, block = left < ydeg ? left : ydeg;
    auto* reversed = scratch_array<uint32_t>(block);
    auto* series = scratch_array<uint32_t>(block);
    auto* room = scratch_array<uint32_t>(int64_t{2} * block);
    auto* part = scratch_array<uint32_t>(block);
    auto* product = scratch_array<uint32_t>(int64_t{ydeg} + block);
    for (int32_t i = 0; i < block; i++) reversed[i] = y[ydeg - i];
    wf_series_inverse(f, reversed, block, inverse, series);
    while (left > 0) {
        if (xdeg >= k_dense_entries) poll_interrupt();
        int32_t n = block < left ? block : left;
        left -= n;
        const uint32_t* top = x + left + ydeg;
        for (int32_t i = 0; i < n; i++) reversed[i] = top[n - 1 - i];
        wf_mult(f, reversed, n, series, n, room);
        for (int32_t i = 0; i < n; i++) part[n - 1 - i] = room[i];
        if (q != nullptr) memcpy(q + left, part, static_cast<size_t>(n) * sizeof(uint32_t));
        wf_mult(f, y, ydeg, part, n, product);
        row_sub(f, x + left, product, x + left, ydeg);  // all above becomes 0 and is not looked at again
    }
    scratch_release(mark);
}

int32_t wf_div_mod(const WordField& f, uint32_t* x, int32_t xdeg, const uint32_t* y, int32_t ydeg,
                   uint32_t inverse, uint32_t* q) {
    if (xdeg < ydeg) return xdeg;
    if (ydeg >= k_newton_entries && xdeg - ydeg >= k_newton_entries)
        newton_div_mod(f, x, xdeg, y, ydeg, inverse, q);
    else
        school_div_mod(f, x, xdeg, y, ydeg, inverse, q);
    return wf_degree(x, ydeg - 1);
}

static uint32_t inverse_or_error(int32_t lead) {
    int32_t inverse = 0;
    mod_inverse(lead, &inverse);
    return static_cast<uint32_t>(inverse);
}

// x := x mod y; with q, whose entries 0..xdeg-ydeg are overwritten, the quotient. The new degree of x. Should
// error 85 come back from a pushed command level, remainder and quotient are 0.
static int32_t divide_residues(int32_t* x, const int32_t* y, int32_t* q, int32_t xdeg, int32_t ydeg) {
    uint32_t inverse = inverse_or_error(y[ydeg]);
    if (inverse == 0) {
        std::fill(x, x + xdeg + 1, 0);
        if (q != nullptr && xdeg >= ydeg) std::fill(q, q + xdeg - ydeg + 1, 0);
        return -1;
    }
    return wf_div_mod(word_field_ring(), reinterpret_cast<uint32_t*>(x), xdeg,
                      reinterpret_cast<const uint32_t*>(y), ydeg, inverse, reinterpret_cast<uint32_t*>(q));
}

void onevar_array_mod(int32_t* x, const int32_t* y, int32_t* xdeg, int32_t ydeg, boolean* all_zeros) {
    *xdeg = divide_residues(x, y, nullptr, *xdeg, ydeg);
    *all_zeros = *xdeg < 0;
}

void onevar_array_div_mod(int32_t* x, const int32_t* y, int32_t* q, int32_t* xdeg, int32_t ydeg,
                          int32_t* qdeg, boolean* all_zeros) {
    int32_t top = *xdeg - ydeg;
    *xdeg = divide_residues(x, y, q, *xdeg, ydeg);
    *qdeg = top < 0 ? -1 : wf_degree(reinterpret_cast<uint32_t*>(q), top);
    *all_zeros = *xdeg < 0;
}
}  // namespace tolvex
