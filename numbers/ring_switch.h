#pragma once
/// numbers/ring_switch.h: the one place that changes the ground ring in force.
///
/// Purpose    set_modulus writes the modulus and all that depends on it; RingState saves and restores the
///            whole; check_modular suspends modular arithmetic around a value that must stay an ordinary
///            integer.
/// Invariant  code that switches calls ring_save/ring_enter_prime/ring_restore in pairs; what an error
///            jump leaves behind is restored by the session through ring_unwind.
#include "numbers/number.h"
namespace tolvex {
struct RingState {
    int32_t modulus, half_modulus, two28_mod;
    uint64_t modulus_recip;
    double rmodulus;
    boolean modularmode, lintmode, smallmodulus, mod_is_prime, f256, f2t16, finf, integerflag;
    int32_t depth;  // saves and suspensions in force, so that a captured state keeps its way out
    int16_t mod_is_changed;
};
/// Writes modulus (-1: none), half_modulus, two28_mod, smallmodulus, rmodulus, modulus_recip. Not the mode
/// flags.
void set_modulus(int32_t m);
RingState ring_capture();                   ///< a copy of the state in force; nothing is registered
void ring_assign(const RingState& state);   ///< puts it in force
RingState ring_save();                      ///< a copy of the state, registered for ring_unwind
void ring_restore(const RingState& saved);  ///< undoes the matching ring_save
void ring_enter_prime(int32_t p);           ///< Z/p for a prime p: modular mode, no table field
void ring_enter_integers();                 ///< rational mode for a computation with chains
void ring_unwind();                         ///< back to the outermost saved state, if any
/// *saved := modularmode; if set: clears it and counts in mod_is_changed. lintmode stays.
void check_modular(boolean* saved);
void restore_modular(boolean saved);
/// Modular arithmetic comes back for a while if it is suspended: true then, to be handed to ring_suspend.
/// Words that were computed before have to be reduced.
bool ring_resume();
void ring_suspend(bool resumed);
}  // namespace tolvex
