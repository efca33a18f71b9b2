// How the tonal ranges are drawn, and where in the widget.

#include "widgets/CustomColorRanges.h"

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/DrawnLook.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <QFontInfo>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

namespace Marlox {

namespace {

constexpr int rampHeight = 6;
constexpr int gap = 2;           // above and below the ramp
constexpr int namesApart = 4;    // at least
constexpr int namesOverhang = 5; // over the ramp, at either end
constexpr QSize usualSize(320, 150);
constexpr QSize smallestSize(96, 80);
constexpr int gridParts = 4;
constexpr int bedMargin = 2; // around the plot, so that curves on its edge stand off the frame
constexpr double curveWidth = 1.5;
constexpr double handleWidth = 1.0;
constexpr double ringRadius = 6.25;
constexpr double ringWidth = 1.5;
constexpr double readoutPadding = 5.0;
constexpr double unseen = 0.1; // pixels beside a line

constexpr std::size_t low = 0;
constexpr std::size_t mid = 1;
constexpr std::size_t high = 2;
constexpr double fillStrength[] = {0.22, 0.22, 0.34};

QColor mixed(const QColor& a, const QColor& b, double share)
{
    const auto mix = [share](int from, int to) {
        return int(std::lround(from + (to - from) * share));
    };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

int sumOf(const std::array<int, 3>& numbers)
{
    return std::accumulate(numbers.begin(), numbers.end(), 0);
}

QColor faint(QColor color, double strength)
{
    color.setAlphaF(color.alphaF() * strength);
    return color;
}

/// Goes on from one point to another with as few of those between as leave none further away than
/// is seen: lines cost by their points (D. Douglas and T. Peucker, 1973).
void addThinned(const std::vector<QPointF>& points, std::size_t from, std::size_t to,
                QPainterPath& path)
{
    const QPointF chord = points[to] - points[from];
    const double length = std::hypot(chord.x(), chord.y());
    std::size_t furthest = from;
    double distance = unseen * length;
    for (std::size_t i = from + 1; i < to; ++i) {
        const QPointF way = points[i] - points[from];
        const double away = std::abs(chord.x() * way.y() - chord.y() * way.x());
        if (away > distance) {
            distance = away;
            furthest = i;
        }
    }
    if (furthest == from)
        return path.lineTo(points[to]);
    addThinned(points, from, furthest, path);
    addThinned(points, furthest, to, path);
}

} // namespace

// Where ------------------------------------------------------------------------------------------

QColor CustomColorRanges::ToneOf(std::size_t range)
{
    const QColor bright = LookColor("System.BrightTextColour", {228, 228, 228});
    if (range == mid)
        return mixed(LookColor("Controls.ColorRanges.HandleColour", {51, 153, 179}), bright, 0.15);
    return range == high ? bright
                         : mixed(LookColor("System.TextColour", {190, 190, 190}), Qt::black, 0.16);
}

void CustomColorRanges::FollowSize()
{
    // Room for the ring around a node on the edge.
    const int margin = int(std::ceil(ringRadius + ringWidth / 2.0));
    const int below = gap + rampHeight + gap + QFontMetrics(NamesFont()).height();
    const QRect inner = rect().adjusted(margin, margin, -margin, -margin - below);
    model_.SetPlot({inner.topLeft(), inner.size().expandedTo({1, 1})});
    update();
}

int CustomColorRanges::RampTop() const
{
    return height() - QFontMetrics(NamesFont()).height() - gap - rampHeight;
}

QFont CustomColorRanges::NamesFont() const
{
    QFont smaller = font();
    smaller.setPixelSize(QFontInfo(smaller).pixelSize() - 1);
    return smaller;
}

QSize CustomColorRanges::sizeHint() const
{
    return usualSize;
}

QSize CustomColorRanges::minimumSizeHint() const
{
    return smallestSize;
}

// Painting ---------------------------------------------------------------------------------------

void CustomColorRanges::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), BackgroundColor().ToQColor());
    PaintNames(painter);
    PaintRamp(painter);
    PaintGround(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.5, 0.5); // nodes lie in the middle of their pixels
    PaintRanges(painter);
    PaintHandles(painter);
    painter.translate(-0.5, -0.5);
    PaintNodes(painter);
    if (node_ != none)
        PaintReadout(painter);
    if (!isEnabled())
        PaintVeil(painter, rect(), BackgroundColor().ToQColor());
}

