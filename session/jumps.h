#pragma once
/// session/jumps.h: the two ways out of any depth. Both targets stand in session/main.cpp.
///
/// Purpose    setjmp and longjmp stand behind these two routines alone.
#include <cstdint>
namespace tolvex {
/// To the start of level 1, with the number of the failure. The caller has put the session in order
/// (session/levels.cpp).
[[noreturn]] void jump_to_level_1(int32_t failure);
/// Ends the process with the farewell and the status 0.
[[noreturn]] void jump_to_farewell();
}  // namespace tolvex
