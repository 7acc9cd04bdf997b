#pragma once
/// numbers/limb_lehmer.h: the word step of the Euclidean algorithm on limb arrays, and the half-gcd.
///
/// Purpose    both reduce a pair (a, b) by a matrix: (a, b) = M (a', b') with entries >= 0 and determinant 1
///            or -1, so that the gcd stays. Private to limb_gcd.cpp, limb_lehmer.cpp and limb_hgcd.cpp.
/// Invariant  a', b' > 0.
#include "numbers/limbs.h"
namespace tolvex {
/// After `steps` quotients: r = +-(u0 a - v0 b), r' = -+(u1 a - v1 b), the upper sign when steps is even; so
/// M = (v1 v0 / u1 u0).
struct Cofactors {
    limb u0 = 1, v0 = 0, u1 = 0, v1 = 1;
    int steps = 0;
};
/// The sure quotients of a[0..n) >= b[0..n), n >= 2, a[n-1] not 0; steps = 0 if the top words tell none. r'
/// is at least a / 2^95.
Cofactors lehmer_cofactors(const limb* a, const limb* b, int64_t n);
/// (a, b) := (r, r') in place; tmp has room for n limbs.
void apply_cofactors(const Cofactors& m, limb* a, limb* b, int64_t n, limb* tmp);

/// M = (m[0] m[1] / m[2] m[3]), entries with n limbs each, the determinant -1 if odd.
struct CofactorMatrix {
    limb* m[4];
    int64_t n;
    bool odd;
    bool identity;
};
/// Room for the entries that half_gcd makes of operands of n limbs.
inline int64_t matrix_room(int64_t n) { return n / 2 + 8; }
/// A matrix in scratch memory for half_gcd.
CofactorMatrix new_matrix(int64_t n);
/// Reduces a[0..an), b[0..bn) to about half their length, at least n/2 + 1 limbs each, n = max(an, bn); M is
/// what was taken off (identity: nothing could be). Limbs above the new lengths become 0. Subquadratic.
void half_gcd(limb* a, int64_t& an, limb* b, int64_t& bn, CofactorMatrix& m);
/// The same with the limbs from p on alone; the low ones follow. Entries as for operands of n - p limbs.
void half_gcd_top(limb* a, int64_t& an, limb* b, int64_t& bn, int64_t p, CofactorMatrix& m);
}  // namespace tolvex
