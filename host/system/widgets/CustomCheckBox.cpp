#include "system/widgets/CustomCheckBox.h"

#include "system/widgets/WidgetLook_p.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyleOption>
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
    QStyleOptionButton option;
    initStyleOption(&option);
    option.rect = BoxRect();
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, this);
    const QColor ink = WidgetLook::Text(*this);
    painter.setPen(ink);
    const QString shown =
        fontMetrics().elidedText(text(), Qt::ElideRight, TextRect().width(), Qt::TextShowMnemonic);
    painter.drawText(TextRect(), int(Qt::AlignLeft | Qt::AlignVCenter) | int(Qt::TextShowMnemonic),
                     shown);
    if (hasFocus())
        WidgetLook::DrawFocusRing(painter, BoxRect().adjusted(-3, -3, 3, 3), 4.0);
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
