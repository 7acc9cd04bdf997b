#pragma once
/// poly/dense_ntt.h: products of long residue arrays by number-theoretic transforms. For dense_*.cpp and
/// their tests.
///
/// Purpose    the product over Z, whose coefficients are below n (m-1)^2, is found modulo as many of three
/// word
///            primes as that needs, put together by the Chinese remainder theorem and reduced modulo m.
/// Modes      residues of any modulus below 2^31; not the table fields.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// True if an + bn - 1 entries can be had: the lengths of transforms are bounded by the roots of unity of the
/// primes.
bool ntt_fits(int32_t an, int32_t bn);
/// c[0..an+bn-2] := a b; ntt_fits(an, bn). O(n log n).
void ntt_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn, uint32_t* c);
}  // namespace tolvex
