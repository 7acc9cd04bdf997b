#include "storage/scratch.h"

#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/memory.h"

#include <cstdlib>
#include <cstring>
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

Block* dying = nullptr;  // blocks on their way to the system, linked by `above`

#if defined(__SANITIZE_ADDRESS__)
constexpr bool k_shrinks_in_place = false;  // the sanitizer copies what it shrinks
#else
constexpr bool k_shrinks_in_place = true;
#endif

/// Gives the dying blocks back, large ones from their end, a piece at a time: a gigabyte takes the system a
/// tenth of a second. At a safe point the list is whole; a command level may work at it too, or never come
/// back.
void bury() {
    constexpr size_t k_piece = size_t{64} << 20;
    while (dying != nullptr) {
        Block* b = dying;
        if (k_shrinks_in_place && b->size > 2 * k_piece) {
            size_t size = b->size - k_piece;
            auto* shorter = static_cast<Block*>(realloc(b, size + 2 * k_align));
            if (shorter != nullptr) {
                shorter->size = size;
                dying = shorter;
                poll_interrupt();
                continue;
            }
        }
        dying = b->above;
        free(b);
        poll_interrupt();
    }
}

/// Takes off the blocks kept above b.
void drop_above(Block* b) {
    while (b->above != nullptr) {
        Block* p = b->above;
        b->above = p->above;
        p->above = dying;
        dying = p;
    }
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
            mark.used = 0;
            break;
        }
        POOL_POISON(b->base(), b->size);
        if (b->size > k_kept) drop_above(current);
    }
    used = mark.used;
    if (current != nullptr)
        POOL_POISON(current->base() + used, (top < current->size ? top : current->size) - used);
    bury();
}

void* scratch_bytes(size_t bytes) {
    bytes = (bytes + k_align - 1) & ~(k_align - 1);
    if (current == nullptr) current = new_block(nullptr, k_first_block);
    if (bytes + k_align > current->size - used) {
        Block* next = current->above;
        if (next != nullptr && next->size < bytes + k_align) {
            drop_above(current);
            bury();
            next = current->above;  // a command level may have left one
            if (next != nullptr && next->size < bytes + k_align) {
                drop_above(current);
                next = nullptr;
            }
        }
        if (next == nullptr) {
            size_t size = current->size < k_kept / 2 ? current->size * 2 : k_kept;
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

static constexpr size_t k_stretch = size_t{1} << 20;  // bytes from one safe point to the next

void scratch_fill(void* at, unsigned char byte, size_t bytes) {
    auto* p = static_cast<unsigned char*>(at);
    for (; bytes > k_stretch; p += k_stretch, bytes -= k_stretch) {
        memset(p, byte, k_stretch);
        poll_interrupt();
    }
    memset(p, byte, bytes);
}

void scratch_copy(void* to, const void* from, size_t bytes) {
    auto* p = static_cast<unsigned char*>(to);
    auto* q = static_cast<const unsigned char*>(from);
    for (; bytes > k_stretch; p += k_stretch, q += k_stretch, bytes -= k_stretch) {
        memcpy(p, q, k_stretch);
        poll_interrupt();
    }
    memcpy(p, q, bytes);
}
}  // namespace tolvex
