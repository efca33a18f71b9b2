#pragma once

#include "system/viewer/OverlayCommands.h"
#include "system/viewer/OverlayPainter.h"

#include <cmath>
#include <optional>

#include <Qt>

/// What overlays that place a point have in common: when one is taken, what is a change, where the
/// arrow keys move it. Positions are image coordinates: 0 to 1 across width and height, y upwards.
namespace Marlox {

/// What differs by no more is the same position: neither sent nor drawn again.
inline constexpr double leastChange = 1e-5;

/// Whether either coordinate is another one. What is no number never is.
inline bool IsAnotherPlace(OverlayPoint from, OverlayPoint to)
{
    return std::abs(to.x - from.x) > leastChange || std::abs(to.y - from.y) > leastChange;
}

/// Whether a press takes a mark that lies `offset` view pixels from it: both components, cut to
/// whole pixels, must be smaller than the pick radius.
inline bool IsWithinPick(OverlayPoint offset, int pickRadius)
{
    return std::abs(std::trunc(offset.x)) < pickRadius &&
           std::abs(std::trunc(offset.y)) < pickRadius;
}

/// Where a key of Qt::Key moves a point: an arrow key by one pixel of the picture's width
/// (`pixelWidth`) along x and, by the same step, along y; with Shift (`modifiers` of KeyModifier)
/// by ten times that, with Ctrl by a tenth, with both by one. None for other keys and without a
/// picture.
inline std::optional<OverlayPoint> Nudged(OverlayPoint from, u64 key, u32 modifiers, int pixelWidth)
{
    if (pixelWidth <= 0)
        return {};
    double step = 1.0 / pixelWidth;
    if (modifiers & KeyShift)
        step *= 10.0;
    if (modifiers & KeyControl)
        step /= 10.0;
    switch (key) {
    case Qt::Key_Left:
        return OverlayPoint{from.x - step, from.y};
    case Qt::Key_Up:
        return OverlayPoint{from.x, from.y + step};
    case Qt::Key_Right:
        return OverlayPoint{from.x + step, from.y};
    case Qt::Key_Down:
        return OverlayPoint{from.x, from.y - step};
    default:
        return {};
    }
}

} // namespace Marlox
