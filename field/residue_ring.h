#pragma once
/// field/residue_ring.h: polynomials in one variable over a finite field, and residues of them, as flat
/// arrays.
///
/// Purpose    what factorisation computes with. The field is the ground field, or a tower over it, of any
///            height; products of polynomials over a tower are products over the ground field
///            (Kronecker's substitution).
/// Invariant  a polynomial of degree d is d + 1 elements, lowest exponent first, each of `size` words; -1
///            is the degree of 0. A residue modulo a polynomial of degree n is n elements, the leading
///            ones may be 0.
/// Ownership  everything stands in scratch memory of the caller. A field is a copy of the tower: what a
///            command level does meanwhile to the records of field/tower_words.h changes nothing.
/// Modes      modular: a prime modulus or a table field.
/// Raises     poll_interrupt in each product.
#include "field/tower_words.h"
#include "poly/dense_modulus.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
struct CoefficientField {
    TowerWords t;  // of height h; at[h] is the field
    int32_t h;
    int64_t size;             // words of an element
    int64_t slots[k_levels];  // words of an unreduced product of two elements of each height, laid out for
                              // one variable
    uint32_t p;               // characteristic
    int32_t degree;           // the field has p^degree elements
};
/// The lowest h levels of t.
void open_field(CoefficientField* k, const TowerWords& t, int32_t h);

inline void copy_elements(const CoefficientField& k, const uint32_t* from, int64_t n, uint32_t* to) {
    if (n > 0) memmove(to, from, static_cast<size_t>(n * k.size) * sizeof(uint32_t));
}
inline void clear_elements(const CoefficientField& k, uint32_t* a, int64_t n) {
    if (n > 0) memset(a, 0, static_cast<size_t>(n * k.size) * sizeof(uint32_t));
}
inline uint32_t* new_elements(const CoefficientField& k, int64_t n) {
    return scratch_array<uint32_t>(n * k.size);
}
int32_t poly_degree(const CoefficientField& k, const uint32_t* a, int32_t top);
/// c := a - b, n elements each; c may be a or b.
void subtract_elements(const CoefficientField& k, const uint32_t* a, const uint32_t* b, int64_t n,
                       uint32_t* c);
void add_elements(const CoefficientField& k, const uint32_t* a, const uint32_t* b, int64_t n, uint32_t* c);
/// c[0..an+bn-1) := a b; an, bn >= 1; c overlaps no operand.
void poly_product(const CoefficientField& k, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                  uint32_t* c);
/// a := a mod b, b monic of degree db >= 0; q, unless nil, receives da - db + 1 elements. Returns the degree
/// of the remainder.
int32_t poly_divide(const CoefficientField& k, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                    uint32_t* q);
/// The monic gcd of a and b, both overwritten, is left in a or b (*g). Returns its degree, -1 if both are 0,
/// -2 if an element on the way has no inverse: the tower is no field.
int32_t poly_gcd(const CoefficientField& k, uint32_t* a, int32_t da, uint32_t* b, int32_t db, uint32_t** g);
/// The element with the p-th power a, in place.
void element_root(const CoefficientField& k, uint32_t* a);

/// The residues modulo a monic polynomial.
struct ResidueRing {
    const CoefficientField* k;
    int32_t n;           // its degree, at least 1
    const uint32_t* f;   // the caller's: it must stay
    DenseModulus words;  // over the ground field
    uint32_t* series;    // over a tower: n - 1 elements, as in DenseModulus
};
void open_ring(ResidueRing* r, const CoefficientField* k, const uint32_t* f, int32_t n);
/// out := a b; out may be an operand.
void residue_product(const ResidueRing& r, const uint32_t* a, const uint32_t* b, uint32_t* out);
/// out := a^e for e >= 1; out may be a. About log2 e squarings and a product for each bit that is set.
void residue_power(const ResidueRing& r, const uint32_t* a, uint64_t e, uint32_t* out);
/// out := (x + c)^e for e >= 1, c an element. The products by x + c take no time.
void linear_power(const ResidueRing& r, const uint32_t* c, uint64_t e, uint32_t* out);
/// out := x^q, q the number of elements of the field. The products by x take no time.
void power_of_x(const ResidueRing& r, uint32_t* out);
/// a := a^q.
void residue_frobenius(const ResidueRing& r, uint32_t* a);
/// Products that residue_frobenius takes.
int32_t frobenius_products(const CoefficientField& k);
/// out := x as a residue.
void residue_x(const ResidueRing& r, uint32_t* out);

/// The powers 1, h, .. h^count of a residue h.
struct PowerTable {
    const ResidueRing* r;
    int32_t count;
    uint32_t* row;  // count + 1 residues
};
/// count products less two.
void open_powers(PowerTable* table, const ResidueRing* r, const uint32_t* h, int32_t count);
/// out := g(h), g a residue; out may be g. n / count products and n^2 multiplications of elements (Brent and
/// Kung, 1978).
void compose(const PowerTable& table, const uint32_t* g, uint32_t* out);
/// The number of powers with which so many compositions take least time.
int32_t good_power_count(const ResidueRing& r, int32_t compositions);
}  // namespace tolvex
