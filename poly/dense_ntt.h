#pragma once
/// poly/dense_ntt.h: products of long residue arrays by number-theoretic transforms. For dense_*.cpp and
/// their tests.
///
/// Purpose    the product over Z of balanced residues, whose coefficients are at most n m^2 / 4, is found
///            modulo one or two primes of numbers/float_transform.h, put together by the Chinese remainder
///            theorem and reduced modulo m.
/// Modes      residues of any modulus below 2^31; not the table fields.
#include "numbers/float_transform.h"
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
constexpr int32_t k_ntt_primes = 2;  // of numbers/float_transform.h, at most
/// What products of one length over one ring need to know.
struct NttFrame {
    FloatLength length;
    int32_t primes;
    int32_t m;
    FloatModulus modulus;
};
/// A frame in which a coefficient is the sum of at most `terms` products of two entries.
NttFrame ntt_frame(const WordField& f, FloatLength length, int64_t terms);
/// x[0..length) := the values of a, of at most `length` entries, modulo a prime of the frame (from 0 on).
void ntt_values(const NttFrame& frame, int32_t prime, NttOperand a, double* x);
/// c[0..n) := the entries of which image[prime] holds the coefficients.
void ntt_combine(const NttFrame& frame, double* const* image, uint32_t* c, int32_t n);
/// The most columns of the second factor of ntt_matrix_mult.
constexpr int32_t k_ntt_columns = 3;
/// c[i][j][0..n) := a[i][0] b[0][j] + a[i][1] b[1][j] for i = 0, 1 and 0 <= j < columns, each of which has at
/// most n >= 1 entries. Every entry of a and b is transformed once. No c overlaps an operand.
void ntt_matrix_mult(const WordField& f, const NttOperand (&a)[2][2], const NttOperand (&b)[2][k_ntt_columns],
                     int32_t columns, uint32_t* const (&c)[2][k_ntt_columns], int32_t n);
}  // namespace tolvex
