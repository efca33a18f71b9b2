#include "system/widgets/KeyFrameIndicator.h"

#include "system/widgets/WidgetAccess_p.h"
#include "system/widgets/WidgetLook_p.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr QSize preferredSize(16, 16);

// Half the diamond's diagonal, in pixels, from its centre.
constexpr double diamondReach = 4.5;

QPainterPath Diamond(const QPointF& centre, double reach)
{
    QPainterPath path;
    path.moveTo(centre.x(), centre.y() - reach);
    path.lineTo(centre.x() + reach, centre.y());
    path.lineTo(centre.x(), centre.y() + reach);
    path.lineTo(centre.x() - reach, centre.y());
    path.closeSubpath();
    return path;
}

void DrawDiamond(QPainter& painter, const QPointF& centre, const QColor& line, const QColor& fill,
                 double filled)
{
    const QPainterPath shape = Diamond(centre, diamondReach);
    if (filled > 0) {
        painter.save();
        painter.setClipRect(QRectF(centre.x() - diamondReach, centre.y() - diamondReach,
                                   2 * diamondReach * filled, 2 * diamondReach));
        painter.fillPath(shape, fill);
        painter.restore();
    }
    painter.setPen(QPen(line, 1.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(shape);
}

void DrawFunctionMark(QPainter& painter, const QRectF& rect, const QColor& color)
{
    QFont font = painter.font();
    font.setFamily(QStringLiteral("serif"));
    font.setPixelSize(13);
    font.setItalic(true);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(rect, Qt::AlignCenter, QStringLiteral("ƒ"));
}

} // namespace

KeyFrameIndicator::KeyFrameIndicator(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    connect(this, &QAbstractButton::clicked, this, &KeyFrameIndicator::Toggled);
    WidgetAccess::Install();
}

void KeyFrameIndicator::SetState(State state)
{
    if (state == state_)
        return;
    state_ = state;
    update();
    if (QAccessible::isActive()) {
        QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&changed);
    }
}

QString KeyFrameIndicator::StateText(State state)
{
    switch (state) {
    case State::None:
        return tr("Not animated");
    case State::Animated:
        return tr("Animated");
    case State::Keyed:
        return tr("Key at this frame");
    case State::Expression:
        return tr("Expression");
    }
    return {};
}

QSize KeyFrameIndicator::sizeHint() const
{
    return preferredSize;
}

QSize KeyFrameIndicator::minimumSizeHint() const
{
    return preferredSize;
}

void KeyFrameIndicator::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor text = WidgetLook::Text(*this);
    const QColor ground = palette().color(QPalette::Window);
    const bool hot = isEnabled() && (underMouse() || isDown());
    const QColor key = isEnabled() ? WidgetLook::Key() : text;
    const QPointF centre(width() / 2.0, height() / 2.0);
    switch (state_) {
    case State::None:
        DrawDiamond(painter, centre, hot ? text : WidgetLook::Mix(ground, text, 0.6), {}, 0.0);
        break;
    case State::Animated:
        DrawDiamond(painter, centre, key, key, 0.5);
        break;
    case State::Keyed:
        DrawDiamond(painter, centre, key, key, 1.0);
        break;
    case State::Expression:
        DrawFunctionMark(painter, rect(), isEnabled() ? WidgetLook::Expression() : text);
        break;
    }
    if (hasFocus())
        WidgetLook::DrawFocusRing(painter, rect());
}

void KeyFrameIndicator::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
        !event->isAutoRepeat()) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

bool KeyFrameIndicator::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), StateText(state_), this);
        return true;
    }
    return QAbstractButton::event(event);
}

} // namespace Marlox
