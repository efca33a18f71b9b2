// Freehand strokes to B-splines and cardinal splines: between corners, as few vertices as hold the
// error, closer where the stroke bends.

#include "system/shapes/FitStroke.h"
#include "system/shapes/SplineFit.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr int mostSegments = 4000; // of a piece
constexpr double bendShare = 1.0;  // of the bends, to the length's, in how vertices are spread

/// How far along a piece each place is, from 0 to 1, counting bends more than straight parts.
std::vector<double> Spread(const FitStroke& stroke, int from, int to, double reach)
{
    std::vector<double> bends{0.0};
    double sum = 0.0;
    ShapePlace before = DirectionAt(stroke, from, from, to, reach);
    for (int i = from + 1; i <= to; ++i) {
        const ShapePlace along = DirectionAt(stroke, i, from, to, reach);
        const double turn =
            std::abs(std::atan2(before.x * along.y - before.y * along.x, Dot(before, along)));
        const double step =
            stroke.places[std::size_t(i)].along - stroke.places[std::size_t(i - 1)].along;
        sum += std::sqrt(turn * step); // of the root of the curvature over the length
        bends.push_back(sum);
        before = along;
    }
    const double begin = stroke.places[std::size_t(from)].along;
    const double length = stroke.places[std::size_t(to)].along - begin;
    const double share = sum > 0.0 ? bendShare : 0.0;
    for (std::size_t i = 0; i < bends.size(); ++i) {
        const double along = (stroke.places[std::size_t(from) + i].along - begin) / length;
        bends[i] = (along + (sum > 0.0 ? share * bends[i] / sum : 0.0)) / (1.0 + share);
    }
    return bends;
}

/// From the parts of a piece to parameters. At an end the spline has no curvature: one more vertex
/// lies close to it, where there are enough.
double ParameterFor(double part, int segments, bool hasEnds)
{
    constexpr double near = 0.5; // segments
    if (!hasEnds || segments < 4)
        return part * segments;
    const auto fall = [&](double away) { return std::exp(-away * segments / near); };
    return part * (segments - 2) + (1.0 - fall(part)) + fall(1.0 - part) -
           fall(1.0) * (1.0 - part) + fall(1.0) * part;
}

/// A part of a stroke between two corners, or a round one, with the spline that fits it.
struct SplinePiece {
    int from = 0;
    SplineForm form;
    std::vector<SplineTarget> targets; // for each place
};

class SplinePieceFit {
public:
    SplinePieceFit(const FitStroke& stroke, bool isCardinal, double error, int from, int to)
        : stroke_(stroke), isCardinal_(isCardinal), error_(error), from_(from), to_(to),
          spread_(Spread(stroke, from, to, 5.0 * error))
    {
    }
    SplinePiece Fit() const;

private:
    bool Try(int segments, SplinePiece& piece) const;

    const FitStroke& stroke_;
    bool isCardinal_;
    double error_;
    int from_;
    int to_;
    std::vector<double> spread_;
};

bool SplinePieceFit::Try(int segments, SplinePiece& piece) const
{
    const bool isRound = stroke_.IsRound();
    piece.from = from_;
    piece.targets.clear();
    for (std::size_t i = 0; i < spread_.size(); ++i) {
        const FitPlace& place = stroke_.places[std::size_t(from_) + i];
        piece.targets.push_back(
            {place.at,
             std::clamp(ParameterFor(spread_[i], segments, !isRound), 0.0, double(segments)),
             place.weight + 1e-9});
    }
    SplineForm& form = piece.form;
    form = {isCardinal_, isRound, {}, {}, {}};
    std::size_t next = 0;
    for (int i = 0; i < segments + int(!isRound); ++i) { // vertices on the stroke to begin with
        while (next + 1 < spread_.size() && piece.targets[next].parameter < i)
            ++next;
        form.at.push_back(i == segments ? piece.targets.back().at : piece.targets[next].at);
        form.tension.push_back(0.0);
        form.fixed.push_back(0);
    }
    if (!isRound) {
        const int last = int(stroke_.places.size()) - 1;
        form.fixed.front() = form.fixed.back() = 1;
        form.tension.front() = from_ > 0 || stroke_.closed ? 1.0 : 0.0;
        form.tension.back() = to_ < last || stroke_.closed ? 1.0 : 0.0;
    }
    return FitSpline(form, piece.targets, error_) <= error_;
}

