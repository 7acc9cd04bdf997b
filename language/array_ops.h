#pragma once
/// language/array_ops.h: arithmetic of operands of array expressions.
///
/// Ownership  the left operand takes the result; what is private in either is used where it can be. The
///            right one is left in any state that end_operand accepts.
/// Raises     39 shapes; 22, 85 quotients; 43, 250 size; 36, 44 inverse; 72, 74, 172, 191, 241, 242 kinds
///            of operands.
#include "language/array_operand.h"
namespace tolvex {
/// left := left + right, or left - right: matrices of one shape, or a scalar with every element.
void add_operands(ArrOperand& left, ArrOperand& right, bool minus);
/// left := left (sign) right for the signs "*", "/", "|", "\", "_".
void combine_operands(ArrOperand& left, ArrOperand& right, char sign);
/// v := -v.
void negate_operand(ArrOperand& v);
/// v := the transpose. Error 72 for a scalar.
void transpose_operand(ArrOperand& v);
/// v := its diagonal as a column. Error 74 for a scalar.
void extract_diagonal(ArrOperand& v);
/// v := its adjoint. Errors 72, 241, 242.
void adjoint_operand(ArrOperand& v);
/// v := v^e. Error 172 if v is a matrix that is not square; 44 if e is negative and v singular.
void matrix_power(ArrOperand& v, const number* e);
/// v := v^e for a square matrix, the elements reduced modulo the polynomial m. Error 44, 188.
void matpowermod(ArrOperand& v, const number* e, quoly m);
/// Element by element, in place after borrowed elements have been copied. f may make an element 0.
void change_elements(ArrOperand& v, void (*f)(quolyptr value, void* context), void* context);
/// v, which is empty, := value times the identity of that size; sparse if asked.
void diagonal_matrix(ArrOperand& v, int64_t rows, const quolynode* value, bool sparse);
/// v, a square matrix, := p(v), p a polynomial in its outermost variable. Error 174, 186.
void quoly_at_matrix(ArrOperand& v, const quolynode* p);
}  // namespace tolvex
