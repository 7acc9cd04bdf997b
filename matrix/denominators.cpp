#include "matrix/denominators.h"

#include "poly/poly_basic.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
namespace tolvex {
/// *multiple := the least common multiple of it and the denominator of q.
static void take_denominator(quolyptr multiple, quoly q) {
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

void clear_line(quoly* line, int32_t m, quolyptr multiple) {
    quoly_set(1, multiple);
    for (int32_t r = 0; r < m; r++) take_denominator(multiple, line[r]);
    if (quoly_equal(*multiple, quol_num_1)) return;
    for (int32_t r = 0; r < m; r++)
        if (!quoly_iszero(line[r])) fast_quoly_mult(&line[r], *multiple);
}

void clear_columns(quoly* a, int32_t m, quolyptr divisor) {
    for (int32_t c = 0; c < m; c++) {
        quoly multiple = nullptr;
        clear_line(a + int64_t{c} * m, m, &multiple);
        if (!quoly_equal(multiple, quol_num_1)) fast_quoly_mult(divisor, multiple);
        free_quoly(&multiple);
        poll_interrupt();
    }
}
}  // namespace tolvex
