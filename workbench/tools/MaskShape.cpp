#include "workbench/tools/MaskShape.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <QCryptographicHash>

namespace Marlox {

namespace {

constexpr double farthest = 1e7;            // pixels
constexpr double farthestNormal = 1e6;      // image widths
constexpr double tolerance = 1.0 / 25.0;    // pixels between the curve and its lines
constexpr double bandTolerance = 1.0 / 5.0; // for a band's lines
constexpr int mostPieces = 512;             // of one segment
constexpr std::size_t mostPlaces = 2'000'000;
// A quadrilateral of the band is halved; so many of them keep the halves' values alike.
constexpr double twistPieces = 32.0;
constexpr double mostTwistPieces = 64.0;
constexpr double narrowBand = 8.0; // pixels

using Curve = std::vector<CurveSegment>;

double held(double value, double most)
{
    return std::clamp(value, -most, most); // not a number stays
}

ShapePlace held(const ShapePlace& place, double most)
{
    return {held(place.x, most), held(place.y, most)};
}

/// From normalised coordinates to the pixels of an image.
class PixelMap {
public:
    PixelMap(ShapePlacement placement, const Image::Format& format)
        : placement_(placement), frame_(format.displayWindow)
    {
        placement_.center = held(placement.center, farthestNormal);
        placement_.size = held(placement.size, farthestNormal);
        placement_.heightsPerWidth = frame_.Height() / (frame_.Width() * format.pixelAspect);
    }

    PixelPlace operator()(const ShapePlace& place) const
    {
        const ShapePlace at = placement_.Out(held(place, farthestNormal));
        return held(
            {frame_.left + at.x * frame_.Width(), frame_.top + (1.0 - at.y) * frame_.Height()},
            farthest);
    }

    Curve operator()(const Curve& curve) const
    {
        Curve mapped;
        mapped.reserve(curve.size());
        for (const CurveSegment& segment : curve)
            mapped.push_back({(*this)(segment.from), (*this)(segment.control1),
                              (*this)(segment.control2), (*this)(segment.to)});
        return mapped;
    }

private:
    ShapePlacement placement_;
    MxRect frame_;
};

PixelPlace placeOn(const CurveSegment& segment, double t)
{
    const double u = 1.0 - t;
    const double a = u * u * u;
    const double b = 3.0 * u * u * t;
    const double c = 3.0 * u * t * t;
    const double d = t * t * t;
    return {a * segment.from.x + b * segment.control1.x + c * segment.control2.x + d * segment.to.x,
            a * segment.from.y + b * segment.control1.y + c * segment.control2.y +
                d * segment.to.y};
}

/// The place at `position` segments from the curve's begin.
PixelPlace placeOn(const Curve& curve, double position)
{
    const auto segment = std::min(std::size_t(position), curve.size() - 1);
    return placeOn(curve[segment], position - double(segment));
}

/// Into so many equal steps of its parameter a segment is cut to be no further than `off` pixels
/// from its lines: that is at most an eighth of the largest second derivative by the square of the
/// step.
double piecesOf(const CurveSegment& segment, double off)
{
    if (segment.IsStraight())
        return 1.0;
    const auto bend = [](const PixelPlace& a, const PixelPlace& b, const PixelPlace& c) {
        return std::hypot(a.x - 2.0 * b.x + c.x, a.y - 2.0 * b.y + c.y);
    };
    const double most = std::max(bend(segment.from, segment.control1, segment.control2),
                                 bend(segment.control1, segment.control2, segment.to));
    return std::sqrt(6.0 * most / (8.0 * off));
}

/// The same for the band between two segments, that quadrilaterals do not twist.
double twistOf(const CurveSegment& inner, const CurveSegment& outer)
{
    const PixelPlace first = outer.from - inner.from;
    const PixelPlace last = outer.to - inner.to;
    const double width = std::min(std::hypot(first.x, first.y), std::hypot(last.x, last.y));
    const double twist = std::hypot(last.x - first.x, last.y - first.y);
    return std::min(twistPieces * twist / std::max(width, narrowBand), mostTwistPieces);
}

/// Where the places of two outlines lie on the curves, in segments of the inner one.
struct Positions {
    std::vector<double> all;
    std::vector<u32> rungs; // indices
    int mostOfSegment = mostPieces;

