#pragma once
/// poly/div_trial.h: divisibility tests that give up fast.
#include "poly/poly.h"
namespace tolvex {
/// True and *q := n / m if m divides n. shortcut: try evaluations first; kill_n: n is consumed in every
/// outcome.
boolean trial_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean shortcut, boolean yes_check,
                          boolean kill_n);
boolean trial_poly_divide_noq(poly n, poly m, polypt pt, boolean shortcut, boolean yes_check);
}  // namespace tolvex
