#pragma once
/// language/array_read.h: arrays and elements asked from the terminal.
///
/// Raises     27, 28, 61, 107, 118, 129, 242.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// `?[x]`, `?[x[i,j]]` and `?[x]:char` with a factor, from the "[". *n := the value read, or 0.
void read_whole_array(FILE* inf, quolyptr n, nameptr* flag);
/// `?x[i,j]`, the "[" being the current token.
void read_array_element(FILE* inf, quolyptr n, nameptr* flag, tokentipe& name);
}  // namespace tolvex
