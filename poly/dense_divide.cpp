#include "poly/dense_divide.h"

#include "numbers/residue.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

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

int32_t wf_div_mod(const WordField& f, uint32_t* x, int32_t xdeg, const uint32_t* y, int32_t ydeg,
                   uint32_t inverse, uint32_t* q) {
    if (xdeg < ydeg) return xdeg;
    school_div_mod(f, x, xdeg, y, ydeg, inverse, q);
    return wf_degree(x, ydeg - 1);
}

static uint32_t inverse_or_error(int32_t lead) {
    int32_t inverse = 0;
    mod_inverse(lead, &inverse);
    return static_cast<uint32_t>(inverse);
}

void onevar_array_mod(int32_t* x, const int32_t* y, int32_t* xdeg, int32_t ydeg, boolean* all_zeros) {
    *xdeg = wf_div_mod(word_field_ring(), reinterpret_cast<uint32_t*>(x), *xdeg,
                       reinterpret_cast<const uint32_t*>(y), ydeg, inverse_or_error(y[ydeg]), nullptr);
    *all_zeros = *xdeg < 0;
}

void onevar_array_div_mod(int32_t* x, const int32_t* y, int32_t* q, int32_t* xdeg, int32_t ydeg,
                          int32_t* qdeg, boolean* all_zeros) {
    int32_t top = *xdeg - ydeg;
    *xdeg = wf_div_mod(word_field_ring(), reinterpret_cast<uint32_t*>(x), *xdeg,
                       reinterpret_cast<const uint32_t*>(y), ydeg, inverse_or_error(y[ydeg]),
                       reinterpret_cast<uint32_t*>(q));
    *qdeg = top < 0 ? -1 : wf_degree(reinterpret_cast<uint32_t*>(q), top);
    *all_zeros = *xdeg < 0;
}
}  // namespace tolvex
