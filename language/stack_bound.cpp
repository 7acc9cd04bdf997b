#include "language/stack_bound.h"

#include <sys/resource.h>
namespace tolvex {
// Arithmetic below the evaluators recurses once a level of polynomial variables, 150 at most, and through the
// gcd driver; the error route prints. They live in a quarter of the stack, at least 2 MiB of it.
static constexpr uintptr_t k_least_reserve = uintptr_t{2} << 20;
static constexpr uintptr_t k_assumed_stack = uintptr_t{32} << 20;  // when the system tells no limit
static constexpr uintptr_t k_most_stack = uintptr_t{1} << 30;

void init_stack_bound() {
    rlimit limit;
    uintptr_t size = k_assumed_stack;
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) size = limit.rlim_cur;
    if (size > k_most_stack) size = k_most_stack;
    uintptr_t reserve = size / 4 > k_least_reserve ? size / 4 : k_least_reserve;
    auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    stack_floor = size > reserve ? here - (size - reserve) : here;
}
}  // namespace tolvex
