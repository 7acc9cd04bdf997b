#pragma once
/// language/write_out.h: the output statement "!" and the read statement "?".
///
/// Purpose    values and texts on the standard output, with field widths; a value asked from the terminal.
/// Raises     105, 106 the list of an output; 227 a width; 103 end of file in a text; 3, 125, 129 reading.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// "!" is the current token. *n := 0.
void write_out(FILE* inf, quolyptr n, nameptr* flag);
/// After a jump out of outputs: what they had open is given back.
void close_open_fields();
/// Where the statement stands while an answer is read.
struct AnswerMark {
    tokentipe token;
    int32_t tt_flag;
    char leftover;
};
AnswerMark begin_answer();
void end_answer(const AnswerMark& mark);
/// "?" is the current token. *n: the value read, 0 in a stored list.
void read_in(FILE* inf, quolyptr n, nameptr* flag);
}  // namespace tolvex
