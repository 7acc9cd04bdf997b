#pragma once
/// language/stack_bound.h: how deep the evaluators may nest.
///
/// Purpose    the evaluators recurse once a parenthesis, sign or call; near the end of the process stack the
///            statement ends with error 347 instead of a crash. Every cycle of the recursion passes fact(),
///            bool_fact(), getval() or read_control_statement(),
///            which asks stack_is_low().
#include <cstdint>
namespace tolvex {
inline uintptr_t stack_floor = 0;  // addresses below it are kept for arithmetic    writers: init_stack_bound

/// Measures the stack of the process from the frame of the caller. After the limit has been raised.
void init_stack_bound();
inline bool stack_is_low() {
    return __builtin_expect(reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) < stack_floor, 0);
}
}  // namespace tolvex
