#pragma once
/// gcd/polygcd.h: greatest common divisors of polynomials.
///
/// Purpose    the gcd in normal form: over Z positive leading number, integer content included; modular:
/// monic. Promise    what Lpolygcd2, Lpolygcd3 and the outermost polygcd give is proved or has been divided
/// out. Lpolygcd alone may
///            leave gcd_unproved set: its caller divides both operands anyway, and failure there is the
///            check.
/// Ownership  an operand whose save flag is true comes back exactly as it was, errors included; one whose
/// flag is false
///            may be left as an empty shell (the number 0), which its owner gives back.
/// Raises     nothing on legal operands. Composite modulus: Euclid with unit leading numbers, a non-unit ends
/// it with gcd 1.
#include "poly/poly.h"
namespace tolvex {
/// *r := gcd(u, v) in the variables from pt on.
///   leave_early  only whether the degree in the main variable is 0 is wanted: the result is x^d of level 1,
///   or 1, and it is
///                a number only if the gcd is one
///   do_fast      run the evaluation tests
///   allcons      remove contents with respect to several levels
///   canreset     this call may reset g_cntcount and g_cutoff when it descends
/// gcd(0, v) is the integer content of v (1 in modular mode): callers that can meet 0 test first.
void polygcd(poly u, poly v, polyptrr r, boolean leave_early, boolean do_fast, boolean allcons, polypt pt,
             boolean usave, boolean vsave, boolean canreset);
/// The entry of the rational-function layer: resets the driver's state, takes negative exponents off u (off v
/// if v_odd) and puts them back. The result may rest on gcd_unproved.
void Lpolygcd(poly u, poly v, polyptrr r, boolean v_odd, polypt pt);
/// The entry of the language: checked; negative exponents are dropped. Modulo a composite, with a number: the
/// gcd of the residues and the modulus.
void Lpolygcd2(poly u, poly v, polyptrr r, polypt pt);
/// gcd(u, u): u in normal form.
void Lpolygcd3(poly u, polyptrr r, polypt pt);
}  // namespace tolvex
