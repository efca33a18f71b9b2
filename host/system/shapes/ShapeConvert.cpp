// Shapes of one kind to another.

#include "system/shapes/BSplinePolyLine.h"
#include "system/shapes/ShapeOps_p.h"
#include "system/shapes/SplinePiece.h"

#include <algorithm>
#include <numbers>

namespace Marlox {

namespace {

constexpr int perSegment = 12;   // places of the old curve
constexpr double sharpest = 3.0; // degrees by which a curve may turn where it is no corner
constexpr u32 carried = PPF_Locked | PPF_Tagged | PPF_Gap;

/// The same curve with handles.
Ref<PolyLine> BezierOf(const PolyLine& shape)
{
    std::vector<PolyPoint> points(shape.Points().begin(), shape.Points().end());
    for (PolyPoint& point : points) {
        point.inX = point.inY = point.outX = point.outY = 0.0;
        point.flags &= carried;
        point.tension = 0.0;
    }
    const int segments = shape.GetSegmentsCount();
    for (int i = 0; i < segments; ++i) {
        const CurveSegment s = shape.Segment(i);
        PolyPoint& from = points[std::size_t(i)];
        PolyPoint& to = points[(std::size_t(i) + 1) % points.size()];
        from.x = s.from.x;
        from.y = s.from.y;
        from.outX = s.control1.x - s.from.x;
        from.outY = s.control1.y - s.from.y;
        to.x = s.to.x;
        to.y = s.to.y;
        to.inX = s.control2.x - s.to.x;
        to.inY = s.control2.y - s.to.y;
    }
    for (PolyPoint& point : points)
        point.Set(PPF_Linear,
                  point.inX == 0.0 && point.inY == 0.0 && point.outX == 0.0 && point.outY == 0.0);
    Ref<PolyLine> made = MakeRef<PolyLine>();
    made->SetPoints(std::move(points));
    if (shape.IsClosed())
        made->Close();
    for (const PointLink& link : shape.Links())
        made->SetLink(link);
    return made;
}

/// The direction in which a segment leaves its begin, or at which it comes to its end: to the next
/// control point that is another place.
ShapePlace EndDirection(const CurveSegment& s, bool atEnd)
{
    const ShapePlace controls[] = {s.from, s.control1, s.control2, s.to};
    const ShapePlace end = atEnd ? s.to : s.from;
    for (int i = 0; i < 4; ++i) {
        const ShapePlace by = atEnd ? end - controls[3 - i] : controls[i] - end;
        if (Dot(by, by) > 0.0)
            return by;
    }
    return {};
}

bool IsCorner(const PolyLine& shape, int point, ShapePlace scale)
{
    const int count = shape.GetCount();
    if (!shape.IsClosed() && (point == 0 || point + 1 == count))
        return true;
    const int last = (point + count - 1) % count;
    const auto isGap = [&](int i) { return shape.Points()[std::size_t(i)].Has(PPF_Gap); };
    if (isGap(last) || isGap(point))
        return true;
    const ShapePlace in = EndDirection(Scaled(shape.Segment(last), scale), true);
    const ShapePlace out = EndDirection(Scaled(shape.Segment(point), scale), false);
    const double turn = std::atan2(in.x * out.y - in.y * out.x, Dot(in, out));
    return std::abs(turn) > sharpest * std::numbers::pi / 180.0;
}

/// A stroke along the curve, with the corners known. One that is closed begins at its first corner.
FitStroke StrokeAlong(const PolyLine& shape, const std::vector<int>& corners, ShapePlace scale)
{
    FitStroke stroke;
    stroke.closed = shape.IsClosed();
    const int begin = stroke.closed && !corners.empty() ? corners[0] : 0;
    const std::vector<FitPlace> all = PlacesOf(shape, scale, perSegment, stroke.closed ? 2 : 1);
    const int count = shape.GetSegmentsCount() * perSegment + 1;
    stroke.places.assign(all.begin() + begin * perSegment,
                         all.begin() + begin * perSegment + count);
    const double first = stroke.places.front().along;
    for (FitPlace& place : stroke.places)
        place.along -= first;
    for (const int corner : corners)
        stroke.corners.push_back((corner - begin) * perSegment);
    if (stroke.closed && !corners.empty())
        stroke.corners.push_back(count - 1);
    return stroke;
}

} // namespace

ShapeList ToBezier(std::span<const Ref<PolyLine>> keys)
{
    ShapeList made;
    if (AreAlike(keys) && !IsBezier(*keys[0])) {
        for (const Ref<PolyLine>& key : keys)
            made.push_back(BezierOf(*key));
    }
    return made;
}

ShapeList ToBSpline(std::span<const Ref<PolyLine>> keys, const ShapeError& error)
{
    if (!AreAlike(keys) || keys[0]->GetCount() < 2)
        return {};
    const PolyLine& first = *keys[0];
    std::vector<int> corners; // of any key
    for (int i = 0; i < first.GetCount(); ++i) {
        if (std::any_of(keys.begin(), keys.end(),
                        [&](const auto& key) { return IsCorner(*key, i, error.scale); }))
            corners.push_back(i);
    }
    std::vector<FitStroke> strokes;
    for (const Ref<PolyLine>& key : keys)
        strokes.push_back(StrokeAlong(*key, corners, error.scale));
    std::vector<int> ends = strokes[0].corners;
    if (strokes[0].IsRound())
        ends = {0, int(strokes[0].places.size()) - 1};
    std::vector<std::vector<PolyPoint>> points(keys.size());
    for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
        std::vector<SplinePieceFit> fits;
        for (const FitStroke& stroke : strokes)
            fits.emplace_back(stroke, false, 0.9 * error.error, ends[i], ends[i + 1]);
        // A corner's point is the same one in the new shape.
        const int corner = corners.empty() ? -1 : corners[i % corners.size()];
        const bool isGap = corner >= 0 && first.Points()[std::size_t(corner)].Has(PPF_Gap);
        std::vector<SplinePiece> good(keys.size());
        const int most = fits[0].Most();
        FewestSegments(isGap ? 1 : fits[0].Least(), isGap ? 1 : most, [&](int segments) {
            std::vector<SplinePiece> made(keys.size());
            bool fit = true;
            for (std::size_t k = 0; k < keys.size() && (fit || segments == most || isGap); ++k)
                fit = fits[k].Try(segments, made[k]) && fit;
            if (fit || segments == most || isGap)
                good = std::move(made);
            return fit;
        });
        for (std::size_t k = 0; k < keys.size(); ++k) {
            const SplineForm& form = good[k].form;
            const bool isEnd = !form.closed && i + 2 == ends.size() && !first.IsClosed();
            const std::size_t count = form.at.size() - (form.closed || isEnd ? 0 : 1);
            for (std::size_t v = 0; v < count; ++v) {
                PolyPoint point;
                const bool isLast = isEnd && v + 1 == count;
                if (corner >= 0 && (v == 0 || isLast)) {
                    const PolyPoint& old =
                        keys[k]->Points()[std::size_t(isLast ? corners.back() : corner)];
                    point.id = old.id;
                    point.pen = old.pen;
                    point.flags = old.flags & carried;
                }
                point.x = form.at[v].x / error.scale.x;
                point.y = form.at[v].y / error.scale.y;
                point.Set(PPF_Linear, form.tension[v] > 0.0);
                points[k].push_back(point);
            }
        }
    }
    ShapeList made;
    for (std::size_t k = 0; k < keys.size(); ++k) {
        Ref<PolyLine> shape = MakeRef<BSplinePolyLine>();
        shape->SetPoints(std::move(points[k]));
        if (first.IsClosed())
            shape->Close();
        for (const PointLink& link : first.Links()) {
            if (shape->GetIndex(link.point) >= 0)
                shape->SetLink(link);
        }
        made.push_back(std::move(shape));
    }
    return made;
}

} // namespace Marlox
