#pragma once

#include "system/shapes/ShapePlacement.h"
#include "system/viewer/OverlayPainter.h"
#include "system/viewer/PreviewInfo.h"

namespace Marlox {

/// From a shape's own coordinates to those of the image and of the view, and back. Made for each
/// event and each drawing.
class PolyView {
public:
    PolyView(const PreviewInfo& view, const ShapePlacement& placement)
        : view_(&view), placement_(placement)
    {
        placement_.heightsPerWidth = HeightsPerWidth();
    }

    const PreviewInfo& Info() const { return *view_; }
    /// The image's height over its width, as seen.
    double HeightsPerWidth() const
    {
        return view_->imageWidth > 0.0 && view_->imageHeight > 0.0
                   ? view_->imageHeight / view_->imageWidth
                   : 1.0;
    }
    /// The image's size in its own pixels; without a picture as large as it is shown.
    ShapePlace PixelSize() const
    {
        if (view_->pixelWidth > 0 && view_->pixelHeight > 0)
            return {double(view_->pixelWidth), double(view_->pixelHeight)};
        return {view_->imageWidth, view_->imageHeight};
    }
    /// View pixels for each pixel of the image, along x.
    double Zoom() const { return PixelSize().x > 0.0 ? view_->imageWidth / PixelSize().x : 1.0; }
    /// Nearer than this, in the image's pixels, lies what is under the cursor. A little less than
    /// the pick radius: what lies just there is not hit, however it was rounded on its way.
    double Tolerance() const
    {
        return Zoom() > 0.0 ? view_->pickRadius * (1.0 - 1e-9) / Zoom() : 0.0;
    }

    /// In the image's pixels, y up.
    ShapePlace ToPixels(ShapePlace shape) const
    {
        const ShapePlace at = placement_.Out(shape);
        return {at.x * PixelSize().x, at.y * PixelSize().y};
    }
    OverlayPoint ToView(ShapePlace shape) const
    {
        const ShapePlace at = placement_.Out(shape);
        return {view_->TransformXOut(at.x), view_->TransformYOut(at.y)};
    }
    ShapePlace FromView(OverlayPoint at) const
    {
        return placement_.In({view_->TransformXIn(at.x), view_->TransformYIn(at.y)});
    }
    /// The logical cursor, in the shape's coordinates and in the image's pixels.
    ShapePlace Cursor() const { return placement_.In({view_->cursorX, view_->cursorY}); }
    ShapePlace CursorPixels() const
    {
        return {view_->cursorX * PixelSize().x, view_->cursorY * PixelSize().y};
    }
    const ShapePlacement& Placement() const { return placement_; }

private:
    const PreviewInfo* view_;
    ShapePlacement placement_;
};

} // namespace Marlox
