#include "widgets/DrawnLook.h"

#include "system/resources/Resources.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace Marlox {

QColor LookColor(const char* name, MxColor fallback)
{
    return LookPack::Global().Color(name, fallback).ToQColor();
}

QColor AccentColor()
{
    return LookColor("System.AccentColour", {92, 158, 220});
}

void PaintVeil(QPainter& painter, const QRect& area, QColor ground)
{
    ground.setAlphaF(1.0 - dimmed);
    painter.fillRect(area, ground);
}

double CrispLine(double devicePixelRatio)
{
    return std::max(1.0, std::round(devicePixelRatio)) / devicePixelRatio;
}

void PaintCrispFrame(QPainter& painter, const QRectF& rect, const QColor& color)
{
    const double line = CrispLine(painter.device()->devicePixelRatioF());
    for (const double y : {rect.top(), rect.bottom() - line})
        painter.fillRect(QRectF(rect.left(), y, rect.width(), line), color);
    // No pixel twice: what is disabled is drawn with an opacity.
    for (const double x : {rect.left(), rect.right() - line})
        painter.fillRect(QRectF(x, rect.top() + line, line, rect.height() - 2.0 * line), color);
}

} // namespace Marlox
