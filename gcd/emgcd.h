#pragma once
/// gcd/emgcd.h: gcds in one variable over a field of words: on arrays, and as half-gcd on lists of terms.
///
/// Purpose    basic_poly_gcd (gcd/engines.h) chooses; the list form serves degrees beyond fast_gcd_size,
///            where an array indexed by exponents would be mostly holes.
///            Source: K. Thull, C. Yap: A unified approach to HGCD algorithms for polynomials and integers
///            (1990).
/// Modes      a prime modulus or a table field, one variable, no negative exponents. A composite modulus: a
///            leading number that is no unit ends the arrays with gcd 1; the list form raises error 85.
#include "poly/poly.h"
namespace tolvex {
/// Two linear forms in the operands: row i stands for w[i] u0 + v[i] u1.
struct HalfGcdMatrix {
    poly w[2], v[2];
};
void free_half_gcd_matrix(HalfGcdMatrix* matrix);

/// The monic gcd of n and m, deg n >= deg m >= 1, by Euclid's algorithm on arrays, half-gcds from where they
/// pay. One routine for all moduli and both table fields: the dense engine picks the arithmetic. A degree of
/// fast_gcd_size or more goes to emgcd_poly.
void fastest_poly_gcd(poly n, poly m, polyptrr p, polypt pt);
/// *p := the gcd of a0 and a1 up to a unit, deg a0 >= deg a1, by half-gcds. savea01: the operands are kept;
/// else they are used up.
void emgcd_poly(poly a0, poly a1, polyptrr p, polypt pt, boolean savea01);
/// (u0, u1) := the pair of Euclid's remainder sequence with deg u0 >= ceil(n / 2) > deg u1, where n = deg u0
/// at entry; deg u0 > deg u1 at entry, both used up. needmult: *matrix := the forms of the new pair in the
/// old one; else it is left alone.
void emgcd_full(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, boolean needmult);
/// The same by division steps on the lists.
void emgcd_basic(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, boolean needmult);
/// The same by division steps on arrays.
void emgcd_fastest(polyptrr u0, polyptrr u1, HalfGcdMatrix* matrix, boolean needmult);
}  // namespace tolvex
