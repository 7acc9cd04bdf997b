#pragma once
/// language/array_params.h: arrays as arguments of user functions.
///
/// Purpose    `F([a])` makes an alias of [a] under the name of the parameter for the time of the call:
///            elements are shared, not copied. `F(a[3])` for a parameter ^p is an element as a place.
/// Raises     24, 28, 121, 176, 217..221 arguments; 318 an element that is not there; 30 at the end of a
///            call.
#include "language/array_elements.h"
namespace tolvex {
/// Where the value of a parameter ^p goes: a variable, or an element. Both names empty: nowhere.
struct ResultTarget {
    tokentipe name;
    ElementTarget element;
};
inline bool is_element(const ResultTarget& t) { return tok_char(t.element.name) != 0; }

/// An argument `[a]` or `[%[k]]`, from its "[": a new alias with the parameter's name; nil after an error.
arrptr read_array_argument(FILE* inf, nameptr* flag, const tokentipe& parameter);
/// An element as argument of a ^p, its "[" being the current token: its value is copied. False after an
/// error.
bool read_element_argument(FILE* inf, nameptr* flag, tokentipe& name, ElementTarget* target, quolyptr value);
/// The element takes the value back, which is used up then. False if its array has gone.
bool give_back_element(const ElementTarget& target, quolyptr value);
/// Takes the alias of a parameter off the table and gives it back. False, and a warning, if the body has made
/// an array of that name.
bool remove_alias(arrptr alias);
}  // namespace tolvex
