#pragma once
/// storage/progress.h: switches and counters of the progress output.
#include "storage/types.h"
namespace tolvex {
inline boolean verbose = 0;         // informative comments            writers: &V
inline boolean windy = 0;           // extra verbosity                 writers: &W
inline int32_t dumpitt_length = 0;  // characters on the progress line writers: dumpitt, error
inline int32_t dumpitt_level = 0;   // nesting of progress output      writers: dumpitt, decr_dumpitt, error
}  // namespace tolvex
