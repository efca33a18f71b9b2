// Freehand strokes to Bezier shapes: from each joint on, the longest piece that one segment fits
// within the error, by least squares with the directions at smooth joints given.

#include "system/shapes/FitStroke.h"

#include <algorithm>
#include <array>
#include <optional>

namespace Marlox {

namespace {

constexpr int rounds = 6; // of moving the parameters and fitting again
constexpr int balancings = 4;
constexpr double directionReach = 5.0; // times the error: from how far around a joint's is taken
constexpr double hopeless = 5.0;       // times the error above it, after the first round
constexpr int mostUsed = 80;           // places that a piece is fitted to

/// A segment that fits the places between two.
struct Piece {
    CurveSegment curve;
    int from = 0;
    int to = 0;
};

/// A direction at an end of a piece; none: free.
using Direction = std::optional<ShapePlace>;

class PieceFit {
public:
    PieceFit(const FitStroke& stroke, double error) : stroke_(stroke), error_(error) {}
    bool Fit(int from, int to, const Direction& start, const Direction& end, CurveSegment& curve);

private:
    const FitPlace& Place(int i) const { return stroke_.places[std::size_t(i)]; }
    void Spread(int from, int to);
    CurveSegment Solve(const Direction& start, const Direction& end) const;
    bool IsSound(const CurveSegment& curve) const;
    double Project(const CurveSegment& curve);
    bool HoldsForAll(const CurveSegment& curve) const;

    const FitStroke& stroke_;
    double error_;
    int from_ = 0;
    int to_ = 0;
    std::vector<int> used_;  // places between from_ and to_, all or some of them
    std::vector<double> at_; // their parameters
};

void PieceFit::Spread(int from, int to)
{
    from_ = from;
    to_ = to;
    const double begin = Place(from).along;
    const double length = std::max(Place(to).along - begin, 1e-300);
    used_.clear();
    at_.clear();
    const int step = 1 + (to - from) / mostUsed;
    for (int i = from + 1; i < to; i += step) {
        used_.push_back(i);
        at_.push_back((Place(i).along - begin) / length);
    }
}

/// Solves a system of up to four equations by elimination; false: it has no one solution.
bool SolveSmall(std::array<std::array<double, 5>, 4>& m, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t pivot = i;
        for (std::size_t k = i + 1; k < count; ++k) {
            if (std::abs(m[k][i]) > std::abs(m[pivot][i]))
                pivot = k;
        }
        std::swap(m[i], m[pivot]);
        if (!(std::abs(m[i][i]) > 1e-12))
            return false;
        for (std::size_t k = 0; k < count; ++k) {
            if (k == i)
                continue;
            const double factor = m[k][i] / m[i][i];
            for (std::size_t c = i; c < 4; ++c)
                m[k][c] -= factor * m[i][c];
            m[k][4] -= factor * m[i][4];
        }
    }
    for (std::size_t i = 0; i < count; ++i)
        m[i][4] /= m[i][i];
    return true;
}

/// The handles of least squares. A given direction leaves one unknown for its handle, the length; a
/// free one two.
CurveSegment PieceFit::Solve(const Direction& start, const Direction& end) const
{
    const ShapePlace p0 = Place(from_).at;
    const ShapePlace p3 = Place(to_).at;
    double s11 = 0.0;
    double s12 = 0.0;
    double s22 = 0.0;
    ShapePlace r1;
    ShapePlace r2;
    for (std::size_t k = 0; k < used_.size(); ++k) {
        const int i = used_[k];
        const double t = at_[k];
        const double u = 1.0 - t;
        const double b1 = 3.0 * u * u * t;
        const double b2 = 3.0 * u * t * t;
        const double weight = Place(i).weight;
        const ShapePlace rest = Place(i).at - p0 * (u * u * u + b1) - p3 * (t * t * t + b2);
        s11 += weight * b1 * b1;
        s12 += weight * b1 * b2;
        s22 += weight * b2 * b2;
        r1 = r1 + rest * (weight * b1);
        r2 = r2 + rest * (weight * b2);
    }
    struct Unknown {
        ShapePlace along;
        bool isLast;
    };
    std::array<Unknown, 4> unknowns;
    std::size_t count = 0;
    const auto add = [&](const Direction& direction, bool isLast) {
        if (direction) {
            unknowns[count++] = {*direction, isLast};
        } else {
            unknowns[count++] = {{1.0, 0.0}, isLast};
            unknowns[count++] = {{0.0, 1.0}, isLast};
        }
    };
    add(start, false);
    add(end, true);
    std::array<std::array<double, 5>, 4> m{};
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < count; ++k) {
            const double s = unknowns[i].isLast != unknowns[k].isLast ? s12
                             : unknowns[i].isLast                     ? s22
                                                                      : s11;
            m[i][k] = s * Dot(unknowns[i].along, unknowns[k].along);
        }
        m[i][4] = Dot(unknowns[i].along, unknowns[i].isLast ? r2 : r1);
    }
    const ShapePlace chord = p3 - p0;
    const double third = (Place(to_).along - Place(from_).along) / 3.0;
    // What the places say nothing of: a third of the way.
    CurveSegment plain{p0, p0 + (start ? *start * third : chord * (1.0 / 3.0)),
                       p3 + (end ? *end * third : chord * (-1.0 / 3.0)), p3};
    if (int(used_.size()) < 1 + int(count) / 2 || !SolveSmall(m, count))
        return plain;
    CurveSegment curve{p0, p0, p3, p3};
    for (std::size_t i = 0; i < count; ++i) {
        ShapePlace& control = unknowns[i].isLast ? curve.control2 : curve.control1;
        control = control + unknowns[i].along * m[i][4];
        const bool isGiven = unknowns[i].isLast ? end.has_value() : start.has_value();
        if (isGiven && !(m[i][4] > 0.02 * third))
            return plain;
    }
    return IsSound(curve) ? curve : plain;
}

