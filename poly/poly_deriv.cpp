#include "poly/poly_deriv.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/residue.h"
#include "poly/poly_basic.h"
#include "poly/poly_scale.h"
#include "storage/interrupt.h"
namespace tolvex {
/// *c := e times the coefficient of the term t, which is kept.
static void scaled_coefficient(const polynode* t, int32_t e, polyptrr c) {
    // In a field of characteristic 2 the factor counts modulo 2; the codes of the elements are no integers.
    int32_t factor = finf ? (e & 1) : modularmode ? residue_of_int(e) : e;
    number f = {};
    setvalue_any(factor, &f);
    scalar_by_poly(&f, t->pcoef, c);
    free_num(&f);
}

/// The chain of the derivative by the variable of the chain p itself; may be nil.
static poly derive_chain(const polynode* p) {
    poly head = nullptr;
    poly* end = &head;
    for (; p != nullptr; p = p->next) {
        poll_interrupt();
        if (p->exp == 0) continue;
        poly c = nullptr;
        scaled_coefficient(p, p->exp, &c);
        if (is_number(c) && iszero(c->ncoef)) {
            free_poly(&c);
            continue;
        }
        if (p->exp == 1 && is_number(c))
            *end = c;  // the constant term is a leaf of the chain
        else
            new_term(end, p->exp - 1, c);
        end = &(*end)->next;
    }
    return head;
}

/// The same for a variable that lies `down` levels below the chain.
static poly derive_below(const polynode* p, int32_t down) {
    if (down == 0) return derive_chain(p);
    poly head = nullptr;
    poly* end = &head;
    for (; p != nullptr; p = p->next) {
        if (p->numb) continue;
        poly c = derive_below(p->pcoef, down - 1);
        fix_top(&c);
        if (is_number(c) && iszero(c->ncoef)) {
            free_poly(&c);
            continue;
        }
        if (p->exp == 0 && is_number(c))
            *end = c;
        else
            new_term(end, p->exp, c);
        end = &(*end)->next;
    }
    return head;
}

void poly_differentiate(const polynode* p, polyptrr q, int32_t level) {
    poly d = derive_below(p, level - 1);
    fix_top(&d);
    free_poly(q);
    *q = d;
}
}  // namespace tolvex
