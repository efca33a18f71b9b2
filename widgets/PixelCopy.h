#pragma once

#include <QImage>

namespace Marlox {

/// Copying pictures into an image by rectangles, without a QPainter. All images have 32 bits a
/// pixel, premultiplied; `offset` is where the target has the origin in which the other positions
/// are counted. Parts outside the target or the picture are left out.

/// Copies what of `picture`, standing at `at`, lies within `part`.
void CopyPixels(QImage& target, QPoint offset, const QImage& picture, QPoint at, QRect part);
/// The same, over what is there; the target must be opaque.
void BlendPixels(QImage& target, QPoint offset, const QImage& picture, QPoint at, QRect part);

} // namespace Marlox
