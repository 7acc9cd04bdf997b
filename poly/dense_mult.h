#pragma once
/// poly/dense_mult.h: products of residue arrays.
#include "poly/dense_basic.h"
namespace tolvex {
void onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                 int32_t yb);
void slower_onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                        int32_t yb);
/// c[0..xb+yb] := a[xa..xb] * b[ya..yb] placed at its exponents; entries below are cleared. Any modulus,
/// table fields.
void fast_array_onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb,
                            int32_t ya, int32_t yb);
/// The plain form: c[0..an+bn-2] := a[0..an) * b[0..bn). c overlaps neither. a may be b.
void dense_mult(const int32_t* a, int32_t an, const int32_t* b, int32_t bn, int32_t* c);
}  // namespace tolvex
