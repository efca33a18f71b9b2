#pragma once

#include "system/base/Types.h"

#include <QPoint>
#include <QRect>

namespace Marlox {

/// A point of widget geometry (pixels, y downwards) or, with floating components, of an image.
template <class T>
struct MxPointT {
    T x{};
    T y{};

    constexpr MxPointT() = default;
    constexpr MxPointT(T x, T y) : x(x), y(y) {}

    friend constexpr bool operator==(const MxPointT&, const MxPointT&) = default;
    friend constexpr MxPointT operator+(MxPointT a, MxPointT b) { return {a.x + b.x, a.y + b.y}; }
    friend constexpr MxPointT operator-(MxPointT a, MxPointT b) { return {a.x - b.x, a.y - b.y}; }
};

using MxPoint = MxPointT<int>;

inline MxPoint ToMxPoint(const QPoint& point)
{
    return {point.x(), point.y()};
}
inline QPoint ToQPoint(const MxPoint& point)
{
    return {point.x, point.y};
}

/// The host's integer rectangle of widget geometry, in pixels, y downwards. `right` and `bottom`
/// are one past the last column and row, so that width is right - left.
struct MxRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    constexpr MxRect() = default;
    constexpr MxRect(int left, int top, int right, int bottom)
        : left(left), top(top), right(right), bottom(bottom)
    {
    }

    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    constexpr bool IsEmpty() const { return right <= left || bottom <= top; }
    constexpr bool Contains(MxPoint p) const
    {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
    constexpr MxRect Widened(int horizontal, int vertical) const
    {
        return {left - horizontal, top - vertical, right + horizontal, bottom + vertical};
    }

    friend constexpr bool operator==(const MxRect&, const MxRect&) = default;
};

inline QRect ToQRect(const MxRect& r)
{
    return {r.left, r.top, r.Width(), r.Height()};
}
inline MxRect ToMxRect(const QRect& r)
{
    return {r.x(), r.y(), r.x() + r.width(), r.y() + r.height()};
}

} // namespace Marlox
