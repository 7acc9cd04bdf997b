#pragma once
/// language/rubout.h: the delete statement "@".
///
/// Raises     19, 20, 28 unknown names; 21 no such form; 95, 1 lists; 125 polynomial variables.
#include "language/tokens/token.h"

#include <cstdio>
namespace tolvex {
/// Deletes what the statement names, one item or a list in parentheses; "@" is the current token.
void rubout(FILE* inf, nameptr* flag);
}  // namespace tolvex
