#pragma once
/// session/commands.h: the commands `&x` that no row of the switch table does.
///
/// Purpose    the port run_command (language/ports.h) looks here first, then in the switch table.
#include <cstddef>
namespace tolvex {
/// Letter and meaning of command k, for the manual; false behind the last.
bool command_help(size_t k, const char** letter, const char** meaning);
}  // namespace tolvex
