#pragma once
/// poly/bit_poly.h: polynomials in one variable over the field of two elements, as bits.
///
/// Purpose    64 coefficients to a word: sums are exclusive ors, products are those of words without
///            carry, of which processors have an instruction.
/// Invariant  bit e of the array is the coefficient of x^e; bits above the degree are 0 up to the end of
///            the last word. -1 is the degree of 0.
/// Ownership  arrays of the caller; no result overlaps an operand but where it says so.
/// Raises     nothing; poll_interrupt in long products and divisions.
#include <cstdint>
namespace tolvex {
/// The words of a polynomial of that degree; 1 for 0.
inline int64_t bit_words(int32_t degree) { return degree < 0 ? 1 : degree / 64 + 1; }
inline bool bit_at(const uint64_t* a, int32_t e) { return a[e / 64] >> (e % 64) & 1; }
/// The processor's instruction is used. Tests turn it off.      writers: tests
extern bool bit_products_by_instruction;

int32_t bit_degree(const uint64_t* a, int64_t words);
/// c[0..an+bn) := a b, in words. The schoolbook method for short operands, then Karatsuba's.
void bit_product(const uint64_t* a, int64_t an, const uint64_t* b, int64_t bn, uint64_t* c);
/// c[0..2n) := a^2: the bits spread out.
void bit_square(const uint64_t* a, int64_t n, uint64_t* c);
/// a := a mod b, b not 0; q, unless nil, receives bit_words(da - db) words. Returns the degree of the
/// remainder.
int32_t bit_divide(uint64_t* a, int32_t da, const uint64_t* b, int32_t db, uint64_t* q);
/// The gcd of a and b, both overwritten, is left in a or b (*g). Returns its degree. Quadratic.
int32_t bit_gcd(uint64_t* a, int32_t da, uint64_t* b, int32_t db, uint64_t** g);

/// A modulus of degree n >= 1 with the quotient of x^(2n) by it (Barrett's method). In scratch memory.
struct BitModulus {
    int32_t n;
    int64_t words;      // of a residue: bit_words(n - 1)
    const uint64_t* f;  // the caller's
    uint64_t* quotient;
};
void open_bit_modulus(BitModulus* m, const uint64_t* f, int32_t n);
/// out := a b, a^2 modulo the polynomial, for residues of m.words words; out may be an operand.
void bit_product_modulo(const BitModulus& m, const uint64_t* a, const uint64_t* b, uint64_t* out);
void bit_square_modulo(const BitModulus& m, const uint64_t* a, uint64_t* out);
}  // namespace tolvex
