#pragma once
/// gcd/word_recurrence.h: exponential sums over a word field.
///
///   a_j = sum over i of c_i r_i^j   ──Recurrence──►  the polynomial with roots r_i   ──roots──►  exponents
///                                    ──exponential_sum──►  the c_i
///
/// Purpose    a sparse polynomial at the powers of one point is such a sequence: its terms are the r_i, its
///            coefficients the c_i. (Ben-Or and Tiwari, "A deterministic algorithm for sparse multivariate
///            polynomial interpolation", 1988; Zippel, "Interpolating polynomials from their values", 1990.)
/// Ownership  arrays live in scratch memory.
/// Modes      prime fields and table fields.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// The shortest linear recurrence of a sequence that grows (Massey, "Shift-register synthesis and BCH
/// decoding", 1969).
struct Recurrence {
    uint32_t* c;  // c[0] = 1: c_0 a_j + c_1 a_(j-1) + ... + c_L a_(j-L) = 0
    uint32_t* b;  // the recurrence before the length changed last
    uint32_t* t;
    int32_t length, b_length, gap;  // L; that of b; places between them
    uint32_t b_inverse;             // of the discrepancy at that time
};
/// Room for recurrences of length up to `most`.
void recurrence_open(Recurrence* r, int32_t most);
/// Takes in a[n], the terms before it stand in a. False: the length would exceed `most`.
bool recurrence_add(const WordField& f, Recurrence* r, const uint32_t* a, int32_t n, int32_t most);

/// Powers of one element, and logarithms to that base.
struct PowerBase {
    uint32_t base;  // of order 2^bits; or of an order of at least `limit`
    int32_t bits;   // 0: the order is no power of 2 that is known
    int64_t limit;  // logarithms asked for lie below it
    // baby steps in a table, giant steps: base^(-steps)
    uint32_t giant;
    int64_t steps, mask;
    uint32_t* slot_value;  // nil: not made yet
    int32_t* slot_log;
};
/// An element of the field whose powers below `limit` differ; false: there is none. halving: wanted of an
/// order that is a power of 2, so that roots are found bit by bit.
bool power_base_open(const WordField& f, int64_t limit, bool halving, PowerBase* base);
/// The e below the base's limit with base^e = x; -1: there is none.
int64_t power_log(const WordField& f, PowerBase* base, uint32_t x);
/// The t different roots of p, monic of degree t, which are powers of the base if that halves; false: there
/// are not as many in the field.
bool field_roots(const WordField& f, const PowerBase& base, const uint32_t* p, int32_t t, uint32_t* root);
/// The exponents e of the roots base^e; the base halves.
bool power_roots(const WordField& f, const PowerBase& base, const uint32_t* p, int32_t t, int64_t* e);
/// c[i] from a[0..t-1] and t different roots r.
bool exponential_sum(const WordField& f, const uint32_t* r, const uint32_t* a, int32_t t, uint32_t* c);
}  // namespace tolvex
