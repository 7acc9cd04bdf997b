#pragma once
/// quoly/quoly_display.h: values as text.
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// Writes a blank and the value; returns true if the line is still open (no line break was the last thing
/// written).
bool quoly_display(FILE* outf, boolean outf_is_tty, const quolynode* q);
/// Reads one polynomial (the `&_n` form).
void quoly_readin(FILE* inf, quolyptr q, nameptr* flag);
}  // namespace tolvex