/// The frame tells the keyboard focus, or without it of keys and expressions.
void CustomColorRanges::PaintGround(QPainter& painter) const
{
    const QRect plot = Plot();
    const QRect bed = plot.adjusted(-bedMargin, -bedMargin, bedMargin, bedMargin);
    painter.fillRect(bed, LookColor("System.FieldColour", {29, 29, 29}));
    const QColor grid = faint(LookColor("Controls.ColorRanges.BaseColour", {80, 80, 80}), 0.45);
    const double line = CrispLine(devicePixelRatioF());
    for (int i = 1; i < gridParts; ++i) {
        const QPointF at = model_.ToPixel({double(i) / gridParts, double(i) / gridParts});
        painter.fillRect(QRectF(std::round(at.x()), plot.top(), line, plot.height()), grid);
        painter.fillRect(QRectF(plot.left(), std::round(at.y()), plot.width(), line), grid);
    }
    PaintCrispFrame(painter, QRectF(bed).adjusted(-line, -line, line, line),
                    hasFocus()              ? AccentColor()
                    : stateColor_.isValid() ? stateColor_
                                            : LookColor("System.BorderColour", {20, 20, 20}));
}

void CustomColorRanges::PaintRamp(QPainter& painter)
{
    const QRect plot = Plot();
    const QRect place(plot.left(), RampTop(), plot.width(), rampHeight);
    const int pixels = std::max(int(std::lround(plot.width() * devicePixelRatioF())), 1);
    const unsigned generation = DisplayColors::Global().Generation();
    if (ramp_.width() != pixels || rampGeneration_ != generation) {
        rampGeneration_ = generation;
        ramp_ = QImage(pixels, 1, QImage::Format_RGB32);
        std::vector<float> light;
        for (int i = 0; i < pixels; ++i) {
            const double brightness = (i + 0.5) / pixels;
            light.insert(light.end(), 3, float(ColorCurves::LuminanceOf(brightness)));
        }
        DisplayColors::Global().Show(light.data(), pixels,
                                     reinterpret_cast<QRgb*>(ramp_.scanLine(0)));
    }
    painter.drawImage(place, ramp_);
}

/// Below the ramp: the shadows at its left end, the highlights at the right, the midtones in the
/// middle of what those leave. In a narrow widget they are smaller, and shortened where that does
/// not help.
void CustomColorRanges::PaintNames(QPainter& painter) const
{
    const QRect row = Plot().adjusted(-namesOverhang, 0, namesOverhang, 0);
    const int room = row.width() - 2 * namesApart;
    QFont font = NamesFont();
    std::array<int, 3> widths = NameWidths(font);
    if (sumOf(widths) > room) {
        font.setPixelSize(font.pixelSize() - 1);
        widths = NameWidths(font);
    }
    if (const int wanted = sumOf(widths); wanted > room) {
        for (int& width : widths)
            width = std::max(width * room / wanted, 0);
    }
    const int first = row.left() + widths[low] + namesApart;
    const int last = row.right() + 1 - widths[high] - namesApart - widths[mid];
    const std::array<int, 3> lefts{
        row.left(), std::clamp(row.center().x() - widths[mid] / 2, first, std::max(first, last)),
        row.right() + 1 - widths[high]};
    painter.setFont(font);
    const QFontMetrics metrics(font);
    for (const std::size_t range : {low, mid, high}) {
        painter.setPen(ToneOf(range));
        painter.drawText(lefts[range], height() - metrics.descent(),
                         metrics.elidedText(names_[range], Qt::ElideRight, widths[range]));
    }
}

std::array<int, 3> CustomColorRanges::NameWidths(const QFont& font) const
{
    const QFontMetrics metrics(font);
    std::array<int, 3> widths{};
    for (const std::size_t range : {low, mid, high}) {
        if (range != mid || showMidtones_)
            widths[range] = metrics.horizontalAdvance(names_[range]) + 1; // widths are rounded
    }
    return widths;
}

