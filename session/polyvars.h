#pragma once
/// session/polyvars.h: declaring and removing polynomial variables.
///
/// Purpose    attach_poly reads the list of `&(J = ...)`, `&(J > ...)` and `&J`, item by item, and
///            rewrites all stored values for each change of the list of variables.
///
///   x          a new variable: "=" in front (level 1), ">" at the end (deepest)
///   -x         x is removed; no stored value may contain it
///   -x = e     x is replaced by the number e everywhere, then removed
///
/// Invariant  the first bad item stops the list; the items before it stay done, the bad one has changed
///            nothing. A new deepest variable rewrites nothing.
/// Raises     124, 126, 228, 355, 356, 360, 361, 362.
#include "language/tokens/token.h"

#include <cstdio>
namespace tolvex {
/// The items after "=" (at_end false) or ">" (true); the first token of the first item is current, on return
/// the token that ends the list: ")" for the form `&(J ...)`, a terminator at the question. False after an
/// error that came back.
bool attach_poly(FILE* inf, nameptr* flag, bool at_end, bool at_question);
/// `&J`: asks for the list.
void ask_polyvars();
}  // namespace tolvex
