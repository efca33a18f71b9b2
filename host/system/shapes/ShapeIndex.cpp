#include "system/shapes/ShapeIndex.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace Marlox {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

double SquareTo(ShapePlace place, ShapePlace at, ShapePlace scale)
{
    const double x = (place.x - at.x) * scale.x;
    const double y = (place.y - at.y) * scale.y;
    const double square = x * x + y * y;
    return std::isnan(square) ? infinite : square;
}

RunTree::Box BoxOf(const CurveSegment& segment)
{
    return RunTree::Box::Of(
        std::array{segment.from, segment.control1, segment.control2, segment.to});
}

/// Segments that depend on points of the mask, ascending: a point of a spline bends two on each
/// side.
std::vector<int> SegmentsOf(const SelMask& points, int segments)
{
    std::vector<u8> touched(std::size_t(segments), 0);
    for (const int point : points.Items()) {
        for (int i = point - 2; i <= point + 1; ++i) {
            const int segment = points.Count() == segments ? (i + segments) % segments : i;
            if (segment >= 0 && segment < segments)
                touched[std::size_t(segment)] = 1;
        }
    }
    std::vector<int> found;
    for (int i = 0; i < segments; ++i) {
        if (touched[std::size_t(i)])
            found.push_back(i);
    }
    return found;
}

/// A polygon whose edges are sorted by height.
class Lasso {
public:
    explicit Lasso(std::span<const ShapePlace> corners);
    bool Contains(ShapePlace at) const; // even-odd

private:
    struct Edge {
        ShapePlace from;
        ShapePlace to;
    };
    std::size_t RowOf(double y) const
    {
        const double row = (y - low_) * rowsPerUnit_;
        return row > 0.0 ? std::min(std::size_t(row), rows_.size() - 1) : 0;
    }

    double low_ = 0.0;
    double rowsPerUnit_ = 0.0;
    std::vector<std::vector<Edge>> rows_;
};

Lasso::Lasso(std::span<const ShapePlace> corners)
{
    std::vector<ShapePlace> places(corners.begin(), corners.end());
    std::erase_if(places,
                  [](ShapePlace at) { return !std::isfinite(at.x) || !std::isfinite(at.y); });
    const ShapeBounds bounds = CalcMinMax(places);
    rows_.resize(std::clamp<std::size_t>(places.size() / 4, 1, 256));
    low_ = bounds.low.y;
    const double perUnit = double(rows_.size()) / (bounds.high.y - bounds.low.y);
    rowsPerUnit_ = std::isfinite(perUnit) ? perUnit : 0.0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Edge edge{places[i], places[(i + 1) % places.size()]};
        const std::size_t last = RowOf(std::max(edge.from.y, edge.to.y));
        for (std::size_t row = RowOf(std::min(edge.from.y, edge.to.y)); row <= last; ++row)
            rows_[row].push_back(edge);
    }
}

bool Lasso::Contains(ShapePlace at) const
{
    bool inside = false;
    for (const Edge& edge : rows_[RowOf(at.y)]) {
        const auto [from, to] = edge;
        if ((from.y > at.y) != (to.y > at.y) &&
            at.x < from.x + (at.y - from.y) / (to.y - from.y) * (to.x - from.x))
            inside = !inside;
    }
    return inside;
}

} // namespace

void ShapeIndex::Build(const PolyLine& shape)
{
    points_.clear();
    segments_.clear();
    gaps_.clear();
    closed_ = shape.IsClosed();
    std::vector<RunTree::Box> boxes;
    boxes.reserve(shape.Points().size());
    for (const PolyPoint& point : shape.Points()) {
        points_.push_back(point.Place());
        boxes.push_back(RunTree::Box::Of(std::span(&points_.back(), 1)));
    }
    grid_.Build(points_);
    pointTree_.Build(std::move(boxes));
    boxes.clear();
    for (int i = 0; i < shape.GetSegmentsCount(); ++i) {
        segments_.push_back(shape.Segment(i));
        gaps_.push_back(shape.Points()[std::size_t(i)].Has(PPF_Gap));
        boxes.push_back(BoxOf(segments_.back()));
    }
    segmentTree_.Build(std::move(boxes));
}

void ShapeIndex::Update(const PolyLine& shape, const SelMask& changed)
{
    if (shape.Points().size() != points_.size() || shape.IsClosed() != closed_ ||
        changed.Count() != shape.GetCount())
        return Build(shape);
    std::vector<RunTree::Box> boxes;
    const std::vector<int> points = changed.Items();
    for (const int point : points) {
        ShapePlace& place = points_[std::size_t(point)];
        place = shape.Points()[std::size_t(point)].Place();
        boxes.push_back(RunTree::Box::Of(std::span(&place, 1)));
    }
    grid_.Build(points_);
    pointTree_.Update(points, boxes);
    boxes.clear();
    const std::vector<int> segments = SegmentsOf(changed, int(segments_.size()));
    for (const int segment : segments) {
        const std::size_t i = std::size_t(segment);
        segments_[i] = shape.Segment(segment);
        gaps_[i] = shape.Points()[i].Has(PPF_Gap);
        boxes.push_back(BoxOf(segments_[i]));
    }
    segmentTree_.Update(segments, boxes);
}

std::vector<int> ShapeIndex::PointsIn(std::span<const ShapePlace> lasso) const
{
    const Lasso polygon(lasso);
    std::vector<int> found = PointsIn(CalcMinMax(lasso));
    std::erase_if(found, [&](int i) { return !polygon.Contains(points_[std::size_t(i)]); });
    return found;
}

CurveFoot ShapeIndex::NearestOnCurve(ShapePlace at, ShapePlace scale) const
{
    CurveFoot foot;
    foot.nearest = pointTree_.Nearest(
        at, scale, [&](int i) { return SquareTo(points_[std::size_t(i)], at, scale); });
    const auto nearest = [&](int i) {
        return gaps_[std::size_t(i)] ? SegmentFoot{infinite, 0.0}
                                     : NearestOnSegment(segments_[std::size_t(i)], at, scale);
    };
    foot.segment = segmentTree_.Nearest(at, scale, [&](int i) { return nearest(i).square; });
    if (foot.segment < 0)
        return foot;
    const SegmentFoot found = nearest(foot.segment);
    foot.distance = std::sqrt(found.square);
    foot.t = found.t;
    foot.foot = segments_[std::size_t(foot.segment)].At(found.t);
    return foot;
}

PairHit PointAt(const ShapeIndex& active, const ShapeIndex* other, ShapePlace at,
                ShapePlace tolerance)
{
    const int own = active.PointAt(at, tolerance);
    const int match = other ? other->PointAt(at, tolerance) : -1;
    const bool isOther = match >= 0 && (own < 0 || match < own);
    return {isOther ? match : own, isOther};
}

} // namespace Marlox
