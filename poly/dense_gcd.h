#pragma once
/// poly/dense_gcd.h: greatest common divisors of residue arrays.
///
/// Modes      the ring in force: any modulus, composite or not, and the table fields.
#include "poly/dense_basic.h"
#include "poly/word_field.h"
namespace tolvex {
/// x, y (degrees >= 0, or -1 for 0) are overwritten; the gcd, made monic, is left in *g (which is x or y)
/// with degree *gdeg (-1 if both are 0). Returns false if a leading residue is no unit (composite modulus).
/// Plain Euclid, quadratic, for small degrees, then the half-gcd. The arrays are not xx, yy,
/// zz: a long gcd can be interrupted.
bool dense_gcd(int32_t* x, int32_t xdeg, int32_t* y, int32_t ydeg, int32_t** g, int32_t* gdeg);
/// The same over the field (or ring) f, which need not be the ring in force.
bool wf_dense_gcd(const WordField& f, uint32_t* x, int32_t xdeg, uint32_t* y, int32_t ydeg, uint32_t** g,
                  int32_t* gdeg);
}  // namespace tolvex
