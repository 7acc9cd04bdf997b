#pragma once
/// numbers/limbs.h: arrays of 64-bit limbs, the working form of big integers inside one operation.
///
/// Purpose    chains are unpacked once (28-bit digits to little-endian limbs), worked on in arrays, and
///            written once. Methods by length: products schoolbook, Karatsuba, Toom-Cook, transforms
///            (limb_ntt.h); quotients schoolbook, Burnikel-Ziegler; gcds Lehmer, half-gcd (limb_lehmer.h);
///            roots Zimmermann.
/// Invariant  operands are read only, and lengths are exact (top limb not 0), except where said.
/// Ownership  all scratch comes from storage/scratch.h and is given back before return. A caller takes its
///            arrays from a LimbArena, or from scratch with a mark of its own.
/// Modes      none is read. Chains are handled whatever lintmode says.
/// Raises     poll_interrupt in the long ones: only scratch memory and tables that are complete exist then.
#include "numbers/number.h"
#include "storage/scratch.h"

#include <cstdint>
namespace tolvex {
using limb = uint64_t;

/// Limbs needed for a chain of `size` digits.
inline int64_t limbs_for(int64_t size) { return (size * k_digit_bits + 63) / 64; }
/// r := magnitude of the `size` digits from p (all of one sign); r has limbs_for(size) limbs; returns the
/// true length.
int64_t limbs_from_chain(limb* r, numptr p, int32_t size);
/// x, whose old chain is given back by the caller or absent, becomes the chain of a[0..n) with the given
/// sign.
void chain_from_limbs(imptr x, const limb* a, int64_t n, bool negative);
/// The same for an x that may own a chain (size > 0), whatever the mode: its nodes serve again, so that every
/// operand has to be unpacked before. Leading zeros of a are dropped; n may be 0.
void chain_replace(imptr x, const limb* a, int64_t n, bool negative);
/// x, which may own a chain, becomes the chain of v, whatever the mode.
void chain_set_int64(imptr x, int64_t v);
/// The same for a magnitude of two words.
void chain_set_wide(imptr x, unsigned __int128 magnitude, bool negative);
/// The value of a chain of one or two digits.
inline int64_t chain_small_value(const number* n) {
    int64_t v = n->head->value;
    return n->size == 1 ? v : v * k_base + n->tail->value;
}

/// Limb arrays of one operation: small ones live in the record itself (on the stack), others in scratch.
struct LimbArena {
    static constexpr int64_t k_room = 64;
    int64_t used = 0;
    bool marked = false;
    ScratchMark mark;
    limb room[k_room];
};
inline limb* arena_take(LimbArena& arena, int64_t n) {
    if (n <= LimbArena::k_room - arena.used) {
        limb* p = arena.room + arena.used;
        arena.used += n;
        return p;
    }
    if (!arena.marked) {
        arena.marked = true;
        arena.mark = scratch_mark();
    }
    return scratch_array<limb>(n);
}
/// Gives the scratch of the arena back; call it once, when the result stands in its chain.
inline void arena_end(LimbArena& arena) {
    if (arena.marked) scratch_release(arena.mark);
}
/// The magnitude of a chain in an array of the arena; a zero has length 0.
struct Limbs {
    limb* at;
    int64_t n;
};
inline Limbs arena_unpack(LimbArena& arena, numptr p, int32_t size) {
    limb* r = arena_take(arena, limbs_for(size));
    return {r, limbs_from_chain(r, p, size)};
}

/// r[0..an+bn) := a * b, schoolbook; an >= bn >= 1; r overlaps neither.
void limbs_mul_school(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// r[0..2n) := a^2, schoolbook; n >= 1; r does not overlap a.
void limbs_sqr_school(limb* r, const limb* a, int64_t n);
/// r[0..an+bn) := a * b; an, bn >= 1; r overlaps neither. a may be b (then it squares).
void limbs_mul(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// r[0..n+1) += a[0..n) * w ... returns the carry limb.
limb limbs_addmul_1(limb* r, const limb* a, int64_t n, limb w);
limb limbs_submul_1(limb* r, const limb* a, int64_t n, limb w);
limb limbs_mul_1(limb* r, const limb* a, int64_t n, limb w);
/// r[0..an) := a + b, an >= bn; returns the carry. r may be a or b.
limb limbs_add(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// r[0..an) := a - b, a >= b; returns the borrow (0). r may be a or b.
limb limbs_sub(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// r[0..n) := a * 2^s mod 2^(64 n), s in 0..63; returns the bits shifted out. r may be a or stand above it.
limb limbs_shift_left(limb* r, const limb* a, int64_t n, int s);
/// r[0..n) := a / 2^s, s in 0..63. r may be a or stand below it.
void limbs_shift_right(limb* r, const limb* a, int64_t n, int s);
int limbs_compare(const limb* a, int64_t an, const limb* b, int64_t bn);
/// q[0..an-bn+1) := a / b, a[0..bn) := remainder (a is overwritten). b's top limb is not 0. q may be nil.
void limbs_divrem(limb* q, limb* a, int64_t an, const limb* b, int64_t bn);
/// a := a / w in place; returns the remainder.
limb limbs_divrem_1(limb* a, int64_t n, limb w);
/// a mod w, w > 0.
limb limbs_mod_1(const limb* a, int64_t n, limb w);
/// r := gcd(a, b); a, b not 0 and exact in length; both are overwritten. r has room for the shorter of them;
/// returns the length of r.
int64_t limbs_gcd(limb* r, limb* a, int64_t an, limb* b, int64_t bn);
/// gcd of two words, one of them not 0.
limb word_gcd(limb u, limb v);
/// s[0..(n+1)/2) := floor of the square root of a[0..n), a[n-1] not 0.
void limbs_sqrt(limb* s, const limb* a, int64_t n);
/// Length of a[0..n) without leading zeros.
inline int64_t limbs_trim(const limb* a, int64_t n) {
    while (n > 0 && a[n - 1] == 0) n--;
    return n;
}
}  // namespace tolvex
