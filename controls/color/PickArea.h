#pragma once

#include "system/color/ColorSource.h"

#include <algorithm>
#include <cstdlib>

namespace Marlox {

/// Which part of a viewer a pick takes, from where its button was pressed to where the pointer is:
/// the place of the pointer, or a rectangle once it was dragged open. Pixels of the viewer's
/// widget; no window.
class PickArea {
public:
    /// A hand that only clicks moves less.
    static constexpr int opensFrom = 4;

    /// `opens`: the pick can become a rectangle.
    PickArea(QPoint press, bool opens) : press_(press), at_(press), opens_(opens) {}

    void MoveTo(QPoint at)
    {
        const QPoint way = at - press_;
        open_ = open_ || (opens_ && std::max(std::abs(way.x()), std::abs(way.y())) >= opensFrom);
        at_ = at;
    }
    /// `size`: pixels of the picture across and down, for a pick that is no rectangle.
    ColorSource::Footprint Taken(int size) const
    {
        const QPoint low(std::min(press_.x(), at_.x()), std::min(press_.y(), at_.y()));
        const QPoint high(std::max(press_.x(), at_.x()), std::max(press_.y(), at_.y()));
        return {at_, size, open_ ? QRect(low, high) : QRect()};
    }

private:
    QPoint press_;
    QPoint at_;
    bool opens_;
    bool open_ = false;
};

} // namespace Marlox
