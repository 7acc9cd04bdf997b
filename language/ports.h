#pragma once
/// language/ports.h: what the evaluators need from the session above them.
///
/// Purpose    commands, questions and warnings. Declared here, defined in session/.
#include "language/tokens/token.h"
#include "quoly/quoly.h"
#include "storage/failure.h"

#include <cstdio>
namespace tolvex {
/// Runs the command whose "&" is the current token; *n: the value it leaves, nil: none. Reads on past it.
void run_command(FILE* inf, quolyptr n, nameptr* flag);
/// Prompts, writes `text` behind the prompt, and reads the first token of an answer at the terminal; tt_flag
/// is 1 afterwards. The stream to read the rest from.
FILE* open_answer(const char* text);
/// Writes a warning on a number of the message table; `text`: what it is about, nil the current token.
void warning(Err code, const char* text);
/// Numbers that are warnings alone, with texts of their own.
inline constexpr Err k_warn_det_factor{1}, k_warn_det_degree{2}, k_warn_det_power_ring{3},
    k_warn_det_even_power{4}, k_warn_det_odd_power{5};
}  // namespace tolvex
