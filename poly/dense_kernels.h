#pragma once
/// poly/dense_kernels.h: the inner loops of the dense engine. For dense_*.cpp and their tests.
///
/// Purpose    loops over plain arrays of elements of a WordField (or of the ring in force), written so that
///            the compiler vectorises them.
/// Invariant  elements are reduced; no output overlaps an input except where it says "in place".
/// Modes      any ring of residues below 2^31, composite or not, and the table fields.
#include "poly/word_field.h"
#include "storage/wide_vectors.h"

#include <cstdint>
namespace tolvex {
/// A fixed factor with its precomputed quotient floor(w 2^32 / m): products by it need no division (Shoup).
struct FixedFactor {
    uint32_t w, quotient;
};
inline FixedFactor fixed_factor(uint32_t w, uint32_t m) {
    return {w, static_cast<uint32_t>((static_cast<uint64_t>(w) << 32) / m)};
}
/// x w mod m as a number below 2 m, for any x; m < 2^31.
inline uint32_t fixed_mult_lazy(uint32_t x, FixedFactor f, uint32_t m) {
    auto q = static_cast<uint32_t>((static_cast<uint64_t>(x) * f.quotient) >> 32);
    return x * f.w - q * m;
}
/// r - m if r >= m, for r < 2 m <= 2^32: the wrapped difference is the greater number exactly when r < m.
inline uint32_t reduce_once(uint32_t r, uint32_t m) {
    uint32_t d = r - m;
    return d < r ? d : r;
}
/// x w mod m.
inline uint32_t fixed_mult(uint32_t x, FixedFactor f, uint32_t m) {
    return reduce_once(fixed_mult_lazy(x, f, m), m);
}

/// c[0..an+bn-2] := a b by the schoolbook method with delayed reduction; an, bn >= 1.
void school_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                 uint32_t* c);
/// c[i] := a[i] + b[i], a[i] - b[i]; c may be a or b.
void row_add(const WordField& f, const uint32_t* a, const uint32_t* b, uint32_t* c, int32_t n);
void row_sub(const WordField& f, const uint32_t* a, const uint32_t* b, uint32_t* c, int32_t n);
/// x[i] := q x[i], in place.
void row_scale(const WordField& f, uint32_t* x, int32_t n, uint32_t q);
/// x[i] -= q y[i], in place.
void row_submul(const WordField& f, uint32_t* x, const uint32_t* y, int32_t n, uint32_t q);
/// x[i] -= q1 y[i-1] + q0 y[i] for 0 <= i < n, y[-1] taken as 0: the remainder step of degree difference 1.
void row_submul_2(const WordField& f, uint32_t* x, const uint32_t* y, int32_t n, uint32_t q1, uint32_t q0);
}  // namespace tolvex
