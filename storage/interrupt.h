#pragma once
/// storage/interrupt.h: the interrupt flag and its safe points.
///
/// Purpose    the signal handler sets `interrupt_pending` and nothing else; long loops call
///            poll_interrupt() once a term, row or prime. TOLVEX_NO_POLL leaves the safe points out, to
///            measure what they cost.
/// Invariant  never polled while a free list is half spliced or an operand half built.
#include "storage/failure.h"
#include "storage/types.h"

#include <csignal>
namespace tolvex {
inline volatile std::sig_atomic_t interrupt_pending = 0;  // writers: the signal handler, take_interrupt
inline boolean command_int = 1;  // command interrupts allowed       writers: &m, delicate sections
inline boolean danger_ok = 0;    // interrupts are safe everywhere   writers: &Z
inline int32_t m_interrupt = 1;  // command interrupt level 0..2     writers: &m
inline int32_t cmd_modder = 32;  // polling rhythm of that level     writers: &m

/// While this is above 0 an interrupt waits: the values are between two rings or two lists of variables, or a
/// display has changed a setting.
inline int32_t interrupts_held = 0;

inline void poll_interrupt() {
#ifndef TOLVEX_NO_POLL
    if (__builtin_expect(interrupt_pending != 0, 0)) take_interrupt();
#endif
}

/// Called in every turn k of a loop with short turns: a safe point once in `rhythm` turns, a power of two.
template <int64_t rhythm> inline void poll_every(int64_t k) {
    static_assert((rhythm & (rhythm - 1)) == 0);
    if (__builtin_expect((k & (rhythm - 1)) == rhythm - 1, 0)) poll_interrupt();
}
inline constexpr int64_t k_no_safe_point = 0;
/// turn(k) for k from 0 to n - 1 with a safe point once in `rhythm` turns, or with none; the loop in between
/// is a plain one.
template <int64_t rhythm, class Turn> inline void for_polled(int64_t n, Turn turn) {
    if constexpr (rhythm == k_no_safe_point) {
        for (int64_t k = 0; k < n; k++) turn(k);
    } else {
        for (int64_t k = 0; k < n;) {
            const int64_t stop = n - k > rhythm ? k + rhythm : n;
            for (; k < stop; k++) turn(k);
            if (k < n) poll_interrupt();
        }
    }
}

/// The same, where short loops are the rule: one of at most `rhythm` turns has nothing more to test.
template <int64_t rhythm, class Turn> inline void for_long_polled(int64_t n, Turn turn) {
    if (__builtin_expect(n <= rhythm, 1)) {
        for (int64_t k = 0; k < n; k++) turn(k);
    } else {
        for_polled<rhythm>(n, turn);
    }
}
}  // namespace tolvex
