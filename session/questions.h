#pragma once
/// session/questions.h: the dialogue of commands that ask at the terminal.
///
/// Purpose    a question is written, prompted for, and answered by one line: an expression or a raw text. The
///            answer always comes from the standard input, also when the command stands in a function, a file
///            or the start-up script; where the command came from is put back afterwards.
/// Raises     129 an answer that is not terminated, and the number given for an answer that is no number.
///            Where an error comes back, the routines return false and nothing has changed.
#include "session/session_modes.h"
#include "storage/failure.h"
namespace tolvex {
/// What a question puts aside: the state of reading of the command's own source.
struct QuestionMark {
    boolean tt_flag;
    char leftover;
};
/// Writes `text`, prompts, and reads the first token of the answer.
QuestionMark open_question(const char* text);
/// Back to the source of the command.
void close_question(QuestionMark mark);
/// An integer of word size, evaluated outside the ground ring.
bool ask_number(const char* text, Err not_number, int32_t* answer);
/// The value as a word; a number beyond the words as the largest one of its sign; k_no_word: no number.
int32_t value_as_word(const quolynode* value);
/// The raw line, cut at `size` - 1 characters; its line feed stays unread.
void ask_line(const char* text, char* line, int32_t size);
}  // namespace tolvex
