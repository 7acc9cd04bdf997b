#pragma once
/// storage/pool.h: typed free lists. A freed record goes to the list of its type through a link field of its
/// own.
///
/// Purpose    pool_pop takes a record, pool_push gives one back, pool_splice gives back a whole chain. Typed
///            constructors (newpoly, newimag ...) stand beside their record and are one call of these.
/// Invariant  a list keeps the order in which chains are given back, so that the next chain is again
///            written in memory order. A record on a list belongs to nobody.
/// Modes      checked build: a record given back is poisoned and rests in a quarantine before it is
///            handed out again, a second release of it is reported, and live records are counted for each
///            type. With -DTOLVEX_POOLS=direct every record comes from the general allocator.
/// Raises     nothing: a source that has run dry reports for itself (storage/stash.h).
#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/stash.h"

#include <cstdlib>
#include <cstring>
namespace tolvex {
#ifdef TOLVEX_CHECKED
#ifdef TOLVEX_SMALL_LIMITS
inline constexpr int32_t k_quarantine = 0;
#else
inline constexpr int32_t k_quarantine = 4096;
#endif
/// What the checked build knows of the pool of one record type.
struct PoolCounters {
    int64_t live = 0;  // handed out and not given back
    void* held[k_quarantine ? k_quarantine : 1] = {};
    int32_t next_held = 0;
};
template <class R> inline PoolCounters pool_counters;

template <auto link, class R> [[gnu::no_sanitize_address]] inline R* pool_link(const R* p) {
    return p->*link;
}
template <auto link, class R> [[gnu::no_sanitize_address]] inline void pool_set_link(R* p, R* to) {
    p->*link = to;
}

template <auto link, class R> inline R* pool_pop(R*& head, stash_rec* source) {
    pool_counters<R>.live++;
    R* p = head;
#ifdef TOLVEX_POOLS_DIRECT
    p = nullptr;
    source = nullptr;
#endif
    if (p != nullptr) {
        head = pool_link<link>(p);
    } else {
        p = static_cast<R*>(source != nullptr ? fresh_slug(source) : checked_malloc(sizeof(R)));
    }
    POOL_UNPOISON(p, sizeof(R));
    memset(static_cast<void*>(p), 0xA5, sizeof(R));
    return p;
}

template <auto link, class R> inline void pool_push(R*& head, R* p) {
    CHECK(p != nullptr);
#if defined(__SANITIZE_ADDRESS__)
    CHECK(!__asan_address_is_poisoned(p));  // given back twice
#endif
    pool_counters<R>.live--;
#ifdef TOLVEX_POOLS_DIRECT
    (void)head;
    free(p);
    return;
#endif
    memset(static_cast<void*>(p), 0x5A, sizeof(R));
    POOL_POISON(p, sizeof(R));
    if constexpr (k_quarantine > 0) {
        PoolCounters& c = pool_counters<R>;
        R* oldest = static_cast<R*>(c.held[c.next_held]);
        c.held[c.next_held] = p;
        c.next_held = c.next_held + 1 < k_quarantine ? c.next_held + 1 : 0;
        p = oldest;
    }
    if (p != nullptr) {
        pool_set_link<link>(p, head);
        head = p;
    }
}

template <auto link, class R> inline void pool_splice(R*& head, R* first, R* last) {
    for (R* p = first;;) {
        R* next = p->*link;
        bool done = p == last;
        pool_push<link>(head, p);
        if (done) return;
        p = next;
    }
}
#else
template <auto link, class R> inline R* pool_link(const R* p) { return p->*link; }

/// A record of the pool `head`, contents undefined; from `source` (nullptr: the chunks of fresh_record) if it
/// is empty.
template <auto link, class R> inline R* pool_pop(R*& head, stash_rec* source) {
    R* p = head;
    if (__builtin_expect(p == nullptr, 0))
        return static_cast<R*>(source != nullptr ? fresh_slug(source) : fresh_record(sizeof(R)));
    head = p->*link;
    return p;
}

/// Gives one record back.
template <auto link, class R> inline void pool_push(R*& head, R* p) {
    p->*link = head;
    head = p;
}

/// Gives back the chain from `first` to `last` in one step.
template <auto link, class R> inline void pool_splice(R*& head, R* first, R* last) {
    last->*link = head;
    head = first;
}
#endif

/// Number of records on a free list, at most `cap`. A safe point now and then; a command level may change the
/// list, so that the count starts anew.
template <auto link, class R> inline int64_t pool_length(R* const& head, int64_t cap) {
    constexpr int64_t k_unpolled = int64_t{1} << 14;
    int64_t n = 0;
    for (const R* p = head; p != nullptr && n < cap; p = pool_link<link>(p)) {
        if ((++n & (k_unpolled - 1)) != 0 || interrupt_pending == 0) continue;
        poll_interrupt();
        if (interrupt_pending == 0) return pool_length<link>(head, cap);
    }
    return n;
}
}  // namespace tolvex
