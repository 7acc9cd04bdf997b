#pragma once
/// gcd/gcd_driver.h: greatest common divisors of polynomials.
///
/// Purpose    the gcd in normal form: over Z positive leading number, integer content included; modular:
/// monic. Ownership  operands are kept while usave, vsave are true. Raises     nothing on legal operands.
/// Composite modulus: a non-unit leading number ends it with gcd 1.
#include "poly/poly.h"
namespace tolvex {
/// *r := gcd(u, v) in the variables from pt on. leave_early: only the degree in the main variable is wanted.
/// gcd(0, v) is the integer content of v (1 in modular mode): callers that can meet 0 test first.
/// Every result is proved: by an image that keeps a leading coefficient, by the remainder sequence, or by
/// dividing both operands. The operands stay the caller's and unchanged, whatever usave and vsave say.
void polygcd(poly u, poly v, polyptrr r, boolean leave_early, boolean do_fast, boolean allcons, polypt pt,
             boolean usave, boolean vsave, boolean canreset);
/// The entry of the rational-function layer: resets the driver's state, takes negative exponents off copies.
void Lpolygcd(poly u, poly v, polyptrr r, boolean q_odd, polypt pt);
/// The entry of the language. Modulo a composite, with a number: the gcd of the residues and the modulus.
void Lpolygcd2(poly u, poly v, polyptrr r, polypt pt);
}  // namespace tolvex
