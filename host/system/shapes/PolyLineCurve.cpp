// The curves of shapes: segments, lengths, samples, distances.

#include "system/shapes/PolyLine.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Marlox {

namespace {

constexpr int maxStepsPerSegment = 4096;

/// Into how many straight lines a cubic is divided so that none is further than `tolerance` from
/// it: half the square of the step times a bound of the second derivative over four.
int StepsFor(const CurveSegment& s, double tolerance)
{
    if (s.IsStraight())
        return 1;
    const auto bend = [](ShapePlace a, ShapePlace b, ShapePlace c) {
        return std::hypot(a.x - 2.0 * b.x + c.x, a.y - 2.0 * b.y + c.y);
    };
    const double most =
        6.0 * std::max(bend(s.from, s.control1, s.control2), bend(s.control1, s.control2, s.to));
    const double steps = std::ceil(std::sqrt(most / (8.0 * tolerance)));
    return steps >= 1.0 ? int(std::min(steps, double(maxStepsPerSegment))) : 1;
}

} // namespace

ShapePlace CurveSegment::At(double t) const
{
    if (t <= 0.0)
        return from;
    if (t >= 1.0)
        return to;
    const double u = 1.0 - t;
    const double a = u * u * u;
    const double b = 3.0 * u * u * t;
    const double c = 3.0 * u * t * t;
    const double d = t * t * t;
    return {a * from.x + b * control1.x + c * control2.x + d * to.x,
            a * from.y + b * control1.y + c * control2.y + d * to.y};
}

ShapePlace CurveSegment::Derivative(double t) const
{
    const double u = 1.0 - t;
    const auto along = [&](double p0, double p1, double p2, double p3) {
        return 3.0 * (u * u * (p1 - p0) + 2.0 * u * t * (p2 - p1) + t * t * (p3 - p2));
    };
    return {along(from.x, control1.x, control2.x, to.x),
            along(from.y, control1.y, control2.y, to.y)};
}

// Segments

int PolyLine::GetSegmentsCount() const
{
    const int count = GetCount();
    return count < 2 ? 0 : IsClosed() ? count : count - 1;
}

CurveSegment PolyLine::Segment(int index) const
{
    const PolyPoint& from = Points()[std::size_t(index)];
    const PolyPoint& to = Points()[(std::size_t(index) + 1) % Points().size()];
    return {from.Place(), from.Has(PPF_Linear) ? from.Place() : from.Out(),
            to.Has(PPF_Linear) ? to.Place() : to.In(), to.Place()};
}

// Along the curve

ShapePlace PolyLine::ValueAt(double at) const
{
    const int segments = GetSegmentsCount();
    if (segments == 0)
        return GetCount() > 0 ? Points().front().Place() : ShapePlace();
    const double clamped = at >= 0.0 ? std::min(at, double(segments)) : 0.0;
    const int index = std::min(int(clamped), segments - 1);
    return Segment(index).At(clamped - index);
}

std::vector<ShapePlace> PolyLine::GetSamplePoints(double tolerance,
                                                  std::vector<double>* parameters) const
{
    std::vector<ShapePlace> places;
    if (parameters)
        parameters->clear();
    const auto add = [&](ShapePlace place, double parameter) {
        places.push_back(place);
        if (parameters)
            parameters->push_back(parameter);
    };
    const int segments = GetSegmentsCount();
    for (int i = 0; i < segments; ++i) {
        const CurveSegment segment = Segment(i);
        if (i == 0)
            add(segment.from, 0.0);
        const int steps = StepsFor(segment, tolerance);
        for (int step = 1; step <= steps; ++step) {
            const double t = double(step) / steps;
            add(segment.At(t), i + t);
        }
    }
    if (segments == 0 && GetCount() > 0)
        add(Points().front().Place(), 0.0);
    return places;
}

bool PolyLine::GetPointOnPath(double fraction, double heightsPerWidth, ShapePlace& at,
                              ShapePlace* direction) const
{
    if (GetCount() == 0)
        return false;
    if (direction)
        *direction = {};
    const auto length = [heightsPerWidth](ShapePlace by) {
        return std::hypot(by.x, by.y * heightsPerWidth);
    };
    const std::vector<ShapePlace> places = GetSamplePoints(1e-5);
    std::vector<double> reached(places.size());
    for (std::size_t i = 1; i < places.size(); ++i)
        reached[i] = reached[i - 1] + length(places[i] - places[i - 1]);
    at = places.front();
    const double wanted = (fraction >= 0.0 ? std::min(fraction, 1.0) : 0.0) * reached.back();
    if (!(reached.back() > 0.0))
        return true;
    const auto found = std::lower_bound(reached.begin() + 1, reached.end(), wanted);
    const std::size_t i = std::min(std::size_t(found - reached.begin()), reached.size() - 1);
    const double step = reached[i] - reached[i - 1];
    const double part = step > 0.0 ? (wanted - reached[i - 1]) / step : 0.0;
    // Along the line between the samples: equal steps of the parameter are not equal ways.
    const ShapePlace along = places[i] - places[i - 1];
    at = {places[i - 1].x + along.x * part, places[i - 1].y + along.y * part};
    if (direction) {
        const double size = length(along);
        *direction = {along.x / size, along.y / size};
    }
    return true;
}

ShapeBounds PolyLine::CalcMinMax() const
{
    std::vector<ShapePlace> places;
    places.reserve(Points().size() * 3);
    for (int i = 0; i < GetSegmentsCount(); ++i) {
        const CurveSegment segment = Segment(i);
        places.insert(places.end(), {segment.from, segment.control1, segment.control2, segment.to});
    }
    if (GetSegmentsCount() == 0 && GetCount() > 0)
        places.push_back(Points().front().Place());
    return Marlox::CalcMinMax(places);
}

ShapeBounds CalcMinMax(std::span<const ShapePlace> places)
{
    ShapeBounds bounds;
    for (const ShapePlace& place : places) {
        if (!std::isfinite(place.x) || !std::isfinite(place.y))
            continue;
        if (std::exchange(bounds.isEmpty, false))
            bounds.low = bounds.high = place;
        bounds.low = {std::min(bounds.low.x, place.x), std::min(bounds.low.y, place.y)};
        bounds.high = {std::max(bounds.high.x, place.x), std::max(bounds.high.y, place.y)};
    }
    return bounds;
}

// Handles

void SmoothFast(PolyPoint& point, bool inMoved, double heightsPerWidth)
{
    const ShapePlace moved =
        inMoved ? ShapePlace(point.inX, point.inY) : ShapePlace(point.outX, point.outY);
    double& otherX = inMoved ? point.outX : point.inX;
    double& otherY = inMoved ? point.outY : point.inY;
    const double length = std::hypot(moved.x, moved.y * heightsPerWidth);
    const double other = std::hypot(otherX, otherY * heightsPerWidth);
    if (!(length > 0.0) || !std::isfinite(length))
        return;
    otherX = -moved.x / length * other;
    otherY = -moved.y / length * other;
}

} // namespace Marlox
