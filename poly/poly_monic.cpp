#include "poly/poly_monic.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "numbers/residue.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
namespace tolvex {
int32_t monic_poly(polyptrr r) {
    int32_t lead = leading_coef(*r)->ncoef->lint;
    int32_t inverse = lead == 1 ? 1 : mod_inverse_or_0(lead);
    if (inverse <= 1) return 1;
    mod_num_poly_mult(r, inverse);
    return inverse;
}

bool has_unit_lead(poly p) {
    int32_t lead = leading_coef(p)->ncoef->lint;
    return lead == 1 || mod_inverse_or_0(lead) != 0;
}

namespace {
/// Leading numbers to multiply across with; in modular mode the quotient of both alone.
struct Scales {
    const number *of_u, *of_v;
    uint32_t ratio;  // lc(u) / lc(v)
};
}  // namespace

static bool leaves_agree(const number* a, const number* b, const Scales& s) {
    if (modularmode) return a->lint == modmult(s.ratio, static_cast<uint32_t>(b->lint));
    number left = {}, right = {};
    fast_mult(a, s.of_v, &left);
    fast_mult(b, s.of_u, &right);
    bool same = equal(&left, &right);
    special_free(&left);
    special_free(&right);
    return same;
}

static bool trees_agree(const polynode* u, const polynode* v, const Scales& s) {
    for (; u != nullptr && v != nullptr; u = u->next, v = v->next) {
        if (u->exp != v->exp || u->numb != v->numb) return false;
        if (u->numb ? !leaves_agree(u->ncoef, v->ncoef, s) : !trees_agree(u->pcoef, v->pcoef, s))
            return false;
    }
    return u == v;
}

bool essentially_equal(poly u, poly v) {
    if (lintmode && !modularmode) return false;
    Scales s = {leading_coef(u)->ncoef, leading_coef(v)->ncoef, 1};
    if (modularmode) {
        int32_t inverse = mod_inverse_or_0(s.of_v->lint);
        if (inverse == 0) return false;
        s.ratio = static_cast<uint32_t>(
            modmult(static_cast<uint32_t>(s.of_u->lint), static_cast<uint32_t>(inverse)));
    }
    return trees_agree(u, v, s);
}
}  // namespace tolvex
