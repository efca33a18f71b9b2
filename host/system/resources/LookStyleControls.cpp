#include "system/resources/LookStyle_p.h"

#include <QDateTime>
#include <QPainter>
#include <QStyleOption>
#include <QTimer>
#include <QWidget>

namespace Marlox {

using namespace LookPaint;

namespace {

constexpr int menuColumn = 28; // of checks and icons, left of a menu's texts
constexpr int menuMargin = 24; // right of them

QColor TextOf(const QStyleOption& option, const QColor& enabled, const QColor& disabled)
{
    return option.state & QStyle::State_Enabled ? enabled : disabled;
}

} // namespace

void LookStyle::DrawMenuItem(const QStyleOptionMenuItem& item, QPainter& painter,
                             const QWidget* widget) const
{
    const QRect& rect = item.rect;
    const bool lit = item.state & State_Selected && item.state & State_Enabled;
    painter.fillRect(rect, lit ? colors_.selection : colors_.popup);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        if (!item.text.isEmpty()) {
            painter.setPen(colors_.placeholderText);
            painter.drawText(rect.adjusted(8, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft,
                             item.text);
        } else {
            painter.fillRect(rect.left() + 8, rect.center().y(), rect.width() - 16, 1,
                             colors_.line);
        }
        return;
    }
    const QColor ink =
        lit ? colors_.selectionText : TextOf(item, colors_.brightText, colors_.disabledText);
    const QRect mark(rect.left(), rect.top(), menuColumn, rect.height());
    if (item.checked) {
        const bool radio = item.checkType == QStyleOptionMenuItem::Exclusive;
        const QRect box(mark.center() - QPoint(6, 6), QSize(14, 14));
        if (radio) {
            Plate(painter, box.adjusted(4, 4, -4, -4), ink, ink, 3);
        } else {
            Tick(painter, box, ink);
        }
    } else if (!item.icon.isNull()) {
        item.icon.paint(&painter, QRect(mark.center() - QPoint(7, 7), QSize(16, 16)),
                        Qt::AlignCenter,
                        item.state & State_Enabled ? QIcon::Normal : QIcon::Disabled);
    }
    const QString label = item.text.section(QLatin1Char('\t'), 0, 0);
    const QString shortcut = item.text.section(QLatin1Char('\t'), 1);
    const int flags =
        Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine |
        (styleHint(SH_UnderlineShortcut, &item, widget, nullptr) ? Qt::TextShowMnemonic
                                                                 : Qt::TextHideMnemonic);
    const QRect words = rect.adjusted(menuColumn, 0, -menuMargin, 0);
    painter.setPen(ink);
    painter.setFont(item.font);
    painter.drawText(words, flags, label);
    if (!shortcut.isEmpty()) {
        painter.setPen(lit ? ink : TextOf(item, colors_.placeholderText, colors_.disabledText));
        painter.drawText(words, Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine, shortcut);
    }
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        Arrow(painter, QRect(rect.right() - 16, rect.top(), 8, rect.height()), Qt::RightArrow, ink);
    }
}

void LookStyle::DrawMenuBarItem(const QStyleOptionMenuItem& item, QPainter& painter,
                                const QWidget*) const
{
    const bool lit = item.state & State_Enabled && item.state & State_Selected;
    painter.fillRect(item.rect, lit ? colors_.buttonHover : colors_.header);
    Line(painter, item.rect, Qt::BottomEdge, colors_.border);
    painter.setPen(TextOf(item, lit ? colors_.brightText : colors_.text, colors_.disabledText));
    painter.drawText(item.rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine,
                     item.text);
}

void LookStyle::DrawTab(const QStyleOptionTab& tab, QPainter& painter) const
{
    const bool chosen = tab.state & State_Selected;
    const bool hover = tab.state & State_MouseOver && tab.state & State_Enabled;
    painter.fillRect(tab.rect, chosen ? colors_.window : hover ? colors_.button : colors_.header);
    const bool upright = tab.shape == QTabBar::RoundedEast || tab.shape == QTabBar::RoundedWest ||
                         tab.shape == QTabBar::TriangularEast ||
                         tab.shape == QTabBar::TriangularWest;
    Line(painter, tab.rect, upright ? Qt::BottomEdge : Qt::RightEdge, colors_.border);
    if (chosen) {
        const QRect& r = tab.rect;
        painter.fillRect(upright ? QRect(r.left(), r.top(), 2, r.height())
                                 : QRect(r.left(), r.top(), r.width() - 1, 2),
                         colors_.accent);
    } else {
        Line(painter, tab.rect, Qt::BottomEdge, colors_.border);
    }
}

void LookStyle::DrawHeaderSection(const QStyleOption& option, QPainter& painter) const
{
    const bool hover = option.state & State_MouseOver && option.state & State_Enabled;
    painter.fillRect(option.rect, option.state & State_Sunken ? colors_.buttonPressed
                                  : hover                     ? colors_.button
                                                              : colors_.header);
    Line(painter, option.rect, Qt::BottomEdge, colors_.border);
    Line(painter, option.rect, Qt::RightEdge, colors_.border);
}

