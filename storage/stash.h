#pragma once
/// storage/stash.h: the slug allocator. Blocks of 512 KiB are carved into equal slugs and never returned.
///
/// Purpose    the lower of the two layers of storage; the typed free lists (storage/pool.h) stand above it.
/// Invariant  slugs of a fresh block are handed out from the high end down; records freed by the program
///            go to their free list, never back here.
/// Raises     get_slug: reports, calls mem_error() once and tries again; then the statement ends. Never nil.
#include "storage/types.h"

#include <cstddef>
#include <cstdint>
namespace tolvex {
struct slug {
    slug* pslug;
};

#ifdef TOLVEX_SMALL_LIMITS
inline constexpr int32_t k_block_bytes = 4096;
#else
inline constexpr int32_t k_block_bytes = 524288;
#endif

struct stashblock {
    stashblock* pblock;
    alignas(8) unsigned char space[k_block_bytes];
};

/// One stash: 56 bytes, itself a slug of primal_stash.
struct stash_rec {
    slug* slugs;         // stack of free slugs
    stashblock* blocks;  // blocks owned
    stash_rec* prev;     // ring of all stashes, anchored at primal_stash
    stash_rec* next;
    const char* name;   // shown in messages
    int32_t slug_size;  // bytes a slug, a multiple of 8
    int32_t n_blocks;
    int32_t n_slugs;
    int32_t slugs_used;  // handed out and not returned by free_slug
};
static_assert(sizeof(stash_rec) == 56);

extern stash_rec primal_stash;
inline stashblock* extra_blocks = nullptr;  // spare blocks shared by all stashes

inline stash_rec* polystash = nullptr;   // 24 bytes: polynode       writers: open_all_stashes
inline stash_rec* quolystash = nullptr;  // 40 bytes: quolynode
inline stash_rec* numstash = nullptr;    // 16 bytes: numnode
inline stash_rec* imagstash = nullptr;   // 32 bytes: number
inline stash_rec* colmstash = nullptr;   // 24 bytes: colnode

/// Opens a stash of slugs of `size` bytes, rounded up to a multiple of 8, at least 8.
stash_rec* open_stash(int32_t size, const char* name);
/// Opens the five stashes of the program, in their order. First thing of every process.
void open_all_stashes();
/// Carves one more block for the stash; false when no memory is left.
bool get_block(stash_rec* pstash);
/// A slug, contents undefined. A nil stash gives nil.
void* get_slug(stash_rec* pstash);
/// Gives a slug back to its stash.
void free_slug(stash_rec* pstash, void* ptr);
/// Allocates one block for extra_blocks; 1, or 0 when the general allocator fails.
int32_t more_mem();
/// Closes a stash: its blocks become spare, its record goes back to primal_stash.
void endof_stash(stash_rec* pstash);
/// Bump allocation of `number` 32-bit words, never given back. At most 131072 words a call.
int32_t* get_small(int32_t number);
/// The memory of one record that has no stash of its own, never given back, 8-byte aligned: small ones are
/// cut from chunks, which costs no header for each.
void* fresh_record(size_t bytes);
void stash_stats();
void print_stash_stats(const stash_rec* pstash);

/// The hot path of get_slug: pops a carved slug, or carves a block first.
inline void* fresh_slug(stash_rec* pstash) {
    slug* s = pstash->slugs;
    if (__builtin_expect(s == nullptr, 0)) return get_slug(pstash);
    pstash->slugs = s->pslug;
    pstash->slugs_used++;
    return s;
}
}  // namespace tolvex
