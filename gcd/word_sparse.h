#pragma once
/// gcd/word_sparse.h: gcds of polynomials with few terms in many variables.
///
///   u, v ──weights──► polynomials in t with values at points as coefficients ──gcd──► image
///   images at the powers of a point ──Recurrence──► the terms of each coefficient ──► gcd
///
/// Purpose    x_i is replaced by x_i t^(w_i), with weights for which the leading coefficient of u or v in
///            t is a single term. That of the gcd is then a single term too: images monic in t are images
///            of one polynomial, the gcd over its leading term, and no content in t is left to look for.
///            The number of images depends on the terms of the gcd and not on degrees. (Normalisation
///            after van der Hoeven and Lecerf, "On sparse interpolation of rational functions and gcds",
///            2021.)
/// Ownership  operands are only read; *g is fresh.
/// Modes      Z; prime moduli and table fields, enlarged where they are small; fields of less than 4096
///            elements have too few points: declined.
#include "gcd/word_gcd.h"
namespace tolvex {
/// Over the ring in force; env is measured and bounded. At most `most` points are spent.
/// True: *g has the common monomial and content and has divided both operands. False: declined.
bool gcd_of_few_terms(WordGcdEnv& env, int64_t most, polyptrr g);
}  // namespace tolvex
