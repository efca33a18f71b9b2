#include "system/resources/LookStyle_p.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

namespace Marlox {

namespace LookPaint {

void Plate(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& edge,
           int cornerRadius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                            cornerRadius);
    painter.restore();
}

void Line(QPainter& painter, const QRect& rect, Qt::Edge edge, const QColor& color)
{
    switch (edge) {
    case Qt::TopEdge:
        painter.fillRect(rect.left(), rect.top(), rect.width(), 1, color);
        break;
    case Qt::BottomEdge:
        painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1, color);
        break;
    case Qt::LeftEdge:
        painter.fillRect(rect.left(), rect.top(), 1, rect.height(), color);
        break;
    case Qt::RightEdge:
        painter.fillRect(rect.right(), rect.top(), 1, rect.height(), color);
        break;
    }
}

void Arrow(QPainter& painter, const QRect& rect, Qt::ArrowType direction, const QColor& color)
{
    int turn = 0;
    switch (direction) {
    case Qt::NoArrow:
        return;
    case Qt::UpArrow:
        turn = 180;
        break;
    case Qt::LeftArrow:
        turn = 90;
        break;
    case Qt::RightArrow:
        turn = -90;
        break;
    case Qt::DownArrow:
        break;
    }
    const QPointF tips[] = {{-4, -2}, {4, -2}, {0, 2.5}};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.x() + rect.width() / 2, rect.y() + rect.height() / 2);
    painter.rotate(turn);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawConvexPolygon(tips, 3);
    painter.restore();
}

void Tick(QPainter& painter, const QRect& rect, const QColor& color)
{
    const QPointF corner = QRectF(rect).center() - QPointF(7, 7);
    const QPointF points[] = {corner + QPointF(3.2, 7.2), corner + QPointF(5.9, 10),
                              corner + QPointF(10.8, 4.2)};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawPolyline(points, 3);
    painter.restore();
}

} // namespace LookPaint

using namespace LookPaint;

void LookStyle::DrawButtonPanel(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & State_Enabled;
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    const bool flat = button && button->features & QStyleOptionButton::Flat;
    const bool down = option.state & (State_Sunken | State_On);
    const bool hover = enabled && option.state & State_MouseOver;
    if (flat && !down && !hover && !(option.state & State_HasFocus)) {
        return;
    }
    const bool standard = button && button->features & QStyleOptionButton::DefaultButton;
    const QColor fill = !enabled ? colors_.window
                        : down   ? colors_.buttonPressed
                        : hover  ? colors_.buttonHover
                                 : colors_.button;
    const QColor edge = option.state & State_HasFocus ? colors_.accent
                        : standard && enabled         ? colors_.scrollHover
                                                      : colors_.border;
    Plate(painter, option.rect, fill, edge);
}

void LookStyle::DrawToolPanel(const QStyleOption& option, QPainter& painter) const
{
    const bool raised = !(option.state & State_AutoRaise);
    const bool hover = option.state & State_Enabled && option.state & State_MouseOver;
    if (option.state & State_On) {
        Plate(painter, option.rect, colors_.selection, colors_.border);
    } else if (option.state & State_Sunken) {
        Plate(painter, option.rect, colors_.buttonPressed, colors_.border);
    } else if (hover) {
        Plate(painter, option.rect, colors_.buttonHover, colors_.border);
    } else if (raised) {
        Plate(painter, option.rect, option.state & State_Enabled ? colors_.button : colors_.window,
              colors_.border);
    }
}

void LookStyle::DrawCheck(const QStyleOption& option, QPainter& painter, bool round) const
{
    const QRect box = alignedRect(option.direction, Qt::AlignCenter, QSize(14, 14), option.rect);
    const bool enabled = option.state & State_Enabled;
    const bool on = option.state & State_On;
    const bool partly = option.state & State_NoChange;
    const bool set = on || partly;
    const bool down = option.state & State_Sunken;
    const QColor accent = down ? colors_.accent.darker(130) : colors_.accent;
    const QColor fill = !enabled ? colors_.window
                        : set    ? accent
                        : down   ? colors_.button
                                 : colors_.field;
    const QColor mark = enabled ? colors_.accentText : colors_.disabledText;
    const QColor edge = set && enabled                              ? accent
                        : enabled && option.state & State_MouseOver ? colors_.text
                        : enabled                                   ? colors_.scroll
                                                                    : colors_.line;
    Plate(painter, box, fill, edge, round ? 7 : radius);
    if (partly) {
        painter.fillRect(box.adjusted(3, 6, -3, -6), mark);
    } else if (on && round) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(mark);
        painter.drawEllipse(QRectF(box).adjusted(4, 4, -4, -4));
        painter.restore();
    } else if (on) {
        Tick(painter, box, mark);
    }
}

