#include "poly/div_trial.h"

#include "numbers/num_compare.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
namespace tolvex {
boolean trial_poly_divide(poly n, poly m, polyptrr q, polypt pt, boolean, boolean, boolean kill_n) {
    boolean failed = 0;
    poly quotient = nullptr;
    gen_poly_divide(n, m, &quotient, pt, &failed);
    if (kill_n) free_poly(&n);
    free_poly(q);
    *q = quotient;
    return !failed;
}

boolean trial_poly_divide_noq(poly n, poly m, polypt pt, boolean shortcut, boolean yes_check) {
    poly q = nullptr;
    boolean divides = trial_poly_divide(n, m, &q, pt, shortcut, yes_check, 0);
    free_poly(&q);
    return divides;
}
}  // namespace tolvex
