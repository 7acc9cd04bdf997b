#include "gcd/content.h"

#include "gcd/word_gcd.h"
#include "poly/div_internal.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
// The term of least size: the gcd can be no larger, and small operands make the first gcds cheap.
static poly smallest_term(poly u) {
    poly best = u;
    int64_t best_size = INT64_MAX;
    for (poly t = u; t != nullptr; t = t->next) {
        int64_t size = t->numb ? 0 : poly_terms(t->pcoef);
        if (size < best_size) {
            best = t;
            best_size = size;
        }
    }
    return best;
}

poly content_fresh(poly u, polypt pt) {
    poly first = is_number(u) ? u : smallest_term(u);
    poly g = coefficient_copy(first);
    gcd_normal_form(&g);
    if (u == first && u->next == nullptr) return g;
    for (poly t = u; t != nullptr && !poly_eq_1(g); t = t->next) {
        if (t == first) continue;
        poll_interrupt();
        polynode lone;
        poly c = t->pcoef;
        if (t->numb) {
            lone = *t;
            lone.next = nullptr;
            c = &lone;
        }
        poly next = gcd_fresh(g, c, pt->next);
        free_poly(&g);
        g = next;
    }
    return g;
}

void content(poly u, polyptrr s, polypt pt, boolean, boolean, boolean qsave) {
    poly c = content_fresh(u, pt), padded = nullptr;
    if (is_number(c))
        padded = c;
    else
        new_term(&padded, 0, c);
    if (!qsave) free_poly(&u);
    free_poly(s);
    *s = padded;
}
}  // namespace tolvex
