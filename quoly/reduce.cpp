#include "quoly/reduce.h"

#include "gcd/polygcd.h"
#include "gcd/gcd_modes.h"
#include "poly/div_general.h"
#include "poly/div_trial.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/progress.h"

#include <cstdio>
namespace tolvex {
/// *q := n / common; false if that is no polynomial.
static bool divide_out(poly n, poly common, polyptrr q, bool odd) {
    if (!odd) return trial_poly_divide(n, common, q, polynames, 0, 0, 0);
    boolean failed = 0;
    Lpoly_divide(n, common, q, 0, polynames, &failed);
    return !failed;
}

/// What is done about a division that failed: a switch off, or the gcd alone again. which: 0 for n, 1 for m.
static void note_failure(bool odd, int which) {
    if (try_rat && !odd) {
        try_rat = 0;
        if (verbose)
            printf(
                " Warning %d. A fast probabilistic test for exact poly division has been turned off (&_t).\n",
                1 + which);
    } else if (rat_yes && !odd) {
        rat_yes = 0;
        if (verbose)
            printf(
                " Warning %d. Another fast probabilistic test for exact poly division has been turned off.\n",
                3 + which);
    } else if (verbose) {
        printf(" *** Warning %d. A  fast probabilistic gcd algorithm is being retried.\n", 5 + which);
    }
}

/// The gcd again: as the driver does it, and from the third time on by the entry that checks its own result.
static void gcd_again(poly n, poly m, polyptrr common, int attempt) {
    free_poly(common);
    alg_c_count = 0;
    original_depth = 1;
    if (attempt < 2) {
        Lpolygcd(n, m, common, laurent, polynames);
    } else {
        Lpolygcd2(n, m, common, polynames);
    }
}

void reduce(poly n, poly m, polyptrr common, polyptrr num, polyptrr den) {
    constexpr int k_attempts = 4;
    bool odd = laurent && (has_negative_exponent(n) || has_negative_exponent(m));
    for (int attempt = 0; attempt < k_attempts; attempt++) {
        poly q = nullptr, r = nullptr;
        bool n_divides = divide_out(n, *common, &q, odd);
        if (n_divides && divide_out(m, *common, &r, odd)) {
            free_poly(num);
            free_poly(den);
            *num = q;
            *den = r;
            return;
        }
        free_poly(&q);
        note_failure(odd, n_divides ? 1 : 0);
        gcd_again(n, m, common, attempt);
    }
    // Not reached while the checked gcd divides its operands. A fraction that is not in lowest terms is right
    // too.
    poly_set(1, common);
    poly_assign(n, num);
    poly_assign(m, den);
}
}  // namespace tolvex
