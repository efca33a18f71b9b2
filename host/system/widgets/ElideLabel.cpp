#include "system/widgets/ElideLabel.h"

#include "system/widgets/WidgetAccess_p.h"
#include "system/widgets/WidgetLook_p.h"

#include <algorithm>
#include <array>

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace Marlox {

namespace {

Qt::TextElideMode ElideModeOf(int number)
{
    constexpr std::array modes{Qt::ElideLeft, Qt::ElideRight, Qt::ElideMiddle, Qt::ElideNone};
    return modes[std::size_t(std::clamp(number, 0, 3))];
}

} // namespace

ElideLabel::ElideLabel(QWidget* parent, int elideMode) : QWidget(parent), elideMode_(elideMode)
{
    WidgetAccess::Install();
}

void ElideLabel::SetText(const QString& text)
{
    if (text == text_)
        return;
    text_ = text;
    updateGeometry();
    update();
}

QString ElideLabel::ShownText() const
{
    return fontMetrics().elidedText(text_, ElideModeOf(elideMode_), width());
}

void ElideLabel::SetElideMode(int mode)
{
    elideMode_ = mode;
    update();
}

void ElideLabel::SetAlignment(Qt::Alignment alignment)
{
    alignment_ = alignment;
    update();
}

QSize ElideLabel::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(text_) + 1, metrics.height()}; // widths are rounded
}

QSize ElideLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void ElideLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(WidgetLook::Text(*this));
    painter.drawText(rect(), int(alignment_), ShownText());
}

bool ElideLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() &&
        fontMetrics().horizontalAdvance(text_) > width()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text_, this);
        return true;
    }
    return QWidget::event(event);
}

} // namespace Marlox
