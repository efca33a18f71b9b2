// Points that a shape's form does not need, left out of all of its keys.

#include "system/shapes/PieceFit.h"
#include "system/shapes/ShapeOps_p.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <queue>

namespace Marlox {

namespace {

constexpr int perSegment = 8; // places of the old curve

/// Selected, and free to go.
std::vector<u8> MayGo(const PolyLine& shape, const SelMask& selected)
{
    const int count = shape.GetCount();
    std::vector<u8> may(std::size_t(count), 0);
    for (int i = 0; i < count; ++i) {
        const PolyPoint& point = shape.Points()[std::size_t(i)];
        const PolyPoint& before = shape.Points()[std::size_t((i + count - 1) % count)];
        const bool isEnd = !shape.IsClosed() && (i == 0 || i + 1 == count);
        may[std::size_t(i)] = selected.GetSetItem(i) && !isEnd && !point.Has(PPF_Locked) &&
                              !point.Has(PPF_Gap) && !before.Has(PPF_Gap);
    }
    return may;
}

/// Leaves out points in the order of what they cost, as long as one can go. `Cost` gives what it
/// costs to join the points before and behind one; none: it can't go.
template <class Cost>
std::vector<int> LeaveOut(const PolyLine& shape, const std::vector<u8>& may, int least,
                          const Cost& cost)
{
    const int count = shape.GetCount();
    std::vector<int> before(may.size());
    std::vector<int> after(may.size());
    std::vector<int> version(may.size(), 0);
    struct Candidate {
        double cost;
        int point;
        int version;
        bool operator<(const Candidate& other) const
        {
            return cost != other.cost ? cost > other.cost : point > other.point;
        }
    };
    std::priority_queue<Candidate> queue;
    for (int i = 0; i < count; ++i) {
        before[std::size_t(i)] = (i + count - 1) % count;
        after[std::size_t(i)] = (i + 1) % count;
    }
    const auto consider = [&](int i) {
        const std::size_t at = std::size_t(i);
        ++version[at];
        if (!may[at])
            return;
        if (const std::optional<double> found = cost(before[at], i, after[at]))
            queue.push({*found, i, version[at]});
    };
    for (int i = 0; i < count; ++i)
        consider(i);
    std::vector<int> gone;
    while (!queue.empty() && count - int(gone.size()) > least) {
        const Candidate next = queue.top();
        queue.pop();
        const std::size_t at = std::size_t(next.point);
        if (next.version != version[at])
            continue;
        gone.push_back(next.point);
        after[std::size_t(before[at])] = after[at];
        before[std::size_t(after[at])] = before[at];
        consider(before[at]);
        consider(after[at]);
    }
    return gone;
}

double DistanceToLine(ShapePlace at, ShapePlace from, ShapePlace to)
{
    const ShapePlace along = to - from;
    const double square = Dot(along, along);
    const double t = square > 0.0 ? std::clamp(Dot(at - from, along) / square, 0.0, 1.0) : 0.0;
    return Length(at - from - along * t);
}

// Bezier -----------------------------------------------------------------------------------------

/// One key: its curve as places, twice around, and segments that replace several.
class BezierKey {
public:
    BezierKey(const PolyLine& shape, const ShapeError& error)
        : shape_(shape), error_(error),
          places_(PlacesOf(shape, error.scale, perSegment, shape.IsClosed() ? 2 : 1)),
          fit_(places_, error.error)
    {
    }
    /// One segment from a point to another one.
    bool Join(int from, int to, CurveSegment& curve)
    {
        const int begin = from * perSegment;
        const int end = (to > from ? to : to + shape_.GetCount()) * perSegment;
        const Direction start = Handle(from, false);
        const Direction stop = Handle(to, true);
        return (!start && !stop && IsStraight(begin, end, curve)) ||
               fit_.Fit(begin, end, start, stop, curve);
    }
    double Distance(int from, int to, const CurveSegment& curve) const;

private:
    bool IsStraight(int begin, int end, CurveSegment& curve) const
    {
        const ShapePlace from = places_[std::size_t(begin)].at;
        const ShapePlace to = places_[std::size_t(end)].at;
        curve = {from, from, to, to};
        return std::all_of(places_.begin() + begin, places_.begin() + end,
                           [&](const FitPlace& place) {
                               return DistanceToLine(place.at, from, to) <= error_.error;
                           });
    }
    /// The direction of a handle, into the curve; none: there is none.
    Direction Handle(int index, bool isIn) const
    {
        const PolyPoint& point = shape_.Points()[std::size_t(index)];
        const ShapePlace by =
            isIn ? ShapePlace(point.inX, point.inY) : ShapePlace(point.outX, point.outY);
        const ShapePlace scaled(by.x * error_.scale.x, by.y * error_.scale.y);
        const double length = Length(scaled);
        return length > 1e-9 && !point.Has(PPF_Linear) ? Direction(scaled * (1.0 / length))
                                                       : std::nullopt;
    }

