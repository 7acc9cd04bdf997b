#pragma once
/// matrix/stash_images.h: the images of a determinant, written to a file instead of being put together.
///
///   Array co[3];        the images at the points of the first variable
///   co[1] := ...;
///   Array poly[3];      the polynomials that are 1 at one point and 0 at the others
///   poly[1] := ...;     the determinant is the sum of co[i] poly[i]
///
/// Purpose    a computation that would not fit in memory is finished by reading the file. Switch:
///            lagrange_stash (&(_L = 1)), with both kinds of verbosity.
#include "matrix/interpolation.h"
namespace tolvex {
/// True: the images of the m by m matrix a, column by column, divided by request.fct, stand in request.stash,
/// and *q is 0. False: nothing has been written, for the ring is not the field of a prime that is large
/// enough. *request.fault := 263 if there is no file. Entries are only read.
bool stash_images(const quoly* a, int32_t m, const DeterminantRequest& request, quolyptr q);
}  // namespace tolvex
