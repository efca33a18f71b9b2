#include "system/shapes/FitStroke.h"

#include "system/shapes/ShapeIndex.h"

#include <algorithm>
#include <numbers>

namespace Marlox {

namespace {

constexpr double farthest = 1e9; // units of the error; samples beyond it are left out
constexpr int mostPlaces = 1500; // so that a stroke of any length is fitted in time
constexpr double coincident = 1e-9;
constexpr double cutPart = 0.15;    // of a closed stroke that may go on beyond its beginning
constexpr double closingPart = 4.0; // times the gap: over this length it is closed

} // namespace

FitStroke::FitStroke(std::span<const StrokeSample> stroke, const FitOptions& options,
                     double spacing)
    : closed(options.closed)
{
    Take(stroke, options);
    if (samples.size() < 3)
        closed = false;
    if (closed)
        CloseUp(options);
    Join(spacing);
    Measure();
    FindCorners(options);
    if (closed && !corners.empty())
        BeginAtCorner();
}

void FitStroke::BeginAtCorner()
{
    const int begin = corners.front();
    places.pop_back(); // the first again
    std::rotate(places.begin(), places.begin() + begin, places.end());
    places.push_back(places.front());
    Measure();
    for (int& corner : corners)
        corner -= begin;
    corners.push_back(int(places.size()) - 1);
}

void FitStroke::Take(std::span<const StrokeSample> stroke, const FitOptions& options)
{
    samples.reserve(stroke.size());
    source.reserve(stroke.size());
    for (std::size_t i = 0; i < stroke.size(); ++i) {
        const ShapePlace at(stroke[i].at.x * options.scale.x, stroke[i].at.y * options.scale.y);
        if (!(std::abs(at.x) < farthest && std::abs(at.y) < farthest))
            continue;
        if (!samples.empty() && Length(at - samples.back()) <= coincident)
            continue;
        samples.push_back(at);
        source.push_back(i);
    }
}

/// The end is cut where it passes the beginning, and drawn to it.
void FitStroke::CloseUp(const FitOptions& options)
{
    std::vector<double> along(samples.size());
    for (std::size_t i = 1; i < samples.size(); ++i)
        along[i] = along[i - 1] + Length(samples[i] - samples[i - 1]);
    const double total = along.back();
    std::size_t end = samples.size() - 1;
    for (std::size_t i = end; i > 1 && total - along[i] < cutPart * total; --i) {
        if (Length(samples[i] - samples[0]) < Length(samples[end] - samples[0]))
            end = i;
    }
    samples.resize(end + 1);
    source.resize(end + 1);
    const ShapePlace gap = samples[0] - samples[end];
    const double reach = std::min(closingPart * Length(gap) + options.error, 0.5 * along[end]);
    for (std::size_t i = end; i > 0 && along[end] - along[i] < reach; --i) {
        const double t = 1.0 - (along[end] - along[i]) / reach;
        samples[i] = samples[i] + gap * (t * t * (3.0 - 2.0 * t));
    }
    samples.back() = samples.front();
}

void FitStroke::Join(double spacing)
{
    double along = 0.0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        along += Length(samples[i] - samples[i - 1]);
    spacing = std::max(spacing, along / mostPlaces);
    along = 0.0;
    double begin = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (i > 0)
            along += Length(samples[i] - samples[i - 1]);
        // The ends stay where they are.
        const bool joins = i > 1 && i + 1 < samples.size() && along - begin < spacing;
        if (!joins) {
            places.push_back({samples[i], 0.0, 1.0, i, i});
            begin = along;
            continue;
        }
        FitPlace& place = places.back();
        place.last = i;
        const double share = 1.0 / double(place.last - place.first + 1);
        place.at = place.at + (samples[i] - place.at) * share;
    }
}

void FitStroke::Measure()
{
    for (std::size_t i = 1; i < places.size(); ++i)
        places[i].along = places[i - 1].along + Length(places[i].at - places[i - 1].at);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const std::size_t before = i > 0 ? i - 1 : i;
        const std::size_t after = std::min(i + 1, places.size() - 1);
        places[i].weight = 0.5 * (places[after].along - places[before].along);
    }
}

