#pragma once
/// session/switches.h: the form `&(x = v)`. (The commands `&x` are the port run_command, language/ports.h.)
///
/// Purpose    switches by the switch table, the ground ring, polynomial variables, and the prompt.
/// Raises     4, 33, 133, 135, 136, 137, 141, 147, 209 and those of the switch, before anything is stored.
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// "(" is current; on return ")" is. *n := what the statement leaves, nil for 0.
void set_switch(FILE* inf, quolyptr n, nameptr* flag);
inline constexpr int32_t k_text_length = 255;
/// The quoted text whose opening "'" is current, raw, into text (k_text_length + 1 bytes); the token behind
/// the closing one is current then. What is longer is error 209 or, if `cut` is given, cut off with that
/// warning. False after error 33, 103 or 209.
bool read_quoted(FILE* inf, nameptr* flag, char* text, const char* cut = nullptr);
/// *n := the word v as the language reads it back: a residue in modular mode.
void leave_value(quolyptr n, int64_t v);
/// The text becomes the prompt: " " and what is longer than 10 characters have their own meaning.
void set_prompt(const char* text);
}  // namespace tolvex
