#pragma once
/// storage/memory.h: the memory budget, and the general allocator as the program uses it.
///
/// Purpose    the budget is advice for caches, never a limit: memavail and the garbsize family answer "is
///            there still room". checked_malloc never returns nil.
#include "storage/types.h"

#include <cstddef>
#include <cstdint>
namespace tolvex {
inline uint64_t totalavailablememory = 0;  // the budget in bytes          writers: start-up
inline int64_t initial_memory = 0;         // a quarter of the budget      writers: start-up
inline int64_t size_data_strucs = 0;       // bytes of fixed tables        writers: start-up
inline boolean diskstore = 0;              // a recorded preference        writers: &&

/// Bytes from the general allocator; reports, frees caches and tries again when there are none.
void* checked_malloc(size_t bytes);
/// The block p, which may be nil, in the new size; large blocks are moved without copying them.
void* checked_realloc(void* p, size_t bytes);
/// The budget less the slugs handed out by the five stashes (records on free lists count as used); at
/// least 0.
uint64_t memavail();
/// The budget, or 4 GiB if none has been set.
uint64_t find_total_available_memory();
}  // namespace tolvex
