#pragma once
/// session/plain_display.h: residues written as 0 to modulus - 1 while a session is saved.
///
/// Purpose    a saved file is read in the same way whatever the display says.
#include "language/language_modes.h"
#include "numbers/display_modes.h"
namespace tolvex {
/// alt_form_display is put aside; a level that opens meanwhile gives it back to the user
/// (session/levels.cpp).
inline void begin_plain_residues() {
    eval_state.plain_residues = alt_form_display;
    alt_form_display = 0;
}
inline void end_plain_residues() {
    if (eval_state.plain_residues) alt_form_display = 1;
    eval_state.plain_residues = 0;
}
}  // namespace tolvex
