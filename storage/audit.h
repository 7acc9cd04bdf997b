#pragma once
/// storage/audit.h: leak accounting of the checked build.
///
/// Purpose    each pool counts its live records; after every statement the session walks all roots and
///            compares: live = reachable + what stood at start-up. A difference names the pool and fails
///            the test.
/// Invariant  every module that keeps records between statements registers its pools and a walker of its
///            roots.
/// Modes      in the release build all calls are empty.
#include "storage/pool.h"
namespace tolvex {
#ifdef TOLVEX_CHECKED
struct audit_row;
audit_row* audit_new_row(const char* name, const int64_t* live);
void audit_add(audit_row* row, int64_t count);
void audit_add_walker(void (*walker)());
template <class R> inline audit_row* audit_row_of = nullptr;

/// Makes the pool of R known under `name`.
template <class R> inline void audit_pool(const char* name) {
    audit_row_of<R> = audit_new_row(name, &pool_counters<R>.live);
}
/// Called by walkers: `count` records of R can be reached.
template <class R> inline void audit_reach(int64_t count = 1) { audit_add(audit_row_of<R>, count); }
/// `walker` calls audit_reach for everything that its module keeps.
inline void audit_roots(void (*walker)()) { audit_add_walker(walker); }

/// Takes what is live now and not reachable as the base: after start-up, and after an error has lost records.
void audit_rebase();
/// Compares. Prints a line a pool that differs and returns false (TOLVEX_AUDIT=abort in the environment:
/// aborts).
bool audit_compare(const char* after_what);
#else
template <class R> inline void audit_pool(const char*) {}
inline void audit_rebase() {}
inline bool audit_compare(const char*) { return true; }
#endif
}  // namespace tolvex
