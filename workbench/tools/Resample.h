#pragma once

#include "system/evaluation/Process.h"

#include <QTransform>

namespace Marlox {

enum class ResampleFilter { Nearest, Bilinear, Bicubic };

/// The picture moved by an affine `matrix` from its pixels to the result's (pixels of the windows'
/// coordinates, y down). Where it shrinks, up to 8 x 8 samples a pixel are averaged. The data
/// window follows the picture, at most half a frame beyond the display window on each side; a
/// matrix that cannot be inverted or is not finite leaves it empty. Null when cancelled.
Ref<Image> Resampled(const Image& source, const QTransform& matrix, ResampleFilter filter,
                     RenderContext& context);

/// A whole number in [low, high], also from what no integer holds; a NaN gives `low`.
int WholeWithin(double value, int low, int high);

} // namespace Marlox
