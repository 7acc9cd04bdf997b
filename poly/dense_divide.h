#pragma once
/// poly/dense_divide.h: division of residue arrays.
///
/// Invariant  the leading residue of y is not 0. Quotients and remainders overlap no operand except as said.
/// Modes      the ring in force: any modulus, composite or not, and the table fields.
/// Raises     onevar_: error 85 when the leading residue of y is no unit.
#include "poly/dense_basic.h"
#include "poly/word_field.h"
namespace tolvex {
/// x[0..*xdeg] := x mod y in place, *xdeg falls to its true degree (-1 for 0); *all_zeros: the remainder is
/// 0.
void onevar_array_mod(int32_t* x, const int32_t* y, int32_t* xdeg, int32_t ydeg, boolean* all_zeros);
/// The same, and q[0..*qdeg] := the quotient: *xdeg - ydeg + 1 entries, or none and *qdeg -1. Schoolbook for
/// a short quotient or divisor, else by an inverse power series (Newton).
void onevar_array_div_mod(int32_t* x, const int32_t* y, int32_t* q, int32_t* xdeg, int32_t ydeg,
                          int32_t* qdeg, boolean* all_zeros);
/// x := x mod y in place over the field (or ring) f, q the quotient unless nil; inverse: of y[ydeg]. Returns
/// the degree of the remainder. q has xdeg - ydeg + 1 entries.
int32_t wf_div_mod(const WordField& f, uint32_t* x, int32_t xdeg, const uint32_t* y, int32_t ydeg,
                   uint32_t inverse, uint32_t* q);
/// g[0..n) := the power series 1/h modulo t^n by Newton's iteration; h[0..n), h[0] a unit, `inverse` its
/// inverse. Some products of n entries.
void wf_series_inverse(const WordField& f, const uint32_t* h, int32_t n, uint32_t inverse, uint32_t* g);
}  // namespace tolvex
