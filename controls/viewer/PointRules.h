#pragma once

#include "system/base/TagList.h"
#include "system/viewer/OverlayCommands.h"
#include "system/viewer/OverlayPainter.h"

#include <cmath>
#include <cstring>
#include <optional>

#include <Qt>

/// What overlays that place a point have in common: when one is hit, what is a change, where the
/// arrow keys move it. Positions are image coordinates: 0 to 1 across width and height, y upwards.
namespace Marlox {

/// What differs by no more is the same position: neither sent nor drawn again.
inline constexpr double leastChange = 1e-5;

/// Whether either coordinate is another one. A place that is no number never is: who asks keeps the
/// last one that was.
inline bool IsAnotherPlace(OverlayPoint from, OverlayPoint to)
{
    if (std::isnan(to.x) || std::isnan(to.y))
        return false;
    return std::abs(to.x - from.x) > leastChange || std::abs(to.y - from.y) > leastChange;
}

/// Whether a press takes a mark that lies `offset` view pixels from it: both components, cut to
/// whole pixels, must be smaller than the pick radius.
inline bool IsWithinPick(OverlayPoint offset, int pickRadius)
{
    return std::abs(std::trunc(offset.x)) < pickRadius &&
           std::abs(std::trunc(offset.y)) < pickRadius;
}

/// For CCMD_HitTest with these tags: whether the pointer is on a picture, and not on an overlay
/// further up.
inline bool MayBeHit(const PreviewInfo& view, const TagList* tags)
{
    return !view.hit.control && view.imageWidth > 0.0 && view.imageHeight > 0.0 &&
           !(tags && tags->GetBool(PC_PointerGone));
}

/// The logical cursor in view pixels. Whole ones, as those of a press are: what the way there and
/// back through image coordinates adds must not decide on a hit.
inline OverlayPoint CursorPixel(const PreviewInfo& view)
{
    return {std::round(view.TransformXOut(view.cursorX)),
            std::round(view.TransformYOut(view.cursorY))};
}

/// From the cursor to the mark when a drag began, view pixels: the attributes PCD_DragOffsetX, Y.
struct DragOffset : OverlayPoint {
    /// Takes over what the tags tell. Returns the other tags, for the base: it sets what it is
    /// given again with each later change of attributes, when that drag is long over.
    TagList TakeFrom(const TagList& tags)
    {
        x = tags.GetDouble(PCD_DragOffsetX, x);
        y = tags.GetDouble(PCD_DragOffsetY, y);
        TagList others(tags);
        others.Remove(PCD_DragOffsetX);
        others.Remove(PCD_DragOffsetY);
        return others;
    }

    /// For CopyAttr; false: another attribute.
    bool Copy(u64 tag, void* out) const
    {
        if (tag != PCD_DragOffsetX && tag != PCD_DragOffsetY)
            return false;
        std::memcpy(out, tag == PCD_DragOffsetX ? &x : &y, sizeof(double));
        return true;
    }
};

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
