#pragma once
/// language/array_expre.h: the recursive-descent evaluator of array expressions.
///
/// Purpose    sums, terms and factors with matrices in them. Every value travels in an ArrOperand; scalar
///            factors come from the evaluator of scalar expressions.
///
///   expression   term { ("+" | "-") term }
///   term         factor { ("*" | "/" | "|" | "\" | "_" | nothing) factor }        all of one rank, left to
///   right factor       ("-" | "$" | Trans | Diag | Adjoint) factor | primary ["^" e | "#" ...]
///
/// Raises     1, 2, 24, 40, 43, 45, 56..59, 63, 71, 72, 74, 78..80, 82, 83, 105, 110, 142, 172..175, 188,
///            202, 244, 251, 255, 265, 288, 336, and those of language/array_ops.h.
#include "language/array_operand.h"

#include <cstdio>
namespace tolvex {
/// What an array expression is read from, and what is known of its place.
struct ArrReader {
    FILE* inf;
    nameptr* flag;
    arr_descr known;      // the shape of the operand to the left or of the target; arrsize 0: not known
    boolean want_sparse;  // constructors make sparse matrices
};

/// The operand, which is empty, := an expression.
void arr_expre(ArrReader& r, ArrOperand& v);
/// The same, v being the first factor of it, without its postfix.
void half_arr_expre(ArrReader& r, ArrOperand& v);
/// The postfix of a factor.
void half_arr_fact(ArrReader& r, ArrOperand& v);
/// v := one factor with its postfix.
void arr_fact(ArrReader& r, ArrOperand& v);
/// v := what stands in brackets, "[" being the current token: a reference or a constructor. The second begins
/// behind the "[".
void bracket_factor(ArrReader& r, ArrOperand& v);
void bracket_body(ArrReader& r, ArrOperand& v);
/// v := a string, from its opening quote, as a column of character codes.
void string_factor(ArrReader& r, ArrOperand& v);
/// v := the array of that name, or the block of it in the brackets that follow.
void named_array(ArrReader& r, ArrOperand& v, arrptr a, const tokentipe& name);
/// v, a dense matrix, becomes that block of it.
void cut_block(ArrOperand& v, const struct Block& b);
/// An element of a list or of a row: an expression that ends at the closing sign, "," or, in rows, the line
/// end.
void read_list_value(ArrReader& r, quolyptr value, bool in_rows);

// ---- blocks --------------------------------------------------------------------------------------------

/// Rows first_row.. and columns first_col.. of a matrix, counted from 0.
struct Block {
    int64_t first_row, rows, first_col, cols;
};
/// Reads the ranges behind the "[" that is the current token, up to and over the "]", for a matrix of that
/// shape. False after error 56 to 59, 61 or 118.
bool read_block(ArrReader& r, const arr_descr& shape, Block* b);
}  // namespace tolvex
