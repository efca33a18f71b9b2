#include "workbench/viewer/ViewTransform.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

void ViewTransform::SetView(double width, double height, double margin)
{
    const QPointF grown((width - viewWidth_) / 2.0, (height - viewHeight_) / 2.0);
    viewWidth_ = std::max(width, 1.0);
    viewHeight_ = std::max(height, 1.0);
    margin_ = std::clamp(margin, 0.0, std::min(viewWidth_, viewHeight_) / 4.0);
    if (fitted_)
        Fit();
    else
        PlaceAt(exactOrigin_ + grown);
}

void ViewTransform::SetImage(const MxRect& displayWindow, double pixelAspect)
{
    window_ = displayWindow.IsEmpty() ? MxRect(0, 0, 1, 1) : displayWindow;
    pixelAspect_ = pixelAspect > 0.0 ? pixelAspect : 1.0;
    if (fitted_)
        Fit();
}

void ViewTransform::Fit()
{
    fitted_ = true;
    const double across = (viewWidth_ - 2.0 * margin_) / (window_.Width() * pixelAspect_);
    const double down = (viewHeight_ - 2.0 * margin_) / window_.Height();
    zoom_ = std::clamp(std::min(across, down), minimumZoom, maximumZoom);
    const QPointF middle((window_.left + window_.right) / 2.0 * zoom_ * pixelAspect_,
                         (window_.top + window_.bottom) / 2.0 * zoom_);
    PlaceAt(Middle() - middle);
}

void ViewTransform::ZoomTo(double zoom, QPointF anchor)
{
    // Of the exact origin: what is rounded would add up over the steps of a wheel.
    const QPointF from = anchor - exactOrigin_;
    const QPointF under(from.x() / (zoom_ * pixelAspect_), from.y() / zoom_);
    fitted_ = false;
    zoom_ = std::clamp(zoom, minimumZoom, maximumZoom);
    PlaceAt(anchor - QPointF(under.x() * zoom_ * pixelAspect_, under.y() * zoom_));
}

void ViewTransform::PanBy(QPointF distance)
{
    fitted_ = false;
    PlaceAt(exactOrigin_ + distance);
}

void ViewTransform::PlaceAt(QPointF origin)
{
    exactOrigin_ = origin;
    // Always upwards from a half, so that a pan by whole pixels moves by as many.
    origin_ = {std::floor(origin.x() + 0.5), std::floor(origin.y() + 0.5)};
}

QPointF ViewTransform::ToView(QPointF image) const
{
    return origin_ + QPointF(image.x() * zoom_ * pixelAspect_, image.y() * zoom_);
}

QPointF ViewTransform::ToImage(QPointF view) const
{
    const QPointF from = view - origin_;
    return {from.x() / (zoom_ * pixelAspect_), from.y() / zoom_};
}

QRectF ViewTransform::ToView(const MxRect& image) const
{
    return {ToView(QPointF(image.left, image.top)), ToView(QPointF(image.right, image.bottom))};
}

void ViewTransform::Place(PreviewInfo& info, double devicePixelRatio) const
{
    const QRectF frame = ToView(window_);
    info.imageLeft = frame.left();
    info.imageBottom = viewHeight_ - frame.bottom();
    info.imageWidth = frame.width();
    info.imageHeight = frame.height();
    info.pixelWidth = window_.Width();
    info.pixelHeight = window_.Height();
    info.pixelAspect = pixelAspect_;
    info.viewWidth = int(viewWidth_);
    info.viewHeight = int(viewHeight_);
    info.controlScale = devicePixelRatio;
    info.pixelRatio = devicePixelRatio;
    info.pickRadius = int(std::lround(6.0 * devicePixelRatio));
}

} // namespace Marlox
