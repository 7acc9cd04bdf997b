#pragma once
/// poly/div_trial.h: divisibility tests that give up fast.
#include "poly/poly.h"
namespace tolvex {
/// Tests that can only say no (degrees; with shortcut the leading and trailing terms and one image in the
/// main variable), then the division: a yes is always proved, so yes_check, which asks for no more than a
/// spot check, changes nothing. Negative exponents have been cleared. True and *q := n / m if m divides n.
/// shortcut: try evaluations first; kill_n: n is consumed in every outcome.
boolean trial_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean shortcut, boolean yes_check,
                          boolean kill_n);
boolean trial_poly_divide_noq(poly n, poly m, polypt pt, boolean shortcut, boolean yes_check);
}  // namespace tolvex
