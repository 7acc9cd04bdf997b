#pragma once
/// poly/word_field.h: a field of word size that is passed as an argument.
///
/// Purpose    images of polynomials over Z are taken modulo word primes without touching the ring in force;
///            in modular mode the same code works in the ring in force itself, table fields included.
/// Invariant  elements are residues 0..p-1, p a prime below 2^31; or codes of the table field in force.
#include "numbers/num_divide.h"
#include "numbers/number.h"
#include "numbers/residue.h"

#include <cstdint>
namespace tolvex {
struct WordField {
    uint64_t recip;  // floor(2^64 / p)
    uint32_t p;      // the prime, or the number of elements
    bool table;      // GF(2^8), GF(2^16)
};
inline WordField word_field_prime(uint32_t p) {
    return {static_cast<uint64_t>((static_cast<unsigned __int128>(1) << 64) / p), p, false};
}
/// The ring in force, which is a field (modularmode, mod_is_prime or a table field).
inline WordField word_field_ring() { return {modulus_recip, static_cast<uint32_t>(modulus), finf != 0}; }
/// z mod p for any z; not in a table field.
inline uint32_t wf_reduce(const WordField& f, uint64_t z) {
    auto q = static_cast<uint64_t>((static_cast<unsigned __int128>(z) * f.recip) >> 64);
    uint64_t r = z - q * f.p;
    return static_cast<uint32_t>(r >= f.p ? r - f.p : r);
}
inline uint32_t wf_mul(const WordField& f, uint32_t a, uint32_t b) {
    if (__builtin_expect(f.table, 0)) return static_cast<uint32_t>(table_mult(a, b));
    return wf_reduce(f, static_cast<uint64_t>(a) * b);
}
inline uint32_t wf_add(const WordField& f, uint32_t a, uint32_t b) {
    if (__builtin_expect(f.table, 0)) return a ^ b;
    uint32_t s = a + b;
    return s >= f.p ? s - f.p : s;
}
inline uint32_t wf_sub(const WordField& f, uint32_t a, uint32_t b) {
    if (__builtin_expect(f.table, 0)) return a ^ b;
    return a >= b ? a - b : a + f.p - b;
}
inline uint32_t wf_neg(const WordField& f, uint32_t a) { return f.table || a == 0 ? a : f.p - a; }
/// a^e, e >= 0.
inline uint32_t wf_power(const WordField& f, uint32_t a, uint64_t e) {
    uint32_t r = 1;
    for (; e != 0; e >>= 1) {
        if (e & 1) r = wf_mul(f, r, a);
        a = wf_mul(f, a, a);
    }
    return r;
}
/// The inverse of a, which is not 0. Extended Euclid.
inline uint32_t wf_inverse(const WordField& f, uint32_t a) {
    if (f.table) return static_cast<uint32_t>(mod_inverse_or_0(static_cast<int32_t>(a)));
    int64_t r0 = f.p, r1 = a, s0 = 0, s1 = 1;
    while (r1 != 0) {
        int64_t q = r0 / r1, r = r0 - q * r1, s = s0 - q * s1;
        r0 = r1, r1 = r;
        s0 = s1, s1 = s;
    }
    return static_cast<uint32_t>(s0 < 0 ? s0 + f.p : s0);
}
/// The image of a leaf: a chain modulo p, or the residue itself.
inline uint32_t wf_of_number(const WordField& f, const number* n) {
    if (lintmode) return static_cast<uint32_t>(n->lint);
    if (n->size == 1) {
        int32_t v = n->head->value;
        uint32_t magnitude = static_cast<uint32_t>(v < 0 ? -v : v);
        uint32_t r = magnitude < f.p ? magnitude : wf_reduce(f, magnitude);
        return v < 0 ? wf_neg(f, r) : r;
    }
    return chain_mod_word(n, f.p);
}

/// One-variable polynomials as arrays of elements, index = exponent. A degree of -1 is zero.
int32_t wf_degree(const uint32_t* a, int32_t top);
/// a := a mod b in place; b has degree db >= 0 and inverse leading element lead_inverse. Returns the new
/// degree.
int32_t wf_mod(const WordField& f, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
               uint32_t lead_inverse);
/// The gcd of a and b, both overwritten, is left in a or b (*g), made monic; returns its degree, -1 if both
/// are 0.
int32_t wf_gcd(const WordField& f, uint32_t* a, int32_t da, uint32_t* b, int32_t db, uint32_t** g);
/// q[0..da-db] := a / b, a becomes the remainder. Returns the degree of the remainder.
int32_t wf_divide(const WordField& f, uint32_t* a, int32_t da, const uint32_t* b, int32_t db, uint32_t* q);
/// The value at x.
uint32_t wf_value(const WordField& f, const uint32_t* a, int32_t da, uint32_t x);
}  // namespace tolvex
