#pragma once
/// poly/dense_internal.h: records and steps that the gcd files of the dense engine share.
///
/// Purpose    the half-gcd of x, y with deg x = n >= deg y: with m = n div 2, the matrix M for which M
///            (x, y) is the pair of the Euclidean sequence with deg x > m >= deg y.
/// Ownership  entries stand in scratch memory; a matrix has room for n - m + 1 elements in each entry.
/// Modes      a result of false: a leading element is no unit (composite modulus); then the operands are
///            spoilt.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
/// A polynomial in an array: c[0..degree], degree -1 for 0. Room for higher degrees is known to the owner.
struct DensePoly {
    uint32_t* c;
    int32_t degree;
};
/// Row i gives the new x (0) or y (1) as entry[i][0] x + entry[i][1] y.
struct CofactorMatrix {
    DensePoly entry[2][2];
};
/// The inverse of a non-zero element, 0 if there is none.
uint32_t unit_inverse(const WordField& f, uint32_t a);
/// One remainder step on the operands of degrees deg x >= deg y >= 0: (x, y) := (y, x mod y).
bool divide_y_into_x(const WordField& f, DensePoly* x, DensePoly* y);
/// Plain Euclid to the end: *g := x or y, not made monic; the other is 0.
bool simple_onevar_gcd(const WordField& f, DensePoly x, DensePoly y, DensePoly* g);
/// Plain extended Euclid while deg y > m: (x, y) and *matrix as above. Time quadratic.
bool euclid_onevar(const WordField& f, DensePoly* x, DensePoly* y, int32_t m, CofactorMatrix* matrix);
/// The half-gcd, deg x >= deg y: (x, y) := M (x, y), the arrays exchanged as often as need be, and M.
bool parthg(const WordField& f, DensePoly* x, DensePoly* y, CofactorMatrix* matrix);
/// The same without the matrix.
bool fullhg(const WordField& f, DensePoly* x, DensePoly* y);
/// The gcd by half-gcds while the sum of degrees is above `plain`, then by the plain Euclid.
bool hgcd(const WordField& f, DensePoly x, DensePoly y, int32_t plain, DensePoly* g);
}  // namespace tolvex
