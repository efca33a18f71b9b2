#include "system/shapes/SplineFit.h"

#include "system/shapes/FitStroke.h"
#include "system/shapes/ShapeIndex.h"

#include <algorithm>
#include <array>

namespace Marlox {

namespace {

constexpr int rounds = 8;
constexpr double hopeless = 12.0; // times the error
constexpr double stay = 1e-7;     // weight of where a vertex is, for those that no target tells of

/// How the control points of a segment are made of four vertices: before, from, to, after.
struct Weights {
    std::array<int, 4> vertices;
    std::array<std::array<double, 4>, 4> controls; // of from, control1, control2, to
};

Weights WeightsOf(const SplineForm& s, int segment)
{
    const int count = int(s.at.size());
    const auto neighbour = [&](int i, int other) {
        return s.closed ? (i + count) % count : i >= 0 && i < count ? i : other;
    };
    const int from = segment;
    const int to = neighbour(segment + 1, segment);
    const bool isFirst = !s.closed && from == 0;
    const bool isLast = !s.closed && to == count - 1;
    Weights w{{neighbour(from - 1, from), from, to, neighbour(segment + 2, to)}, {}};
    const double a = 1.0 - s.tension[std::size_t(from)];
    const double b = 1.0 - s.tension[std::size_t(to)];
    if (s.isCardinal) {
        w.controls = {{{0.0, 1.0, 0.0, 0.0},
                       {-a / 6.0, 1.0, a / 6.0, 0.0},
                       {0.0, b / 6.0, 1.0, -b / 6.0},
                       {0.0, 0.0, 1.0, 0.0}}};
        return w;
    }
    const double p = isFirst ? 0.0 : a / 6.0;
    const double q = isLast ? 0.0 : b / 6.0;
    w.controls = {{{p, 1.0 - 2.0 * p, p, 0.0},
                   {0.0, 1.0 - a / 3.0, a / 3.0, 0.0},
                   {0.0, b / 3.0, 1.0 - b / 3.0, 0.0},
                   {0.0, q, 1.0 - 2.0 * q, q}}};
    return w;
}

/// The normal equations: of each vertex with those up to three further on both sides.
struct Equations {
    static constexpr int reach = 3;
    std::vector<std::array<double, 2 * reach + 1>> rows;
    std::vector<ShapePlace> right;
    bool closed;

    std::vector<ShapePlace> Times(const std::vector<ShapePlace>& x) const
    {
        const int count = int(rows.size());
        std::vector<ShapePlace> y(rows.size());
        for (int i = 0; i < count; ++i) {
            for (int d = -reach; d <= reach; ++d) {
                const int k = closed ? ((i + d) % count + count) % count : i + d;
                if (k >= 0 && k < count)
                    y[std::size_t(i)] =
                        y[std::size_t(i)] +
                        x[std::size_t(k)] * rows[std::size_t(i)][std::size_t(d + reach)];
            }
        }
        return y;
    }
};

Equations EquationsOf(const SplineForm& spline, std::span<const SplineTarget> targets)
{
    Equations e{{}, {}, spline.closed};
    e.rows.resize(spline.at.size());
    e.right.resize(spline.at.size());
    double sum = 0.0;
    for (const SplineTarget& target : targets) {
        const int segment = std::min(int(target.parameter), spline.Segments() - 1);
        const double t = target.parameter - segment;
        const double u = 1.0 - t;
        const double bernstein[] = {u * u * u, 3.0 * u * u * t, 3.0 * u * t * t, t * t * t};
        const Weights w = WeightsOf(spline, segment);
        double basis[4] = {};
        for (std::size_t v = 0; v < 4; ++v) {
            for (std::size_t c = 0; c < 4; ++c)
                basis[v] += bernstein[c] * w.controls[c][v];
        }
        // At open ends the missing neighbour is the end itself.
        int place[4];
        for (int v = 0; v < 4; ++v)
            place[v] = spline.closed ? segment - 1 + v : w.vertices[std::size_t(v)];
        for (std::size_t v = 0; v < 4; ++v) {
            const std::size_t row = std::size_t(w.vertices[v]);
            for (std::size_t o = 0; o < 4; ++o)
                e.rows[row][std::size_t(place[o] - place[v] + Equations::reach)] +=
                    target.weight * basis[v] * basis[o];
            e.right[row] = e.right[row] + target.at * (target.weight * basis[v]);
        }
        sum += target.weight;
    }
    const double weight = stay * sum / double(spline.at.size());
    for (std::size_t i = 0; i < spline.at.size(); ++i) {
        e.rows[i][Equations::reach] += weight;
        e.right[i] = e.right[i] + spline.at[i] * weight;
    }
    return e;
}

} // namespace

CurveSegment SplineForm::Segment(int index) const
{
    const Weights w = WeightsOf(*this, index);
    std::array<ShapePlace, 4> controls;
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t v = 0; v < 4; ++v)
            controls[c] = controls[c] + at[std::size_t(w.vertices[v])] * w.controls[c][v];
    }
    return {controls[0], controls[1], controls[2], controls[3]};
}

