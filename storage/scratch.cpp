#include "storage/scratch.h"

#include "storage/checked.h"
#include "storage/memory.h"

#include <cstdlib>
namespace tolvex {
namespace {
constexpr size_t k_align = 64;
constexpr size_t k_first_block = size_t{4} << 20;
constexpr size_t k_kept = size_t{256} << 20;  // larger blocks go back to the general allocator when released

struct Block {
    Block* below;
    Block* above;  // kept for reuse while it is not too large
    size_t size;
    unsigned char* base() { return reinterpret_cast<unsigned char*>(this) + k_align; }
};

Block* current = nullptr;
size_t used = 0;

Block* new_block(Block* below, size_t size) {
    auto* b = static_cast<Block*>(checked_malloc(size + 2 * k_align));
    auto at = reinterpret_cast<uintptr_t>(b);
    CHECK(at % 16 == 0);
    (void)at;
    b->below = below;
    b->above = nullptr;
    b->size = size;
    POOL_POISON(b->base(), size);
    return b;
}

/// Gives back the blocks kept above b.
void drop_above(Block* b) {
    for (Block* p = b->above; p != nullptr;) {
        Block* next = p->above;
        free(p);
        p = next;
    }
    b->above = nullptr;
}

unsigned char* aligned(unsigned char* p) {
    return reinterpret_cast<unsigned char*>((reinterpret_cast<uintptr_t>(p) + k_align - 1) & ~(k_align - 1));
}
}  // namespace

ScratchMark scratch_mark() { return {current, used}; }

void scratch_release(ScratchMark mark) {
    // What lies above `used` of the block in use is poisoned already; a block left behind is poisoned whole.
    [[maybe_unused]] size_t top = current == mark.block ? used : SIZE_MAX;
    while (current != mark.block) {
        Block* b = current;
        current = b->below;
        if (current == nullptr) {  // the first block is kept for good
            current = b;
            used = 0;
            POOL_POISON(current->base(), current->size);
            return;
        }
        POOL_POISON(b->base(), b->size);
        if (b->size > k_kept) drop_above(current);
    }
    used = mark.used;
    if (current != nullptr)
        POOL_POISON(current->base() + used, (top < current->size ? top : current->size) - used);
}

void* scratch_bytes(size_t bytes) {
    bytes = (bytes + k_align - 1) & ~(k_align - 1);
    if (current == nullptr) current = new_block(nullptr, k_first_block);
    if (bytes + k_align > current->size - used) {
        Block* next = current->above;
        if (next != nullptr && next->size < bytes + k_align) {
            drop_above(current);
            next = nullptr;
        }
        if (next == nullptr) {
            size_t size = current->size * 2;
            if (size < bytes + k_align) size = bytes + k_align;
            next = new_block(current, size);
            current->above = next;
        }
        current = next;
        used = 0;
    }
    unsigned char* p = aligned(current->base() + used);
    POOL_UNPOISON(p, bytes);
    used = static_cast<size_t>(p - current->base()) + bytes;
    return p;
}
}  // namespace tolvex
