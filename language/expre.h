#pragma once
/// language/expre.h: the recursive-descent evaluator of scalar expressions.
///
/// Purpose    parsing and arithmetic are one pass over tokens. The full forms expre/term/fact work on the
///            location of a variable, so that a big value is not copied; old_* give plain values; half_*
///            go on from a value.
/// Invariant  *n may be nil on entry; on return either *qp == n and the value is in *n, or *qp is the
///            location where the value lives and *n is nil. qp nil: the name has no location.
/// Raises     through error(), with the current token or the stated symbol.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// An expression, a factor: *n is always the value.
void old_expre(FILE* inf, quolyptr n, nameptr* flag);
void old_fact(FILE* inf, quolyptr n, nameptr* flag);
/// An expression or assignment, a term, a factor: the value is *n or stays where it lives, at *qp.
void expre(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag);
void term(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag);
void fact(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag);
/// What follows the first factor of a statement, which is at *qp: an assignment, or the rest of the
/// expression.
void rest_of_statement(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag);
/// *n is a value that has been read; what follows it in an expression, a term, a factor is read and applied.
void half_expre(FILE* inf, quolyptr n, nameptr* flag);
void half_term(FILE* inf, quolyptr n, nameptr* flag);
void half_fact(FILE* inf, quolyptr n, nameptr* flag);
/// Reads what follows "^"; *m takes the exponent.
void get_exponent(FILE* inf, nameptr* flag, imptr m, boolean one_factor);
}  // namespace tolvex
