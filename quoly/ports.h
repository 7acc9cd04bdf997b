#pragma once
/// quoly/ports.h: what rational functions ask of the layer of field towers. Declared here, defined in field/.
/// Callers ask only while field_depth is positive.
///
/// Purpose    denominators and leading elements that are field elements.
#include "poly/poly.h"
namespace tolvex {
/// numer / denom, both not 0: both multiplied by a field element after which the leading element of denom is
/// 1, over Q a positive integer (a denominator in the field vanishes or becomes a number); over Q common
/// integers go. False, nothing done: the leading element of denom has no inverse.
bool tower_normal_fraction(polyptrr numer, polyptrr denom);
/// True if the leading field element of p, which is not 0, has an inverse.
bool tower_lead_is_unit(poly p);
/// *m := *m times a field element after which its leading element is a positive integer; *factor := the
/// element. False: there is none.
bool tower_integer_lead(polyptrr m, polyptrr factor);
}  // namespace tolvex
