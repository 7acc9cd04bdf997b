#pragma once
/// session/status.h: the display of the settings.
///
/// Raises     nothing.
namespace tolvex {
/// `&g`: the ground ring, the switches, the prompt, the polynomial variables, one line each.
void global_dump();
}  // namespace tolvex
