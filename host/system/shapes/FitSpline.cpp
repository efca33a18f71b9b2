// Freehand strokes to B-splines and cardinal splines: between corners, as few vertices as hold the
// error, closer where the stroke bends.

#include "system/shapes/SplinePiece.h"

#include <algorithm>

namespace Marlox {

namespace {

/// Corners are shared by two pieces.
std::vector<PolyPoint> Joined(std::span<const StrokeSample> samples, const FitStroke& stroke,
                              const std::vector<SplinePiece>& pieces, const FitOptions& options)
{
    std::vector<PolyPoint> points;
    for (const SplinePiece& piece : pieces) {
        const bool isLast = &piece == &pieces.back();
        const std::size_t count =
            piece.form.at.size() - (piece.form.closed || (isLast && !stroke.closed) ? 0 : 1);
        for (std::size_t i = 0; i < count; ++i) {
            const auto away = [i](const SplineTarget& target) {
                return std::abs(target.parameter - double(i));
            };
            const auto nearest =
                std::min_element(piece.targets.begin(), piece.targets.end(),
                                 [&](const auto& a, const auto& b) { return away(a) < away(b); });
            const auto place = nearest - piece.targets.begin();
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
