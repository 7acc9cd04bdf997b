#include "matrix/denominators.h"

#include "poly/poly_basic.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
namespace tolvex {
void take_denominator(quolyptr multiple, quoly q) {
    if (q->denom == nullptr) return;
    quoly over = nullptr, factor = nullptr, denom = nullptr;
    poly copy = nullptr;
    poly_assign(q->denom, &copy);
    poly_to_quoly(&copy, &denom);
    quoly_quot(*multiple, denom, &over, false);
    if (over->denom != nullptr) {
        poly_assign(over->denom, &copy);
        poly_to_quoly(&copy, &factor);
        fast_quoly_mult(multiple, factor);
    }
    free_quoly(&over);
    free_quoly(&factor);
    free_quoly(&denom);
}

void clear_columns(quoly* a, int32_t m, quolyptr divisor) {
    for (int32_t c = 0; c < m; c++) {
        quoly* column = a + int64_t{c} * m;
        quoly multiple = nullptr;
        quoly_set(1, &multiple);
        for (int32_t r = 0; r < m; r++) take_denominator(&multiple, column[r]);
        if (!quoly_equal(multiple, quol_num_1)) {
            for (int32_t r = 0; r < m; r++)
                if (!quoly_iszero(column[r])) fast_quoly_mult(&column[r], multiple);
            fast_quoly_mult(divisor, multiple);
        }
        free_quoly(&multiple);
        poll_interrupt();
    }
}
}  // namespace tolvex
