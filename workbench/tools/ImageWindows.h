#pragma once

#include "system/values/Image.h"
#include "workbench/images/ImageScale.h"

#include <algorithm>

#include <QPointF>

/// Rectangles of pictures, in pixels, y down.
namespace Marlox {

inline MxRect Shared(const MxRect& a, const MxRect& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

/// The smallest rectangle that holds both; an empty one does not count.
inline MxRect United(const MxRect& a, const MxRect& b)
{
    if (a.IsEmpty() || b.IsEmpty())
        return a.IsEmpty() ? b : a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// Makes the data window empty, where the display window begins.
inline void MakeEmpty(Image::Format& format)
{
    const MxRect& frame = format.displayWindow;
    format.dataWindow = {frame.left, frame.top, frame.left, frame.top};
}

/// The format of a source without a size of its own: 1920 x 1080 pixels, or what the proxy wants.
inline Image::Format StandardFormat(const RenderContext& context)
{
    Image::Format format;
    format.displayWindow = format.dataWindow = {0, 0, 1920, 1080};
    return ReducedFormat(format, ProxyDivisor(context.scale));
}

/// Where a point of normalised image coordinates, y up, lies in a display window.
inline QPointF PlaceIn(const MxRect& frame, double x, double y)
{
    return {frame.left + x * frame.Width(), frame.top + (1.0 - y) * frame.Height()};
}

} // namespace Marlox