SplinePiece SplinePieceFit::Fit() const
{
    const int least = stroke_.IsRound() ? 3 : 1;
    const int most = std::clamp(to_ - from_, least, mostSegments);
    SplinePiece good;
    int fits = least;
    while (!Try(fits, good) && fits < most)
        fits = std::min(fits + fits / 2 + 1, most);
    int fails = fits > least ? std::max((fits - 1) * 2 / 3, least) : least - 1;
    while (fits - fails > 1) {
        const int middle = fails + (fits - fails) / 2;
        SplinePiece made;
        if (Try(middle, made)) {
            good = std::move(made);
            fits = middle;
        } else {
            fails = middle;
        }
    }
    return good;
}

/// Corners are shared by two pieces.
std::vector<PolyPoint> Joined(std::span<const StrokeSample> samples, const FitStroke& stroke,
                              const std::vector<SplinePiece>& pieces, const FitOptions& options)
{
    std::vector<PolyPoint> points;
    for (const SplinePiece& piece : pieces) {
        const bool isLast = &piece == &pieces.back();
        const std::size_t count =
            piece.form.at.size() - (piece.form.closed || (isLast && !stroke.closed) ? 0 : 1);
        std::size_t place = 0;
        for (std::size_t i = 0; i < count; ++i) {
            while (place + 1 < piece.targets.size() && piece.targets[place].parameter < double(i))
                ++place;
            points.push_back(
                PointAt(samples, stroke, piece.from + int(place), piece.form.at[i], options));
            points.back().Set(PPF_Linear, piece.form.tension[i] > 0.0);
        }
    }
    return points;
}

std::vector<PolyPoint> Fit(std::span<const StrokeSample> samples, const FitOptions& options,
                           bool isCardinal)
{
    double spacing = 0.5 * options.error;
    double error = options.error;
    std::vector<PolyPoint> points;
    for (int attempt = 0; attempt < 5; ++attempt) {
        const FitStroke stroke(samples, options, spacing);
        if (stroke.places.empty())
            return {};
        if (stroke.places.size() < 2)
            return {PointAt(samples, stroke, 0, stroke.places[0].at, options)};
        if (attempt == 0 && stroke.samples.size() > 8 * stroke.places.size())
            error = std::max(0.3 * error, error - stroke.Scatter());
        std::vector<int> ends = stroke.corners;
        if (stroke.IsRound())
            ends = {0, int(stroke.places.size()) - 1};
        std::vector<SplinePiece> pieces;
        std::vector<CurveSegment> curve;
        std::vector<int> segments;
        for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
            pieces.push_back(SplinePieceFit(stroke, isCardinal, error, ends[i], ends[i + 1]).Fit());
            const SplinePiece& piece = pieces.back();
            for (std::size_t k = i > 0 ? 1 : 0; k < piece.targets.size(); ++k)
                segments.push_back(int(curve.size()) + std::min(int(piece.targets[k].parameter),
                                                                piece.form.Segments() - 1));
            for (int k = 0; k < piece.form.Segments(); ++k)
                curve.push_back(piece.form.Segment(k));
        }
        points = Joined(samples, stroke, pieces, options);
        const double farthest = FarthestSample(stroke, curve, segments, options.error);
        if (farthest <= options.error)
            break;
        error *= std::clamp(0.9 * options.error / farthest, 0.4, 0.9);
        spacing *= 0.7;
    }
    return points;
}

} // namespace

std::vector<PolyPoint> FitBSpline(std::span<const StrokeSample> stroke, const FitOptions& options)
{
    return Fit(stroke, options, false);
}

std::vector<PolyPoint> FitCardinal(std::span<const StrokeSample> stroke, const FitOptions& options)
{
    return Fit(stroke, options, true);
}

} // namespace Marlox
