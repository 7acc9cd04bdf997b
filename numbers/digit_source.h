#pragma once
/// numbers/digit_source.h: many digits at once from the free list, for routines that write a chain.
///
/// Purpose    the free list is walked in a local variable and keeps its links, so that a digit costs one
///            load. Chains go back as they are: a new chain mostly follows the nodes of an old one in
///            memory.
/// Invariant  no digit leaves the list before finish() or a pause, which cut it behind the last one taken;
///            nothing else may take or give back digits in between.
#include "numbers/number.h"
#include "storage/interrupt.h"
namespace tolvex {
/// Digits from one safe point of a walk over a long chain to the next: fresh memory takes about 20 ns a
/// digit.
inline constexpr int64_t k_digits_unpolled = int64_t{1} << 16;

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
    /// Called in every turn i, with the digit taken last: a safe point now and then. What the new chain is
    /// made from must stay in place while statements run.
    void pause_every(int64_t i, numptr last) {
        if (__builtin_expect((i & (k_digits_unpolled - 1)) != k_digits_unpolled - 1, 1)) return;
        if (interrupt_pending == 0) return;
        finish(last);
        poll_interrupt();
#ifndef TOLVEX_CHECKED
        free = numhead;
#endif
    }
};
}  // namespace tolvex
