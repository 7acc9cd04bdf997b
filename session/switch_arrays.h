#pragma once
/// session/switch_arrays.h: values of switches that stand in an array.
///
/// Purpose    `&(M = [a])`, `&(R = [a])` and `&(S = [a])` take a text from an array of character codes: it
///            may hold what no quoted text can. `&(# = [a])` gives the polynomial variables cutoffs of their
///            own.
/// Raises     24, 28, 121 the array; 33, 209 the text; 135, 147 the cutoffs.
#include "language/tokens/token.h"

#include <cstdio>
namespace tolvex {
/// The text in the array behind the current "[", up to and over its "]"; text has room for k_text_length + 1.
/// False after an error.
bool get_from_array(FILE* inf, nameptr* flag, char* text);
/// From the "[" up to the ")" behind the array: element k, in the order of the levels, becomes the cutoff of
/// the variable of level k; below 6 it is 80. Surplus elements and variables are left alone. False after an
/// error, nothing having changed.
bool get_cut_from_array(FILE* inf, nameptr* flag);
}  // namespace tolvex
