#include "system/color/ColorSource.h"

#include <QApplication>
#include <QWidget>

namespace Marlox {

ColorSource::~ColorSource() = default;

ColorSource* ColorSource::At(QPoint global, QWidget** widget)
{
    QWidget* under = QApplication::widgetAt(global);
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

} // namespace Marlox
