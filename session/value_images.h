#pragma once
/// session/value_images.h: what stored values are to become, worked out beside them before anything changes.
///
/// Purpose    a change of the ground ring rewrites all values at once. Their images are collected first,
///            with safe points, while the session is as before; then they take their places in one short
///            step without any. A level that opens meanwhile may change every value: the images are
///            thrown away then, and the work begins anew. A panic stop there has changed nothing.
/// Invariant  images are kept, and exchanged, in the order of one walk over the values.
/// Ownership  the list owns the images, after the exchange the values that they have replaced. The list
///            itself lives in scratch memory of the statement.
/// Modes      the images have the shape of numbers (lintmode) that begin_images is told, the values
///            before the other.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// An empty list for images of that shape.
void begin_images(boolean shape);
/// True if a level has been opened since: locations of values may have gone.
bool images_outdated();
/// *image, used up, joins the list.
void keep_image(quolyptr image);
/// After the last image: the exchange begins with the first one.
void rewind_images();
/// The next image goes to *at; the value that was there waits in the list.
void exchange_image(quolyptr at);
/// After the exchange.
void images_exchanged();
/// Gives back all that the list owns, with safe points; it is empty afterwards. Nothing happens if it is
/// empty.
void release_images();
}  // namespace tolvex
