#pragma once
/// matrix/sparse_words.h: determinants of sparse matrices of words.
///
/// Purpose    elimination on rows of pairs (column, word), and on dense rows as soon as so much has been
///            filled in that they are faster. Over a composite modulus pivots are units as long as there are
///            some; then columns are cleared by remainders.
///            Cost: what fill-in makes of it: the pivot stands in a row with the fewest entries, and there in
///            the column with the fewest; a column with a single entry comes first and costs nothing.
///            Source: H. M. Markowitz, "The elimination form of the inverse and its application to linear
///            programming", Management Sci. 3 (1957).
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/components.h"
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// The determinant of the matrix with these places and words; f: a prime field, a table field, or,
/// `composite`, the arithmetic modulo f.p without inverses.
uint32_t sparse_word_determinant(const WordField& f, bool composite, const MatrixPattern& places,
                                 const uint32_t* value);
}  // namespace tolvex
