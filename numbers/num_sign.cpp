#include "numbers/num_sign.h"

#include "numbers/num_assign.h"
#include "numbers/residue.h"
namespace tolvex {
namespace {
int32_t word_neg(int32_t v) { return static_cast<int32_t>(0u - static_cast<uint32_t>(v)); }

/// The word -v of the mode in force (lintmode is set). In a table field every element is its own negative.
int32_t lint_neg(int32_t v) { return modularmode ? mod_neg(v) : word_neg(v); }
}  // namespace

void in_place_neg(imptr num) {
    if (lintmode) {
        num->lint = lint_neg(num->lint);
        return;
    }
    for (numptr p = num->head; p != nullptr; p = p->next) p->value = word_neg(p->value);
}

void makeneg(const number* num, imptr x) {
    if (lintmode) {
        x->lint = lint_neg(num->lint);
        return;
    }
    num_assign(num, x);
    in_place_neg(x);
}

void abs_value(imptr n) {
    if (lintmode) {
        if (n->lint < 0) n->lint = word_neg(n->lint);
    } else if (n->head->value < 0) {
        in_place_neg(n);
    }
}

void abs_val_num(const number* n, imptr m) {
    num_assign(n, m);
    abs_value(m);
}
}  // namespace tolvex
