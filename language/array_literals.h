#pragma once
/// language/array_literals.h: matrices written out.
///
/// Purpose    lists, rows, sparse rows, computed and random matrices, strings.
/// Invariant  the reader begins at the first token behind the outer "[" and leaves the outer "]" as the
///            current token. r.want_sparse: the result is sparse.
/// Raises     24, 27, 43, 71, 78..80, 82, 110, 142, 173, 250, 251, 255, 265, 336 and those of loop headers.
#include "language/array_expre.h"
namespace tolvex {
/// (a, b, c): a column.
void column_literal(ArrReader& r, ArrOperand& v);
/// [a, b][c, d]: rows; [r, [c, v], [c, v]], [r, [c, v]]: a sparse matrix of the known shape.
void row_literal(ArrReader& r, ArrOperand& v);
/// <i = a, b, s> e and <i = a, b, s><j = c, d, s> e.
void computed_matrix(ArrReader& r, ArrOperand& v);
/// Rand and Randint: a random matrix of the known shape.
void random_matrix(ArrReader& r, ArrOperand& v, bool clocked);
}  // namespace tolvex
