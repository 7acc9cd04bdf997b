#pragma once
/// quoly/quoly.h: the value of the language: a number or a quotient of two polynomials.
///
/// Invariant  canonical form: a constant without denominator is numb; denom is nil rather than 1; rat
///            exactly when lintmode is off and both parts are constants; over Z the leading number of
///            denom is positive; numer and denom are coprime, integer contents included; in lintmode
///            denom is monic and never constant; under laurent denom has no monomial factor.
/// Ownership  a quoly owns its parts. Result parameters are freed before they receive the result:
///            quoly_add(x, y, &x) is right.
#include "poly/poly.h"

#include <type_traits>
namespace tolvex {
struct quolynode {
    quoly next;       // free-list link
    boolean numb;     // a plain number: ncoef is live
    boolean arr_arg;  // on a numb in a variable slot: the name is an array parameter
    boolean rat;      // numer and denom are constants
    int32_t word;  // of a residue that a loop has written: the word that it stands for; 0: the residue itself
    union {
        imptr ncoef;
        poly numer;  // never nil
    };
    poly denom;  // nil: no denominator. Nil as well when numb.
};
static_assert(sizeof(quolynode) == 40 && std::is_trivially_destructible_v<quolynode>);
inline constexpr int32_t quolysize = 40;
#ifdef TOLVEX_SMALL_LIMITS
inline constexpr int64_t k_values_at_once = 20;
#else
inline constexpr int64_t k_values_at_once = int64_t{1} << 14;
#endif

inline quoly quolygarb = nullptr;
inline quoly quolywait = nullptr;  // values that are given back later   writers: free_quoly_later
inline quoly quol_num_0 = nullptr, quol_num_1 = nullptr;  // right in either mode; never consumed

/// Makes the two constants above. Needs the stashes and the number constants; a second call does nothing.
void init_quoly_constants();

/// Called when no free record is left: gives back some of what waits (free_quoly_later).
[[gnu::cold]] void refill_quolys();
/// *q := a record with numb, arr_arg, rat, word 0 and denom nil.
inline void newquoly(quolyptr q) {
    if (__builtin_expect(quolygarb == nullptr, 0)) refill_quolys();
    *q = pool_pop<&quolynode::next>(quolygarb, quolystash);
    (*q)->numb = (*q)->arr_arg = (*q)->rat = 0;
    (*q)->word = 0;
    (*q)->denom = nullptr;
}
/// The value becomes another one: it is no array parameter, and no loop has written it.
inline void forget_marks(quoly q) { q->arr_arg = q->word = 0; }
/// *q := a numb quoly whose number has size 0.
inline void init_quoly_node(quolyptr q) {
    newquoly(q);
    (*q)->numb = 1;
    newimag(&(*q)->ncoef);
}
void free_whole_quoly(quolyptr q);
/// nil is allowed; *q := nil
inline void free_quoly(quolyptr q) {
    if (*q != nullptr) free_whole_quoly(q);
}
/// The same in constant time, for the elements of large arrays: the value waits until records are wanted.
void free_quoly_later(quolyptr q);
/// Gives back at most so many values of those that wait. True if some still do.
bool free_waiting_quolys(int64_t count);
/// A loop that gives back many values: the first of them at once, the rest later.
struct ValueRelease {
    int64_t done = 0;
    void operator()(quolyptr q) { ++done <= k_values_at_once ? free_quoly(q) : free_quoly_later(q); }
};
/// Gives back the record alone, its parts having been taken.
inline void free_quoly_record(quolyptr q) {
    pool_push<&quolynode::next>(quolygarb, *q);
    *q = nullptr;
}
bool quoly_check(const quolynode* q);  ///< canonical form, without the gcd test
}  // namespace tolvex
