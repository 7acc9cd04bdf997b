#pragma once
/// session/mod_out.h: variables that are modded out: the commands `&(P = f)`, `&(P = f, 1)` and `&P`.
///
/// Purpose    the text is read whole and tested, the auxiliary primes are found, then the polynomial is
///            installed and all values are converted in one piece. f, 1 declares a field; the bare variable
///            ends its modding.
/// Invariant  an error, or a level that is left for good, finds everything as it was.
/// Raises     73, 98, 135, 171, 195, 199, 200, 266, 271.
#include "language/tokens/token.h"

#include <cstdio>
namespace tolvex {
/// `&(P = ...)`, the first token of f being current; on return ")" is.
void set_mod_out(FILE* inf, nameptr* flag);
/// `&P` asks for the same text.
void ask_mod_out();
/// Every field level is looked at in the ring just entered; says so of those that are none there.
void test_fields();
/// After a change of `&l`: every value takes the form of the setting in force, and the stash of gcds is
/// emptied.
void follow_laurent();
/// Error 271, true: negative exponents cannot be allowed while a variable is modded out that is in no field.
bool refuse_laurent(int32_t on);
/// The statements that declare the modding polynomials of the session, deepest level first.
void save_mod_out(FILE* file);
/// The lines of the status display.
void mod_out_status();
}  // namespace tolvex
