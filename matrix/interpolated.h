#pragma once
/// matrix/interpolated.h: determinants of polynomials from their values, over every ground ring.
///
///   Z, composite moduli     images modulo word primes, combined
///   prime moduli            in the ring itself; over Z, and reduced, where it has too few elements
///   table fields            in the ring itself, or nothing
///
/// Purpose    no polynomial larger than the determinant is formed. The support is bounded by the degrees in
///            the single variables and the total degree, both from the assignment problem on the degrees of
///            the entries; over Z the coefficients by Hadamard's inequality on the unit circle.
///            Source: for the bound: A. Goldstein, R. Graham, "A Hadamard-type bound on the coefficients of a
///            determinant of polynomials", SIAM Review 16 (1974).
/// Ownership  entries and divisor are only read.
#include "poly/poly.h"
#include "quoly/quoly.h"
namespace tolvex {
struct InterpolationPlan {
    const polynode* divisor;  // of the determinant, not 0; nil: none
    int32_t degree, degree2;  // bounds for the determinant in the first two of its variables, -1: none
    int32_t root;       // the determinant (divided) is a power with this exponent, whose base is wanted; 1
    int32_t images;     // over Z: so many primes and no more; 0: as many as are needed
    bool one_confirms;  // over Z: one prime that changes nothing ends the lifting, before the bound does
    bool probe;         // what has been promised is tested at points of its own
    const char* head;   // progress line in front of the degree in the first variable; nil: none
};
enum class Interpolated { done, declined, broken_promise };
/// *det := the determinant of the n by n matrix a, column by column, no element nil, all numbers or
/// polynomials. declined: nothing has been computed, for there are too many points, primes or variables for
/// this method, or a field has too few elements. broken_promise: the test of divisor, degrees and root has
/// failed.
Interpolated interpolate_determinant(const quoly* a, int32_t n, const InterpolationPlan& plan, quolyptr det);
/// adj[row + column n], whose slots are nil, := the adjoint of the same kind of matrix, one entry of which is
/// no number. False: declined.
bool interpolate_adjoint(const quoly* a, int32_t n, quoly* adj);
/// *level := the first level, from 0, of the variables of such a matrix, *degree := a bound for the
/// determinant's degree in it. False: declined.
bool first_degree(const quoly* a, int32_t n, int32_t* level, int32_t* degree);
/// About the work of either in nanoseconds, without a plan; negative: it would decline. Reads the matrix
/// once.
double interpolation_work(const quoly* a, int32_t n, bool adjoint);
}  // namespace tolvex
