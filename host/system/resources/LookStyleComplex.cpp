#include "system/resources/LookStyle.h"
#include "system/resources/LookStyle_p.h"

#include <QComboBox>
#include <QPainter>
#include <QStyleOption>
#include <QStyledItemDelegate>

namespace Marlox {

using namespace LookPaint;

namespace {

constexpr int arrowWidth = 20; // of the button part of a combo box
constexpr int spinWidth = 16;
constexpr int titleHeight = 24; // of a group box
constexpr int fieldPadding = 3; // beside the text of a field

/// The knob of a scroll bar that has no arrows.
QRect ScrollKnob(const QStyleOptionSlider& bar, int shortest)
{
    const bool lying = bar.orientation == Qt::Horizontal;
    const int length = lying ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    int knob = length;
    if (range > 0) {
        knob = int(qint64(bar.pageStep) * length / std::max<qint64>(1, range + bar.pageStep));
        knob = std::clamp(knob, std::min(shortest, length), length);
    }
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      length - knob, bar.upsideDown);
    return lying ? QRect(bar.rect.left() + start, bar.rect.top(), knob, bar.rect.height())
                 : QRect(bar.rect.left(), bar.rect.top() + start, bar.rect.width(), knob);
}

QRect ScrollPart(const QStyleOptionSlider& bar, QStyle::SubControl part, int shortest)
{
    const QRect knob = ScrollKnob(bar, shortest);
    const bool lying = bar.orientation == Qt::Horizontal;
    QRect rect = bar.rect;
    switch (part) {
    case QStyle::SC_ScrollBarSlider:
        return knob;
    case QStyle::SC_ScrollBarGroove:
        return rect;
    case QStyle::SC_ScrollBarSubPage:
        lying ? rect.setRight(knob.left() - 1) : rect.setBottom(knob.top() - 1);
        return rect;
    case QStyle::SC_ScrollBarAddPage:
        lying ? rect.setLeft(knob.right() + 1) : rect.setTop(knob.bottom() + 1);
        return rect;
    default:
        return {};
    }
}

/// Qt's own delegate for these lists packs the rows as tight as the font allows.
class ComboRows : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return IsSeparator(index) ? QSize(size.width(), 9) : size;
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        if (IsSeparator(index)) {
            painter->fillRect(option.rect.left() + 4, option.rect.center().y(),
                              option.rect.width() - 8, 1, option.palette.color(QPalette::Mid));
        } else {
            QStyledItemDelegate::paint(painter, option, index);
        }
    }

private:
    /// As QComboBox::insertSeparator marks it.
    static bool IsSeparator(const QModelIndex& index)
    {
        return index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator");
    }
};

/// A group box is a title over a line, and what is below; no frame around it.
QRect GroupBoxPart(const QRect& rect, QStyle::SubControl part, bool titled, bool checkable)
{
    const int title = titled ? titleHeight : 0;
    const int label = checkRingRoom + (checkable ? 22 : 0);
    switch (part) {
    case QStyle::SC_GroupBoxLabel:
        return {rect.left() + label, rect.top(), rect.width() - label, title};
    case QStyle::SC_GroupBoxCheckBox:
        return {rect.left() + checkRingRoom, rect.top() + (title - 14) / 2, 14, 14};
    case QStyle::SC_GroupBoxFrame:
        return rect;
    default:
        return rect.adjusted(0, title, 0, 0);
    }
}

} // namespace

void LookPaint::UseRoomyRows(QComboBox& combo)
{
    const QAbstractItemDelegate* present = combo.itemDelegate();
    if (present && present->inherits("QComboBoxDelegate")) {
        combo.setItemDelegate(new ComboRows(&combo));
    }
}

