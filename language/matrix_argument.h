#pragma once
/// language/matrix_argument.h: built-in functions of one matrix with a scalar value: Name[m], Name([m], ...).
///
/// Raises     178 the argument is no matrix; those of array expressions.
#include "language/array_operand.h"
#include "language/builtin_args.h"
namespace tolvex {
/// Reads over the name of the function and its matrix: one factor, or an expression behind a "(", which *open
/// tells. v has begun; false after an error: it has not.
bool read_matrix_argument(BuiltinCall& call, ArrOperand& v, bool* open);
/// Reads over the ")" that belongs to a "(". False after error 1.
bool close_matrix_argument(BuiltinCall& call, bool open);
/// Above an interrupt the value is 0, with a line that says so.
void finish_matrix_value(BuiltinCall& call);
}  // namespace tolvex
