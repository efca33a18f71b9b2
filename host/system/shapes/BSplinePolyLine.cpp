#include "system/shapes/BSplinePolyLine.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

ShapePlace Mix(ShapePlace a, ShapePlace b, double t)
{
    return {std::lerp(a.x, b.x, t), std::lerp(a.y, b.y, t)};
}

double TensionOf(const PolyPoint& point)
{
    return point.Has(PPF_Linear) ? 1.0 : std::clamp(point.tension, 0.0, 1.0);
}

/// Where the B-spline of a vertex passes nearest: the vertex drawn to the middle of its neighbours
/// by a sixth of their second difference, less with tension.
ShapePlace JointAt(const PolyPoint& before, const PolyPoint& at, const PolyPoint& after)
{
    const double pull = (1.0 - TensionOf(at)) / 6.0;
    return {at.x + (before.x + after.x - 2.0 * at.x) * pull,
            at.y + (before.y + after.y - 2.0 * at.y) * pull};
}

} // namespace

CurveSegment BSplinePolyLine::Segment(int index) const
{
    const int next = Neighbour(index, 1);
    const auto point = [this](int i) -> const PolyPoint& { return Points()[std::size_t(i)]; };
    const PolyPoint& from = point(index);
    const PolyPoint& to = point(next);
    const int before = Neighbour(index, -1);
    const int after = Neighbour(next, 1);
    return {before < 0 ? from.Place() : JointAt(point(before), from, to),
            Mix(from.Place(), to.Place(), (1.0 - TensionOf(from)) / 3.0),
            Mix(to.Place(), from.Place(), (1.0 - TensionOf(to)) / 3.0),
            after < 0 ? to.Place() : JointAt(from, to, point(after))};
}

CurveSegment CardinalPolyLine::Segment(int index) const
{
    const int next = Neighbour(index, 1);
    const auto point = [this](int i) -> const PolyPoint& { return Points()[std::size_t(i)]; };
    const PolyPoint& from = point(index);
    const PolyPoint& to = point(next);
    const int before = Neighbour(index, -1);
    const int after = Neighbour(next, 1);
    // Half the distance between the neighbours is the tangent, a third of it the handle.
    const auto control = [](const PolyPoint& at, ShapePlace across, double sign) {
        const double reach = sign * (1.0 - TensionOf(at)) / 6.0;
        return ShapePlace(at.x + across.x * reach, at.y + across.y * reach);
    };
    const ShapePlace start = before < 0 ? from.Place() : point(before).Place();
    const ShapePlace end = after < 0 ? to.Place() : point(after).Place();
    return {from.Place(), control(from, to.Place() - start, 1.0),
            control(to, end - from.Place(), -1.0), to.Place()};
}

Ref<PolyLine> BSplinePolyLine::CopyShape() const
{
    return MakeRef<BSplinePolyLine>(*this);
}

Ref<PolyLine> CardinalPolyLine::CopyShape() const
{
    return MakeRef<CardinalPolyLine>(*this);
}

void BSplinePolyLine::SetReducedPoints(const ShapePlace* places, int count,
                                       std::span<const u8> mask)
{
    std::vector<PolyPoint> points;
    points.reserve(std::size_t(std::max(count, 0)));
    std::size_t old = 0; // both are in the order of the curve
    for (int i = 0; i < count; ++i) {
        PolyPoint point;
        for (std::size_t k = old; k < Points().size(); ++k) {
            if (Points()[k].Place() == places[i]) {
                point = Points()[k];
                old = k + 1;
                break;
            }
        }
        point.x = places[i].x;
        point.y = places[i].y;
        point.Set(PPF_Linear, std::size_t(i) < mask.size() && mask[std::size_t(i)]);
        points.push_back(point);
    }
    SetPoints(std::move(points));
}

void BSplinePolyLine::SetDiscontinualSegementMask(const SelMask& mask)
{
    std::vector<PolyPoint>& points = OwnPoints();
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i].Set(PPF_Gap, mask.GetSetItem(int(i)));
}

Ref<BSplinePolyLine> BSplinePolyLine::InterpolateWith(const BSplinePolyLine& other,
                                                      double amount) const
{
    const std::span<const double> a = Components();
    const std::span<const double> b = other.Components();
    if (a.size() != b.size())
        return {};
    std::vector<double> mixed(a.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        mixed[i] = std::lerp(a[i], b[i], amount);
    const Ref<Parameter> made = WithComponents(mixed);
    return Ref<BSplinePolyLine>::Share(static_cast<BSplinePolyLine*>(made.Get()));
}

MxID BSplinePolyLine::GetDataType() const
{
    static const MxID id(CLSID_DataType_BSplinePolyline);
    return id;
}

MxID CardinalPolyLine::GetDataType() const
{
    static const MxID id(CLSID_DataType_CardinalSplinePolyline);
    return id;
}

} // namespace Marlox
