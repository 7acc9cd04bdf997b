#pragma once
/// session/messages.h: the texts of numbered errors and warnings.
///
/// Purpose    out_err_mess writes a line of the message table; the warnings are the reports after which a
///            computation goes on (warning, language/ports.h).
#include "language/ports.h"
namespace tolvex {
/// Writes message k and a line feed on the standard output; before 17 the line of the legal commands.
void out_err_mess(int32_t k);
/// How a token is shown in a report: the end mark of stored statements as ";".
const char* shown_token(const char* text);
}  // namespace tolvex
