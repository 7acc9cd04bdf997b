#pragma once
/// gcd/engines.h: the engines that polygcd commits to. Private to gcd/ and to tests.
///
/// Purpose    the methods that need a choice: the driver measures the operands and calls one of them.
/// Ownership  operands are only read and come back unchanged; *r is replaced.
/// Modes      basic_poly_gcd and below: a prime modulus or a table field, one variable. basic_mod_method,
///            basic_hensel: over Z. mod_multivar_Chinese, mod_hensel_2: modular mode, prime modulus.
#include "gcd/polygcd_env.h"
#include "numbers/number.h"
#include "poly/poly.h"
namespace tolvex {
// ---- over Z ----
/// On *success *r is the gcd of the primitive parts up to sign, unproved unless its engine has divided.
void basic_mod_method(poly x, poly y, polyptrr r, boolean* success, polypt pt);
void basic_hensel(poly x, poly y, polyptrr r, boolean* success, polypt pt);
/// One modular image of the whole problem. *expon: degree of the image gcd in the main variable, which bounds
/// the true one; *success: it is 0; *isnumb: the image gcd is a number. No prime: both false, *expon as it
/// came.
void use_modular(poly n, poly m, boolean* success, boolean* isnumb, polypt pt, int16_t prime_number,
                 int32_t* expon);

// ---- one variable over a field of words ----
void basic_poly_gcd(poly n, poly m, polyptrr p, boolean need_monic, polypt pt);
void monomial2(poly u, poly v, polyptrr p);  ///< u has one term: x^min(exp of u, lowest exponent of v)

// ---- several variables over a field of words ----
bool mod_do_Chinese(poly u, poly v, int32_t mod_deg);
boolean mod_multivar_Chinese(poly x, poly y, polyptrr r, int32_t expo, polypt pt);
boolean mod_hensel_2(poly x, poly y, polyptrr r, polypt pt);

// ---- any domain ----
/// The subresultant remainder sequence on the primitive operands env.u, env.v; the result in *env.r, up to
/// units and content.
void algorithm_c(polygcd_EnvRec& env);
}  // namespace tolvex
