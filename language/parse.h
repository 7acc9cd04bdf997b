#pragma once
/// language/parse.h: one statement, by its first token.
///
/// Purpose    one reader for the terminal, files and stored bodies: each of them ends in run_statement.
/// Raises     every error of the language.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// Executes the statement whose first token is current; *n: its value, nil when it has none.
void parse(FILE* inf, quolyptr n, nameptr* flag);
/// The dispatch of every read loop: words for arrays, function names in A and M, everything else.
void run_statement(FILE* inf, quolyptr n, nameptr* flag);
}  // namespace tolvex
