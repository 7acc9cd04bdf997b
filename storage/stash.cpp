#include "storage/stash.h"

#include "storage/checked.h"
#include "storage/failure.h"
#include "storage/memory.h"

#include <cstdio>
#include <cstdlib>
namespace tolvex {
stash_rec primal_stash = {nullptr, nullptr, &primal_stash, &primal_stash, "storage allocator", 56, 0, 0, 0};

stash_rec* open_stash(int32_t size, const char* name) {
    auto* p = static_cast<stash_rec*>(get_slug(&primal_stash));
    p->slugs = nullptr;
    p->blocks = nullptr;
    p->prev = &primal_stash;
    p->next = primal_stash.next;
    primal_stash.next->prev = p;
    primal_stash.next = p;
    p->name = name;
    p->slug_size = size < 8 ? 8 : (size + 7) / 8 * 8;
    p->n_blocks = p->n_slugs = p->slugs_used = 0;
    return p;
}

void open_all_stashes() {
    polystash = open_stash(24, "stash of polynodes");
    quolystash = open_stash(40, "stash of quolynodes");
    numstash = open_stash(16, "stash of numnodes");
    imagstash = open_stash(32, "stash of numbers");
    colmstash = open_stash(24, "stash of colms");
}

bool get_block(stash_rec* pstash) {
    if (pstash->slug_size > k_block_bytes) return false;  // no block holds such a slug
    if (extra_blocks == nullptr && !more_mem()) return false;
    stashblock* b = extra_blocks;
    extra_blocks = b->pblock;
    int32_t count = 0;
    for (int32_t offset = 0; offset <= k_block_bytes - pstash->slug_size; offset += pstash->slug_size) {
        auto* s = reinterpret_cast<slug*>(b->space + offset);  // each slug links to the one before it
        s->pslug = pstash->slugs;
        pstash->slugs = s;
        count++;
    }
    b->pblock = pstash->blocks;
    pstash->blocks = b;
    pstash->n_blocks++;
    pstash->n_slugs += count;
    return true;
}

void* get_slug(stash_rec* pstash) {
    if (pstash == nullptr) return nullptr;
    if (pstash->slugs == nullptr && !get_block(pstash)) {
        printf("out of memory while trying to accesss stash %s\n", pstash->name);
        stash_stats();
        mem_error();
        if (!get_block(pstash)) tolvex_error("out of memory.\n");
    }
    slug* s = pstash->slugs;
    pstash->slugs = s->pslug;
    pstash->slugs_used++;
    return s;
}

void free_slug(stash_rec* pstash, void* ptr) {
    auto* s = static_cast<slug*>(ptr);
    s->pslug = pstash->slugs;
    pstash->slugs = s;
    pstash->slugs_used--;
}

int32_t more_mem() {
    auto* b = static_cast<stashblock*>(std::malloc(sizeof(stashblock)));
    if (b == nullptr) return 0;
    b->pblock = extra_blocks;
    extra_blocks = b;
    return 1;
}

void endof_stash(stash_rec* pstash) {
    while (pstash->blocks != nullptr) {
        stashblock* b = pstash->blocks;
        pstash->blocks = b->pblock;
        b->pblock = extra_blocks;
        extra_blocks = b;
    }
    pstash->prev->next = pstash->next;
    pstash->next->prev = pstash->prev;
    free_slug(&primal_stash, pstash);
}

int32_t* get_small(int32_t number) {
    constexpr int32_t k_chunk_words = 131072;  // 512 KiB
    static int32_t* nextloc = nullptr;
    static int32_t numleft = 0;
    CHECK(number >= 0 && number <= k_chunk_words);
    if (numleft < number) {  // the rest of the old chunk is abandoned
        nextloc = static_cast<int32_t*>(checked_malloc(k_chunk_words * sizeof(int32_t)));
        numleft = k_chunk_words;
    }
    int32_t* p = nextloc;
    nextloc += number;
    numleft -= number;
    return p;
}

void* fresh_record(size_t bytes) {
    constexpr size_t k_chunk = 65536, k_small = 1024;
    static unsigned char* next = nullptr;
    static size_t left = 0;
    if (bytes > k_small) return checked_malloc(bytes);
    bytes = (bytes + 7) / 8 * 8;
    if (left < bytes) {
        next = static_cast<unsigned char*>(checked_malloc(k_chunk));
        left = k_chunk;
    }
    unsigned char* p = next;
    next += bytes;
    left -= bytes;
    return p;
}

void stash_stats() {
    printf("STASH NAME: number of blocks, number of slugs, slugs_used, slug_size\n");
    fflush(stdout);
}

void print_stash_stats(const stash_rec* pstash) {
    if (pstash == nullptr) return;
    printf("%s: \t%d, \t%d, \t%d, \t%d\n", pstash->name, pstash->n_blocks, pstash->n_slugs,
           pstash->slugs_used, pstash->slug_size);
}
}  // namespace tolvex
