#pragma once
/// matrix/word_minpoly.h: minimal polynomials of sparse matrices of words.
///
/// Purpose    the matrix is only multiplied by vectors. The minimal polynomial of a sequence u A^i w divides
///            that of the matrix; what it misses is found where it does not annihilate random vectors.
///            Cost: 2 n products of the matrix by a vector for a sequence, n for a group of vectors to be
///            checked, n^2 products of words for the recurrence of a sequence.
///            Source: D. Wiedemann, "Solving sparse linear equations over finite fields", IEEE Trans. Inform.
///            Theory 32 (1986); J. Massey, "Shift-register synthesis and BCH decoding", IEEE Trans. Inform.
///            Theory 15 (1969).
/// Modes      random elements come from a generator of the word fields: the user's random values do not
///            change.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/components.h"
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
struct WordMatrix {
    MatrixPattern places;
    const uint32_t* value;  // elements of the field, one a place
};
/// What is known of the degree.
struct MinpolyHint {
    int32_t samples;  // coordinates that the first sequence adds up
    int32_t degree;   // that of the answer, at which the first sequence is believed; -1: not known
};
/// c[0..d] := the monic minimal polynomial, c[k] of x^k; returns d, 0 <= d <= n. c has room for n + 1. Over a
/// prime field or the table field in force. The answer is right but for a chance of about 1 in p^3, or in
/// p^20 for p below 100.
int32_t word_minpoly(const WordField& f, const WordMatrix& m, const MinpolyHint& hint, uint32_t* c);
/// c[0..d] := the monic polynomial of least degree d that annihilates the sequence s[0..count), which it
/// returns: the recurrence is right if count >= 2 d. c has room for count + 1.
int32_t least_recurrence(const WordField& f, const uint32_t* s, int32_t count, uint32_t* c);
}  // namespace tolvex
