#pragma once
/// session/load.h: running files of statements.
///
/// Purpose    one input file at a time; its statements run as if typed, with the file rules of the
///            scanner. A load ends at `&x`, at the end of the file, or at an error, which keeps the file
///            open unless close_inpuf is set.
///
///   inpuf -> the open file        running_loads -> innermost load under way -> the load below it -> ... ->
///   nil
///
/// Invariant  a file that a running load still reads is not closed under it: who replaces it hands it
///            over, and the load closes it when its statement has ended. A load whose file has been
///            replaced reads no further statement.
/// Raises     129 statements of the file; 149, 248, 374 names.
#include "quoly/quoly.h"
#include "storage/types.h"

#include <cstdio>
namespace tolvex {
inline constexpr int32_t k_file_name_length = 255;
inline FILE* inpuf = nullptr;                              // nil: none        writers: load
inline char input_file_name[k_file_name_length + 1] = "";  // empty: none
inline boolean done_load = 0;  // the load loop is to end; kept for a further `&r`  writers: &x, load

/// A load under way, on the process stack.
struct LoadRun {
    FILE* file;
    bool orphan;  // replaced meanwhile: closed at its end
    LoadRun* below;
};
inline LoadRun* running_loads = nullptr;

/// Opens the file and runs it; "@" closes the open one. In a stored list (quiet) closing says nothing. False
/// after an error.
bool load_named(const char* name, bool quiet);
/// Runs the open file on, or from its beginning if it had not ended by `&x`.
void load_again();
/// Closes the input file, if one is open.
void close_input_file();
/// What an error does to a load: shows the three lines that stand next, and closes the file if close_inpuf
/// says so. The file goes on where it was. Nothing while no file is loading.
void report_load_place();
/// On the way to level 1: no load runs any more.
void forget_loads();
}  // namespace tolvex