    /// A segment's, so many times `pieces` that they are at least `places`. A rung at each piece.
    void Add(double begin, double length, double pieces, double places)
    {
        const int most = mostOfSegment;
        const int count = pieces > 1.0 ? int(std::min(std::ceil(pieces), double(most))) : 1;
        const int each =
            places > count ? int(std::min(std::ceil(places / count), double(most / count))) : 1;
        for (int i = 0; i < count * each; ++i) {
            if (i % each == 0)
                rungs.push_back(u32(all.size()));
            all.push_back(begin + length * i / (count * each));
        }
    }
};

Positions positionsOf(const Curve& inner, const Curve& outer)
{
    Positions positions;
    const std::size_t segments = inner.size() + outer.size();
    positions.mostOfSegment =
        int(std::clamp(mostPlaces / segments, std::size_t(1), std::size_t(mostPieces)));
    if (inner.size() == outer.size()) {
        for (std::size_t i = 0; i < inner.size(); ++i) {
            const auto pieces = [&](double off) {
                return std::max(piecesOf(inner[i], off), piecesOf(outer[i], off));
            };
            positions.Add(double(i), 1.0,
                          std::max(pieces(bandTolerance), twistOf(inner[i], outer[i])),
                          pieces(tolerance));
        }
        return positions;
    }
    const auto add = [&positions](const Curve& curve, double length) {
        for (std::size_t i = 0; i < curve.size(); ++i)
            positions.Add(double(i) * length, length, piecesOf(curve[i], tolerance), 1.0);
    };
    add(inner, 1.0);
    if (outer.empty())
        return positions;
    add(outer, double(inner.size()) / double(outer.size()));
    std::vector<double>& all = positions.all;
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    positions.rungs.resize(all.size());
    std::iota(positions.rungs.begin(), positions.rungs.end(), 0);
    return positions;
}

Outline outlineOf(const Curve& curve, const std::vector<double>& positions, double scale)
{
    Outline outline;
    outline.reserve(positions.size());
    for (const double position : positions)
        outline.push_back(placeOn(curve, position * scale));
    return outline;
}

bool isFinite(const Outline& outline)
{
    return std::all_of(outline.begin(), outline.end(), [](const PixelPlace& place) {
        return std::isfinite(place.x) && std::isfinite(place.y);
    });
}

Curve curveOf(const PolyLine* shape)
{
    Curve curve;
    if (!shape || !shape->IsClosed() || shape->GetCount() < 2)
        return curve;
    for (int i = 0; i < shape->GetSegmentsCount(); ++i)
        curve.push_back(shape->Segment(i));
    return curve;
}

} // namespace

MaskShape MaskShape::From(const PolyLine* inner, const PolyLine* outer)
{
    MaskShape shape;
    shape.inner = curveOf(inner);
    if (!shape.inner.empty())
        shape.outer = curveOf(outer);
    return shape;
}

MaskOutlines MaskShape::OutlinesIn(const Image::Format& format) const
{
    MaskOutlines outlines;
    if (inner.empty() || format.displayWindow.IsEmpty())
        return outlines;
    const PixelMap map(placement, format);
    const Curve innerCurve = map(inner);
    const Curve outerCurve = map(outer);
    Positions positions = positionsOf(innerCurve, outerCurve);
    outlines.inner = outlineOf(innerCurve, positions.all, 1.0);
    if (!outerCurve.empty()) {
        outlines.outer = outlineOf(outerCurve, positions.all,
                                   double(outerCurve.size()) / double(innerCurve.size()));
        outlines.rungs = std::move(positions.rungs);
    }
    return isFinite(outlines.inner) && isFinite(outlines.outer) ? outlines : MaskOutlines();
}

std::string MaskShape::Key() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const auto add = [&hash](const void* data, std::size_t size) {
        hash.addData(static_cast<const char*>(data), int(size));
    };
    for (const Curve* curve : {&inner, &outer}) {
        const std::size_t count = curve->size();
        add(&count, sizeof count);
        add(curve->data(), count * sizeof(CurveSegment));
    }
    const double placed[] = {placement.center.x, placement.center.y, placement.angle,
                             placement.size};
    add(placed, sizeof placed);
    return hash.result().toHex().toStdString();
}

} // namespace Marlox
