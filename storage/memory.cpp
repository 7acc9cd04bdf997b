#include "storage/memory.h"

#include "storage/failure.h"
#include "storage/stash.h"

#include <cstdlib>
#include <initializer_list>
namespace tolvex {
void* checked_malloc(size_t bytes) {
    if (bytes == 0) bytes = 1;  // nil always means failure
    void* p = std::malloc(bytes);
    if (p == nullptr) {
        mem_error();
        p = std::malloc(bytes);
        if (p == nullptr) tolvex_error("out of memory.\n");
    }
    return p;
}

void* checked_realloc(void* old, size_t bytes) {
    if (bytes == 0) bytes = 1;
    void* p = std::realloc(old, bytes);
    if (p == nullptr) {
        mem_error();
        p = std::realloc(old, bytes);
        if (p == nullptr) tolvex_error("out of memory.\n");
    }
    return p;
}

uint64_t memavail() {
    uint64_t left = totalavailablememory;
    for (const stash_rec* s : {polystash, quolystash, numstash, imagstash, colmstash}) {
        uint64_t used = static_cast<uint64_t>(s->slugs_used) * static_cast<uint64_t>(s->slug_size);
        if (used >= left) return 0;
        left -= used;
    }
    return left;
}

uint64_t find_total_available_memory() {
    constexpr uint64_t k_fallback = 4294967296;
    if (totalavailablememory <= 9) totalavailablememory = k_fallback;
    return totalavailablememory;
}
}  // namespace tolvex
