#pragma once
/// storage/progress.h: the progress output of verbose computations.
///
/// Purpose    nested computations report what they count to, as long as the product of the counts stays
///            small: the volume is bounded however deep they nest.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline boolean verbose = 0;         // informative comments            writers: &V
inline boolean windy = 0;           // extra verbosity                 writers: &W
inline int32_t dumpitt_length = 0;  // characters on the progress line writers: dumpitt, error
inline int32_t dumpitt_level = 0;   // nesting of progress output      writers: dumpitt, decr_dumpitt, error

/// Prints message and n, a colon if asked, a new line if asked; the message " " prints only the number.
/// multin: a level begins that counts to n. Nothing is printed while the counts of the levels in force
/// multiply to more than 1000.
void dumpitt(const char* message, int64_t n, boolean newline, boolean multin, boolean colon);
/// n levels end; with newline and verb the progress line ends too.
void decr_dumpitt(int32_t n, boolean newline, boolean verb);
}  // namespace tolvex