namespace {

/// The place on the stroke at a length; of a closed one, round and round.
class Walker {
public:
    explicit Walker(const FitStroke& stroke)
        : places_(stroke.places), closed_(stroke.closed), total_(stroke.places.back().along)
    {
    }
    /// False: the stroke does not reach as far. Lengths in ascending order are found at once.
    bool At(double along, ShapePlace& at)
    {
        if (closed_)
            along -= std::floor(along / total_) * total_;
        if (along < 0.0 || along > total_)
            return false;
        if (along < places_[next_ - 1].along)
            next_ = 1;
        while (next_ + 1 < places_.size() && places_[next_].along < along)
            ++next_;
        const FitPlace& to = places_[next_];
        const FitPlace& from = places_[next_ - 1];
        const double step = to.along - from.along;
        const double t = step > 0.0 ? std::clamp((along - from.along) / step, 0.0, 1.0) : 0.0;
        at = from.at + (to.at - from.at) * t;
        return true;
    }

private:
    const std::vector<FitPlace>& places_;
    bool closed_;
    double total_;
    std::size_t next_ = 1;
};

double AngleBetween(ShapePlace a, ShapePlace b)
{
    return std::abs(std::atan2(a.x * b.y - a.y * b.x, Dot(a, b)));
}

} // namespace

/// The angle at a place among others that lie far apart; 0: it turns no more than twice as much as
/// at the places before and after, as a bend does.
double FitStroke::SparseTurn(int place, double least) const
{
    const int count = int(places.size());
    const auto turnAt = [&](int i) {
        const int before = i > 0 ? i - 1 : closed ? i + count - 2 : -1;
        const int after = i + 1 < count ? i + 1 : closed ? 1 : -1;
        if (before < 0 || after < 0)
            return 0.0;
        const ShapePlace at = places[std::size_t(i)].at;
        return AngleBetween(at - places[std::size_t(before)].at,
                            places[std::size_t(after)].at - at);
    };
    const double turn = turnAt(place);
    return turn >= least && turn > 2.0 * std::max(turnAt(place - 1), turnAt(place + 1)) ? turn
                                                                                        : 0.0;
}

/// The place near a corner that is furthest from the line between those before and behind it.
int FitStroke::TipNear(int corner, double reach) const
{
    const int last = int(places.size()) - 1;
    const auto within = [&](int k) {
        return std::abs(places[std::size_t(k)].along - places[std::size_t(corner)].along) <= reach;
    };
    int from = corner;
    int to = corner;
    while (from > 0 && within(from - 1))
        --from;
    while (to < last && within(to + 1))
        ++to;
    const ShapePlace begin = places[std::size_t(from)].at;
    const ShapePlace chord = places[std::size_t(to)].at - begin;
    int tip = corner;
    double most = 0.0;
    for (int k = from + 1; k < to; ++k) {
        const ShapePlace by = places[std::size_t(k)].at - begin;
        const double away = std::abs(chord.x * by.y - chord.y * by.x);
        if (away > most) {
            most = away;
            tip = k;
        }
    }
    return tip;
}

/// A corner turns by as much over a short way as over twice of it; a bend turns by less.
void FitStroke::FindCorners(const FitOptions& options)
{
    const int count = int(places.size());
    if (count < 3) {
        for (int i = 0; i < count; ++i)
            corners.push_back(i);
        return;
    }
    const double reach = std::max(4.0 * options.error, 1e-3 * places.back().along);
    const double least = options.cornerAngle * std::numbers::pi / 180.0;
    Walker walkers[4] = {Walker(*this), Walker(*this), Walker(*this), Walker(*this)};
    std::vector<double> turns(places.size(), 0.0);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (i + 1 < places.size() && i > 0 &&
            std::max(places[i].along - places[i - 1].along, places[i + 1].along - places[i].along) >
                reach) {
            turns[i] = SparseTurn(int(i), least);
            continue;
        }
        const auto turn = [&](int walker, double way, double& angle) {
            ShapePlace before;
            ShapePlace after;
            if (!walkers[walker].At(places[i].along - way, before) ||
                !walkers[walker + 1].At(places[i].along + way, after))
                return false;
            angle = AngleBetween(places[i].at - before, after - places[i].at);
            return true;
        };
        double near = 0.0;
        double far = 0.0;
        if (turn(0, reach, near) && near >= least &&
            (!turn(2, 2.0 * reach, far) || far < 1.5 * near))
            turns[i] = near;
    }
    if (!closed)
        corners.push_back(0);
    const int end = closed ? count - 1 : count;
    for (int i = closed ? 0 : 1; i < end - int(!closed); ++i) {
        const std::size_t at = std::size_t(i);
        bool isMost = turns[at] > 0.0;
        for (int step = -1; step <= 1; step += 2) {
            for (int k = i + step; isMost && k >= 0 && k < end; k += step) {
                const std::size_t other = std::size_t(k);
                if (std::abs(places[other].along - places[at].along) > reach)
                    break;
                isMost = turns[other] < turns[at] || (turns[other] == turns[at] && k > i);
            }
        }
        if (isMost)
            corners.push_back(TipNear(i, reach));
    }
    std::sort(corners.begin(), corners.end());
    corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
    if (!closed)
        corners.push_back(count - 1);
}

