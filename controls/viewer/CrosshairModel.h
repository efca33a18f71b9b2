#pragma once

#include "system/viewer/OverlayPainter.h"

#include <cmath>

/// Where a crosshair is taken and how it may move then. No view, no host object.
namespace Marlox {

enum class CrosshairStyle { NormalCross, DiagonalCross, Rectangle, Circle };

/// The axes that a drag moves along, or would from where the pointer is; none: not on the mark.
struct CrosshairAxes {
    bool x = false;
    bool y = false;
    bool Any() const { return x || y; }
    bool Both() const { return x && y; }
    friend bool operator==(const CrosshairAxes&, const CrosshairAxes&) = default;
};

/// From the middle of a normal cross to the tips of its arrow heads, pixels of the mark.
inline constexpr double crosshairReach = 23.0;

/// What a pointer takes of a mark that lies `offset` from it (view pixels, y up): close to the
/// middle both axes, on the arm to the right X, on the arm upwards Y. Only a normal cross has arms.
/// `scale`: view pixels for each pixel of the mark. An offset that is no number takes nothing.
inline CrosshairAxes AxesTaken(OverlayPoint offset, CrosshairStyle style, int pickRadius,
                               double scale)
{
    const double dx = std::trunc(offset.x);
    const double dy = std::trunc(offset.y);
    const bool nearX = std::abs(dx) < pickRadius;
    const bool nearY = std::abs(dy) < pickRadius;
    if (nearX && nearY)
        return {true, true};
    if (style != CrosshairStyle::NormalCross)
        return {};
    const double reach = -crosshairReach * scale;
    if (nearX && dy > reach && dy < pickRadius)
        return {false, true};
    return {nearY && dx > reach && dx < pickRadius, false};
}

/// An axis that is not taken keeps its coordinate from when the drag began.
inline OverlayPoint AlongAxes(CrosshairAxes axes, OverlayPoint to, OverlayPoint origin)
{
    return {axes.x ? to.x : origin.x, axes.y ? to.y : origin.y};
}

} // namespace Marlox
