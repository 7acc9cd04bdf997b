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
struct ExtensionTables;
struct WordField {
    uint64_t recip;              // floor(2^64 / p)
    uint32_t p;                  // the prime, or the number of elements
    bool table;                  // not a prime field: elements are codes, 0 and 1 those of zero and one
    const ExtensionTables* ext;  // an extension of the ring in force; nil otherwise
};
/// A field of p^k elements over a small prime field, elements as logarithms: code 0 is zero, code i + 1 is
/// g^i.
struct ExtensionTables {
    uint32_t prime, order;  // order: number of elements less 1
    uint32_t minus_one;     // logarithm of -1
    uint32_t* zech;         // logarithm of 1 + g^n, or `order` where that is 0
    uint32_t* embed;        // code of the integer c, c = 0..prime-1
};
inline WordField word_field_prime(uint32_t p) {
    return {static_cast<uint64_t>((static_cast<unsigned __int128>(1) << 64) / p), p, false, nullptr};
}
/// The ring in force, which is a field (modularmode, mod_is_prime or a table field).
inline WordField word_field_ring() {
    return {modulus_recip, static_cast<uint32_t>(modulus), finf != 0, nullptr};
}
/// The ring in force, or an extension of it with thousands of elements where it has few. Extensions of prime
/// fields below 1024 and of GF(2^8); tables are kept for the last prime. A gcd that is monic does not change
/// under extension of the field.
WordField word_field_enlarged();
/// The element of the ring in force that stands as code c; false if c lies outside of it.
bool wf_restrict(const WordField& f, uint32_t c, uint32_t* element);

uint32_t wf_ext_mul(const ExtensionTables& t, uint32_t a, uint32_t b);
uint32_t wf_ext_add(const ExtensionTables& t, uint32_t a, uint32_t b);
uint32_t wf_ext_neg(const ExtensionTables& t, uint32_t a);
/// Products in GF(2^16) whatever table field is in force: the extension of GF(2^8), its low byte.
inline uint32_t wf_wide_mul(uint32_t a, uint32_t b) {
    if (a == 0 || b == 0) return 0;
    uint32_t s = uint32_t{f2t16log[a]} + f2t16log[b];
    return f2t16exp[s > 65534 ? s - 65535 : s];
}

/// z mod p for any z; not in a table field.
inline uint32_t wf_reduce(const WordField& f, uint64_t z) {
    auto q = static_cast<uint64_t>((static_cast<unsigned __int128>(z) * f.recip) >> 64);
    uint64_t r = z - q * f.p;
    return static_cast<uint32_t>(r >= f.p ? r - f.p : r);
}
inline uint32_t wf_mul(const WordField& f, uint32_t a, uint32_t b) {
    if (__builtin_expect(!f.table, 1)) return wf_reduce(f, static_cast<uint64_t>(a) * b);
    if (f.ext != nullptr) return wf_ext_mul(*f.ext, a, b);
    return f.p == 65536 ? wf_wide_mul(a, b) : static_cast<uint32_t>(table_mult(a, b));
}
inline uint32_t wf_add(const WordField& f, uint32_t a, uint32_t b) {
    if (__builtin_expect(f.table, 0)) return f.ext != nullptr ? wf_ext_add(*f.ext, a, b) : a ^ b;
    uint32_t s = a + b;
    return s >= f.p ? s - f.p : s;
}
inline uint32_t wf_neg(const WordField& f, uint32_t a) {
    if (__builtin_expect(f.table, 0)) return f.ext != nullptr ? wf_ext_neg(*f.ext, a) : a;
    return a == 0 ? 0 : f.p - a;
}
inline uint32_t wf_sub(const WordField& f, uint32_t a, uint32_t b) {
    if (__builtin_expect(f.table, 0)) return wf_add(f, a, wf_neg(f, b));
    return a >= b ? a - b : a + f.p - b;
}
/// a^e, e >= 0.
inline uint32_t wf_power(const WordField& f, uint32_t a, uint64_t e) {
    uint32_t r = 1;
    for (; e != 0; e >>= 1) {
        if (e & 1) r = wf_mul(f, r, a);
        a = wf_mul(f, a, a);
    }
    return r;
}
/// The inverse of a, which is not 0.
uint32_t wf_inverse(const WordField& f, uint32_t a);
/// The image of a leaf: a chain modulo p, or the residue itself.
inline uint32_t wf_of_number(const WordField& f, const number* n) {
    if (lintmode) return f.ext != nullptr ? f.ext->embed[n->lint] : static_cast<uint32_t>(n->lint);
    if (n->size == 1) {
        int32_t v = n->head->value;
        uint32_t magnitude = static_cast<uint32_t>(v < 0 ? -v : v);
        uint32_t r = magnitude < f.p ? magnitude : wf_reduce(f, magnitude);
        return v < 0 ? wf_neg(f, r) : r;
    }
    return chain_mod_word(n, f.p);
}

/// A pseudo-random element other than 0, from a generator of its own: the user's random values do not change.
uint32_t wf_random_unit(const WordField& f);
/// 0..n-1 from the same generator.
uint32_t wf_random_below(uint32_t n);

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
