#include "system/shapes/PieceFit.h"

#include <algorithm>
#include <array>

namespace Marlox {

namespace {

constexpr int rounds = 6;        // of moving the parameters and fitting again
constexpr double hopeless = 5.0; // times the error above it, after the first round
constexpr int mostUsed = 80;     // places that a piece is fitted to

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

} // namespace

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

} // namespace Marlox
