#include "quoly/quoly_display.h"

#include "numbers/decimal_io.h"
#include "poly/poly_display.h"
#include "poly/poly_read.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_internal.h"
namespace tolvex {
namespace {
struct Output {
    FILE* outf;
    boolean tty;
    int32_t mylength;
    int32_t lines;
};

/// A part of a fraction without the levels above its first variable.
struct Part {
    const polynode* p;
    polypt q;
};

Part without_pads(const polynode* p) {
    polypt q = polynames;
    while (!p->numb && p->exp == 0 && p->next == nullptr) {
        p = p->pcoef;
        q = q->next;
    }
    return {p, q};
}

/// True if the part prints as a sum.
bool is_sum(const Part& part) {
    if (part.p->next != nullptr) return true;
    return monomial_list && part.q != nullptr && part.q->next != nullptr && poly_terms(part.p) > 1;
}

/// True for x and x^e.
bool is_power(const Part& part) {
    const polynode* p = part.p;
    return !p->numb && p->next == nullptr && is_number(p->pcoef) && poly_eq_1(p->pcoef);
}

void put(Output& w, char c) {
    putc_unlocked(c, w.outf);
    w.mylength++;
}

void show_part(Output& w, const Part& part, bool parentheses) {
    if (parentheses) put(w, '(');
    poly_display(w.outf, w.tty, part.p, &w.mylength, part.q, 0, 1, &w.lines);
    if (parentheses && linesuppression) put(w, ')');
}

void show_fraction(Output& w, const quolynode* q) {
    Part numer = without_pads(q->numer), denom = without_pads(q->denom);
    show_part(w, numer, is_sum(numer));
    if (!linesuppression) return;
    put(w, '/');
    show_part(w, denom, !is_number(denom.p) && !is_power(denom));
}
}  // namespace

bool quoly_display(FILE* outf, boolean outf_is_tty, const quolynode* q) {
    Output w = {outf, outf_is_tty, 0, 0};
    linesuppression = 1;
    put(w, ' ');
    if (q->numb) {
        display(outf, outf_is_tty, 0, q->ncoef, &w.mylength, 0);
    } else if (q->denom == nullptr) {
        poly_display(outf, outf_is_tty, q->numer, &w.mylength, polynames, 0, 1, &w.lines);
    } else {
        show_fraction(w, q);
        if (q->rat && outf_is_tty && !uglyprint && disp_size > 0) {
            fputs(";  ", outf);
            w.mylength += 3;
            decimal_tail(outf, q->numer->ncoef, q->denom->ncoef, &w.mylength);
        }
    }
    return w.mylength > 0;
}

void quoly_readin(FILE* inf, quolyptr q, nameptr* flag) {
    poly p = nullptr;
    int32_t depth = 0;
    poly_readin(inf, &p, flag, &depth);
    poly_to_quoly(&p, q);
}
}  // namespace tolvex
