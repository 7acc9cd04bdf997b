#pragma once
/// poly/dense_internal.h: records and steps that the gcd files of the dense engine share.
///
/// Purpose    the half-gcd of two polynomials x, y of degrees n > m: the 2 x 2 matrix M of polynomials for
///            which M (x, y) is the pair of the Euclidean sequence with deg x > n div 2 >= deg y.
/// Ownership  entries stand in scratch memory.
/// Modes      results are false when a leading element is no unit; then the operands are spoilt.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// A polynomial in an array: c[0..degree], degree -1 for 0. Room for higher degrees is known to the owner.
struct DensePoly {
    uint32_t* c;
    int32_t degree;
};
/// x' = a x + b y, y' = c x + d y.
struct CofactorMatrix {
    DensePoly a, b, c, d;
};
/// The inverse of a non-zero element, 0 if there is none.
uint32_t unit_inverse(const WordField& f, uint32_t a);
/// Plain Euclid to the end: *g := x or y, not made monic; the other is 0.
bool simple_onevar_gcd(const WordField& f, DensePoly x, DensePoly y, DensePoly* g);
/// The half-gcd in sub-quadratic time until the degrees are small enough for the plain Euclid, then that.
bool hgcd(const WordField& f, DensePoly x, DensePoly y, DensePoly* g);
}  // namespace tolvex
