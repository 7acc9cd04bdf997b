#pragma once
/// language/tokens/token_list.h: making and giving back token lists.
///
/// Ownership  a list belongs to the body that stores it.
#include "language/tokens/token.h"
namespace tolvex {
/// *p := a node of which nothing is known; `let` is for the caller to set.
void newname(nameptr* p);
/// Gives back the whole list *p; *p := nil.
void freename(nameptr* p);
}  // namespace tolvex