void LookStyle::DrawProgress(const QStyleOptionProgressBar& bar, QPainter& painter,
                             const QWidget* widget) const
{
    Plate(painter, bar.rect, colors_.field, colors_.border);
    const QRect inner = bar.rect.adjusted(1, 1, -1, -1);
    QRect done = inner;
    if (bar.maximum <= bar.minimum) {
        // Length unknown: a piece that wanders once in two seconds.
        const int piece = inner.width() / 4;
        const double phase = double(QDateTime::currentMSecsSinceEpoch() % 2000) / 2000;
        done = QRect(inner.left() + int((inner.width() + piece) * phase) - piece, inner.top(),
                     piece, inner.height()) &
               inner;
        if (widget) {
            auto* shown = const_cast<QWidget*>(widget);
            QTimer::singleShot(33, shown, [shown] { shown->update(); });
        }
    } else {
        const double share = double(bar.progress - bar.minimum) / (bar.maximum - bar.minimum);
        done.setWidth(int(inner.width() * std::clamp(share, 0.0, 1.0)));
        if (bar.invertedAppearance != (bar.direction == Qt::RightToLeft)) {
            done.moveRight(inner.right());
        }
    }
    painter.fillRect(done, colors_.accent);
    if (!bar.textVisible || bar.text.isEmpty()) {
        return;
    }
    // The text twice, each where its ground is, so that it can be read on both.
    painter.save();
    painter.setClipRegion(QRegion(inner) - done);
    painter.setPen(colors_.fieldText);
    painter.drawText(inner, Qt::AlignCenter | Qt::TextSingleLine, bar.text);
    painter.setClipRect(done);
    painter.setPen(colors_.accentText);
    painter.drawText(inner, Qt::AlignCenter | Qt::TextSingleLine, bar.text);
    painter.restore();
}

void LookStyle::DrawDockTitle(const QStyleOption& option, QPainter& painter) const
{
    painter.fillRect(option.rect, colors_.header);
    Line(painter, option.rect, Qt::BottomEdge, colors_.border);
    const auto* dock = qstyleoption_cast<const QStyleOptionDockWidget*>(&option);
    if (!dock) {
        return;
    }
    const QRect words = subElementRect(SE_DockWidgetTitleBarText, &option, nullptr);
    painter.setPen(TextOf(option, colors_.brightText, colors_.disabledText));
    painter.drawText(words.adjusted(4, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     option.fontMetrics.elidedText(dock->title, Qt::ElideRight, words.width() - 4));
}

void LookStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    const QRect& rect = option->rect;
    switch (element) {
    case CE_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            return DrawMenuItem(*item, *painter, widget);
        }
        break;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            return DrawMenuBarItem(*item, *painter, widget);
        }
        break;
    case CE_TabBarTabShape:
        if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option)) {
            return DrawTab(*tab, *painter);
        }
        break;
    case CE_ProgressBar:
        if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
            return DrawProgress(*bar, *painter, widget);
        }
        break;
    case CE_ShapedFrame: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame && frame->frameShape == QFrame::HLine) {
            return painter->fillRect(rect.left(), rect.center().y(), rect.width(), 1, colors_.line);
        }
        if (frame && frame->frameShape == QFrame::VLine) {
            return painter->fillRect(rect.center().x(), rect.top(), 1, rect.height(), colors_.line);
        }
        if (frame && frame->frameShape != QFrame::NoFrame) {
            return proxy()->drawPrimitive(PE_Frame, option, painter, widget);
        }
        break;
    }
    case CE_MenuEmptyArea:
        return painter->fillRect(rect, colors_.popup);
    case CE_MenuBarEmptyArea:
        painter->fillRect(rect, colors_.header);
        return Line(*painter, rect, Qt::BottomEdge, colors_.border);
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        return DrawHeaderSection(*option, *painter);
    case CE_DockWidgetTitle:
        return DrawDockTitle(*option, *painter);
    case CE_ToolBar:
        painter->fillRect(rect, colors_.window);
        return Line(*painter, rect,
                    option->state & State_Horizontal ? Qt::BottomEdge : Qt::RightEdge,
                    colors_.border);
    case CE_Splitter: {
        const QColor line = option->state & State_MouseOver ? colors_.scroll : colors_.border;
        return option->state & State_Horizontal
                   ? painter->fillRect(rect.center().x(), rect.top(), 1, rect.height(), line)
                   : painter->fillRect(rect.left(), rect.center().y(), rect.width(), 1, line);
    }
    case CE_RubberBand: {
        QColor veil = colors_.accent;
        veil.setAlpha(48);
        return Plate(*painter, rect, veil, colors_.accent, 0);
    }
    case CE_SizeGrip:
        return;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

} // namespace Marlox