/// The curves, and the areas below them.
void CustomColorRanges::PaintRanges(QPainter& painter) const
{
    const auto at = [this](int node) { return model_.ToPixel(PositionOf(node)); };
    const QPointF origin = model_.ToPixel({0.0, 0.0});
    const QPointF right = model_.ToPixel({1.0, 0.0});
    const auto range = [&](std::size_t index, const QPainterPath& curve, Qt::PenStyle style) {
        QPainterPath area = curve;
        area.lineTo(right);
        area.lineTo(origin);
        area.closeSubpath();
        painter.fillPath(area, faint(ToneOf(index), fillStrength[index]));
        painter.strokePath(curve, QPen(ToneOf(index), curveWidth, style, Qt::FlatCap));
    };
    if (showMidtones_)
        range(mid, MidtonesPath(), Qt::SolidLine);
    for (const int first : {0, ColorCurves::nodeCount / 2}) {
        QPainterPath curve(QPointF(origin.x(), at(first).y()));
        curve.lineTo(at(first));
        curve.cubicTo(at(first + 1), at(first + 2), at(first + 3));
        curve.lineTo(right.x(), at(first + 3).y());
        range(first == 0 ? low : high, curve, Qt::SolidLine);
    }
}

QPainterPath CustomColorRanges::MidtonesPath() const
{
    const int steps = std::max(Plot().width(), 1);
    std::vector<QPointF> points;
    for (int i = 0; i <= steps; ++i) {
        const double brightness = double(i) / steps;
        points.push_back(model_.ToPixel({brightness, curves_->Mid(brightness)}));
    }
    QPainterPath path(points.front());
    addThinned(points, 0, points.size() - 1, path);
    return path;
}

void CustomColorRanges::PaintHandles(QPainter& painter) const
{
    const QColor color = LookColor("Controls.ColorRanges.HandleColour", {51, 153, 179});
    painter.setPen(QPen(color, handleWidth));
    for (const int end : {0, 3, 4, 7}) {
        const int handle = end % 4 == 0 ? end + 1 : end - 1;
        painter.drawLine(model_.ToPixel(PositionOf(end)), model_.ToPixel(PositionOf(handle)));
    }
}

void CustomColorRanges::PaintNodes(QPainter& painter) const
{
    const QPixmap& bitmap = ResDIB::PixmapOf(nodeBitmap, devicePixelRatioF());
    const QSize size = ResDIB::SizeOf(nodeBitmap);
    const QPoint middle(size.width() / 2, size.height() / 2);
    const QColor accent = AccentColor();
    // What is pressed first lies on top.
    for (const int node : {7, 4, 3, 0, 6, 5, 2, 1}) {
        const QPoint at = NodePixel(node);
        const bool held = node == node_;
        const bool lit = held || (node == hovered_ && node_ == none && isEnabled());
        const bool active = hasFocus() && node == ActivePart();
        if (lit || active) {
            painter.setPen(QPen(accent, ringWidth, active ? Qt::SolidLine : Qt::NoPen));
            painter.setBrush(faint(accent, held ? 0.6 : lit ? 0.5 : 0.0));
            painter.drawEllipse(QPointF(at) + QPointF(0.5, 0.5), ringRadius, ringRadius);
        }
        painter.drawPixmap(at - middle, bitmap);
    }
}

/// The position of the dragged node in numbers, beside it.
void CustomColorRanges::PaintReadout(QPainter& painter) const
{
    const QPointF position = PositionOf(node_);
    const QString text =
        QStringLiteral("%1, %2").arg(position.x(), 0, 'f', 3).arg(position.y(), 0, 'f', 3);
    const QRect plot = Plot();
    QRectF box(QPointF(), QSizeF(fontMetrics().horizontalAdvance(text) + 2.0 * readoutPadding,
                                 fontMetrics().height() + readoutPadding));
    const QPoint node = NodePixel(node_);
    const double away = ringRadius + readoutPadding;
    const bool above = node.y() - away - box.height() > plot.top();
    box.moveLeft(std::clamp(node.x() - box.width() / 2.0, double(plot.left()),
                            std::max(plot.right() + 1.0 - box.width(), double(plot.left()))));
    box.moveTop(std::round(above ? node.y() - away - box.height() : node.y() + away));
    painter.setPen(Qt::NoPen);
    painter.setBrush(faint(LookColor("System.BorderColour", {20, 20, 20}), 0.85));
    painter.drawRoundedRect(box, 3.0, 3.0);
    painter.setPen(LookColor("System.BrightTextColour", {228, 228, 228}));
    painter.setFont(font());
    painter.drawText(box, Qt::AlignCenter, text);
}

} // namespace Marlox
