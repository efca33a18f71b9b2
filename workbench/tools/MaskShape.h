#pragma once

#include "system/shapes/PolyLine.h"
#include "system/shapes/ShapePlacement.h"
#include "workbench/tools/MaskRaster.h"

#include <string>

namespace Marlox {

/// The closed curves of a mask and how they are placed. A value of its own: shapes, images and
/// documents may change meanwhile.
struct MaskShape {
    std::vector<CurveSegment> inner; // normalised image coordinates, y up
    std::vector<CurveSegment> outer; // empty: none
    ShapePlacement placement;        // the picture's proportions are its image's

    /// The curves of two shapes. Null ones, open ones and such of less than two points have none;
    /// without an inner one there is no outer one.
    static MaskShape From(const PolyLine* inner, const PolyLine* outer);

    /// In the pixels of an image, as lines no further than 1/20 of one from the curve. Points of
    /// the two curves match by their index, or by their fraction of the numbers where these differ.
    /// Values that are not finite make no outline; those further than 1e7 pixels away count as
    /// there.
    MaskOutlines OutlinesIn(const Image::Format& format) const;
    /// The same for equal shapes alone.
    std::string Key() const;
};

} // namespace Marlox
