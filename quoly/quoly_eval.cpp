#include "quoly/quoly_eval.h"

#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
namespace tolvex {
/// The polynomial c of that level as a value; c is used up.
static void as_value(poly c, int32_t level, quolyptr n) {
    add_pad(&c, level - 1);
    free_quoly(n);
    poly_to_quoly(&c, n);
}

/// n := n x^e, x being the value of the variable.
static void times_power(quolyptr n, quoly x, int32_t e) {
    if (e == 0) return;
    if (e == 1) {
        fast_quoly_mult(n, x);
        return;
    }
    quoly power = nullptr;
    quoly_assign(x, &power);
    if (e > 0) {
        quoly_compute_power(&power, e);
    } else {
        quoly_reciprocal(&power);
        if (e < -1) quoly_compute_power(&power, -e);
    }
    fast_quoly_mult(n, power);
    free_quoly(&power);
}

/// The coefficient of the term t of `level`: of a leaf the number alone, whatever terms follow it.
static void evaluate_coefficient(const polynode* t, int32_t level, const quoly* value, int32_t last,
                                 quolyptr n) {
    if (!t->numb) {
        tot_eval_poly(t->pcoef, level + 1, value, last, n);
        return;
    }
    poly c = nullptr;
    node_assign(t, &c);
    as_value(c, level, n);
}

void tot_eval_poly(const polynode* q, int32_t level, const quoly* value, int32_t last, quolyptr n) {
    if (level > last || is_number(q)) {
        poly c = nullptr;
        poly_assign(q, &c);  // with all its terms: under Laurent exponents its head may be a leaf
        as_value(c, level, n);
        return;
    }
    bool shown = verbose && windy;
    if (shown) dumpitt("total eval, counting to ", poly_length(q), 1, 1, 0);
    quoly kept = nullptr, result = nullptr;
    quoly x = value[level];
    if (x == nullptr) {
        poly variable = nullptr;
        base_poly(&variable, level);
        poly_to_quoly(&variable, &kept);
        x = kept;
    }
    evaluate_coefficient(q, level, value, last, &result);
    for (; q->next != nullptr; q = q->next) {
        poll_interrupt();
        times_power(&result, x, q->exp - q->next->exp);
        quoly c = nullptr;
        evaluate_coefficient(q->next, level, value, last, &c);
        best_quoly_add(&result, c);
    }
    times_power(&result, x, q->exp);
    free_quoly(&kept);
    if (shown) decr_dumpitt(1, 0, verbose);
    free_quoly(n);
    *n = result;
}

void spec_quoly_eval(const quolynode* q, quolyptr n, const quoly* value, int32_t levels) {
    int32_t last = levels;
    while (last > 0 && value[last] == nullptr) last--;
    quoly result = nullptr;
    if (q->numb || last == 0) {
        quoly_assign(q, &result);
    } else {
        tot_eval_poly(q->numer, 1, value, last, &result);
        if (q->denom != nullptr) {
            quoly denominator = nullptr;
            tot_eval_poly(q->denom, 1, value, last, &denominator);
            fast_quoly_quot(&result, denominator, 0);
            free_quoly(&denominator);
        }
    }
    free_quoly(n);
    *n = result;
}

void horner_quoly_eval(const quolynode* q, quolyptr n, quoly n2, int32_t target) {
    quoly value[k_levels] = {};
    value[target] = n2;
    spec_quoly_eval(q, n, value, target);
}
}  // namespace tolvex