void LookStyle::DrawItemGround(const QStyleOption& option, QPainter& painter) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(&option);
    if (item && item->backgroundBrush.style() != Qt::NoBrush) {
        painter.fillRect(option.rect, item->backgroundBrush);
    }
    if (option.state & State_Selected) {
        const auto group = !(option.state & State_Enabled)  ? QPalette::Disabled
                           : !(option.state & State_Active) ? QPalette::Inactive
                                                            : QPalette::Active;
        painter.fillRect(option.rect, option.palette.color(group, QPalette::Highlight));
    } else if (option.state & State_MouseOver && option.state & State_Enabled) {
        painter.fillRect(option.rect, colors_.header);
    }
}

void LookStyle::DrawBranch(const QStyleOption& option, QPainter& painter) const
{
    if (!(option.state & State_Children)) {
        return;
    }
    const Qt::ArrowType closed =
        option.direction == Qt::RightToLeft ? Qt::LeftArrow : Qt::RightArrow;
    Arrow(painter, option.rect, option.state & State_Open ? Qt::DownArrow : closed,
          option.state & State_MouseOver ? colors_.brightText : colors_.text);
}

void LookStyle::DrawTabClose(const QStyleOption& option, QPainter& painter) const
{
    if (option.state & State_MouseOver) {
        Plate(painter, option.rect, colors_.buttonHover, colors_.buttonHover);
    }
    const QPointF middle = QRectF(option.rect).center();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colors_.text, 1.5));
    painter.drawLine(middle - QPointF(3, 3), middle + QPointF(3, 3));
    painter.drawLine(middle - QPointF(3, -3), middle + QPointF(3, -3));
    painter.restore();
}

void LookStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const
{
    const QRect& rect = option->rect;
    const QColor focusEdge = option->state & State_HasFocus ? colors_.accent : colors_.border;
    const QColor arrow = option->state & State_Enabled ? colors_.text : colors_.disabledText;
    switch (element) {
    case PE_PanelButtonCommand:
        return DrawButtonPanel(*option, *painter);
    case PE_PanelButtonTool:
        return DrawToolPanel(*option, *painter);
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return DrawCheck(*option, *painter, false);
    case PE_IndicatorRadioButton:
        return DrawCheck(*option, *painter, true);
    case PE_PanelItemViewItem:
        return DrawItemGround(*option, *painter);
    case PE_IndicatorBranch:
        return DrawBranch(*option, *painter);
    case PE_IndicatorTabClose:
        return DrawTabClose(*option, *painter);
    case PE_FrameLineEdit:
        return Plate(*painter, rect, Qt::transparent, focusEdge);
    case PE_PanelLineEdit: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        const QColor ground = option->palette.color(QPalette::Base);
        return frame && frame->lineWidth > 0 ? Plate(*painter, rect, ground, focusEdge)
                                             : painter->fillRect(rect, ground);
    }
    case PE_Frame:
    case PE_FrameWindow:
    case PE_FrameDockWidget:
        return Plate(*painter, rect, Qt::transparent, focusEdge, 0);
    case PE_FrameGroupBox:
        return Plate(*painter, rect, Qt::transparent, colors_.line);
    case PE_FrameFocusRect:
        return Plate(*painter, rect, Qt::transparent, colors_.accent);
    case PE_PanelMenu:
        return painter->fillRect(rect, colors_.popup);
    case PE_FrameMenu:
        return Plate(*painter, rect, Qt::transparent, colors_.line, 0);
    case PE_PanelTipLabel:
        return Plate(*painter, rect, colors_.tooltip, colors_.border, 0);
    case PE_IndicatorArrowUp:
    case PE_IndicatorSpinUp:
    case PE_IndicatorSpinPlus:
        return Arrow(*painter, rect, Qt::UpArrow, arrow);
    case PE_IndicatorArrowDown:
    case PE_IndicatorSpinDown:
    case PE_IndicatorSpinMinus:
    case PE_IndicatorButtonDropDown:
        return Arrow(*painter, rect, Qt::DownArrow, arrow);
    case PE_IndicatorArrowLeft:
        return Arrow(*painter, rect, Qt::LeftArrow, arrow);
    case PE_IndicatorArrowRight:
        return Arrow(*painter, rect, Qt::RightArrow, arrow);
    case PE_FrameTabWidget:
    case PE_FrameTabBarBase:
        return Line(*painter, rect, Qt::TopEdge, colors_.border);
    case PE_PanelStatusBar:
        return Line(*painter, rect, Qt::TopEdge, colors_.border);
    case PE_PanelScrollAreaCorner:
        return painter->fillRect(rect, colors_.field);
    case PE_IndicatorToolBarSeparator:
    case PE_IndicatorToolBarHandle:
        if (option->state & State_Horizontal) {
            painter->fillRect(rect.center().x(), rect.top() + 4, 1, rect.height() - 8,
                              colors_.line);
        } else {
            painter->fillRect(rect.left() + 4, rect.center().y(), rect.width() - 8, 1,
                              colors_.line);
        }
        return;
    case PE_IndicatorDockWidgetResizeHandle:
        return painter->fillRect(rect,
                                 option->state & State_MouseOver ? colors_.line : colors_.border);
    case PE_FrameDefaultButton:
    case PE_FrameStatusBarItem:
    case PE_PanelToolBar:
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

} // namespace Marlox
