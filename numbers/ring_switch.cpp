#include "numbers/ring_switch.h"

#include "storage/checked.h"
namespace tolvex {
namespace {
// The ring of the user while an image or a suspended mode is in force, and how many of these are nested. Only
// the outermost record is ever needed by ring_unwind: inner ones live in the frames that restore them.
RingState outermost = {};
int32_t depth = 0;

void register_save(const RingState& state) {
    if (depth == 0) outermost = state;
    depth++;
}
}  // namespace

void set_modulus(int32_t m) {
    modulus = m;
    rmodulus = m;
    if (m < 1) {  // no modulus
        half_modulus = two28_mod = 0;
        smallmodulus = 0;
        modulus_recip = 0;
        return;
    }
    half_modulus = m / 2;
    two28_mod = k_base % m;
    smallmodulus = finf || m < 65535;
    // floor(2^64 / m), from 2^64 - 1: they differ only where m divides 2^64, which is then m = 2^k
    modulus_recip = UINT64_MAX / static_cast<uint32_t>(m);
    if (m > 1 && (m & (m - 1)) == 0) modulus_recip++;
}

RingState ring_capture() {
    return {modulus,     half_modulus, two28_mod,    modulus_recip, rmodulus,
            modularmode, lintmode,     smallmodulus, mod_is_prime,  f256,
            f2t16,       finf,         integerflag,  depth,         mod_is_changed};
}

void ring_assign(const RingState& state) {
    modulus = state.modulus;
    half_modulus = state.half_modulus;
    two28_mod = state.two28_mod;
    modulus_recip = state.modulus_recip;
    rmodulus = state.rmodulus;
    modularmode = state.modularmode;
    lintmode = state.lintmode;
    smallmodulus = state.smallmodulus;
    mod_is_prime = state.mod_is_prime;
    f256 = state.f256;
    f2t16 = state.f2t16;
    finf = state.finf;
    integerflag = state.integerflag;
    depth = state.depth;
    mod_is_changed = state.mod_is_changed;
}

RingState ring_save() {
    RingState now = ring_capture();
    register_save(now);
    return now;
}

void ring_restore(const RingState& saved) {
    CHECK(depth == saved.depth + 1);
    ring_assign(saved);
}

void ring_enter_prime(int32_t p) {
    f256 = f2t16 = finf = 0;
    modularmode = lintmode = 1;
    mod_is_prime = 1;
    set_modulus(p);
}

void ring_enter_integers() {
    f256 = f2t16 = finf = 0;
    modularmode = lintmode = 0;
    mod_is_prime = 0;
    set_modulus(-1);
}

void ring_unwind() {
    if (depth > 0) ring_assign(outermost);
}

void check_modular(boolean* saved) {
    *saved = modularmode;
    if (!modularmode) return;
    register_save(ring_capture());
    mod_is_changed++;
    modularmode = 0;
}

void restore_modular(boolean saved) {
    if (!saved) return;
    CHECK(depth > 0 && mod_is_changed > 0);
    depth--;
    mod_is_changed--;
    modularmode = 1;
}

bool ring_resume() {
    if (modularmode || !lintmode || mod_is_changed == 0) return false;
    register_save(ring_capture());
    modularmode = 1;
    return true;
}

void ring_suspend(bool resumed) {
    if (!resumed) return;
    CHECK(depth > 0);
    depth--;
    modularmode = 0;
}
}  // namespace tolvex
