#pragma once

#include "system/color/ColorSource.h"
#include "system/values/Image.h"
#include "workbench/viewer/ViewTransform.h"

namespace Marlox {

/// What is picked from a picture: which of its pixels, and what they are on average. Pixels are
/// whole ones at full resolution, y down.
namespace ColorSampling {

/// The pixels that a footprint asks for, in the picture or beside it: of each position the one that
/// it lies in.
MxRect PixelsOf(const ColorSource::Footprint& footprint, const ViewTransform& view,
                double devicePixelRatio);
/// Those of them that the picture has, within its data or display window; of a proxy all that its
/// larger pixels cover. Empty: none.
MxRect PixelsIn(const Image& image, const MxRect& pixels);
/// The mean of the pixels that the picture has. Outside the data window they are zero. Infinite
/// ones count where there are no others, as the largest number; those that are no numbers never do.
/// False: there are none. On all cores.
bool MeanOf(const Image& image, const MxRect& pixels, ColorSource::Sample& sample);

} // namespace ColorSampling

} // namespace Marlox
