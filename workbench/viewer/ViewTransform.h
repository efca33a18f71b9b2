#pragma once

#include "system/viewer/PreviewInfo.h"

#include <QPointF>
#include <QRectF>

namespace Marlox {

/// Where the image lies in the viewer. View coordinates are device pixels of the viewer, y down,
/// origin at its top left; image coordinates are full-resolution pixels, y down, whole numbers
/// between pixels. The zoom is device pixels for each image pixel in height; a pixel's width is
/// that times the pixel aspect. A value type that all mapping of the viewer goes through.
class ViewTransform {
public:
    static constexpr double minimumZoom = 1.0 / 64.0;
    static constexpr double maximumZoom = 256.0;

    /// The middle of the view stays where it is in the image; a fitted image is fitted again, with
    /// `margin` around it.
    void SetView(double width, double height, double margin = 0.0);
    void SetImage(const MxRect& displayWindow, double pixelAspect);
    const MxRect& DisplayWindow() const { return window_; }
    double PixelAspect() const { return pixelAspect_; }

    /// Shows the whole image in the middle, and again after each change of size, until zoomed or
    /// moved.
    void Fit();
    bool IsFitted() const { return fitted_; }
    double Zoom() const { return zoom_; }
    /// Zooms so that the image stays where it is under `anchor` (view coordinates).
    void ZoomTo(double zoom, QPointF anchor);
    void PanBy(QPointF distance); // view coordinates
    QPointF Middle() const { return {viewWidth_ / 2.0, viewHeight_ / 2.0}; }

    QPointF ToView(QPointF image) const;
    QPointF ToImage(QPointF view) const;
    QRectF ToView(const MxRect& image) const;

    /// Tells overlays where the image lies. Mark sizes follow `devicePixelRatio`.
    void Place(PreviewInfo& info, double devicePixelRatio) const;

    friend bool operator==(const ViewTransform&, const ViewTransform&) = default;

private:
    void PlaceAt(QPointF origin);

    double viewWidth_ = 1.0;
    double viewHeight_ = 1.0;
    MxRect window_{0, 0, 1, 1};
    double pixelAspect_ = 1.0;
    double margin_ = 0.0;
    double zoom_ = 1.0;
    QPointF exactOrigin_; // view coordinates of image coordinate (0, 0)
    QPointF origin_;      // the same in whole numbers, so that pixels are crisp
    bool fitted_ = true;
};

} // namespace Marlox
