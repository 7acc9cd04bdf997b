#pragma once
/// poly/div_field.h: division with remainder in the main variable over a field.
///
/// Raises     error 85 when the leading number of m is no unit.
#include "poly/poly.h"
namespace tolvex {
void basic_poly_divide(poly n, poly m, polyptrr q, polyptrr r, boolean cancall);
void simplest_poly_divide(poly n, poly m, polyptrr q, polyptrr r, boolean cancall);  ///< one level, modular
void fast_mod_and_div(poly n, poly m, polyptrr r, polyptrr qt, polypt pt, boolean from_basic);  ///< m monic
void poly_div_no_q(poly n, poly m, polyptrr r);  ///< remainder only, modular
}  // namespace tolvex
