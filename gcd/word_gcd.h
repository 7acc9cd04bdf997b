#pragma once
/// gcd/word_gcd.h: the steps behind polygcd.
///
/// Purpose    a chain of attempts, cheapest first; each either gives the gcd or passes on.
/// Ownership  operands are only read; results are fresh trees of the caller.
/// Modes      any ring; negative exponents have been cleared.
#include "poly/packed.h"
#include "poly/poly.h"
namespace tolvex {
/// Both operands and what has been measured of them. Levels count from the top of the operands, 0 based.
struct WordGcdEnv {
    poly u, v;
    polypt pt;
    PackMeasure um, vm;
    bool raw;                    // the caller divides both operands anyway: one division less is made here
    int32_t levels;              // levels that occur in u or v
    int32_t bound[k_levels];     // the gcd without its monomial factor has at most this degree in the level
    uint32_t point[k_levels];    // value of a level that the gcd is free of, 0: the level stays
    int32_t monomial[k_levels];  // exponents of the common monomial
};
/// Measures u and v, neither a number; the bounds are those of the operands.
void open_operands(WordGcdEnv& env, poly u, poly v, polypt pt);
/// The gcd of the coefficients of the top chain of u, one level down, in normal form.
poly content_fresh(poly u, polypt pt);
/// Normal form of a gcd in the variables from pt on: positive leading number over Z, monic where the leading
/// number is a unit; with field elements as tower_gcd_form says. pt nil: no field element occurs.
void gcd_normal_form(polyptrr g, polypt pt = nullptr);
/// p without its content c (one level down) in its main variable; p is used up. Where zero divisors prevent
/// the division p comes back.
poly without_content(poly p, const polynode* c, polypt pt);
/// True if the ring in force has zero divisors.
bool ring_is_composite();
/// A fresh copy of p divided by its integer content; outside Z by nothing.
poly primitive_copy(const polynode* p);
/// The gcd of the integer contents of u and v as a number of size 0 or more; 1 in lintmode.
void common_content(const polynode* u, const polynode* v, imptr c);

/// Lowers env.bound by images in one variable at a point modulo a word prime; a bound is proved, for the
/// point keeps the leading coefficient of one operand at least. True if all bounds are 0: nothing in common
/// but monomials and numbers.
bool bound_by_images(WordGcdEnv& env);
/// The level in which both operands move while no other does; -1: there is none, or its exponents are too
/// wide for arrays.
int32_t only_level(const WordGcdEnv& env);
/// The gcd of operands that move in this level alone. Over Z their numbers have at most k_word_digits digits;
/// false: one prime has not been enough, but env.bound has been lowered.
bool univariate_gcd(WordGcdEnv& env, int32_t level, polyptrr g);
/// The box of operands that move in this level alone, counted from the common monomial. False: too wide.
bool plan_of_level(const WordGcdEnv& env, int32_t level, PackPlan* plan);
/// Over Z, operands that move in one level and have few but long numbers: the gcd of their values at a power
/// of two, read back and proved. False: other operands, or an unlucky value.
bool gcd_of_values(const WordGcdEnv& env, polyptrr g);
/// Evaluation and interpolation over the field in force. False: too few points, or the box is too wide.
/// The result has the common monomial, is monic, and has divided both operands.
bool gcd_over_field(WordGcdEnv& env, polyptrr g);
/// Images modulo word primes, combined; the same promise over Z, integer content included.
bool gcd_over_integers(WordGcdEnv& env, polyptrr g);
/// Modulo a composite, operands in one variable: Euclid with unit leading numbers. False: other operands, or
/// a leading number that is no unit.
bool gcd_by_units(WordGcdEnv& env, polyptrr g);
/// True if g divides u and v, by dividing. With env.raw the larger operand is left out, and gcd_unproved set.
bool divides_both(const WordGcdEnv& env, poly g);
}  // namespace tolvex
