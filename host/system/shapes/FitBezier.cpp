// Freehand strokes to Bezier shapes: from each joint on, the longest piece that one segment fits
// within the error, by least squares with the directions at smooth joints given.

#include "system/shapes/PieceFit.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr int balancings = 4;
constexpr double directionReach = 5.0; // times the error: from how far around a joint's is taken

/// A segment that fits the places between two.
struct Piece {
    CurveSegment curve;
    int from = 0;
    int to = 0;
};

/// A whole stroke.
class StrokeFit {
public:
    StrokeFit(const FitStroke& stroke, double error) : stroke_(stroke), error_(error) {}
    std::vector<Piece> Pieces() const;

private:
    std::vector<Piece> Run(int from, int to, double error) const;
    int Reach(PieceFit& fit, int at, int from, int to, const Direction& start, int guess,
              CurveSegment& curve) const;
    Direction JointAt(int place, int from, int to) const
    {
        const ShapePlace along = DirectionAt(stroke_, place, from, to, directionReach * error_);
        return Dot(along, along) > 0.0 ? Direction(along) : std::nullopt;
    }
    static Direction Turned(const Direction& direction)
    {
        return direction ? Direction(*direction * -1.0) : std::nullopt;
    }

    const FitStroke& stroke_;
    double error_;
};

/// The furthest place up to which one segment fits: longer and longer pieces are tried, then
/// between the last that fits and the first that does not.
int StrokeFit::Reach(PieceFit& fit, int at, int from, int to, const Direction& start, int guess,
                     CurveSegment& curve) const
{
    const auto fits = [&](int end, CurveSegment& made) {
        const bool isOpenEnd = end == to && !stroke_.IsRound();
        return fit.Fit(at, end, start, isOpenEnd ? Direction() : Turned(JointAt(end, from, to)),
                       made);
    };
    int good = at + 1;
    fits(good, curve);
    int bad = to + 1;
    CurveSegment made;
    for (int step = std::max(guess, 2); good < to; step *= 2) {
        const int next = std::min(at + step, to);
        if (next <= good)
            continue;
        if (!fits(next, made)) {
            bad = next;
            break;
        }
        good = next;
        curve = made;
    }
    while (bad - good > 1) {
        const int middle = good + (bad - good) / 2;
        if (fits(middle, made)) {
            good = middle;
            curve = made;
        } else {
            bad = middle;
        }
    }
    return good;
}

std::vector<Piece> StrokeFit::Run(int from, int to, double error) const
{
    std::vector<Piece> pieces;
    PieceFit fit(stroke_.places, error);
    Direction start = stroke_.IsRound() ? JointAt(from, from, to) : Direction();
    for (int at = from; at < to;) {
        Piece piece;
        const int guess = pieces.empty() ? to - at : pieces.back().to - pieces.back().from;
        piece.from = at;
        piece.to = Reach(fit, at, from, to, start, guess, piece.curve);
        pieces.push_back(piece);
        at = piece.to;
        start = JointAt(at, from, to);
    }
    return pieces;
}

std::vector<Piece> StrokeFit::Pieces() const
{
    std::vector<int> ends = stroke_.corners;
    if (stroke_.IsRound())
        ends = {0, int(stroke_.places.size()) - 1};
    std::vector<Piece> all;
    for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
        std::vector<Piece> best = Run(ends[i], ends[i + 1], error_);
        // As many pieces may fit closer, with none of them a mere rest.
        double low = 0.0;
        double high = error_;
        for (int k = 0; k < balancings && best.size() > 1; ++k) {
            const double middle = 0.5 * (low + high);
            std::vector<Piece> made = Run(ends[i], ends[i + 1], middle);
            if (made.size() <= best.size()) {
                best = std::move(made);
                high = middle;
            } else {
                low = middle;
            }
        }
        all.insert(all.end(), best.begin(), best.end());
    }
    return all;
}

/// Corners are broken; between straight pieces they have no handles.
std::vector<PolyPoint> PointsOf(std::span<const StrokeSample> samples, const FitStroke& stroke,
                                const std::vector<Piece>& pieces, const FitOptions& options)
{
    const auto handle = [&](ShapePlace control, ShapePlace at) {
        return ShapePlace((control.x - at.x) / options.scale.x,
                          (control.y - at.y) / options.scale.y);
    };
    const std::size_t count = stroke.places.empty() ? 0 : pieces.size() + (stroke.closed ? 0 : 1);
    std::vector<PolyPoint> points;
    for (std::size_t i = 0; i < count; ++i) {
        const Piece* out = i < pieces.size() ? &pieces[i] : nullptr;
        const Piece* in = i > 0 ? &pieces[i - 1] : stroke.closed ? &pieces.back() : nullptr;
        const int place = out ? out->from : in ? in->to : 0;
        const ShapePlace at = stroke.places[std::size_t(place)].at;
        PolyPoint point = PointAt(samples, stroke, place, at, options);
        if (out) {
            const ShapePlace by = handle(out->curve.control1, at);
            point.outX = by.x;
            point.outY = by.y;
        }
        if (in) {
            const ShapePlace by = handle(in->curve.control2, at);
            point.inX = by.x;
            point.inY = by.y;
        }
        const bool isCorner =
            in && out && std::binary_search(stroke.corners.begin(), stroke.corners.end(), place);
        point.Set(PPF_Broken, isCorner);
        points.push_back(point);
    }
    return points;
}

} // namespace

std::vector<PolyPoint> FitBezier(std::span<const StrokeSample> samples, const FitOptions& options)
{
    double spacing = 0.5 * options.error;
    double error = options.error;
    std::vector<PolyPoint> points;
    for (int attempt = 0; attempt < 5; ++attempt) {
        const FitStroke stroke(samples, options, spacing);
        if (stroke.places.size() < 2)
            return PointsOf(samples, stroke, {}, options);
        if (attempt == 0 && stroke.samples.size() > 8 * stroke.places.size())
            error = std::max(0.3 * error, error - stroke.Scatter());
        const std::vector<Piece> pieces = StrokeFit(stroke, error).Pieces();
        points = PointsOf(samples, stroke, pieces, options);
        std::vector<CurveSegment> curve;
        std::vector<int> segments; // of the places
        for (const Piece& piece : pieces) {
            segments.resize(std::size_t(piece.to), int(curve.size()));
            curve.push_back(piece.curve);
        }
        segments.push_back(int(curve.size()) - 1);
        const double farthest = FarthestSample(stroke, curve, segments, options.error);
        if (farthest <= options.error)
            break;
        error *= std::clamp(0.9 * options.error / farthest, 0.4, 0.9);
        spacing *= 0.7;
    }
    return points;
}

} // namespace Marlox
