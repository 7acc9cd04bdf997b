#pragma once
/// field/root_images.h: images of the tower in word fields, its variables replaced by roots.
///
/// Purpose    modulo a second auxiliary prime every modding polynomial has a root: polynomials over the tower
///            become plain ones. Such an image is cheap and can prove that two polynomials are coprime.
#include "poly/poly.h"
namespace tolvex {
/// True: an image by roots keeps the leading elements of u and v and its gcd is a number, so u and v have no
/// factor in common but units. False: nothing is known.
bool coprime_by_roots(poly u, poly v, polypt pt);
}  // namespace tolvex
