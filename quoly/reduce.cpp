#include "quoly/reduce.h"

#include "gcd/field_hooks.h"
#include "gcd/polygcd.h"
#include "poly/div_general.h"
#include "poly/div_trial.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
namespace tolvex {
/// *q := n / common; false if that is no polynomial.
static bool divide_out(poly n, poly common, polyptrr q, bool odd) {
    if (!odd) return trial_poly_divide(n, common, q, polynames, 0, 0, 0);
    boolean failed = 0;
    Lpoly_divide(n, common, q, polynames, &failed);
    return !failed;
}

void reduce(poly n, poly m, polyptrr common, polyptrr num, polyptrr den) {
    constexpr int k_attempts = 4;
    if (!lintmode && exists_field_element(*common, 1) && tower_reduce(n, m, *common, num, den, polynames))
        return;
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
        note_wrong_gcd(n_divides ? 1 : 0, odd);
        free_poly(common);
        retry_polygcd(n, m, common, attempt + 1);
    }
    // The last gcd relied on nothing unproved, so this is not reached in a domain. A fraction that is not in
    // lowest terms is right too.
    poly_set(1, common);
    poly_assign(n, num);
    poly_assign(m, den);
}
}  // namespace tolvex
