// New points on the segments of shapes.

#include "system/shapes/ShapeOps_p.h"

#include <algorithm>

namespace Marlox {

namespace {

/// How many new points each segment gets.
std::vector<int> NewOnes(const PolyLine& shape, const SelMask& selected, int count)
{
    std::vector<int> between(shape.Points().size(), 0);
    for (int i = 0; i < shape.GetSegmentsCount(); ++i) {
        if (selected.GetSetItem(i) && selected.GetSetItem((i + 1) % shape.GetCount()))
            between[std::size_t(i)] = count;
    }
    return between;
}

/// The old points, with new ones on the polygon between them.
std::vector<PolyPoint> OnPolygon(const PolyLine& shape, const std::vector<int>& between)
{
    std::vector<PolyPoint> points;
    const std::span<const PolyPoint> old = shape.Points();
    for (std::size_t i = 0; i < old.size(); ++i) {
        points.push_back(old[i]);
        const PolyPoint& next = old[(i + 1) % old.size()];
        for (int k = 1; k <= between[i]; ++k) {
            const double t = double(k) / (between[i] + 1);
            PolyPoint point;
            point.x = std::lerp(old[i].x, next.x, t);
            point.y = std::lerp(old[i].y, next.y, t);
            point.Set(PPF_Gap, old[i].Has(PPF_Gap));
            points.push_back(point);
        }
    }
    return points;
}

Ref<PolyLine> DividedBezier(const PolyLine& shape, const std::vector<int>& between)
{
    Ref<PolyLine> made = shape.CopyShape();
    for (int i = int(between.size()) - 1; i >= 0; --i) { // those behind stay where they are
        const int count = between[std::size_t(i)];
        for (int k = 0; k < count; ++k) {
            const int point = made->InsertPoint(i + k, 1.0 / (count + 1 - k));
            if (point < 0)
                return {};
            made->GetPoint(point)->Set(PPF_Gap, shape.Points()[std::size_t(i)].Has(PPF_Gap));
        }
    }
    return made;
}

/// All segments of a plain B-spline in `parts`: the new vertices are the old ones weighed with the
/// coefficients of ((1 + z + ... + z^(parts - 1)) ^ 4) / parts^3.
std::vector<ShapePlace> Refined(const PolyLine& shape, int parts)
{
    std::vector<double> weights{1.0 / (double(parts) * parts * parts)};
    for (int round = 0; round < 4; ++round) {
        std::vector<double> next(weights.size() + std::size_t(parts) - 1, 0.0);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            for (std::size_t k = 0; k < std::size_t(parts); ++k)
                next[i + k] += weights[i];
        }
        weights = std::move(next);
    }
    const int count = shape.GetCount();
    const auto vertex = [&](int i) {
        const auto at = [&](int k) { return shape.Points()[std::size_t(k)].Place(); };
        if (shape.IsClosed())
            return at(((i % count) + count) % count);
        // An open one goes on straight at its ends.
        if (i < 0)
            return at(0) * 2.0 - at(1);
        return i >= count ? at(count - 1) * 2.0 - at(count - 2) : at(i);
    };
    const int reach = 2 * (parts - 1);
    const int last = shape.GetSegmentsCount() * parts;
    std::vector<ShapePlace> made;
    for (int j = 0; j < last + int(!shape.IsClosed()); ++j) {
        ShapePlace sum;
        for (int i = j / parts - 2; i <= j / parts + 2; ++i) {
            const int place = j - parts * i + reach;
            if (place >= 0 && place <= 2 * reach)
                sum = sum + vertex(i) * weights[std::size_t(place)];
        }
        made.push_back(sum);
    }
    return made;
}

/// As near to the old curve as vertices near the new ones can bring it; the points of a cardinal
/// spline stay.
void Approach(const PolyLine& shape, const std::vector<int>& between, ShapePlace scale,
              std::vector<PolyPoint>& points)
{
    constexpr int reach = 2; // vertices
    const Ref<PolyLine> start = WithPoints(shape, points);
    SplineForm form = FormOf(*start, scale);
    std::vector<u8> isNew(points.size(), 0);
    std::vector<int> kept;
    std::size_t at = 0;
    for (std::size_t i = 0; i < between.size(); ++i) {
        kept.push_back(int(i));
        for (int k = 0; k < between[i]; ++k)
            isNew[++at] = 1;
        ++at;
    }
    const int count = int(points.size());
    for (int i = 0; i < count; ++i) {
        bool isNear = false;
        for (int d = -reach; d <= reach; ++d) {
            const int other = form.closed ? ((i + d) % count + count) % count : i + d;
            isNear = isNear || (other >= 0 && other < count && isNew[std::size_t(other)]);
        }
        const bool isEnd = !form.closed && (i == 0 || i + 1 == count);
        const bool isOld = !isNew[std::size_t(i)];
        const bool stays = isOld && (form.isCardinal || !isNear || isEnd ||
                                     points[std::size_t(i)].Has(PPF_Locked));
        form.fixed[std::size_t(i)] = stays;
    }
    std::vector<SplineTarget> targets = TargetsFor(shape, scale, kept, between);
    SolveSpline(form, targets);
    ProjectTargets(form, targets, HUGE_VAL);
    SolveSpline(form, targets);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (form.fixed[i])
            continue;
        points[i].x = form.at[i].x / scale.x;
        points[i].y = form.at[i].y / scale.y;
    }
}

} // namespace

ShapeList Subdivide(std::span<const Ref<PolyLine>> keys, const SelMask& selected, int count,
                    ShapePlace scale)
{
    if (!AreAlike(keys) || count < 1)
        return {};
    const PolyLine& first = *keys[0];
    const std::vector<int> between = NewOnes(first, selected, count);
    const auto divided = std::count_if(between.begin(), between.end(), [](int n) { return n > 0; });
    const double total = double(divided) * count + first.GetCount();
    if (divided == 0 || total > PolyLine::maxPoints)
        return {};
    ShapeList made;
    for (const Ref<PolyLine>& key : keys) {
        if (IsBezier(*key)) {
            made.push_back(DividedBezier(*key, between));
            continue;
        }
        const SplineForm form = FormOf(*key, scale);
        std::vector<PolyPoint> points = OnPolygon(*key, between);
        const bool isPlain = std::all_of(form.tension.begin(), form.tension.end(),
                                         [](double tension) { return tension == 0.0; });
        if (!form.isCardinal && isPlain && divided == key->GetSegmentsCount()) {
            const std::vector<ShapePlace> places = Refined(*key, count + 1);
            for (std::size_t i = 0; i < points.size(); ++i) {
                points[i].x = places[i].x;
                points[i].y = places[i].y;
            }
        } else {
            Approach(*key, between, scale, points);
        }
        made.push_back(WithPoints(*key, std::move(points)));
    }
    return made;
}

} // namespace Marlox