/// No loops and no overshooting where there are no places: hardly longer than the stroke.
bool PieceFit::IsSound(const CurveSegment& c) const
{
    const double polygon =
        Length(c.control1 - c.from) + Length(c.control2 - c.control1) + Length(c.to - c.control2);
    const double curve = 0.5 * (polygon + Length(c.to - c.from)); // a good guess
    const double stroke = Place(to_).along - Place(from_).along;
    return curve <= 1.25 * stroke + error_ && Length(c.control1 - c.from) <= 1.5 * stroke &&
           Length(c.control2 - c.to) <= 1.5 * stroke;
}

/// Moves the parameters to where the curve is nearer; the largest distance.
double PieceFit::Project(const CurveSegment& curve)
{
    double most = 0.0;
    for (std::size_t k = 0; k < used_.size(); ++k) {
        const ShapePlace at = Place(used_[k]).at;
        at_[k] = Closer(curve, at, at_[k]);
        const ShapePlace by = curve.At(at_[k]) - at;
        most = std::max(most, Dot(by, by));
    }
    return std::sqrt(most);
}

bool PieceFit::HoldsForAll(const CurveSegment& curve) const
{
    double t = 0.0;
    for (int i = from_ + 1; i < to_; ++i) {
        const ShapePlace at = Place(i).at;
        t = Closer(curve, at, t);
        if (Length(curve.At(t) - at) > error_)
            return false;
    }
    return true;
}

bool PieceFit::Fit(int from, int to, const Direction& start, const Direction& end,
                   CurveSegment& curve)
{
    Spread(from, to);
    double before = 0.0;
    for (int round = 0; round < rounds; ++round) {
        curve = Solve(start, end);
        const double distance = Project(curve);
        if (distance <= error_)
            return int(used_.size()) == to_ - from_ - 1 || HoldsForAll(curve);
        const bool gainsLittle = round > 1 && distance > 0.9 * before && distance > 1.3 * error_;
        if (distance > (1.0 + hopeless / (1 + 2 * round)) * error_ || gainsLittle)
            return false;
        before = distance;
    }
    return false;
}

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
    PieceFit fit(stroke_, error);
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
