#pragma once
/// session/save_file.h: the output file and the saved session.
///
/// Purpose    one output file at a time: for images of the session (`&s`) and for `!(&o, ...)`. An image
///            is a script that builds the session again when it is loaded.
/// Invariant  naming a file destroys nothing: content goes to a file beside it, which takes its place,
///            flushed to the disk, when the first image is complete or the file is closed; after that
///            writing goes on in place. At every moment the path holds the whole old or the whole new
///            content. An image that an error or a panic stop has cut off is taken off again before
///            anything else is written. What is no plain file (a pipe, a device) is written directly.
/// Raises     149, 248, 374 names; 348 a write that fails: the file is closed then;
///            362 from a level that has been opened while an image is written.
#include "language/language_modes.h"
#include "session/load.h"
#include "storage/types.h"

#include <cstdio>
namespace tolvex {
inline char output_file_name[k_file_name_length + 1] = "";  // empty: none
/// Opens the file for images and output; "@" closes the open one. In a stored list (quiet) closing says
/// nothing. False after an error.
bool save_named(const char* name, bool quiet);
/// Writes the image of the session into the open output file.
void save_session();
/// On the way to level 1: an image that was being written is taken off again.
void forget_image();
/// Ends the output file on the way out of the process: what has been written takes its place.
void finish_output_file();
}  // namespace tolvex
