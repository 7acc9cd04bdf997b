#pragma once
/// session/loop.h: the read-evaluate loop, its prompt, and the questions of commands.
///
/// Purpose    run_level is one loop for level 1 and for the levels that error() opens on top of a
///            statement. A round reads one statement, runs it, checks its terminator and shows its value.
///
///   terminator   ";" (or the line end) shows the value, ":" does not, "@" neither, but keeps the line feeds;
///                the end mark of stored statements counts as ";".
///   prompt step  white space up to the line feed and the line feed are dropped; text that follows a
///                terminator on its line is the next statement.
///
/// Invariant  line_open tells whether a line of the standard input has been begun and its line feed not yet
///            taken: what is dropped after an error, before a question and on entry of a level is that line.
/// Raises     129 for a statement that is not terminated. End of the input leaves through jump_to_farewell().
#include "session/session_modes.h"
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline boolean line_open = 0;  // writers: the loop, the questions

/// The start of level 1, at start-up and whenever an error comes back: a line feed, the prompt, and the input
/// at the place where reading goes on. `failure` is the number of the error, or k_no_failure.
inline constexpr int32_t k_no_failure = INT32_MIN;
void enter_level_1(int32_t failure);
/// The start of a pushed level: its prompt; the rest of the line is dropped.
void enter_pushed_level();
/// Rounds until the level is left by `&_p`; level 1 is never left.
void run_level();

/// The prompt, with the number of a level above 1 in front.
void write_prompt();
/// Prompts for the answer to a question of a command. The rest of the current line is dropped, so that the
/// answer starts on a fresh line.
void do_prompts();
/// Drops the rest of the line of the standard input that is under way, if any.
void drop_open_line();
/// The first character of a line, not read yet; all output is on the screen before it is waited for.
int await_character();
/// The first token of a statement or an answer; at the end of the input the session ends.
void read_first_token();
/// True if the current token may end a statement.
bool at_terminator();

/// Now, on both clocks.
TimePair time_now();
/// *since := the time since then, less the time_off of the level, which is cleared.
void charge_time(TimePair* since);
/// Writes the time line.
void write_time_line(const TimePair& spent);
}  // namespace tolvex
