#pragma once
/// quoly/quoly_display.h: values as text.
///
/// Purpose    one blank and the value: a number, ` n/d`, on the terminal followed by ";  " and decimals, or
///            ` numer/denom` with parentheses where they are needed. Every displayed value reads back as the
///            same.
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// Returns true if the line is still open: no line break was the last thing written. outf_is_tty: outf is the
/// stream of the session's output, whether or not that is a terminal.
bool quoly_display(FILE* outf, boolean outf_is_tty, const quolynode* q);
/// Reads one polynomial (the `&_n` form), whose first token is current.
void quoly_readin(FILE* inf, quolyptr q, nameptr* flag);
}  // namespace tolvex