    const PolyLine& shape_;
    ShapeError error_;
    std::vector<FitPlace> places_;
    PieceFit fit_;
};

/// A guess that is good enough to tell which point costs least.
double BezierKey::Distance(int from, int to, const CurveSegment& curve) const
{
    const int end = (to > from ? to : to + shape_.GetCount()) * perSegment;
    double most = 0.0;
    double t = 0.0;
    const int step = 1 + (end - from * perSegment) / 32;
    for (int i = from * perSegment; i <= end; i += step) {
        const ShapePlace at = places_[std::size_t(i)].at;
        t = Closer(curve, at, t);
        most = std::max(most, Length(curve.At(t) - at));
    }
    return most;
}

ShapeList ReduceBezier(std::span<const Ref<PolyLine>> keys, const std::vector<u8>& may,
                       const ShapeError& error)
{
    const PolyLine& first = *keys[0];
    std::vector<BezierKey> fits;
    fits.reserve(keys.size());
    for (const Ref<PolyLine>& key : keys)
        fits.emplace_back(*key, error);
    const auto cost = [&](int from, int, int to) -> std::optional<double> {
        double most = 0.0;
        CurveSegment curve;
        for (BezierKey& fit : fits) {
            if (from == to || !fit.Join(from, to, curve))
                return std::nullopt;
            most = std::max(most, fit.Distance(from, to, curve));
        }
        return most;
    };
    const std::vector<int> gone = LeaveOut(first, may, 2, cost);
    if (gone.empty())
        return {};
    SelMask goes(first.GetCount());
    for (const int point : gone)
        goes.DoSet(point, SelMask::Select);
    ShapeList made;
    for (std::size_t k = 0; k < keys.size(); ++k) {
        std::vector<PolyPoint> points(keys[k]->Points().begin(), keys[k]->Points().end());
        const int count = int(points.size());
        for (int from = 0; from < count; ++from) {
            const int next = (from + 1) % count;
            if (goes.GetSetItem(from) || !goes.GetSetItem(next))
                continue;
            int to = next;
            while (goes.GetSetItem(to))
                to = (to + 1) % count;
            CurveSegment curve;
            fits[k].Join(from, to, curve);
            PolyPoint& begin = points[std::size_t(from)];
            PolyPoint& end = points[std::size_t(to)];
            // A corner that gets one handle is none without handles any more.
            const bool isStraight = curve.IsStraight();
            if (begin.Has(PPF_Linear) && !isStraight) {
                begin.Set(PPF_Linear, false);
                begin.inX = begin.inY = 0.0;
            }
            if (end.Has(PPF_Linear) && !isStraight) {
                end.Set(PPF_Linear, false);
                end.outX = end.outY = 0.0;
            }
            begin.outX = (curve.control1.x - curve.from.x) / error.scale.x;
            begin.outY = (curve.control1.y - curve.from.y) / error.scale.y;
            end.inX = (curve.control2.x - curve.to.x) / error.scale.x;
            end.inY = (curve.control2.y - curve.to.y) / error.scale.y;
        }
        std::vector<PolyPoint> kept;
        for (int i = 0; i < count; ++i) {
            if (!goes.GetSetItem(i))
                kept.push_back(points[std::size_t(i)]);
        }
        made.push_back(WithPoints(*keys[k], std::move(kept)));
    }
    return made;
}

// Splines ----------------------------------------------------------------------------------------

/// The key without the first `count` of `gone`; none: it does not come near enough.
Ref<PolyLine> SplineWithout(const PolyLine& shape, std::span<const int> gone,
                            const std::vector<u8>& may, const ShapeError& error)
{
    std::vector<u8> goes(shape.Points().size(), 0);
    for (const int point : gone)
        goes[std::size_t(point)] = 1;
    std::vector<PolyPoint> points;
    std::vector<int> kept;
    for (std::size_t i = 0; i < goes.size(); ++i) {
        if (goes[i])
            continue;
        kept.push_back(int(i));
        points.push_back(shape.Points()[i]);
    }
    Ref<PolyLine> made = WithPoints(shape, std::move(points));
    SplineForm form = FormOf(*made, error.scale);
    for (std::size_t i = 0; i < kept.size(); ++i)
        form.fixed[i] = !may[std::size_t(kept[i])];
    const std::vector<int> between(kept.size(), 0);
    std::vector<SplineTarget> targets = TargetsFor(shape, error.scale, kept, between);
    if (!(FitSpline(form, targets, 0.9 * error.error) <= error.error))
        return {};
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (form.fixed[i])
            continue;
        made->GetPoint(int(i))->x = form.at[i].x / error.scale.x;
        made->GetPoint(int(i))->y = form.at[i].y / error.scale.y;
    }
    return made;
}

/// In the order of how little they stand out; as many as can go.
ShapeList ReduceSpline(std::span<const Ref<PolyLine>> keys, const std::vector<u8>& may,
                       const ShapeError& error)
{
    const auto cost = [&](int from, int point, int to) -> std::optional<double> {
        double most = 0.0;
        for (const Ref<PolyLine>& key : keys) {
            const auto at = [&](int i) {
                const PolyPoint& p = key->Points()[std::size_t(i)];
                return ShapePlace(p.x * error.scale.x, p.y * error.scale.y);
            };
            most = std::max(most, DistanceToLine(at(point), at(from), at(to)));
        }
        return most;
    };
    const std::vector<int> gone = LeaveOut(*keys[0], may, keys[0]->IsClosed() ? 3 : 2, cost);
    ShapeList best;
    std::size_t good = 0;
    std::size_t bad = gone.size() + 1;
    while (bad - good > 1) {
        const std::size_t middle = good + (bad - good) / 2;
        ShapeList made;
        for (const Ref<PolyLine>& key : keys) {
            Ref<PolyLine> shape = SplineWithout(*key, std::span(gone).first(middle), may, error);
            if (!shape)
                break;
            made.push_back(std::move(shape));
        }
        if (made.size() == keys.size()) {
            best = std::move(made);
            good = middle;
        } else {
            bad = middle;
        }
    }
    return best;
}

} // namespace

ShapeList ReducePoints(std::span<const Ref<PolyLine>> keys, const SelMask& selected,
                       const ShapeError& error)
{
    if (!AreAlike(keys) || keys[0]->GetCount() < 3)
        return {};
    const std::vector<u8> may = MayGo(*keys[0], selected);
    return IsBezier(*keys[0]) ? ReduceBezier(keys, may, error) : ReduceSpline(keys, may, error);
}

} // namespace Marlox
