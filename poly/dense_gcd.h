#pragma once
/// poly/dense_gcd.h: Euclid on residue arrays.
#include "poly/dense_basic.h"
namespace tolvex {
/// x, y (degrees >= 0) are overwritten; the gcd, made monic, is left in *g (which is x or y) with degree
/// *gdeg. Half-gcd from hgcd_cut on. Returns false if a leading residue is no unit (composite modulus).
bool dense_gcd(int32_t* x, int32_t xdeg, int32_t* y, int32_t ydeg, int32_t** g, int32_t* gdeg);
}  // namespace tolvex
