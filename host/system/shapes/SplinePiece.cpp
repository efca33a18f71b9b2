#include "system/shapes/SplinePiece.h"

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

} // namespace

SplinePieceFit::SplinePieceFit(const FitStroke& stroke, bool isCardinal, double error, int from,
                               int to)
    : stroke_(stroke), isCardinal_(isCardinal), error_(error), from_(from), to_(to),
      spread_(Spread(stroke, from, to, 5.0 * error))
{
}

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

int SplinePieceFit::Most() const
{
    return std::clamp(to_ - from_, Least(), mostSegments);
}

SplinePiece SplinePieceFit::Fit() const
{
    SplinePiece good;
    FewestSegments(Least(), Most(), [&](int segments) {
        SplinePiece made;
        const bool fits = Try(segments, made);
        if (fits || segments == Most())
            good = std::move(made);
        return fits;
    });
    return good;
}

} // namespace Marlox
