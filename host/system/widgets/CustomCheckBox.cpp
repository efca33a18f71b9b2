#include "system/widgets/CustomCheckBox.h"

#include "system/resources/LookStyle.h"
#include "system/widgets/WidgetLook_p.h"

#include <algorithm>

#include <QHelpEvent>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr int boxSide = 14;           // pixels
constexpr int margin = checkRingRoom; // around the box
constexpr int gap = 6;                // between box and text

} // namespace

CustomCheckBox::CustomCheckBox(QWidget* parent) : CustomCheckBox(QString(), parent) {}

CustomCheckBox::CustomCheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent)
{
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed); // the label shortens
    connect(this, &QCheckBox::stateChanged, this,
            [this](int state) { emit CheckChanged(state, id_); });
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

void CustomCheckBox::SetStateColor(const QColor& color, bool ruled)
{
    if (color == stateColor_ && ruled == ruled_)
        return;
    stateColor_ = color;
    ruled_ = ruled && color.isValid();
    update();
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
    if (ruled_)
        option.state &= ~QStyle::State_Enabled;
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, this);
    if (stateColor_.isValid() && isEnabled()) {
        WidgetLook::DrawFrame(painter, BoxRect(), stateColor_, 2.0);
        WidgetLook::DrawFrame(painter, BoxRect().adjusted(1, 1, -1, -1), stateColor_, 1.0);
    }
    painter.setPen(ruled_ && isEnabled() ? stateColor_ : WidgetLook::Text(*this));
    const QString shown =
        fontMetrics().elidedText(text(), Qt::ElideRight, TextRect().width(), Qt::TextShowMnemonic);
    painter.drawText(TextRect(), int(Qt::AlignLeft | Qt::AlignVCenter) | int(Qt::TextShowMnemonic),
                     shown);
    if (hasFocus())
        WidgetLook::DrawFocusRing(painter, BoxRect().adjusted(-3, -3, 3, 3), 4.0);
}

bool CustomCheckBox::hitButton(const QPoint& at) const
{
    const QRect taken(0, 0, std::min(width(), sizeHint().width() + margin), height());
    return QStyle::visualRect(layoutDirection(), rect(), taken).contains(at);
}

QString CustomCheckBox::ToolTipText() const
{
    if (fontMetrics().size(Qt::TextShowMnemonic, text()).width() <= TextRect().width())
        return {};
    const QChar mark(1);
    QString name = text();
    name.replace(QLatin1String("&&"), mark).remove(u'&').replace(mark, u'&');
    const QString help =
        toolTip().isEmpty() && parentWidget() ? parentWidget()->toolTip() : toolTip();
    return help.isEmpty() ? name : name + u'\n' + help;
}

bool CustomCheckBox::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        if (const QString told = ToolTipText(); !told.isEmpty()) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), told, this);
            return true;
        }
    }
    return QCheckBox::event(event); // without a tooltip of its own, its parent's
}

} // namespace Marlox
