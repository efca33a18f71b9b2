// What the colour wheel looks like.

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/CustomColorWheel.h"
#include "widgets/DrawnLook.h"
#include "widgets/WheelPicture.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace Marlox {

namespace {

// From the disc outwards, in pixels.
constexpr double discGap = 2.0;
constexpr double bandWidth = 7.0;
constexpr double bandGap = 1.5;
constexpr double ringLight = 0.42;
constexpr double discLight = 0.3;
constexpr double discStrength = 0.75; // of the hue on the disc's rim
constexpr int labelSize = 10;         // pixels
constexpr double stemGap = 6.5;       // of the tint's stem, to its knob's middle

const char* const knobs[] = {"Controls.ColorWheel.Knob.1", "Controls.ColorWheel.Knob.2",
                             "Controls.ColorWheel.Knob.3", "Controls.ColorWheel.Knob.4"};
constexpr char startMark[] = "Controls.ColorWheel.Knob.5";

void paintCentred(QPainter& painter, const char* bitmap, QPointF at)
{
    const QSize size = ResDIB::SizeOf(bitmap);
    painter.drawPixmap(at + QPointF(0.5 - size.width() / 2.0, 0.5 - size.height() / 2.0),
                       ResDIB::PixmapOf(bitmap, painter.device()->devicePixelRatioF()));
}

} // namespace

QImage CustomColorWheel::MakePicture(double ratio)
{
    const double disc = std::max(model_.disc, 1e-6);
    const double pixel = model_.diameter > 0 ? 2.0 / model_.diameter : 0.0;
    const double band = disc + discGap * pixel;
    const double bandEnd = band + bandWidth * pixel;
    ring_ = HueRing(model_.diameter, ratio, bandEnd + bandGap * pixel, 1.0, ringLight);
    QImage picture = HueRing(model_.diameter, ratio, band, bandEnd, ringLight).Turned(0.0);
    const QImage inside =
        PaintDisc(model_.diameter, ratio, model_.disc, [disc](double turn, double length) {
            return MutedHue(turn, discStrength * std::min(length / disc, 1.0), discLight);
        });
    QPainter painter(&picture);
    painter.drawImage(0, 0, inside);
    for (const char* marks : {"Controls.ColorWheel.Wheel.1", "Controls.ColorWheel.Wheel.2"}) {
        const QSize size = ResDIB::SizeOf(marks);
        painter.drawPixmap(QPointF(0.5 * (model_.diameter - size.width()),
                                   0.5 * (model_.diameter - size.height())),
                           ResDIB::PixmapOf(marks, ratio));
    }
    painter.end();
    return picture;
}

void CustomColorWheel::PaintGround(QPainter& painter)
{
    painter.drawImage(Square().topLeft(), ring_.Turned(-Hue()));
}

/// Of the band, as the saturation is lowered.
void CustomColorWheel::PaintPallor(QPainter& painter) const
{
    if (!(Saturation() < 1.0))
        return;
    const RgbColor rgb = MutedHue(1.0 / 3.0, 0.0, ringLight);
    QColor grey = DisplayColors::Global().Shown(rgb[0], rgb[1], rgb[2]);
    grey.setAlphaF(1.0 - std::max(Saturation(), 0.0));
    const double radius = model_.diameter * model_.disc / 2.0 + discGap + bandWidth / 2.0;
    painter.setPen(QPen(grey, bandWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(model_.Centre() + QPointF(0.5, 0.5), radius, radius);
}

bool CustomColorWheel::IsLit(Part part) const
{
    return isEnabled() &&
           (IsDragged() ? drag_.part == part
                        : hovered_ == part || (hasFocus() && ActivePart() == int(part)));
}

void CustomColorWheel::PaintKnobs(QPainter& painter) const
{
    const QPointF half(0.5, 0.5); // a place is the middle of its pixel
    const QPointF tint = model_.TintPlace(Shown());
    const QPointF ring = model_.RingPlace(Shown());
    QLineF stem(model_.Centre() + half, tint + half);
    if (stem.length() > 2.0 * stemGap) {
        stem.setLength(stem.length() - stemGap); // the knob is hollow
        painter.setPen(QPen(QColor(0, 0, 0, 140), 3.0));
        painter.drawLine(stem);
        painter.setPen(QPen(QColor(255, 255, 255, 210), 1.2));
        painter.drawLine(stem);
    }
    if (IsDragged())
        paintCentred(painter, startMark,
                     drag_.part == Part::Tint ? model_.TintPlace(drag_.start)
                                              : model_.RingPlace(drag_.start));
    paintCentred(painter, knobs[IsLit(Part::Tint) ? 1 : 0], tint);
    paintCentred(painter, knobs[IsLit(Part::Ring) ? 3 : 2], ring);
}

/// In the corners that the circle leaves, those of the ring above, those of the disc below.
void CustomColorWheel::PaintLabels(QPainter& painter) const
{
    QFont small = font();
    small.setPixelSize(labelSize);
    painter.setFont(small);
    const QColor color = LookColor("Controls.ColorWheel.TextColour", {208, 208, 208});
    const QRect square = model_.Square().toAlignedRect();
    const QRect text(QPoint(std::max(square.left() - 2, 0), square.top() - 2),
                     QPoint(std::min(square.right() + 2, width() - 1), square.bottom() + 2));
    const auto label = [&](Qt::Alignment corner, const QString& name, bool follows) {
        QColor shown = color;
        if (!follows)
            shown.setAlphaF(0.72);
        painter.setPen(shown);
        painter.drawText(text, int(corner), name);
    };
    const bool ring = IsDragged() && drag_.part == Part::Ring;
    const bool tint = IsDragged() && drag_.part == Part::Tint;
    label(Qt::AlignTop | Qt::AlignLeft, tr("Hue"), ring && axes_.first);
    label(Qt::AlignTop | Qt::AlignRight, tr("Sat"), ring && axes_.second);
    label(Qt::AlignBottom | Qt::AlignLeft, tr("Tint"), tint && axes_.first);
    label(Qt::AlignBottom | Qt::AlignRight, tr("Strength"), tint && axes_.second);
}

void CustomColorWheel::PaintParts(QPainter& painter)
{
    PaintPallor(painter);
    PaintLabels(painter);
    PaintKnobs(painter);
}

} // namespace Marlox
