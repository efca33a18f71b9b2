#include "system/color/ColorSource.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

namespace Marlox {

namespace {

/// Some systems know nothing of what lies beyond the screens that they tell of.
QWidget* inActiveWindow(QPoint global)
{
    QWidget* window = QApplication::activeWindow();
    return window ? window->childAt(window->mapFromGlobal(global)) : nullptr;
}

} // namespace

ColorSource::~ColorSource() = default;

ColorSource* ColorSource::At(QPoint global, QWidget** widget)
{
    QWidget* under = QApplication::widgetAt(global);
    if (!under)
        under = inActiveWindow(global);
    while (under && !Of(under))
        under = under->isWindow() ? nullptr : under->parentWidget();
    if (widget)
        *widget = under;
    return Of(under);
}

ColorSource* ColorSource::Of(QWidget* widget)
{
    return dynamic_cast<ColorSource*>(widget);
}

QPointF ColorSource::PositionOf(const QMouseEvent& event)
{
    return event.pos() + (event.windowPos() - event.windowPos().toPoint());
}

} // namespace Marlox
