#include "widgets/CustomSeparator.h"

#include "widgets/DrawnLook.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace Marlox {

void CustomSeparator::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QTransform toDevice = painter.deviceTransform();
    const QRectF all = toDevice.mapRect(QRectF(rect()));
    const double thickness = std::max(1.0, std::round(toDevice.m22()));
    const double top = std::round(all.center().y() - thickness / 2);
    const QRectF line(all.left(), top, all.width(), thickness);
    painter.fillRect(toDevice.inverted().mapRect(line),
                     LookColor("System.LineColour", {72, 72, 72}));
}

} // namespace Marlox
