#include "system/shapes/FitStroke.h"

#include "system/shapes/ShapeIndex.h"

#include <algorithm>

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