/// By conjugate gradients: the equations are few, sparse and well tempered.
void SolveSpline(SplineForm& spline, std::span<const SplineTarget> targets)
{
    const Equations e = EquationsOf(spline, targets);
    const std::size_t count = spline.at.size();
    const auto free = [&](std::vector<ShapePlace> x) {
        for (std::size_t i = 0; i < count; ++i) {
            if (spline.fixed[i])
                x[i] = {};
        }
        return x;
    };
    const auto conditioned = [&](const std::vector<ShapePlace>& x) {
        std::vector<ShapePlace> y(count);
        for (std::size_t i = 0; i < count; ++i)
            y[i] = x[i] * (1.0 / e.rows[i][Equations::reach]);
        return y;
    };
    // Both axes at once, each with its own steps.
    const auto dot = [&](const std::vector<ShapePlace>& a, const std::vector<ShapePlace>& b) {
        ShapePlace sum;
        for (std::size_t i = 0; i < count; ++i)
            sum = sum + ShapePlace(a[i].x * b[i].x, a[i].y * b[i].y);
        return sum;
    };
    const auto add = [&](std::vector<ShapePlace>& to, const std::vector<ShapePlace>& by,
                         ShapePlace factor) {
        for (std::size_t i = 0; i < count; ++i)
            to[i] = to[i] + ShapePlace(by[i].x * factor.x, by[i].y * factor.y);
    };
    const auto ratio = [](ShapePlace a, ShapePlace b) {
        return ShapePlace(b.x > 0.0 ? a.x / b.x : 0.0, b.y > 0.0 ? a.y / b.y : 0.0);
    };
    std::vector<ShapePlace> rest = e.right;
    add(rest, e.Times(spline.at), {-1.0, -1.0});
    rest = free(rest);
    std::vector<ShapePlace> step = conditioned(rest);
    ShapePlace size = dot(rest, step);
    const ShapePlace enough(size.x * 1e-20, size.y * 1e-20);
    for (std::size_t i = 0; i < 2 * count + 20; ++i) {
        if (size.x <= enough.x && size.y <= enough.y)
            break;
        const std::vector<ShapePlace> turned = free(e.Times(step));
        const ShapePlace along = ratio(size, dot(step, turned));
        add(spline.at, step, along);
        add(rest, turned, along * -1.0);
        std::vector<ShapePlace> next = conditioned(rest);
        const ShapePlace left = dot(rest, next);
        add(next, step, ratio(left, size));
        step = std::move(next);
        size = left;
    }
}

double ProjectTargets(const SplineForm& spline, std::span<SplineTarget> targets, double enough)
{
    const int segments = spline.Segments();
    std::vector<CurveSegment> curve;
    for (int i = 0; i < segments; ++i)
        curve.push_back(spline.Segment(i));
    double most = 0.0;
    for (SplineTarget& target : targets) {
        const auto feet = [&](int segment, double guess, double& t) {
            const CurveSegment& s = curve[std::size_t(segment)];
            t = Closer(s, target.at, guess);
            if (const double distance = Length(s.At(t) - target.at); distance <= enough)
                return distance;
            const SegmentFoot foot = NearestOnSegment(s, target.at, {1.0, 1.0});
            t = foot.t;
            return std::sqrt(foot.square);
        };
        int segment = std::min(int(target.parameter), segments - 1);
        double t = 0.0;
        double least = feet(segment, target.parameter - segment, t);
        if (t <= 0.0 || t >= 1.0) { // perhaps on the next one
            const int other = segment + (t <= 0.0 ? -1 : 1);
            const int next = spline.closed ? (other + segments) % segments : other;
            double foot = 0.0;
            if (next >= 0 && next < segments) {
                const double distance = feet(next, t <= 0.0 ? 1.0 : 0.0, foot);
                if (distance < least) {
                    least = distance;
                    segment = next;
                    t = foot;
                }
            }
        }
        target.parameter = segment + t;
        most = std::max(most, least);
    }
    return most;
}

double FitSpline(SplineForm& spline, std::span<SplineTarget> targets, double error)
{
    double before = HUGE_VAL;
    for (int round = 0; round < rounds; ++round) {
        SolveSpline(spline, targets);
        const double distance = ProjectTargets(spline, targets, error);
        if (distance <= error || distance > hopeless * error || distance > 0.98 * before)
            return distance;
        before = distance;
    }
    return before;
}

} // namespace Marlox
