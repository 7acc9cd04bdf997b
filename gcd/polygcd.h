#pragma once
/// gcd/polygcd.h: greatest common divisors of polynomials.
///
/// Purpose    the gcd in normal form: over Z positive leading number, integer content included; modular:
///            monic.
/// Invariant  what Lpolygcd2, Lpolygcd3 and the outermost polygcd give is proved or has been divided out.
///            Lpolygcd alone may leave gcd_unproved set: its caller divides both operands anyway, and failure
///            there is the check.
/// Ownership  an operand whose save flag is true comes back exactly as it was, errors included; one whose
///            flag is false may be left as an empty shell (the number 0), which its owner gives back.
/// Raises     nothing on legal operands. Composite modulus: Euclid with unit leading numbers, a non-unit ends
///            it with gcd 1.
#include "poly/poly.h"
namespace tolvex {
/// *r := gcd(u, v) in the variables from pt on.
///   leave_early  only whether the degree in the main variable is 0 is wanted: the result is x^d of level 1,
///   or 1. That d is 0, and that the result is a number, are proved; a positive d is a bound for strategy.
///   With d = 0 and something in deeper levels the result is x of level 2 instead.
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
/// A gcd has failed its division (which: 0 that of u, 1 that of v): one of the switches try_rat, rat_yes goes
/// off, with a warning under verbose. Operands with negative exponents have not gone through their tests.
void note_wrong_gcd(int which, bool negative_exponents);
/// The gcd again, after `attempt` failures: without the stash, whose slot is emptied, and from the third
/// failure on relying on nothing unproved. Raw as Lpolygcd.
void retry_polygcd(poly u, poly v, polyptrr r, int attempt);
}  // namespace tolvex
