#pragma once
/// language/ports.h: what the evaluators need from the session above them.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// Runs the command whose "&" is the current token; *n: the value it leaves, nil: none. Reads on past it.
void run_command(FILE* inf, quolyptr n, nameptr* flag);
}  // namespace tolvex
