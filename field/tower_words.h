#pragma once
/// field/tower_words.h: the field tower over a ring of words, elements as flat arrays.
///
/// Purpose    products, inverses and reductions in the tower in modular mode, in the ring of the user or in
///            that of an image. An element of height h is n_h coefficients of height h - 1, lowest exponent
///            first; height 0 is one residue, height 1 belongs to the deepest variable.
/// Invariant  the record is that of the ring in force and the modding polynomials in force when
///            tower_words() returns it. At a safe point it may change, so who polls asks for it again
///            afterwards; nothing here polls but tw_gcd, which does that.
/// Ownership  one record for the process. Operands and results are arrays of the caller; a result may be an
///            operand.
/// Modes      modularmode: a prime or composite modulus, table fields.
#include "poly/poly.h"
#include "poly/word_field.h"
namespace tolvex {
/// One level of the tower.
struct TowerLevel {
    int32_t n;          // degree over the height below
    int64_t size;       // words of an element
    const uint32_t* p;  // the modding polynomial without its leading term: n coefficients of the height below
    bool binomial;      // only its constant term is not 0
};
struct TowerWords {
    WordField f;
    int32_t height;           // levels of the tower
    bool separable;           // no modding polynomial has a repeated factor: the tower is a product of fields
    TowerLevel at[k_levels];  // at[1..height]; at[0] is the ring of words: n = size = 1
};
const TowerWords& tower_words();
/// A level as it is declared.
struct LevelSource {
    const polynode* p;  // the modding polynomial, or the number -a of t^n + a
    int32_t n;          // its degree
    polypt variable;
};
/// list[0..] := the levels of the tower, deepest first; returns their number.
int32_t tower_levels(LevelSource* list);
/// The lowest `below` levels of the tower in force with one more on top, whose modding polynomial is f,
/// monic, not a number, its coefficients in that tower and its leaves as those of the tower stand. separable
/// is not set. One record, which the next call makes anew.
const TowerWords& candidate_words(const polynode* f, int32_t below);
/// The lowest h levels of the tower in force, in the same record: it stays at safe points.
const TowerWords& lowest_levels(int32_t h);

/// out := a b, of height h. Quadratic in the size.
void tw_mul(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* out);
void tw_add(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* out);
void tw_sub(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* out);
/// acc := acc - a b.
void tw_submul(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* acc);
/// a := a times the variable of height h.
void tw_shift(const TowerWords& t, int32_t h, uint32_t* a);
/// c := the polynomial c of the given degree over the height below, reduced; it stands in its lowest n
/// coefficients, the others are spoilt.
void tw_reduce(const TowerWords& t, int32_t h, uint32_t* c, int32_t degree);
/// out := a^e, e >= 0.
void tw_power(const TowerWords& t, int32_t h, const uint32_t* a, uint64_t e, uint32_t* out);
bool tw_iszero(const TowerWords& t, int32_t h, const uint32_t* a);
bool tw_is_one(const TowerWords& t, int32_t h, const uint32_t* a);
void tw_set(const TowerWords& t, int32_t h, uint32_t v, uint32_t* out);  ///< out := the residue v
/// out := the inverse of a. False: it has none, or a coefficient on the way there has none. Half of the
/// extended Euclidean algorithm.
bool tw_inverse(const TowerWords& t, int32_t h, const uint32_t* a, uint32_t* out);

/// Polynomials over the elements of height h, as arrays of elements, lowest exponent first. A degree of -1 is
/// zero.
int32_t tw_degree(const TowerWords& t, int32_t h, const uint32_t* a, int32_t top);
/// a := a mod b, b monic of degree db >= 0; q, unless nil, receives da - db + 1 coefficients. Returns the
/// degree of the remainder.
int32_t tw_divide(const TowerWords& t, int32_t h, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                  uint32_t* q);
/// a := a divided by its leading element; false if that has no inverse.
bool tw_make_monic(const TowerWords& t, int32_t h, uint32_t* a, int32_t da);
/// The monic gcd of a and b, both overwritten, is left in a or b (*g); returns its degree, -1 if both are 0,
/// -2 if a leading element on the way has no inverse.
int32_t tw_poly_gcd(const TowerWords& t, int32_t h, uint32_t* a, int32_t da, uint32_t* b, int32_t db,
                    uint32_t** g);
/// The same over the whole tower, with safe points.
int32_t tw_gcd(uint32_t* a, int32_t da, uint32_t* b, int32_t db, uint32_t** g);

/// out := the polynomial c in the deepest h variables, whatever its exponents; negative ones by the inverse
/// of their variable: false, if that has none. c stands at the level of height h. Leaves are residues, or
/// chains.
bool tw_from_poly(const TowerWords& t, int32_t h, const polynode* c, uint32_t* out);
/// A fresh polynomial at the level of height h.
poly tw_to_poly(const TowerWords& t, int32_t h, const uint32_t* a);
}  // namespace tolvex
