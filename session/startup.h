#pragma once
/// session/startup.h: everything between the start of the process and the first prompt.
///
/// Purpose    prepares the process, finds and reads the data directory, sets up the constants of all
///            layers, and runs the start-up script.
/// Invariant  the order of start_up is fixed: stashes before constants, data files before the script, the
///            memory budget before the first statement of the script.
/// Raises     a missing or damaged data file ends the process; an error in the script leaves for level 1
///            with the rest of the script not run.
#include <cstddef>
namespace tolvex {
/// Input and Output, and the buffers of the latter.
void set_up_streams();
void start_up(const char* argv0);
/// Runs "tolstart.txt" of the working directory or of `directory`, which ends in "/".
void load_startup(const char* directory);
/// Closes the start-up script, if it is open.
void close_startup();
inline constexpr size_t k_path_length = 1024;
/// buffer (k_path_length bytes) := the absolute path of the running program; 0, or -1 and an empty text.
int GetExecName(const char* argv0, char* buffer);
}  // namespace tolvex
