#pragma once
/// poly/dense_ntt.h: products of long residue arrays by number-theoretic transforms. For dense_*.cpp and
/// their tests.
///
/// Purpose    the product over Z of balanced residues, whose coefficients are at most n m^2 / 4, is found
///            modulo one or two primes of numbers/float_transform.h, put together by the Chinese remainder
///            theorem and reduced modulo m.
/// Modes      residues of any modulus below 2^31; not the table fields.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// c[0..an+bn-2] := a b. O(n log n).
void ntt_mult(const WordField& f, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn, uint32_t* c);

/// A polynomial of n entries; n may be 0.
struct NttOperand {
    const uint32_t* c;
    int32_t n;
};
/// The most columns of the second factor of ntt_matrix_mult.
constexpr int32_t k_ntt_columns = 3;
/// c[i][j][0..n) := a[i][0] b[0][j] + a[i][1] b[1][j] for i = 0, 1 and 0 <= j < columns, each of which has at
/// most n >= 1 entries. Every entry of a and b is transformed once. No c overlaps an operand.
void ntt_matrix_mult(const WordField& f, const NttOperand (&a)[2][2], const NttOperand (&b)[2][k_ntt_columns],
                     int32_t columns, uint32_t* const (&c)[2][k_ntt_columns], int32_t n);
}  // namespace tolvex
