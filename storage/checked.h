#pragma once
/// storage/checked.h: the macros of the checked build (-DTOLVEX_CHECKED=ON).
///
/// Purpose    CHECK tests an internal invariant; POOL_POISON and POOL_UNPOISON tell the address sanitizer
///            which records are on a free list; USED_UP marks a name whose value has been consumed by a
///            call.
/// Modes      all of them vanish in the release build.
#ifdef TOLVEX_CHECKED
#include <cstddef>
namespace tolvex {
/// Prints file, line, condition and the statement being run, then aborts.
[[noreturn]] void check_failed(const char* file, int line, const char* condition);
}  // namespace tolvex
#define CHECK(condition) ((condition) ? (void)0 : ::tolvex::check_failed(__FILE__, __LINE__, #condition))
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define POOL_POISON(p, n) __asan_poison_memory_region((p), (n))
#define POOL_UNPOISON(p, n) __asan_unpoison_memory_region((p), (n))
#else
#define POOL_POISON(p, n) ((void)0)
#define POOL_UNPOISON(p, n) ((void)0)
#endif
#else
#define CHECK(condition) ((void)0)
#define POOL_POISON(p, n) ((void)0)
#define POOL_UNPOISON(p, n) ((void)0)
#endif
/// `best_poly_add(sum, term, &sum), term = USED_UP;`: the record belongs to somebody else now.
#define USED_UP nullptr
