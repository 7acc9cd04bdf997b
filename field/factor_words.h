#pragma once
/// field/factor_words.h: factorisation of polynomials in one variable over a finite field, in flat arrays.
///
/// Purpose    square-free parts, products of factors of one degree, and their splitting (Cantor and
///            Zassenhaus, "A new algorithm for factoring polynomials over finite fields", 1981), with the
///            powers of Frobenius in giant steps and by modular composition (von zur Gathen and Shoup,
///            "Computing Frobenius maps and factoring polynomials", 1992; Kaltofen and Shoup, 1998).
/// Invariant  all polynomials are monic. Random choices come from a generator that starts anew for each
///            factorisation: equal input gives equal output.
/// Ownership  lists stand in scratch memory of the caller, with room for all factors of one polynomial.
/// Modes      modular: a prime modulus or a table field; towers as field/residue_ring.h says.
/// Raises     poll_interrupt in each product.
#include "field/residue_ring.h"
namespace tolvex {
/// A product of different irreducible factors of degree d; irreducible if degree is d.
struct FactorPart {
    uint32_t* c;
    int32_t degree, d;
    int32_t multiplicity;
};
struct FactorList {
    uint32_t* room;  // where the next one goes
    FactorPart* part;
    int32_t count;
};
struct FactorRandom {
    uint64_t state = 0x9E3779B97F4A7C15u;
};
/// An empty list with room for the factors of a polynomial of that degree.
void open_list(FactorList* list, const CoefficientField& k, int32_t degree);
/// Appends a copy of c.
void append_1(FactorList* list, const CoefficientField& k, const uint32_t* c, int32_t degree, int32_t d,
              int32_t multiplicity);

/// The square-free parts of f, of degree n >= 1, by rising multiplicity prime to the characteristic, then
/// those of the root of the rest; d is not set. f is kept. False: the tower is no field.
bool square_free_parts(const CoefficientField& k, const uint32_t* f, int32_t n, FactorList* list);
/// 1 if f, of degree n >= 1, has a repeated factor, else 0; -1: the tower is no field. f is kept.
int32_t has_repeated_factor(const CoefficientField& k, const uint32_t* f, int32_t n);
/// Appends to list the parts of the square-free f, of degree n >= 1, by rising degree of their factors; f is
/// overwritten. False: the tower is no field; some part may then be unsplit.
/// About n / 2 products modulo f, and sqrt(n) compositions.
bool distinct_degrees(const CoefficientField& k, uint32_t* f, int32_t n, int32_t multiplicity,
                      FactorList* list);
/// The least degree of a factor of f, of degree n >= 1, which need not be square-free; n if f is irreducible.
/// f is overwritten. 0: the tower is no field.
int32_t least_degree(const CoefficientField& k, uint32_t* f, int32_t n);
/// Appends the irreducible factors of a part. False: the tower is no field; the part is appended unsplit.
bool equal_degrees(const CoefficientField& k, const FactorPart& part, FactorRandom* random, FactorList* list);
/// The same for the field of two elements, polynomials as bits; n >= 1.
void distinct_degrees_bits(const uint32_t* f, int32_t n, int32_t multiplicity, FactorList* list);
int32_t least_degree_bits(const uint32_t* f, int32_t n);
void equal_degrees_bits(const FactorPart& part, FactorRandom* random, FactorList* list);

/// The irreducible factors of f, of degree n >= 1, by rising multiplicity, then degree, then coefficients
/// from the highest. False: the tower is no field; the product of the powers is f all the same.
bool factor_words(const CoefficientField& k, const uint32_t* f, int32_t n, FactorList* list);

/// The next 64 bits of the generator; the next word, 0..n-1.
uint64_t random_bits(FactorRandom* random);
uint32_t random_below(FactorRandom* random, uint32_t n);
/// n random elements; the first is not 0.
void random_elements(const CoefficientField& k, FactorRandom* random, int32_t n, uint32_t* out);
}  // namespace tolvex
