#pragma once
/// poly/dense_school.h: the schoolbook product of residues. For dense_*.cpp.
///
/// Modes      residues of any modulus from 2 to 2^31 - 1; not the table fields. The processor rounds to
///            nearest.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// c[0..an+bn-2] := a b; 1 <= bn <= an. an bn products and as many additions in floating point, twice that
/// from moduli of about 2^23 on; one reduction per coefficient.
void school_residues(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                     uint32_t* c);
/// x[i] := the residue a[i] modulo m as an integer of absolute value at most m / 2.
void balanced_floats(const uint32_t* a, double* x, int32_t n, int32_t m);
}  // namespace tolvex
