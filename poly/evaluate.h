#pragma once
/// poly/evaluate.h: values for variables, and variables that change their level.
///
/// Purpose    Horner's scheme along each chain, from the highest exponent down: no power is formed that
///            is not needed. The residue form allocates nothing; interpolation runs it millions of times.
/// Invariant  a list of values is a chain with one node a level: a leaf holds a number, a term a
///            polynomial in its pcoef, or nil there: this variable stays. Polynomial values stand one
///            level below their variable. Levels keep their numbers: an evaluated level leaves a pad,
///            unless the result is a number.
/// Ownership  operands are kept unless said otherwise; results are fresh, an old *p or *ans is given back
///            last.
/// Modes      any ground ring; values are elements of it. Exponents are not negative.
#include "poly/poly.h"
namespace tolvex {
/// *ans := *q with its main variable kept and the variables below it replaced by the list arg, which may end
/// early: deeper levels stay. level: that of the main variable.
void all_poly_eval(polyptrr q, poly arg, polyptrr ans, int16_t level);
/// The same; *q becomes the result.
void old_all_poly_eval(polyptrr q, poly arg, int16_t level);
/// *ans := the residue of q, every variable from the top one on replaced by the list of residues arg. Gaps of
/// 16 and more are reduced modulo modulus - 1 where that is the order of the units. Fatal: "arg is NULL but q
/// not number in mod_all_poly_eval. ", "arg->exp = 1 in mod_all_poly_eval. ".
void mod_all_poly_eval(const polynode* q, const polynode* arg, int32_t* ans);
/// The same over the integers.
void rat_all_poly_eval(const polynode* q, const polynode* arg, imptr ans);

/// *p := q with its top variable, that of pol, replaced by n2, which stands one level below. addpad: the
/// result gets a pad and stands where q does. A number q: a copy.
void poly_at_numb(polyptrr p, poly q, poly n2, polypt pol, boolean addpad);

/// *r := p with its top variable replaced by y, which stands at p's level and is free of that variable; *r
/// stands there too. Where y is a deeper variable that p lacks, its exponents are moved.
void case_one(poly p, polyptrr r, poly y, polypt pt);
/// *r := p with the variable of relative level lev (1: the top) replaced by x, which stands at p's level;
/// level lev is a pad afterwards. Where x is the top variable and p lacks it, exponents are moved.
void case_two(poly p, polyptrr r, int16_t lev, poly x, polypt pt);
/// *s := the coefficient of the e-th power of the variable k levels below the top of v, at the level of v
/// with a pad for that variable; fresh.
void extract_coef(poly v, polyptrr s, int32_t k, int32_t e);
/// p by the powers of the variable of relative level lev: a fresh chain of terms of falling exponents in a
/// new level above p, each over a polynomial at p's level in which lev is a pad. p is no number. Linear in
/// the size of p times lev.
poly split_by_level(const polynode* p, int32_t lev);
}  // namespace tolvex
