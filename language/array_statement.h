#pragma once
/// language/array_statement.h: statements that begin with a matrix, and those that create arrays.
///
/// Purpose    `[x] := ...`, `[x[..]] := ...`, `Diag[x] := ...`, `%[i] := ...`, and expressions whose
///            value goes to the system array.
/// Invariant  the right side is complete before the first element of the target changes.
/// Raises     4, 42, 60, 125, 139, 176, 242, 244, 249, 250, 297 and those of array expressions.
#include "language/array_expre.h"
#include "language/builtin_args.h"
namespace tolvex {
/// A statement that begins with "[", the sign of Trans or Diag, or their names. *n := 0.
void arr_parse(FILE* inf, quolyptr n, nameptr* flag);
/// True if the current token is the name of an array function that a statement may begin with.
bool begins_array_statement();
/// A statement that begins with "%": `%[i] := [x]`, `%[i][r,c] := v`, or an expression. *n: its value.
void arr_arr_state(FILE* inf, quolyptr n, nameptr* flag);
/// The system array takes the matrix; a scalar becomes *n.
void fill_syst_array(const nameptr* flag, ArrOperand& v, quolyptr n);
/// "#" in front of a matrix, in a scalar expression: the system array := the polynomial *n at that matrix; *n
/// := 0.
void value_at_matrix(FILE* inf, quolyptr n, nameptr* flag);
/// The array of that name, which may be new, takes a matrix as `[x] := ...` does. False after an error.
bool assign_whole(tokentipe& name, arrptr a, ArrOperand& v);
}  // namespace tolvex
