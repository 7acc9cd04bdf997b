#pragma once
/// storage/interrupt_probe.h: finds stretches of computation without a safe point. Only in the build with
/// TOLVEX_POLL_GAPS; otherwise nothing is left of it.
///
/// Purpose    a timer of the process's own processor time raises the interrupt flag again and again, as a
///            user would; the next safe point tells how long that took. A gap above k_reported_gap is
///            written to the standard error with addresses of the calls that were under way in its
///            middle, which tests/fault/poll_gaps.py turns into names.
/// Invariant  a flag raised by the probe opens no level, so that what the program prints stays the same.
#ifdef TOLVEX_POLL_GAPS
namespace tolvex {
/// What the flag holds when the probe has raised it; the signal of the user stores 1.
inline constexpr int k_probe_raised = 2;
/// Starts the timer.
void start_probe();
/// A safe point has found the flag with the value `raised`: true if the probe had raised it, and its gap has
/// been noted.
bool probe_answered(int raised);
}  // namespace tolvex
#else
namespace tolvex {
inline void start_probe() {}
inline bool probe_answered(int) { return false; }
}  // namespace tolvex
#endif
