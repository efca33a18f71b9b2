// What the colour field looks like.

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/ColorSquare.h"
#include "widgets/CustomColorField.h"
#include "widgets/DrawnLook.h"

#include <cmath>

#include <QPainter>
#include <QPainterPath>

namespace Marlox {

namespace {

using Zone = ColorFieldModel::Zone;

constexpr double ringRadius = 5.0; // of the square's knob, with its light line
constexpr double barRadius = 2.5;  // of a strip's, half its height
constexpr double arrowLength = 4.0;
constexpr double arrowHalf = 4.0;
constexpr double arrowGap = 1.0; // to the knob

struct StripColors {
    double saturation;
    double value;
};
/// What each hue is shown with, by colour space: pure hues, and in YUV the greys of a luma.
constexpr StripColors stripColors[] = {{1.0, 1.0}, {1.0, 0.5}, {0.5, 0.5}};

/// The screen's own pixels of a zone.
QRect devicePixels(const QRect& zone, double ratio)
{
    const auto pixel = [ratio](int edge) { return int(std::lround(edge * ratio)); };
    const QPoint topLeft(pixel(zone.left()), pixel(zone.top()));
    return {topLeft,
            QPoint(pixel(zone.left() + zone.width()) - 1, pixel(zone.top() + zone.height()) - 1)};
}

/// The middle of a pixel of the screen, in pixels of the widget as the model counts them.
double middleOf(int pixel, double ratio)
{
    return (pixel + 0.5) / ratio - 0.5;
}

void drawAt(QPainter& painter, const QRect& pixels, const QImage& picture, double ratio)
{
    painter.drawImage(QPointF(pixels.topLeft()) / ratio, picture);
}

/// -1 and 1: the number is beyond 0 or 1, whatever its last decimals.
int beyond(double number)
{
    static constexpr double rounding = 1e-6;
    if (number < -rounding)
        return -1;
    return number > 1.0 + rounding ? 1 : 0;
}

/// Beside a knob of that radius, pointing away from it; none without a way.
void drawArrow(QPainter& painter, QPointF middle, double radius, QPoint way)
{
    if (way.isNull())
        return;
    const QPointF ahead(way);
    const QPointF aside(way.y(), way.x());
    const QPointF tail = middle + (radius + arrowGap) * ahead;
    QPainterPath arrow(tail + arrowHalf * aside);
    arrow.lineTo(tail + arrowLength * ahead);
    arrow.lineTo(tail - arrowHalf * aside);
    arrow.closeSubpath();
    painter.strokePath(arrow,
                       QPen(QColor(0, 0, 0, 200), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(arrow, Qt::white);
}

/// The line that the knob keeps to, over any colour.
void drawAxis(QPainter& painter, const QRectF& square, QPointF knob, bool across)
{
    painter.save();
    painter.setClipRect(square);
    const QLineF line = across ? QLineF(square.left(), knob.y(), square.right(), knob.y())
                               : QLineF(knob.x(), square.top(), knob.x(), square.bottom());
    painter.setPen(QPen(QColor(0, 0, 0, 110), 3.0));
    painter.drawLine(line);
    painter.setPen(QPen(QColor(255, 255, 255, 150), 1.0));
    painter.drawLine(line);
    painter.restore();
}

/// Draws a knob with its middle there, on the screen's pixel grid.
void drawKnob(QPainter& painter, const char* name, QPointF middle, double ratio)
{
    const QPixmap& knob = ResDIB::PixmapOf(name, ratio);
    const QPointF corner = middle * ratio - QPointF(knob.width(), knob.height()) / 2.0;
    painter.drawPixmap(QPointF(std::round(corner.x()), std::round(corner.y())) / ratio, knob);
}

/// Where the middle of a knob of that radius is drawn, when it stands at `place` of an axis that
/// fits into `low` to `high`: all of it is seen, and there is room for an arrow.
double seenAt(double place, int beyondEnd, double low, double high, double radius)
{
    const double least = low + radius + (beyondEnd < 0 ? arrowGap + arrowLength : 0.0);
    const double most = high - radius - (beyondEnd > 0 ? arrowGap + arrowLength : 0.0);
    return std::min(std::max(place, least), std::max(least, most));
}

} // namespace

void CustomColorField::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    PaintPictures(painter);
    PaintFrames(painter);
    if (hasFocus() && !byKeys_) // or else it is the active frame that tells
        PaintFocusRing(painter, rect());
    painter.setRenderHint(QPainter::Antialiasing);
    PaintStripKnob(painter, Zone::Hue, "Controls.ColorField.HueKnob", Hue());
    PaintStripKnob(painter, Zone::Alpha, "Controls.ColorField.AlphaKnob", Alpha());
    PaintSquareKnob(painter);
    if (!isEnabled())
        PaintVeil(painter, rect(), BackgroundColor().ToQColor());
}

void CustomColorField::PaintPictures(QPainter& painter)
{
    const double ratio = devicePixelRatioF();
    const unsigned look = LookPack::Global().Generation();
    if (ratio != picturesRatio_ || look != picturesLook_) {
        picturesRatio_ = ratio;
        picturesLook_ = look;
        DiscardPictures();
    }
    const auto paint = [&](ImageSlot<QImage>& slot, Zone zone, int& builds,
                           QImage (CustomColorField::*make)() const) {
        const QRect pixels = devicePixels(model_.ZoneRect(zone), ratio);
        if (pixels.isEmpty())
            return;
        typename ImageSlot<QImage>::Hold picture(slot);
        if (!picture) {
            picture.Set((this->*make)());
            picture->setDevicePixelRatio(ratio);
            ++builds;
        }
        drawAt(painter, pixels, *picture, ratio);
    };
    const int built = squareBuilds_;
    paint(square_, Zone::Square, squareBuilds_, &CustomColorField::MakeSquare);
    if (squareBuilds_ != built)
        squareHue_ = Hue();
    paint(hueStrip_, Zone::Hue, stripBuilds_, &CustomColorField::MakeHueStrip);
    paint(alphaStrip_, Zone::Alpha, stripBuilds_, &CustomColorField::MakeAlphaStrip);
}

QImage CustomColorField::MakeSquare() const
{
    const double ratio = picturesRatio_;
    const QRect pixels = devicePixels(model_.Square(), ratio);
    std::vector<double> saturations;
    std::vector<double> values;
    for (int x = pixels.left(); x <= pixels.right(); ++x)
        saturations.push_back(model_.SaturationAt(middleOf(x, ratio)));
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
        values.push_back(model_.ValueAt(middleOf(y, ratio)));
    QImage square;
    ColorSquare(std::move(saturations), std::move(values))
        .Paint(square, colorSpace_, Hue(), DisplayColors::Global());
    return square;
}

QImage CustomColorField::MakeHueStrip() const
{
    const QRect pixels = devicePixels(model_.HueStrip(), picturesRatio_);
    const auto [saturation, value] = stripColors[colorSpace_];
    QImage strip(pixels.size(), QImage::Format_RGB32);
    for (int row = 0; row < strip.height(); ++row) {
        const double hue = model_.StripAt(middleOf(pixels.top() + row, picturesRatio_));
        const auto [red, green, blue] =
            ColorAxes::Of(colorSpace_).ToRgb({hue, saturation, {}, value});
        const QRgb code = DisplayColors::Global().Shown(red, green, blue).rgb();
        std::fill_n(reinterpret_cast<QRgb*>(strip.scanLine(row)), strip.width(), code);
    }
    return strip;
}

/// The colour as it is laid over what is behind it.
QImage CustomColorField::MakeAlphaStrip() const
{
    const double ratio = picturesRatio_;
    const QRect pixels = devicePixels(model_.AlphaStrip(), ratio);
    const auto [red, green, blue] = ColorAxes::Of(colorSpace_).ToRgb(values_.record);
    QColor color = DisplayColors::Global().Shown(red, green, blue);
    QImage strip(pixels.size(), QImage::Format_RGB32);
    strip.fill(Qt::black);
    strip.setDevicePixelRatio(ratio);
    QPainter painter(&strip);
    painter.drawTiledPixmap(QRectF(QPointF(), QSizeF(pixels.size()) / ratio),
                            ResDIB::PixmapOf("Controls.ColorField.Chequer", ratio));
    for (int row = 0; row < strip.height(); ++row) {
        color.setAlphaF(model_.StripAt(middleOf(pixels.top() + row, ratio)));
        painter.fillRect(QRectF(0.0, row / ratio, pixels.width() / ratio, 1.0 / ratio), color);
    }
    return strip;
}

void CustomColorField::PaintFrames(QPainter& painter) const
{
    const QColor plain = LookColor("System.BorderColour", {20, 20, 20});
    const QColor lit = LookColor("System.ScrollHoverColour", {116, 116, 116});
    const double line = CrispLine(picturesRatio_);
    for (int part = 0; part < PartCount(); ++part) {
        const QRect zone = model_.ZoneRect(Zone(part));
        if (zone.isEmpty())
            continue;
        QColor color = Zone(part) == hovered_ || Zone(part) == held_.zone ? lit : plain;
        if (byKeys_ && hasFocus() && part == ActivePart())
            color = AccentColor();
        PaintCrispFrame(painter, QRectF(zone).adjusted(-line, -line, line, line), color);
    }
}

void CustomColorField::PaintStripKnob(QPainter& painter, Zone zone, const char* name,
                                      double number) const
{
    const QRectF strip = model_.ZoneRect(zone);
    if (strip.isEmpty())
        return;
    const int end = beyond(number);
    const QPointF middle(strip.center().x(),
                         seenAt(model_.StripPixel(number) + 0.5, end, strip.top() - 2.0,
                                strip.bottom() + 2.0, barRadius));
    drawKnob(painter, name, middle, picturesRatio_);
    drawArrow(painter, middle, barRadius, {0, end});
}

void CustomColorField::PaintSquareKnob(QPainter& painter) const
{
    const QRectF square = model_.Square();
    if (square.isEmpty())
        return;
    const int across = beyond(Saturation());
    const int down = -beyond(Value());
    const QPointF middle(seenAt(model_.SaturationPixel(Saturation()) + 0.5, across,
                                square.left() - 3.0, square.right() + 3.0, ringRadius),
                         seenAt(model_.ValuePixel(Value()) + 0.5, down, square.top() - 3.0,
                                square.bottom() + 3.0, ringRadius));
    if (active_.saturation != active_.value)
        drawAxis(painter, square, middle, active_.saturation);
    drawKnob(painter, "Controls.ColorField.SatValKnob", middle, picturesRatio_);
    drawArrow(painter, middle, ringRadius, {across, 0});
    drawArrow(painter, middle, ringRadius, {0, down});
}

} // namespace Marlox
