#pragma once
/// numbers/digit_source.h: many digits at once from the free list, for routines that write a chain.
///
/// Purpose    the free list is walked in a local variable and keeps its links, so that a digit costs one
/// load.
///            Chains go back as they are: a new chain mostly follows the nodes of an old one in memory.
/// Invariant  no digit leaves the list before finish(), which cuts it behind the last one taken; nothing else
///            may take or give back digits in between.
#include "numbers/number.h"
namespace tolvex {
struct DigitSource {
#ifdef TOLVEX_CHECKED
    numptr next() { return newnum(); }
    void finish(numptr last) { last->next = nullptr; }
#else
    numptr free = numhead;
    /// The next digit, contents undefined; the caller links it to the one before.
    numptr next() {
        numptr d = free;
        if (__builtin_expect(d == nullptr, 0)) {
            d = static_cast<numptr>(fresh_slug(numstash));
            d->next = nullptr;
        }
        free = d->next;
        return d;
    }
    /// Takes the digits handed out, at least one, off the list; `last` gets the link nil.
    void finish(numptr last) {
        numhead = free;
        last->next = nullptr;
    }
#endif
};
}  // namespace tolvex
