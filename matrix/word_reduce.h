#pragma once
/// matrix/word_reduce.h: echelon forms of matrices of residues and of elements of table fields, on words.
///
/// Purpose    the engine behind matrix/row_reduce.h for numbers over a modulus: the record is copied into
///            flat rows, reduced there, and written back.
/// Invariant  the matrices of operations that change by columns are held transposed, so that every step runs
///            along rows.
/// Ownership  as matrix/row_reduce.h. Scratch memory: four bytes an element of each matrix.
#include "matrix/reduction.h"
namespace tolvex {
enum class WordSteps { rows, echelon, normal };
/// True if the record holds residues or table elements alone, and is not so large and empty that a chain
/// serves better.
bool fits_words(const Reduction& r);
/// Reduces; returns the rank, or -1 where matrix/elimination_steps.h does.
int32_t reduce_words(Reduction* r, WordSteps steps, int32_t cut);
}  // namespace tolvex
