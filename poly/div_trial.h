#pragma once
/// poly/div_trial.h: divisibility tests that give up fast.
///
/// Ownership  operands are kept unless kill_n says otherwise; *q is replaced.
/// Modes      any.
#include "poly/poly.h"
namespace tolvex {
/// Tests that can only say no (degrees; with shortcut the leading and trailing terms and one image in the
/// main variable), then the division: a yes is proved. Negative exponents have been cleared. True and *q :=
/// n / m if m divides n. shortcut: try evaluations first; kill_n: n is consumed in every outcome; yes_check
/// changes nothing here.
boolean trial_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean shortcut, boolean yes_check,
                          boolean kill_n);
/// The same without the quotient. With shortcut and yes_check, rounds of evaluations that all say yes are
/// taken for the answer while rat_yes is set: then gcd_unproved is set too. Not modulo small numbers, and not
/// in sure mode.
boolean trial_poly_divide_noq(poly n, poly m, polypt pt, boolean shortcut, boolean yes_check);
}  // namespace tolvex