QRect LookStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                SubControl subControl, const QWidget* widget) const
{
    const QRect& rect = option->rect;
    QRect part;
    if (control == CC_ScrollBar) {
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
            part = ScrollPart(*bar, subControl, pixelMetric(PM_ScrollBarSliderMin, option, widget));
            return visualRect(bar->direction, rect, part);
        }
    } else if (control == CC_ComboBox && subControl == SC_ComboBoxArrow) {
        part = QRect(rect.right() - arrowWidth + 1, rect.top(), arrowWidth, rect.height());
        return visualRect(option->direction, rect, part);
    } else if (control == CC_ComboBox && subControl == SC_ComboBoxEditField) {
        part = rect.adjusted(4, 1, -arrowWidth, -1);
        return visualRect(option->direction, rect, part);
    } else if (control == CC_SpinBox && subControl != SC_SpinBoxFrame) {
        const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
        const bool buttons = spin && spin->buttonSymbols != QAbstractSpinBox::NoButtons;
        const int half = rect.height() / 2;
        const int left = rect.right() + 1 - spinWidth;
        if (subControl == SC_SpinBoxEditField) {
            part = rect.adjusted(1, 1, buttons ? -spinWidth : -1, -1);
        } else if (buttons && subControl == SC_SpinBoxUp) {
            part = QRect(left, rect.top(), spinWidth, half);
        } else if (buttons && subControl == SC_SpinBoxDown) {
            part = QRect(left, rect.top() + half, spinWidth, rect.height() - half);
        }
        return visualRect(option->direction, rect, part);
    }
    if (control == CC_GroupBox) {
        const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
        const bool checkable = box && box->subControls & SC_GroupBoxCheckBox;
        const bool titled = checkable || (box && !box->text.isEmpty());
        return visualRect(option->direction, rect,
                          GroupBoxPart(rect, subControl, titled, checkable));
    }
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QRect LookStyle::subElementRect(SubElement element, const QStyleOption* option,
                                const QWidget* widget) const
{
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    return element == SE_LineEditContents ? rect.adjusted(fieldPadding, 0, -fieldPadding, 0) : rect;
}

void LookStyle::DrawScrollBar(const QStyleOptionSlider& bar, QPainter& painter,
                              const QWidget* widget) const
{
    painter.fillRect(bar.rect, colors_.field);
    if (bar.maximum <= bar.minimum) {
        return;
    }
    const QRect knob = proxy()->subControlRect(CC_ScrollBar, &bar, SC_ScrollBarSlider, widget);
    const bool held =
        bar.activeSubControls & SC_ScrollBarSlider && bar.state & (State_Sunken | State_MouseOver);
    const QColor color = held ? colors_.scrollHover : colors_.scroll;
    Plate(painter, knob.adjusted(2, 2, -2, -2), color, color, 3);
}

void LookStyle::DrawComboBox(const QStyleOptionComplex& option, QPainter& painter,
                             const QWidget* widget) const
{
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(&option);
    const bool enabled = option.state & State_Enabled;
    const bool typed = combo && combo->editable;
    const bool framed = !combo || combo->frame;
    const bool hover = enabled && option.state & State_MouseOver;
    const QColor fill = typed      ? option.palette.color(QPalette::Base)
                        : !enabled ? colors_.window
                        : option.state & State_Sunken || option.state & State_On
                            ? colors_.buttonPressed
                        : hover ? colors_.buttonHover
                                : colors_.button;
    const QColor edge = option.state & State_HasFocus ? colors_.accent : colors_.border;
    if (framed) {
        Plate(painter, option.rect, fill, edge);
    } else {
        painter.fillRect(option.rect, fill);
    }
    Arrow(painter, proxy()->subControlRect(CC_ComboBox, &option, SC_ComboBoxArrow, widget),
          Qt::DownArrow, enabled ? colors_.text : colors_.disabledText);
}

