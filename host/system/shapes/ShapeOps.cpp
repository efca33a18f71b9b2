// What the operations on shapes share, and the smaller ones.

#include "system/shapes/ShapeOps_p.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

/// Whether lengths can be computed: their squares are numbers.
bool IsWithinReach(const PolyLine& shape)
{
    constexpr double furthest = 1e100;
    const std::span<const double> all = shape.Components();
    return std::all_of(all.begin(), all.end(),
                       [](double value) { return std::abs(value) <= furthest; });
}

} // namespace

bool AreAlike(std::span<const Ref<PolyLine>> keys)
{
    if (keys.empty() || !keys[0])
        return false;
    return std::all_of(keys.begin(), keys.end(), [&](const Ref<PolyLine>& key) {
        return key && key->GetDataType() == keys[0]->GetDataType() &&
               key->GetCount() == keys[0]->GetCount() && key->IsClosed() == keys[0]->IsClosed() &&
               IsWithinReach(*key);
    });
}

bool IsBezier(const PolyLine& shape)
{
    return shape.GetDataType() == MxID(CLSID_DataType_Polyline);
}

SplineForm FormOf(const PolyLine& shape, ShapePlace scale)
{
    SplineForm form;
    form.isCardinal = shape.GetDataType() == MxID(CLSID_DataType_CardinalSplinePolyline);
    form.closed = shape.IsClosed();
    for (const PolyPoint& point : shape.Points()) {
        form.at.push_back({point.x * scale.x, point.y * scale.y});
        form.tension.push_back(point.Has(PPF_Linear) ? 1.0 : std::clamp(point.tension, 0.0, 1.0));
        form.fixed.push_back(0);
    }
    return form;
}

Ref<PolyLine> WithPoints(const PolyLine& shape, std::vector<PolyPoint> points)
{
    Ref<PolyLine> made = shape.CopyShape();
    made->SetPoints(std::move(points));
    return made;
}

CurveSegment Scaled(const CurveSegment& s, ShapePlace scale)
{
    const auto scaled = [scale](ShapePlace at) {
        return ShapePlace(at.x * scale.x, at.y * scale.y);
    };
    return {scaled(s.from), scaled(s.control1), scaled(s.control2), scaled(s.to)};
}

std::vector<FitPlace> PlacesOf(const PolyLine& shape, ShapePlace scale, int perSegment, int rounds)
{
    std::vector<FitPlace> places;
    const auto add = [&](ShapePlace at) {
        FitPlace place{at};
        if (!places.empty())
            place.along = places.back().along + Length(at - places.back().at);
        places.push_back(place);
    };
    const int segments = shape.GetSegmentsCount();
    for (int i = 0; i < segments * rounds; ++i) {
        const CurveSegment s = Scaled(shape.Segment(i % segments), scale);
        for (int k = 0; k < perSegment; ++k)
            add(s.At(double(k) / perSegment));
        if (i + 1 == segments * rounds)
            add(s.to);
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        const std::size_t before = i > 0 ? i - 1 : i;
        const std::size_t after = std::min(i + 1, places.size() - 1);
        places[i].weight = 0.5 * (places[after].along - places[before].along) + 1e-12;
    }
    return places;
}

std::vector<SplineTarget> TargetsFor(const PolyLine& shape, ShapePlace scale,
                                     std::span<const int> kept, std::span<const int> between)
{
    constexpr int perSegment = 6;
    const int count = shape.GetCount();
    std::vector<SplineTarget> targets;
    int vertex = 0; // of the new spline
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const bool isLast = i + 1 == kept.size();
        if (isLast && !shape.IsClosed())
            break;
        const int next = isLast ? kept[0] + count : kept[i + 1];
        const int steps = (next - kept[i]) * perSegment;
        for (int k = 0; k < steps; ++k) {
            const CurveSegment s = Scaled(shape.Segment((kept[i] + k / perSegment) % count), scale);
            const double part = double(k) / steps * (1 + between[i]);
            targets.push_back({s.At(double(k % perSegment) / perSegment), vertex + part, 1.0});
        }
        vertex += 1 + between[i];
    }
    return targets;
}

// Smaller ones -----------------------------------------------------------------------------------

namespace {

bool Moves(const PolyLine& shape, const SelMask& selected, int point)
{
    return selected.GetSetItem(point) && !shape.Points()[std::size_t(point)].Has(PPF_Locked);
}

ShapePlace Mixed(ShapePlace a, ShapePlace b, double t)
{
    return a + (b - a) * t;
}

/// What moves of a point: its place and its handles.
constexpr double PolyPoint::*moving[] = {&PolyPoint::x,   &PolyPoint::y,    &PolyPoint::inX,
                                         &PolyPoint::inY, &PolyPoint::outX, &PolyPoint::outY};

bool IsAnimation(std::span<const Ref<PolyLine>> keys, std::span<const double> times)
{
    return AreAlike(keys) && keys.size() == times.size() && keys.size() > 2 &&
           std::is_sorted(times.begin(), times.end()) && times.back() > times.front();
}

} // namespace

