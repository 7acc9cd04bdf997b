#pragma once
/// language/copy_tokens.h: copying what is typed to a list, when it is going to be read more than once.
///
/// Ownership  the list belongs to the caller, also when copying has failed.
/// Raises     78, 81 a header that is not closed.
#include "language/evaluator.h"
namespace tolvex {
struct TokenCopy {
    FILE* inf;
    nameptr* flag;
    nameptr first;
    nameptr* link;  // where the next node goes
};
/// Appends the current token; the second reads over it as well.
void append_token(TokenCopy& c);
void copy_token(TokenCopy& c);
/// A literal with its quotes, up to and over the second one. False at the end of the input.
bool copy_literal(TokenCopy& c);
/// <i = a to b by c>, up to and over the ">"; "to" and "by" are separators in it. False after error 81 at the
/// end of the statement, or, for a header within brackets, error 78 at their closing.
bool copy_header(TokenCopy& c, bool in_brackets);
}  // namespace tolvex