void LookStyle::DrawSpinBox(const QStyleOptionComplex& option, QPainter& painter,
                            const QWidget* widget) const
{
    const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(&option);
    const QColor edge = option.state & State_HasFocus ? colors_.accent : colors_.border;
    if (option.subControls & SC_SpinBoxFrame) {
        Plate(painter, option.rect, option.palette.color(QPalette::Base), edge);
    }
    if (!spin || spin->buttonSymbols == QAbstractSpinBox::NoButtons) {
        return;
    }
    const auto step = [&](SubControl part, QAbstractSpinBox::StepEnabledFlag flag,
                          Qt::ArrowType direction) {
        const bool can = option.state & State_Enabled && spin->stepEnabled & flag;
        const bool hover = can && option.activeSubControls & part;
        Arrow(painter, proxy()->subControlRect(CC_SpinBox, &option, part, widget), direction,
              !can    ? colors_.disabledText
              : hover ? colors_.brightText
                      : colors_.text);
    };
    step(SC_SpinBoxUp, QAbstractSpinBox::StepUpEnabled, Qt::UpArrow);
    step(SC_SpinBoxDown, QAbstractSpinBox::StepDownEnabled, Qt::DownArrow);
}

void LookStyle::DrawGroupBox(const QStyleOptionComplex& option, QPainter& painter,
                             const QWidget* widget) const
{
    const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(&option);
    if (!box) {
        return;
    }
    const bool checkable = box->subControls & SC_GroupBoxCheckBox;
    const QRect title = proxy()->subControlRect(CC_GroupBox, &option, SC_GroupBoxLabel, widget);
    if (!box->text.isEmpty()) {
        painter.setPen(option.state & State_Enabled ? colors_.brightText : colors_.disabledText);
        painter.drawText(title,
                         int(box->textAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter |
                             Qt::TextShowMnemonic,
                         box->text);
        painter.fillRect(option.rect.left(), title.bottom(), option.rect.width(), 1, colors_.line);
    }
    if (checkable) {
        QStyleOption check(option);
        check.rect = proxy()->subControlRect(CC_GroupBox, &option, SC_GroupBoxCheckBox, widget);
        DrawCheck(check, painter, false);
    }
    if (option.state & State_HasFocus) {
        Plate(painter, title.adjusted(-2, 1, 0, -3), Qt::transparent, colors_.accent);
    }
}

void LookStyle::DrawSlider(const QStyleOptionSlider& slider, QPainter& painter,
                           const QWidget* widget) const
{
    const QRect groove = proxy()->subControlRect(CC_Slider, &slider, SC_SliderGroove, widget);
    const QRect knob = proxy()->subControlRect(CC_Slider, &slider, SC_SliderHandle, widget);
    const bool lying = slider.orientation == Qt::Horizontal;
    const bool enabled = slider.state & State_Enabled;
    const QRect slot = lying ? QRect(groove.left(), knob.center().y() - 2, groove.width(), 5)
                             : QRect(knob.center().x() - 2, groove.top(), 5, groove.height());
    Plate(painter, slot, colors_.field, colors_.border);
    const bool held = enabled && slider.activeSubControls & SC_SliderHandle;
    Plate(painter, knob,
          !enabled ? colors_.button
          : held   ? colors_.brightText
                   : colors_.text,
          slider.state & State_HasFocus ? colors_.accent : colors_.border);
}

void LookStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const
{
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && slider) {
        DrawScrollBar(*slider, *painter, widget);
    } else if (control == CC_Slider && slider && slider->tickPosition == QSlider::NoTicks) {
        DrawSlider(*slider, *painter, widget);
    } else if (control == CC_ComboBox) {
        DrawComboBox(*option, *painter, widget);
    } else if (control == CC_SpinBox) {
        DrawSpinBox(*option, *painter, widget);
    } else if (control == CC_GroupBox) {
        DrawGroupBox(*option, *painter, widget);
    } else if (const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
               control == CC_ToolButton && button &&
               button->features & QStyleOptionToolButton::HasMenu &&
               !(button->features & QStyleOptionToolButton::MenuButtonPopup)) {
        // The arrow stands beside the label, not below it.
        QStyleOptionToolButton plain = *button;
        plain.features &= ~QStyleOptionToolButton::HasMenu;
        QProxyStyle::drawComplexControl(control, &plain, painter, widget);
        const QRect right(button->rect.right() - 11, button->rect.top(), 8, button->rect.height());
        Arrow(*painter, right, Qt::DownArrow,
              button->state & State_Enabled ? colors_.text : colors_.disabledText);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

} // namespace Marlox
