#pragma once
/// matrix/big_ring.h: residues modulo a large number, all of one length.
///
/// Purpose    arithmetic modulo a determinant or a minor, where many products share one modulus: two products
///            replace the division.
///            Source: P. Barrett, "Implementing the Rivest Shamir and Adleman public key encryption algorithm
///            on a standard digital signal processor", CRYPTO '86.
/// Ownership  residues are arrays of `n` limbs of the caller.
#include "numbers/limbs.h"

#include <algorithm>
namespace tolvex {
inline void copy_limbs(limb* r, const limb* a, int64_t n) { std::copy_n(a, n, r); }
inline bool is_one(const limb* a, int64_t n) { return n == 1 && a[0] == 1; }
struct BigRing {
    const limb* m;  // n limbs, the top one not 0; m > 1
    int64_t n;
    limb* recip;  // floor(2^(128 n) / m), n + 1 limbs
    limb* wide;   // room for a product
    limb* high;   // room for its product with recip
};
/// In scratch memory of the caller; m stays where it is.
BigRing big_ring(const limb* m, int64_t n);
/// r := r + f a modulo m.
void ring_addmul(const BigRing& g, limb* r, const limb* f, const limb* a);
/// r := f a modulo m; r may be f or a.
void ring_mul(const BigRing& g, limb* r, const limb* f, const limb* a);
/// r := -r modulo m.
void ring_negate(const BigRing& g, limb* r);
/// r := r + a modulo m.
void ring_add(const BigRing& g, limb* r, const limb* a);
/// r := the residue of +-a[0..an).
void ring_reduce(const BigRing& g, limb* r, const limb* a, int64_t an, bool negative);
inline bool ring_iszero(const BigRing& g, const limb* r) { return limbs_trim(r, g.n) == 0; }
/// r := gcd(a, b), of any lengths, b not 0, in room for b; returns its length. The operands are only read.
int64_t gcd_of_limbs(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn);
/// u := a number with u a = g modulo m, where g, of gn limbs, is the gcd of the residue a and m.
void cofactor_of_gcd(const BigRing& ring, limb* u, const limb* a, const limb* g, int64_t gn);
/// r[0..mn) := the inverse of a modulo m, both of mn limbs, gcd 1, m > 1. Time quadratic in mn.
void inverse_of_limbs(limb* r, const limb* a, const limb* m, int64_t mn);
}  // namespace tolvex
