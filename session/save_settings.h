#pragma once
/// session/save_settings.h: the settings as statements that bring them back.
///
/// Purpose    the first part of a saved session: one statement a line, by the rows of the switch table in the
///            order of their places; then the polynomial variables and the ground ring.
/// Invariant  what is written can be read by `&(x = v)`: a switch whose value that form does not take is left
///            out, the array origin excepted, which is reached by a toggle.
#include <cstdio>
namespace tolvex {
void save_settings(FILE* file);
}  // namespace tolvex
