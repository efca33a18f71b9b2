#include "widgets/CustomSwatch.h"

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/DrawnLook.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace Marlox {

namespace {

constexpr QSize usual(40, 20);
constexpr int arrowSize = 8;

/// An arrow head in a corner, light on a dark rim so that any colour shows it.
void paintArrow(QPainter& painter, QPointF tip, double way)
{
    const double half = 0.5 * arrowSize;
    QPainterPath arrow(tip);
    arrow.lineTo(tip.x() - half, tip.y() + way * half);
    arrow.lineTo(tip.x() + half, tip.y() + way * half);
    arrow.closeSubpath();
    painter.setPen(QPen(QColor(0, 0, 0, 220), 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(255, 255, 255));
    painter.drawPath(arrow);
}

} // namespace

CustomSwatch::CustomSwatch(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setToolTip(tr("Click to choose a colour; drag it onto another colour to copy it"));
    connect(&DisplayColors::Global(), &DisplayColors::Changed, this, [this] { update(); });
}

void CustomSwatch::SetColor(const RgbColor& rgb, std::optional<double> alpha)
{
    if (rgb == rgb_ && alpha == alpha_)
        return;
    rgb_ = rgb;
    alpha_ = alpha;
    update();
}

QSize CustomSwatch::sizeHint() const
{
    return usual;
}

QSize CustomSwatch::minimumSizeHint() const
{
    return usual;
}

void CustomSwatch::mousePressEvent(QMouseEvent* event)
{
    press_ = event->pos();
    QAbstractButton::mousePressEvent(event);
}

void CustomSwatch::mouseMoveEvent(QMouseEvent* event)
{
    const bool away =
        isDown() && (event->pos() - press_).manhattanLength() >= QApplication::startDragDistance();
    if (!away)
        return QAbstractButton::mouseMoveEvent(event);
    setDown(false); // its release is no click
    emit dragAway();
}

void CustomSwatch::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return click();
    QAbstractButton::keyPressEvent(event);
}

void CustomSwatch::PaintPatch(QPainter& painter, const QRect& inner) const
{
    QColor color = DisplayColors::Global().Shown(rgb_[0], rgb_[1], rgb_[2]);
    painter.fillRect(inner, color);
    if (!alpha_)
        return;
    const QRect right = inner.adjusted(inner.width() / 2, 0, 0, 0);
    const QPixmap& chequer =
        ResDIB::PixmapOf("Controls.Color.Chequer", painter.device()->devicePixelRatioF());
    painter.drawTiledPixmap(right, chequer);
    color.setAlphaF(std::isnan(*alpha_) ? 0.0 : std::clamp(*alpha_, 0.0, 1.0));
    painter.fillRect(right, color);
}

QPixmap CustomSwatch::DragPicture() const
{
    QPixmap picture(usual * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&picture);
    painter.fillRect(QRect(QPoint(), usual), Qt::black);
    PaintPatch(painter, QRect(QPoint(), usual).adjusted(1, 1, -1, -1));
    return picture;
}

void CustomSwatch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const bool marked = hasFocus() || (isEnabled() && underMouse());
    painter.fillRect(rect(), hasFocus() ? AccentColor()
                             : marked   ? LookColor("System.ScrollHoverColour", {116, 116, 116})
                                        : LookColor("Controls.Other.BorderColour", {9, 9, 9}));
    const QRect inner = rect().adjusted(1, 1, -1, -1);
    PaintPatch(painter, inner);
    painter.setRenderHint(QPainter::Antialiasing);
    const double x = inner.right() - 0.5 * arrowSize - 1.0;
    if (*std::max_element(rgb_.begin(), rgb_.end()) > 1.0)
        paintArrow(painter, {x, inner.top() + 2.0}, 1.0);
    if (*std::min_element(rgb_.begin(), rgb_.end()) < 0.0)
        paintArrow(painter, {x, inner.bottom() - 1.0}, -1.0);
    if (!isEnabled())
        PaintVeil(painter, rect(), palette().color(QPalette::Window));
}

} // namespace Marlox
