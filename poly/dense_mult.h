#pragma once
/// poly/dense_mult.h: products of residue arrays.
///
/// Invariant  no result overlaps an operand; the operands of one product may be the same array.
/// Modes      the ring in force (modularmode): any modulus, composite or not, and the table fields. With a
///            composite modulus the leading entries of a product may be 0: the caller trims.
/// Raises     the slice routines: internal faults for bad bounds.
#include "poly/dense_basic.h"
#include "poly/word_field.h"
namespace tolvex {
/// c[xa+ya..xb+yb] := a[xa..xb] * b[ya..yb], schoolbook. a[xb] and b[yb] are not 0.
void onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb, int32_t ya,
                 int32_t yb);
/// c[0..xb+yb] := a[xa..xb] * b[ya..yb] placed at its exponents; entries below are cleared.
void fast_array_onevar_mult(const int32_t* a, const int32_t* b, int32_t* c, int32_t xa, int32_t xb,
                            int32_t ya, int32_t yb);
/// The plain form: c[0..an+bn-2] := a[0..an) * b[0..bn); an, bn >= 1. Schoolbook for short operands, then
/// Karatsuba, then number-theoretic transforms (table fields: Karatsuba throughout).
void dense_mult(const int32_t* a, int32_t an, const int32_t* b, int32_t bn, int32_t* c);
/// The same over the field (or ring) f, which need not be the ring in force and is not one of its extensions
/// (f.ext is nil, here and in the other wf_ routines of the dense engine).
void wf_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn, uint32_t* c);
}  // namespace tolvex
