#pragma once
/// session/session_modes.h: the state of the session: streams, prompt, display switches, command levels,
/// times.
///
/// Purpose    the words that the driver, the switches and the error route share. Lower layers see none of
///            them.
/// Invariant  promptsize is the length of prompt, except for the empty prompt: that is one carriage return
///            and promptsize 0. levelcount and time_level are 1 at the main loop.
#include "language/tokens/token.h"
#include "numbers/display_modes.h"
#include "quoly/quoly.h"
#include "storage/types.h"

#include <cstdint>
#include <cstdio>
namespace tolvex {
inline FILE* Input = nullptr;       // standard input                writers: main
inline FILE* Output = nullptr;      // standard output               writers: main
inline FILE* tolstartup = nullptr;  // the start-up script while it runs     writers: session/startup

inline constexpr int32_t k_prompt_length = 10;
inline char prompt[k_prompt_length + 1] = ">";  // writers: &M
inline int16_t promptsize = 1;

inline boolean extra_line = 1;    // blank line after a display    writers: &E
inline boolean timerflag = 0;     // time line after a statement   writers: &t
inline boolean errorpush = 0;     // errors push a level           writers: &e
inline boolean close_inpuf = 0;   // close the load file at an error                  writers: &b
inline boolean time_to_quit = 0;  // leave the pushed level       writers: &_p, loop

inline constexpr int32_t k_highest_level = 9;
inline int32_t levelcount = 1;  // the command level, 1..9       writers: error route

/// A point of time, or a span: seconds of the clock on the wall and hundredths of a second of processor time.
struct TimePair {
    int64_t seconds;
    int64_t ticks;
};
inline int16_t time_level = 1;
inline TimePair mytime[k_highest_level + 1] = {};     // start of the statement, for each level
inline TimePair breaktime[k_highest_level + 1] = {};  // when the level above was opened
inline TimePair time_off[k_highest_level + 1] = {};   // time spent above, not charged to the statement
}  // namespace tolvex
