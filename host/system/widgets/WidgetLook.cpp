#include "system/widgets/WidgetLook_p.h"

#include "system/resources/Resources.h"

#include <cmath>

#include <QPainter>
#include <QWidget>

namespace Marlox::WidgetLook {

QColor Accent()
{
    return LookPack::Global().Color("System.AccentColour", {92, 158, 220}).ToQColor();
}

QColor Key()
{
    return LookPack::Global().Color("System.KeyColour", {124, 192, 148}).ToQColor();
}

QColor Expression()
{
    return LookPack::Global().Color("Controls.ExpressionColour", {230, 215, 135}).ToQColor();
}

QColor ErrorText()
{
    return LookPack::Global().Color("System.ErrorTextColour", {255, 140, 140}).ToQColor();
}

QColor Text(const QWidget& widget)
{
    return widget.palette().color(widget.isEnabled() ? QPalette::Active : QPalette::Disabled,
                                  QPalette::WindowText);
}

QColor Mix(const QColor& under, const QColor& over, double share)
{
    const auto mixed = [share](int a, int b) { return int(std::lround(a + (b - a) * share)); };
    return {mixed(under.red(), over.red()), mixed(under.green(), over.green()),
            mixed(under.blue(), over.blue())};
}

double CrispWidth(const QPainter& painter, double width)
{
    const double ratio = painter.device()->devicePixelRatioF();
    return std::max(1.0, std::round(width * ratio)) / ratio;
}

void DrawFrame(QPainter& painter, const QRectF& rect, const QColor& color, double radius)
{
    const double width = CrispWidth(painter);
    const double inset = width / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    const QRectF line = rect.adjusted(inset, inset, -inset, -inset);
    if (radius > 0)
        painter.drawRoundedRect(line, radius - inset, radius - inset);
    else
        painter.drawRect(line);
    painter.restore();
}

void DrawFocusRing(QPainter& painter, const QRectF& rect, double radius)
{
    DrawFrame(painter, rect, Accent(), radius);
}

} // namespace Marlox::WidgetLook
