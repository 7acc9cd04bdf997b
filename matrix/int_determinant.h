#pragma once
/// matrix/int_determinant.h: determinants of matrices of integers and of rational numbers.
///
/// Purpose    images modulo word primes, put together by the Chinese remainder theorem until their product
///            exceeds twice a proved bound.
///            Cost: the bound has about n log2(n max) / 2 + n log2(max) bits; each 23 of them take one
///            determinant of words.
///            Source: J. von zur Gathen, J. Gerhard, "Modern Computer Algebra", 3rd ed., algorithm 5.10.
/// Ownership  entries are only read.
/// Modes      rational mode; the ring in force is neither read nor changed.
#include "matrix/int_entries.h"

#include <cstdint>
namespace tolvex {
/// *det, which holds no chain, := the determinant of the n by n matrix; entries[k], k = 0..n*n-1 by rows or
/// by columns, are chains, nil for 0.
void int_determinant(const number* const* entries, int32_t n, imptr det);
/// *det, which holds no chain, := the integer that twice is below 2^bits in absolute value and whose residues
/// modulo primes are image(f, context).
void integer_from_images(int64_t bits, uint32_t (*image)(const WordField& f, void* context), void* context,
                         imptr det);
/// The same for entries in scratch memory, where the answer stands as well.
IntEntry entry_determinant(const IntEntry* entries, int32_t n);
/// *q := above / below in lowest terms, below not 0; both numbers are used up, what *q held is given back.
void quotient_of_numbers(imptr above, imptr below, quolyptr q);
/// *det := the determinant of a matrix of integers and rational numbers; what it held is given back.
void rational_determinant(const quoly* entries, int32_t n, quolyptr det);
}  // namespace tolvex
