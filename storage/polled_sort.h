#pragma once
/// storage/polled_sort.h: sorting of long arrays with safe points.
///
/// Purpose    pieces are sorted by the library, then merged from both ends of a scratch array and back; short
///            arrays are one piece. Every element is whole at each safe point.
/// Raises     as scratch_array, poll_interrupt.
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <type_traits>
namespace tolvex {
inline constexpr int64_t k_sorted_unpolled = int64_t{1} << 15;

/// to := the two runs from[0..half), from[half..n) in one order.
template <class T, class Less>
void merge_runs_polled(const T* from, int64_t half, int64_t n, T* to, Less less) {
    const T *x = from, *y = from + half;
    const T *x_end = y, *y_end = from + n;
    for_polled<k_sorted_unpolled>(n, [&](int64_t k) {
        bool second = x == x_end || (y != y_end && less(*y, *x));
        to[k] = second ? *y++ : *x++;
    });
}

/// Sorts a[0..n) by less(x, y). Time n log n; n elements of scratch memory if n is above k_sorted_unpolled.
template <class T, class Less> void polled_sort(T* a, int64_t n, Less less) {
    static_assert(std::is_trivially_copyable_v<T>);
    for (int64_t at = 0; at < n; at += k_sorted_unpolled) {
        std::sort(a + at, a + std::min(n, at + k_sorted_unpolled), less);
        if (n > k_sorted_unpolled) poll_interrupt();
    }
    if (n <= k_sorted_unpolled) return;
    ScratchMark mark = scratch_mark();
    T *from = a, *to = scratch_array<T>(n);
    for (int64_t run = k_sorted_unpolled; run < n; run *= 2) {
        for (int64_t at = 0; at < n; at += 2 * run) {
            int64_t length = std::min(2 * run, n - at);
            merge_runs_polled(from + at, std::min(run, length), length, to + at, less);
        }
        std::swap(from, to);
    }
    if (from != a) scratch_copy(a, from, static_cast<size_t>(n) * sizeof(T));
    scratch_release(mark);
}
}  // namespace tolvex
