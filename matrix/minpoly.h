#pragma once
/// matrix/minpoly.h: minimal polynomials of matrices of integers and of residues.
///
/// Purpose    over a field of words: matrix/word_minpoly.h. Over the integers from images modulo word primes:
///            those of a smaller degree than the largest one met are left out; the product of the others
///            exceeds twice a bound of the coefficients; one more image has to agree.
///            Cost: an image of a matrix with e entries takes about 2 n e products of words.
/// Ownership  elements are only read.
#include "matrix/entries.h"
namespace tolvex {
struct MinpolyRequest {
    int32_t level;      // of the variable
    int32_t samples;    // coordinates that the first sequence adds up
    double bound_bits;  // all coefficients are at most 2 to this power in absolute value; below 0: not known
};
/// *result, which is nil, := the minimal polynomial; entries are residues of a prime or a table field, or
/// integers. False, *result still nil: the images did not agree, or more of them are needed than a table of
/// primes provides.
bool minimal_polynomial(const MatrixEntries& m, const MinpolyRequest& request, quolyptr result);
/// log2 of the coefficients of a polynomial of degree d whose roots are eigenvalues: r^k binomial(d, k) for r
/// the largest sum of a row (Gershgorin), at least 0.
double gershgorn(double log_r, int32_t d);
/// log2 of a number that is a chain; 0 for 0.
double log_of_number(const number* v);
}  // namespace tolvex
