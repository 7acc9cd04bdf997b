#pragma once
/// session/levels.h: errors, interrupts, and the command levels that they open.
///
/// Purpose    error() reports a failed statement and leaves for level 1, or opens a command level on top
///            of it and comes back when the level is left. The routines of storage/failure.h are defined
///            here.
/// Invariant  whoever goes to level 1 goes through leave_for_level_1 (levels.cpp): modes that a
///            computation had changed, the scratch stack and the per-statement counters are put in order
///            there.
/// Raises     everything here leaves by a long jump or returns as storage/failure.h says.
#include "storage/failure.h"
#include "storage/interrupt.h"

#include <cstdint>
namespace tolvex {
/// Reports a panic stop and returns to level 1.
[[noreturn]] void panic_stop();
/// Opens a command level on top of the statement under way; comes back when it is left by `&_p`.
void new_level();
inline int64_t levels_opened = 0;  // command levels opened so far     writers: open_level
/// Binds the interrupt signal.
void install_interrupt_handler();
/// The counters that belong to one statement start anew.
void clear_statement_counters();
}  // namespace tolvex
