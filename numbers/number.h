#pragma once
/// numbers/number.h: the one scalar of the system.
///
///   number   head ──► numnode ──► numnode ──► numnode ◄── tail        most significant digit first
///            lint      value       value       value                  base 2^28, every digit carries the
///            sign size = 3
///
/// Purpose    a number is a chain of digits, or in lintmode the word `lint`.
/// Invariant  a chain has no leading zero digit except in 0, which is one node 0 with size 1; tail->next
///            is nil; size is the true length, 0 means that the record owns no chain. Outside lintmode
///            only head, tail and size count; in lintmode only lint counts, in modular mode a residue
///            0..modulus-1.
/// Ownership  a chain has exactly one owner. A local number starts as `number n = {};` and is given back with
///            free_num or special_free before it goes out of scope.
/// Modes      numbers/number_modes.h
#include "numbers/number_modes.h"
#include "storage/pool.h"

#include <cstdint>
#include <type_traits>
namespace tolvex {
struct numnode;
using numptr = numnode*;
using numptrptr = numptr*;
struct numnode {
    numptr next;    // next less significant digit
    int32_t value;  // magnitude at most k_max_digit
};
static_assert(sizeof(numnode) == 16 && std::is_trivially_destructible_v<numnode>);

struct number;
using imptr = number*;
using imptrptr = imptr*;
struct number {
    numptr head;
    numptr tail;
    imptr imag;  // free-list link; without meaning in use
    int32_t lint;
    int32_t size;
};
static_assert(sizeof(number) == 32 && std::is_trivially_destructible_v<number>);

inline constexpr int32_t k_digit_bits = 28;
inline constexpr int32_t k_base = 1 << 28;
inline constexpr int32_t k_max_digit = k_base - 1;

inline constexpr int32_t numnodesize = 16;  // for accounting, not for allocation
inline constexpr int32_t numbersize = 32;

inline numptr numhead = nullptr;  // free digits
inline imptr imhead = nullptr;    // free number records

/// A digit from the pool, contents undefined.
inline numptr newnum() { return pool_pop<&numnode::next>(numhead, numstash); }
inline void free_digit(numptr p) { pool_push<&numnode::next>(numhead, p); }
/// Gives back the chain from head to tail.
inline void free_chain(numptr head, numptr tail) { pool_splice<&numnode::next>(numhead, head, tail); }

/// *p := a number record with size 0.
inline void newimag(imptrptr p) {
    *p = pool_pop<&number::imag>(imhead, imagstash);
    (*p)->size = 0;
}
/// Gives the chain back unless in lintmode; size becomes 0.
inline void free_num(imptr x) {
    if (x->size > 0 && !lintmode) {
        free_chain(x->head, x->tail);
        x->size = 0;
    }
}
/// Gives the chain back whatever the mode; size becomes 0.
inline void special_free(imptr x) {
    if (x->size > 0) {
        free_chain(x->head, x->tail);
        x->size = 0;
    }
}
/// Gives back record and chain; *p := nil.
inline void free_imag(imptrptr p) {
    free_num(*p);
    pool_push<&number::imag>(imhead, *p);
    *p = nullptr;
}

/// x, which owns no chain, becomes the one-digit chain v (|v| at most k_max_digit).
inline void num_make_digit(imptr x, int32_t v) {
    numptr d = newnum();
    d->value = v;
    d->next = nullptr;
    x->head = x->tail = d;
    x->size = 1;
}

// Constants, right in either mode, set up once at start-up. Never written, negated in place or consumed.
inline number number_0 = {}, number_1 = {}, number_2 = {}, number_m1 = {}, number_10 = {}, num_2_14 = {};
inline number tens_base = {}, two_tensbase = {};  // 10^8, 10^16: chain only
inline constexpr int32_t negzero = INT32_MIN;     // marker of the disk spill format, not a digit

/// Fills the constants above. Needs the stashes.
void init_number_constants();
/// Tests the normal form of a chain (checked build: at entry and exit of public routines).
bool num_check(const number* x);
}  // namespace tolvex