ShapePlace DirectionAt(const FitStroke& stroke, int place, int from, int to, double reach)
{
    // The line through the places around, by least squares.
    const auto& places = stroke.places;
    const FitPlace& middle = places[std::size_t(place)];
    double weights = 0.0;
    double first = 0.0;
    double second = 0.0;
    ShapePlace sum;
    ShapePlace moment;
    const auto add = [&](const FitPlace& other, double away) {
        const ShapePlace by = other.at - middle.at;
        const double weight = other.weight + 1e-12;
        weights += weight;
        first += weight * away;
        second += weight * away * away;
        sum = sum + by * weight;
        moment = moment + by * (weight * away);
    };
    add(middle, 0.0);
    const bool around = stroke.IsRound();
    const int count = int(places.size()) - 1;
    for (const int step : {-1, 1}) {
        for (int k = place + step; around ? std::abs(k - place) < count : k >= from && k <= to;
             k += step) {
            const int turns = around ? (k < 0 ? -1 : k / count) : 0;
            const FitPlace& other = places[std::size_t(k - turns * count)];
            const double away = other.along + turns * places.back().along - middle.along;
            if (std::abs(away) > reach && std::abs(k - place) > 1)
                break;
            add(other, away);
        }
    }
    const double spread = second * weights - first * first;
    if (!(spread > 0.0))
        return {};
    const ShapePlace along = moment * weights - sum * first;
    const double length = Length(along);
    return length > 0.0 ? along * (1.0 / length) : ShapePlace();
}

double FitStroke::Scatter() const
{
    double most = 0.0;
    for (std::size_t i = 1; i + 1 < places.size(); ++i) {
        const ShapePlace chord = places[i + 1].at - places[i - 1].at;
        const double length = Length(chord);
        for (std::size_t k = places[i].first; length > 0.0 && k <= places[i].last; ++k) {
            const ShapePlace by = samples[k] - places[i].at;
            most = std::max(most, std::abs(by.x * chord.y - by.y * chord.x) / length);
        }
    }
    return most;
}

double FarthestSample(const FitStroke& stroke, std::span<const CurveSegment> curve,
                      std::span<const int> segments, double enough)
{
    const int count = int(curve.size());
    const auto exactly = [&](int segment, ShapePlace at) {
        double least = NearestOnSegment(curve[std::size_t(segment)], at, {1.0, 1.0}).square;
        for (const int other : {segment + 1, segment + count - 1})
            least = std::min(
                least, NearestOnSegment(curve[std::size_t(other % count)], at, {1.0, 1.0}).square);
        return std::sqrt(least);
    };
    double most = 0.0;
    double t = 0.0;
    for (std::size_t i = 0; i < stroke.places.size(); ++i) {
        const CurveSegment& segment = curve[std::size_t(segments[i])];
        if (i > 0 && segments[i] != segments[i - 1])
            t = 0.0;
        for (std::size_t k = stroke.places[i].first; k <= stroke.places[i].last; ++k) {
            const ShapePlace at = stroke.samples[k];
            t = Closer(segment, at, t);
            double distance = Length(segment.At(t) - at);
            if (distance > enough)
                distance = exactly(segments[i], at);
            most = std::max(most, distance);
        }
    }
    return most;
}

PolyPoint PointAt(std::span<const StrokeSample> samples, const FitStroke& stroke, int place,
                  ShapePlace at, const FitOptions& options)
{
    PolyPoint point;
    point.x = at.x / options.scale.x;
    point.y = at.y / options.scale.y;
    point.pen = samples[stroke.source[stroke.places[std::size_t(place)].first]].pen;
    return point;
}

double Closer(const CurveSegment& s, ShapePlace at, double t)
{
    for (int i = 0; i < 2; ++i) {
        const ShapePlace by = s.At(t) - at;
        const ShapePlace along = s.Derivative(t);
        const double u = 1.0 - t;
        const auto bend = [&](double a, double b, double c, double d) {
            return 6.0 * (u * (c - 2.0 * b + a) + t * (d - 2.0 * c + b));
        };
        const ShapePlace second(bend(s.from.x, s.control1.x, s.control2.x, s.to.x),
                                bend(s.from.y, s.control1.y, s.control2.y, s.to.y));
        const double slope = Dot(by, along);
        const double curvature = Dot(along, along) + Dot(by, second);
        if (!(curvature > 0.0))
            return t;
        t = std::clamp(t - slope / curvature, 0.0, 1.0);
    }
    return t;
}

} // namespace Marlox
