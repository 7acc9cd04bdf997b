#pragma once
/// poly/poly_mult_internal.h: the methods behind poly_mult. For poly_mult_*.cpp and their tests.
///
/// Purpose    each method alone gives the whole product; none of n, m may be a number unless said.
/// Ownership  as poly_mult: operands kept, the old *p goes back last.
#include "poly/poly_mult.h"
namespace tolvex {
/// Term by term, the shorter operand (size1, size2: terms of the top chains) driving; partial products are
/// merged in a balanced tree. Any ring.
void simple_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p);
/// The same for residues of one level.
void simplest_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p);
/// Residues of one level without negative exponents: arrays if both operands have more terms than a quarter
/// of their degree, else term by term.
void fastest_standard(poly n, poly m, int32_t size1, int32_t size2, polyptrr p);
/// Residues of one level through arrays indexed by exponent.
void k_fastest_poly_mult(poly n, poly m, polyptrr p);
/// True if both have at most two levels, are dense in the first, and their product fits 701 by 701 entries.
boolean try_fast_2_var(poly n, poly m);
/// The product of such operands: one array, a row for each exponent of the first level.
void fastest_poly2_mult(poly n, poly m, polyptrr p);
/// Karatsuba's method: both chains cut at one exponent, three products (for squares: squares). At least two
/// terms each.
void karatsuba_poly_mult(poly n, poly m, polyptrr p, polypt pol);
/// Packed terms: exponents in keys, coefficients in accumulators. False, nothing done: an operand is a
/// number, or the exponents need more than 127 bits, or the ring is that of wrapping words.
bool packed_poly_mult(poly n, poly m, polyptrr p);
}  // namespace tolvex
