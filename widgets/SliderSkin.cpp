#include "widgets/SliderSkin.h"

#include "system/resources/Resources.h"
#include "widgets/DrawnLook.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace Marlox {

namespace {

constexpr int sideMargin = 1;
constexpr int tickLength = 3;
constexpr int smallestTravel = 32;
constexpr QMargins usualMargins(3, 3, 3, 3);
constexpr double restingReset = 0.55;
constexpr int darkGround = 88; // grey level below which marks are light

QColor toQColor(const GradientColor& color)
{
    const auto unit = [](double component) {
        return std::isnan(component) ? 0.0 : std::clamp(component, 0.0, 1.0);
    };
    return QColor::fromRgbF(unit(color.red), unit(color.green), unit(color.blue),
                            unit(color.alpha));
}

/// A mark that shows on a ground of any colour, over the track's own dark one.
QColor markOver(const QColor& ground)
{
    const bool dark = qGray(ground.rgb()) * ground.alphaF() < darkGround;
    return dark ? QColor(255, 255, 255, 96) : QColor(0, 0, 0, 128);
}

/// The rows of a knob that are drawn, and repainted when it moves.
QImage withoutLastRow(const QPixmap& bitmap, double ratio)
{
    return bitmap.copy(0, 0, bitmap.width(), bitmap.height() - int(std::ceil(ratio)))
        .toImage()
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

void SliderSkin::SetKnob(const char* normal, const char* highlighted)
{
    if (knobName_ == normal && knobLitName_ == highlighted)
        return;
    knobName_ = normal;
    knobLitName_ = highlighted;
    ratio_ = 0.0;
}

bool SliderSkin::SetGradients(const Gradient* first, const Gradient* second)
{
    Gradient newFirst = first ? *first : Gradient();
    Gradient newSecond = second ? *second : Gradient();
    if (newFirst == first_ && newSecond == second_)
        return false;
    first_ = std::move(newFirst);
    second_ = std::move(newSecond);
    return true;
}

bool SliderSkin::Load(double devicePixelRatio)
{
    const unsigned generation = LookPack::Global().Generation();
    if (ratio_ == devicePixelRatio && generation_ == generation)
        return false;
    ratio_ = devicePixelRatio;
    generation_ = generation;
    knob_ = withoutLastRow(ResDIB::PixmapOf(knobName_.c_str(), ratio_), ratio_);
    knobLit_ = withoutLastRow(ResDIB::PixmapOf(knobLitName_.c_str(), ratio_), ratio_);
    track_ = ResDIB::PixmapOf("Controls.Slider.Track", ratio_);
    reset_ = ResDIB::PixmapOf("Controls.Slider.Reset", ratio_);
    knobSize_ = ResDIB::SizeOf(knobName_.c_str());
    trackSize_ = ResDIB::SizeOf("Controls.Slider.Track");
    resetSize_ = ResDIB::SizeOf("Controls.Slider.Reset");
    const ScriptVal margins = ResData::ValueOf("Controls.Slider.Data").Get("Margins");
    trackMargins_ = margins.IsTable() ? ResDIB::MarginsFrom(margins) : usualMargins;
    return true;
}

QRect SliderSkin::TrackRect(QSize widget) const
{
    const int height = trackSize_.height();
    return {sideMargin, (widget.height() - height) / 2,
            std::max(widget.width() - 2 * sideMargin, 0), height};
}

SliderGeometry SliderSkin::GeometryIn(QSize widget) const
{
    const QRect track = TrackRect(widget);
    SliderGeometry geometry;
    geometry.knobSize = knobSize_;
    // The drawn rows, all but the last, stand in the middle of the track.
    geometry.knobTop = track.top() + (track.height() - (knobSize_.height() - 1)) / 2;
    geometry.resetSize = resetSize_;
    geometry.resetOffset = resetPosition_ + QPoint(0, track.top());
    geometry.trackTop = track.top();
    geometry.trackBottom = track.top() + track.height();
    return geometry;
}

double SliderSkin::PixelLow(QSize widget) const
{
    return TrackRect(widget).left() + knobSize_.width() / 2;
}

double SliderSkin::PixelHigh(QSize widget) const
{
    const QRect track = TrackRect(widget);
    return std::max(PixelLow(widget),
                    double(track.right() - (knobSize_.width() - 1 - knobSize_.width() / 2)));
}

QSize SliderSkin::MinimumSize() const
{
    return {2 * sideMargin + knobSize_.width() + smallestTravel,
            std::max(knobSize_.height(), trackSize_.height())};
}

QImage SliderSkin::PaintTrack(QSize widget, const SliderTrackState& state) const
{
    QImage picture(int(std::ceil(widget.width() * ratio_)),
                   int(std::ceil(widget.height() * ratio_)), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio_);
    picture.fill(state.background.isValid() ? state.background : Qt::transparent);
    QPainter painter(&picture);
    if (!state.enabled)
        painter.setOpacity(dimmed);
    const QRect track = TrackRect(widget);
    ResDIB::DrawStretched(painter, track, track_, trackMargins_);
    if (HasGradient())
        FillWithGradients(painter, track.adjusted(1, 1, -1, -1));
    PaintMarks(painter, track, state);
    if (state.resetPixel >= 0 && state.enabled && !reset_.isNull()) {
        painter.setOpacity(painter.opacity() * (state.resetLit ? 1.0 : restingReset));
        painter.drawPixmap(GeometryIn(widget).ResetRect(state.resetPixel).topLeft(), reset_);
    }
    return picture;
}

QColor SliderSkin::GradientColorAt(double position) const
{
    if (second_.IsEmpty())
        return toQColor(first_.QuickEvaluate(position));
    return toQColor(position < 0.5 ? first_.QuickEvaluate(2.0 * position)
                                   : second_.QuickEvaluate(2.0 * position - 1.0));
}

/// Column by column of the screen's own pixels.
void SliderSkin::FillWithGradients(QPainter& painter, const QRect& inner) const
{
    const int columns = int(std::lround(inner.width() * ratio_));
    if (columns <= 0 || inner.height() <= 0)
        return;
    QImage row(columns, 1, QImage::Format_ARGB32_Premultiplied);
    for (int column = 0; column < columns; ++column)
        row.setPixelColor(column, 0, GradientColorAt(double(column) / columns));
    painter.drawImage(inner, row);
}

void SliderSkin::PaintMarks(QPainter& painter, const QRect& track,
                            const SliderTrackState& state) const
{
    const double line = CrispLine(ratio_);
    const QRect inner = track.adjusted(1, 1, -1, -1);
    const QColor plainTick = LookColor("System.LineColour", {72, 72, 72});
    for (const int x : state.ticks) {
        const int length =
            x == state.centreTick ? inner.height() : std::min(tickLength, inner.height());
        const QColor tick =
            HasGradient() ? markOver(GradientColorAt(double(x - inner.left()) / inner.width()))
                          : plainTick;
        painter.fillRect(QRectF(x, inner.top() + inner.height() - length, line, length), tick);
    }
    if (state.stateColor.isValid())
        painter.fillRect(QRectF(inner.left(), inner.top(), inner.width(), line), state.stateColor);
    if (state.focused)
        PaintCrispFrame(painter, track, AccentColor());
}

} // namespace Marlox
