#include "system/widgets/CustomCheckBox.h"

#include "system/widgets/WidgetLook.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr int boxSide = 14; // pixels
constexpr int margin = 3;   // around the box, for the focus ring
constexpr int gap = 6;      // between box and text

} // namespace

CustomCheckBox::CustomCheckBox(QWidget* parent) : CustomCheckBox(QString(), parent) {}

CustomCheckBox::CustomCheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent)
{
    setAttribute(Qt::WA_Hover);
}

QRect CustomCheckBox::BoxRect() const
{
    const int x = layoutDirection() == Qt::RightToLeft ? width() - margin - boxSide : margin;
    return {x, (height() - boxSide) / 2, boxSide, boxSide};
}

QRect CustomCheckBox::TextRect() const
{
    const int used = 2 * margin + boxSide + gap - margin;
    return layoutDirection() == Qt::RightToLeft ? rect().adjusted(0, 0, -used, 0)
                                                : rect().adjusted(used, 0, 0, 0);
}

QSize CustomCheckBox::sizeHint() const
{
    const QSize words = fontMetrics().size(Qt::TextShowMnemonic, text());
    const int box = 2 * margin + boxSide;
    return {box + (text().isEmpty() ? 0 : gap + words.width()), std::max(box, words.height())};
}

QSize CustomCheckBox::minimumSizeHint() const
{
    const int box = 2 * margin + boxSide;
    return {box, std::max(box, fontMetrics().height())};
}

void CustomCheckBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink = WidgetLook::Text(*this);
    const bool hot = isEnabled() && (underMouse() || isDown());
    const QRect box = BoxRect();
    painter.fillRect(box, palette().color(QPalette::Base));
    WidgetLook::DrawFrame(painter, box,
                          WidgetLook::Mix(palette().color(QPalette::Window), ink, hot ? 0.8 : 0.5));
    const QColor mark = isEnabled() ? WidgetLook::Accent() : ink;
    if (checkState() == Qt::PartiallyChecked) {
        painter.fillRect(QRect(box.x() + 3, box.center().y(), boxSide - 6, 2), mark);
    } else if (isChecked()) {
        QPainterPath tick;
        tick.moveTo(box.x() + 3.0, box.y() + 7.2);
        tick.lineTo(box.x() + 5.8, box.y() + 10.0);
        tick.lineTo(box.x() + 11.0, box.y() + 3.8);
        painter.setPen(QPen(mark, 2.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(tick);
    }
    painter.setPen(ink);
    const QString shown =
        fontMetrics().elidedText(text(), Qt::ElideRight, TextRect().width(), Qt::TextShowMnemonic);
    painter.drawText(TextRect(), int(Qt::AlignLeft | Qt::AlignVCenter) | int(Qt::TextShowMnemonic),
                     shown);
    if (hasFocus())
        WidgetLook::DrawFocusRing(painter, box.adjusted(-2, -2, 2, 2));
}

bool CustomCheckBox::hitButton(const QPoint& at) const
{
    return rect().contains(at);
}

bool CustomCheckBox::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
        if (words > TextRect().width())
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QCheckBox::event(event);
}

} // namespace Marlox
