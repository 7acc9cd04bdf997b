#pragma once
// An independent proof that a polynomial is the gcd of two others.
#include "poly/poly.h"
#include "tests/support/support.h"

#include <string>
namespace tolvex::test {
/// Empty if g is the gcd of u and v in normal form, else what is wrong. The proof: u = g a and v = g b hold
/// at random points of a large field, images in one variable show that a and b have nothing in common, and
/// the integer contents agree. Modulo a composite only the products are looked at.
std::string judge_gcd(poly u, poly v, poly g, Rng& rng);
/// Empty if n = g q for some q, found by division and tried at random points.
std::string judge_divisor(poly n, poly g, poly* q, Rng& rng);
}  // namespace tolvex::test