void SmoothPoints(PolyLine& shape, const SelMask& selected, double strength, double heightsPerWidth)
{
    strength = std::clamp(strength, 0.0, 1.0);
    const std::vector<PolyPoint> old(shape.Points().begin(), shape.Points().end());
    const int count = shape.GetCount();
    for (int i = 0; i < count; ++i) {
        const bool isEnd = !shape.IsClosed() && (i == 0 || i + 1 == count);
        if (!Moves(shape, selected, i) || isEnd || count < 3)
            continue;
        const ShapePlace before = old[std::size_t((i + count - 1) % count)].Place();
        const ShapePlace after = old[std::size_t((i + 1) % count)].Place();
        PolyPoint& point = *shape.GetPoint(i);
        const ShapePlace at = Mixed(point.Place(), Mixed(before, after, 0.5), strength);
        point.x = at.x;
        point.y = at.y;
        if (!IsBezier(shape) || point.Has(PPF_Linear))
            continue;
        const auto length = [&](ShapePlace by) { return std::hypot(by.x, by.y * heightsPerWidth); };
        const ShapePlace along = after - before;
        const double whole = length(along);
        if (!(whole > 0.0))
            continue;
        const double in = -length(before - at) / 3.0 / whole;
        const double out = length(after - at) / 3.0 / whole;
        point.inX += (along.x * in - point.inX) * strength;
        point.inY += (along.y * in - point.inY) * strength;
        point.outX += (along.x * out - point.outX) * strength;
        point.outY += (along.y * out - point.outY) * strength;
    }
}

void AveragePoints(PolyLine& shape, const SelMask& selected)
{
    ShapePlace sum;
    int count = 0;
    for (int i = 0; i < shape.GetCount(); ++i) {
        if (selected.GetSetItem(i)) {
            sum = sum + shape.Points()[std::size_t(i)].Place();
            ++count;
        }
    }
    for (int i = 0; i < shape.GetCount(); ++i) {
        if (!Moves(shape, selected, i))
            continue;
        PolyPoint& point = *shape.GetPoint(i);
        point.x = sum.x / count;
        point.y = sum.y / count;
    }
}

void SmoothAnimation(std::span<const Ref<PolyLine>> keys, std::span<const double> times,
                     const SelMask& selected, double strength)
{
    if (!IsAnimation(keys, times))
        return;
    strength = std::clamp(strength, 0.0, 1.0);
    for (int i = 0; i < keys[0]->GetCount(); ++i) {
        if (!Moves(*keys[0], selected, i))
            continue;
        PolyPoint before = keys[0]->Points()[std::size_t(i)]; // as it was
        for (std::size_t k = 1; k + 1 < keys.size(); ++k) {
            PolyPoint& point = *keys[k]->GetPoint(i);
            const PolyPoint was = point;
            const PolyPoint& after = keys[k + 1]->Points()[std::size_t(i)];
            const double span = times[k + 1] - times[k - 1];
            const double t = span > 0.0 ? (times[k] - times[k - 1]) / span : 0.5;
            for (const auto number : moving)
                point.*number +=
                    (std::lerp(before.*number, after.*number, t) - was.*number) * strength;
            before = was;
        }
    }
}

void EaseAnimation(std::span<const Ref<PolyLine>> keys, std::span<const double> times,
                   const SelMask& selected, double easeIn, double easeOut)
{
    if (!IsAnimation(keys, times))
        return;
    // A cubic from 0 to 1 whose slopes at its ends are 1 less the amounts.
    const double begin = 1.0 - std::clamp(easeIn, 0.0, 1.0);
    const double end = 1.0 - std::clamp(easeOut, 0.0, 1.0);
    const auto eased = [&](double t) {
        return t * (begin + t * (3.0 - 2.0 * begin - end + t * (begin + end - 2.0)));
    };
    const double whole = times.back() - times.front();
    for (int i = 0; i < keys[0]->GetCount(); ++i) {
        if (!Moves(*keys[0], selected, i))
            continue;
        std::vector<PolyPoint> way;
        for (const Ref<PolyLine>& key : keys)
            way.push_back(key->Points()[std::size_t(i)]);
        for (std::size_t k = 1; k + 1 < keys.size(); ++k) {
            const double time = times.front() + whole * eased((times[k] - times.front()) / whole);
            const auto found = std::upper_bound(times.begin() + 1, times.end() - 1, time);
            const std::size_t next = std::size_t(found - times.begin());
            const double span = times[next] - times[next - 1];
            const double t = span > 0.0 ? (time - times[next - 1]) / span : 0.0;
            for (const auto number : moving)
                keys[k]->GetPoint(i)->*number =
                    std::lerp(way[next - 1].*number, way[next].*number, t);
        }
    }
}

} // namespace Marlox
