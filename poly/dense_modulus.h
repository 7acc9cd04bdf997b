#pragma once
/// poly/dense_modulus.h: products of residue arrays modulo one fixed polynomial.
///
/// Purpose    long computations modulo a polynomial, of powers above all: what a division by it needs is made
///            once, the inverse power series of the reversed modulus and, for long ones, the transforms of
///            both (Barrett's method; von zur Gathen and Gerhard, "Modern Computer Algebra", 9.1).
/// Invariant  residues are arrays of n entries, the leading ones may be 0.
/// Ownership  the record stands in scratch memory of the caller; the modulus is his and must stay.
/// Modes      any field f, also one that is not in force, but no extension (f.ext is nil).
/// Raises     nothing; poll_interrupt in long transforms.
#include "poly/dense_ntt.h"
#include "poly/word_field.h"
namespace tolvex {
struct DenseModulus {
    WordField f;
    int32_t n;          // degree, at least 1
    const uint32_t* c;  // c[0..n], c[n] is 1
    uint32_t* series;  // n - 1 entries of the inverse, highest first; nil: divisions by the schoolbook method
    bool transformed;  // the rest is there
    NttFrame whole;    // for products of two residues
    NttFrame wrapped;  // for products of which only n entries are wanted: a power of two, modulo x^h - 1
    double* series_values[k_ntt_primes];
    double* modulus_values[k_ntt_primes];
};
void open_modulus(DenseModulus* m, const WordField& f, const uint32_t* c, int32_t n);
/// out := a b modulo the polynomial; out may be a or b. Five transforms of 2 n entries and two of n, six and
/// two for different operands.
void mult_modulo(const DenseModulus& m, const uint32_t* a, const uint32_t* b, uint32_t* out);
/// out := a[0..an) modulo the polynomial, an <= 2 n - 1; a is overwritten, out is not in it.
void reduce_modulo(const DenseModulus& m, uint32_t* a, int32_t an, uint32_t* out);
}  // namespace tolvex
