#pragma once
/// language/tokens/look_ahead.h: what comes behind the current token.
///
/// Purpose    the scanner is one token ahead; a few forms need one sign more.
/// Modes      a cursor that is empty reads the stream.
#include "language/tokens/scanner.h"
namespace tolvex {
/// True if the next token is that sign. Blanks in front of it, which mean nothing there, are read.
inline bool sign_follows(FILE* inf, const nameptr* flag, char sign) {
    if (*flag != nullptr) return (*flag)->next != nullptr && tok_char((*flag)->next->let) == sign;
    if (leftover[0] != 0 && leftover[0] != ' ') return leftover[0] == sign;
    while (peek_char(inf) == ' ' || peek_char(inf) == '\t') read_char(inf);
    return peek_char(inf) == sign;
}
}  // namespace tolvex
