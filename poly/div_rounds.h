#pragma once
/// poly/div_rounds.h: divisibility by evaluations alone.
///
/// Purpose    several rounds, each at a new point: integer values of both polynomials, and images in the main
///            variable. A no is a proof; that all rounds say yes is overwhelming evidence and no proof.
///            Cost: evaluations of both operands, at most five times; no multivariate division.
/// Modes      Z with or without chains, prime moduli, table fields.
#include "poly/poly.h"
namespace tolvex {
enum class Rounds { no, yes, undecided };
/// Does m divide n? Undecided: no round worked, or there are too few levels for one. Neither is a number.
Rounds divides_at_points(poly n, poly m, polypt pt);
/// The integer values of n and m at one point. *works: m has a value that tells something, n is not 0 there.
/// True: the value of n is a multiple of that of m. first: small values. The point depends on i and on
/// chance.
bool fast_test_rat(int32_t i, poly n, poly m, int32_t levels, bool first, bool* works);
}  // namespace tolvex
