#include "gcd/polygcd.h"

#include "gcd/gcd_modes.h"
#include "gcd/num_content.h"
#include "gcd/word_gcd.h"
#include "gcd/word_lane.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/residue.h"
#include "poly/div_general.h"
#include "poly/div_internal.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
namespace tolvex {
bool ring_is_composite() { return modularmode && !mod_is_prime && !finf; }

void gcd_normal_form(polyptrr g) {
    if (!modularmode) {
        if (!lintmode) poly_abs(*g);
        return;
    }
    int32_t lead = leading_coef(*g)->ncoef->lint;
    int32_t inverse = lead == 1 ? 1 : mod_inverse_or_0(lead);
    if (inverse > 1) mod_num_poly_mult(g, inverse);
}

static poly poly_one() {
    poly p = nullptr;
    poly_set(1, &p);
    return p;
}

// One operand at least is a number: the gcd of all numeric coefficients, 1 over a field.
static poly gcd_with_number(poly u, poly v) {
    poly g = poly_one();
    common_content(is_number(u) ? u : v, is_number(u) ? v : u, g->ncoef);
    return g;
}

// Pads a gcd that was found one level down.
static poly padded(poly g) {
    poly p = nullptr;
    append_term(&p, 0, g);
    return p;
}

static bool free_of_main(const polynode* p) { return p->exp == 0 && p->next == nullptr; }

// Contents and primitive parts in the main variable, and a remainder sequence. Right in every integral
// domain.
static poly gcd_by_sequence(poly u, poly v, polypt pt) {
    poly cu = content_fresh(u, pt), cv = content_fresh(v, pt);
    poly c = padded(gcd_fresh(cu, cv, pt->next));
    poly u2 = nullptr, v2 = nullptr;
    poly_assign(u, &u2);
    poly_assign(v, &v2);
    u2 = without_content(u2, cu, pt);
    v2 = without_content(v2, cv, pt);
    free_poly(&cu);
    free_poly(&cv);
    poly g = prs_gcd(u2, v2, pt);
    free_poly(&u2);
    free_poly(&v2);
    poly_mult(g, c, &g, pt);
    free_poly(&c);
    return g;
}

static poly gcd_classical(poly u, poly v, polypt pt) {
    poly g;
    if (free_of_main(u) || free_of_main(v)) {
        poly pad = free_of_main(u) ? u : v, c = content_fresh(pad == u ? v : u, pt);
        g = padded(gcd_fresh(pad->pcoef, c, pt->next));
        free_poly(&c);
    } else {
        g = gcd_by_sequence(u, v, pt);
    }
    gcd_normal_form(&g);
    return g;
}

poly gcd_fresh(poly u, poly v, polypt pt) {
    if (is_number(u) || is_number(v)) return gcd_with_number(u, v);
    poly g = nullptr;
    int32_t pads = 0;
    for (; free_of_main(u) && free_of_main(v); pads++) {
        u = u->pcoef;
        v = v->pcoef;
        pt = pt->next;
    }
    bool unit_lead = !ring_is_composite() || mod_inverse_or_0(leading_coef(u)->ncoef->lint) != 0;
    if (unit_lead && (u == v || poly_equal(u, v)))
        poly_assign(u, &g);
    else if (ring_is_composite())
        composite_gcd(u, v, &g, pt);
    else if (lintmode && !modularmode)
        g = poly_one();  // words that wrap are no domain
    else if (!word_gcd(u, v, &g, pt, false))
        g = gcd_classical(u, v, pt);
    gcd_normal_form(&g);
    add_pad(&g, pads);
    return g;
}

void polygcd(poly u, poly v, polyptrr r, boolean, boolean, boolean, polypt pt, boolean, boolean, boolean) {
    if (pt == nullptr && !(is_number(u) && is_number(v))) tolvex_error("pt nil in poly_gcd");
    poly g = gcd_fresh(u, v, pt);
    free_poly(r);
    *r = g;
}

// Monomials are units under laurent: both operands lose their lowest exponents, where there are negative
// ones.
static void gcd_of_laurent(poly u, poly v, polyptrr r, polypt pt) {
    poly u2 = nullptr, v2 = nullptr;
    poly_assign(u, &u2);
    poly_assign(v, &v2);
    poly u_shift = clear_bads(&u2, INT32_MAX, k_leaf_depth),
         v_shift = clear_bads(&v2, INT32_MAX, k_leaf_depth);
    free_exponent_list(&u_shift);
    free_exponent_list(&v_shift);
    polygcd(u2, v2, r, 0, 1, 1, pt, 1, 1, 1);
    free_poly(&u2);
    free_poly(&v2);
}

void Lpolygcd(poly u, poly v, polyptrr r, boolean, polypt pt) {
    alg_c_count = 0;
    original_depth = 1;
    if (laurent)
        gcd_of_laurent(u, v, r, pt);
    else
        polygcd(u, v, r, 0, 1, 1, pt, 1, 1, 1);
}

// The gcd of g and all residues of p, as integers.
static int32_t residue_content(const polynode* p, int32_t g) {
    for (; p != nullptr && g != 1; p = p->next)
        g = p->numb ? smallgcd(g, p->ncoef->lint) : residue_content(p->pcoef, g);
    return g;
}

void Lpolygcd2(poly u, poly v, polyptrr r, polypt pt) {
    if (!ring_is_composite() || (!is_number(u) && !is_number(v))) {
        Lpolygcd(u, v, r, 1, pt);
        return;
    }
    int32_t g = residue_content(v, residue_content(u, modulus));
    poly_set(g == modulus ? 0 : g, r);  // both 0
}
}  // namespace tolvex
