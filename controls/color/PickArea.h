#pragma once

#include "system/color/ColorSource.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

/// Which part of a viewer a pick takes, from where its button was pressed to where the pointer is:
/// the place of the pointer, or a rectangle once it was dragged open. Pixels of the viewer's
/// widget, exact; no window.
class PickArea {
public:
    /// A hand that only clicks moves less.
    static constexpr double opensFrom = 4.0;

    /// `opens`: the pick can become a rectangle.
    PickArea(QPointF press, bool opens) : press_(press), at_(press), opens_(opens) {}

    void MoveTo(QPointF at)
    {
        const QPointF way = at - press_;
        open_ = open_ || (opens_ && std::max(std::abs(way.x()), std::abs(way.y())) >= opensFrom);
        at_ = at;
    }
    /// `size`: pixels of the picture across and down, for a pick that is no rectangle.
    ColorSource::Footprint Taken(int size) const
    {
        ColorSource::Footprint footprint{at_, size};
        if (open_)
            footprint.area = QRectF(press_, at_).normalized();
        return footprint;
    }

private:
    QPointF press_;
    QPointF at_;
    bool opens_;
    bool open_ = false;
};

} // namespace Marlox
