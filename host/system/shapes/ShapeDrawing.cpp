#include "system/shapes/ShapeDrawing.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double flatness = 0.1; // of the lines that a segment is made of, view pixels
constexpr double thinness = 0.3; // how far places that are left out may lie from the line
constexpr double farthest = 1e14;
constexpr double mostSteps = 32.0; // before a segment is halved and its outer parts are left out
constexpr int deepest = 50;

double Cross(ShapePlace a, ShapePlace b)
{
    return a.x * b.y - a.y * b.x;
}

double Dot(ShapePlace a, ShapePlace b)
{
    return a.x * b.x + a.y * b.y;
}

/// Takes places of a line one by one and leaves out those that lie next to the line between their
/// neighbours: from the last place that was kept on, the directions that pass all later ones near
/// enough are a cone, which only gets narrower.
class Thinner {
public:
    explicit Thinner(ViewStrips& strips) : strips_(strips) {}

    void Begin(ShapePlace at)
    {
        if (isOpen_ && at == last_)
            return;
        End();
        isOpen_ = true;
        Anchor(at);
        last_ = at;
    }
    void To(ShapePlace at)
    {
        if (at == last_)
            return;
        ShapePlace by = at - anchor_;
        double length = std::sqrt(Dot(by, by));
        const bool turnsBack = length < reach_ - thinness;
        const bool isOutside = hasCone_ && (Cross(right_, by) < 0.0 || Cross(by, left_) < 0.0);
        if (turnsBack || isOutside) {
            Anchor(last_);
            by = at - anchor_;
            length = std::sqrt(Dot(by, by));
        }
        last_ = at;
        reach_ = std::max(reach_, length);
        if (length > thinness)
            Narrow(by, thinness / length);
    }
    void End()
    {
        if (!isOpen_)
            return;
        if (!(last_ == anchor_))
            strips_.Add({last_.x, last_.y});
        strips_.EndStrip();
        isOpen_ = false;
    }

private:
    void Anchor(ShapePlace at)
    {
        strips_.Add({at.x, at.y});
        anchor_ = at;
        reach_ = 0.0;
        hasCone_ = false;
    }
    void Narrow(ShapePlace by, double sine)
    {
        const double cosine = std::sqrt(1.0 - sine * sine);
        const ShapePlace left(by.x * cosine - by.y * sine, by.y * cosine + by.x * sine);
        const ShapePlace right(by.x * cosine + by.y * sine, by.y * cosine - by.x * sine);
        if (!hasCone_ || Cross(left_, left) < 0.0)
            left_ = left;
        if (!hasCone_ || Cross(right_, right) > 0.0)
            right_ = right;
        hasCone_ = true;
    }

    ViewStrips& strips_;
    bool isOpen_ = false;
    bool hasCone_ = false;
    ShapePlace anchor_; // the last place that was kept
    ShapePlace last_;   // that was taken
    ShapePlace left_;   // edges of the cone
    ShapePlace right_;
    double reach_ = 0.0; // how far from the anchor places were
};

/// Segments of a shape, in view pixels, to lines.
class Flattener {
public:
    Flattener(const CurveView& view, ViewStrips& strips)
        : low_(-view.margin, -view.margin),
          high_(view.width + view.margin, view.height + view.margin), thinner_(strips)
    {
    }
    void Add(const CurveSegment& s, int depth = 0);
    void Lift() { thinner_.End(); }

private:
    bool IsOutside(const CurveSegment& s) const;
    bool IsLong(const CurveSegment& s) const;

    ShapePlace low_;
    ShapePlace high_;
    Thinner thinner_;
};

/// True also of what is no number.
bool Flattener::IsOutside(const CurveSegment& s) const
{
    const auto [left, right] = std::minmax({s.from.x, s.control1.x, s.control2.x, s.to.x});
    const auto [bottom, top] = std::minmax({s.from.y, s.control1.y, s.control2.y, s.to.y});
    return !(right >= low_.x && left <= high_.x && top >= low_.y && bottom <= high_.y &&
             left > -farthest && right < farthest && bottom > -farthest && top < farthest);
}

/// Mostly outside: its parts outside are left out.
bool Flattener::IsLong(const CurveSegment& s) const
{
    const double longest = 2.0 * (high_.x - low_.x + high_.y - low_.y);
    const auto isFar = [&](ShapePlace at) {
        return std::abs(at.x - s.from.x) > longest || std::abs(at.y - s.from.y) > longest;
    };
    return isFar(s.control1) || isFar(s.control2) || isFar(s.to);
}

void Flattener::Add(const CurveSegment& s, int depth)
{
    if (IsOutside(s))
        return Lift();
    const auto bend = [](ShapePlace a, ShapePlace b, ShapePlace c) {
        const ShapePlace by(a.x - 2.0 * b.x + c.x, a.y - 2.0 * b.y + c.y);
        return Dot(by, by);
    };
    // Chords of a step h lie within h^2 / 8 of the second derivative of the curve.
    const double most = std::sqrt(
        std::max(bend(s.from, s.control1, s.control2), bend(s.control1, s.control2, s.to)));
    const double steps = s.IsStraight() ? 1.0 : std::ceil(std::sqrt(0.75 * most / flatness));
    if ((steps > mostSteps || IsLong(s)) && depth < deepest) {
        const auto middle = [](ShapePlace a, ShapePlace b) {
            return ShapePlace(0.5 * (a.x + b.x), 0.5 * (a.y + b.y));
        };
        const ShapePlace a = middle(s.from, s.control1);
        const ShapePlace b = middle(s.control1, s.control2);
        const ShapePlace c = middle(s.control2, s.to);
        const ShapePlace ab = middle(a, b);
        const ShapePlace bc = middle(b, c);
        const ShapePlace at = middle(ab, bc);
        Add({s.from, a, ab, at}, depth + 1);
        return Add({at, bc, c, s.to}, depth + 1);
    }
    thinner_.Begin(s.from);
    const int count = int(std::clamp(steps, 1.0, mostSteps));
    for (int i = 1; i < count; ++i)
        thinner_.To(s.At(double(i) / count));
    thinner_.To(s.to);
}

} // namespace

CurveView CurveView::Of(const PreviewInfo& view)
{
    CurveView made;
    view.TransformOut(0.0, 0.0, made.offset.x, made.offset.y);
    ShapePlace corner;
    view.TransformOut(1.0, 1.0, corner.x, corner.y);
    made.scale = corner - made.offset;
    made.width = view.viewWidth;
    made.height = view.viewHeight;
    made.margin *= std::max(view.controlScale, 1.0);
    return made;
}

// Strips -----------------------------------------------------------------------------------------

void ViewStrips::Clear()
{
    points_.clear();
    ends_.clear();
}

void ViewStrips::EndStrip()
{
    const std::size_t begin = ends_.empty() ? 0 : ends_.back();
    if (points_.size() < begin + 2)
        points_.resize(begin);
    else
        ends_.push_back(points_.size());
}

std::span<const OverlayPoint> ViewStrips::Strip(int index) const
{
    const std::size_t begin = index > 0 ? ends_[std::size_t(index) - 1] : 0;
    return std::span(points_).subspan(begin, ends_[std::size_t(index)] - begin);
}

void ViewStrips::Draw(OverlayPainter& painter) const
{
    for (int i = 0; i < Count(); ++i)
        painter.Strip(Strip(i));
}

void ViewStrips::Dash(double dash, double gap, ViewStrips& dashes) const
{
    dashes.Clear();
    for (int strip = 0; strip < Count(); ++strip) {
        const std::span<const OverlayPoint> points = Strip(strip);
        bool isOn = true;
        double left = dash; // of the dash or the gap
        dashes.Add(points.front());
        for (std::size_t i = 1; i < points.size(); ++i) {
            const OverlayPoint from = points[i - 1];
            const OverlayPoint by{points[i].x - from.x, points[i].y - from.y};
            const double length = std::hypot(by.x, by.y);
            double done = 0.0;
            for (; length - done > left; left = isOn ? dash : gap) {
                done += left;
                dashes.Add({from.x + by.x * done / length, from.y + by.y * done / length});
                if (isOn)
                    dashes.EndStrip();
                isOn = !isOn;
            }
            left -= length - done;
            if (isOn)
                dashes.Add(points[i]);
        }
        dashes.EndStrip();
    }
}

// Curves -----------------------------------------------------------------------------------------

void MakeThinCurve(const PolyLine& shape, const CurveView& view, ViewStrips& strips)
{
    strips.Clear();
    Flattener flattener(view, strips);
    const int segments = shape.GetSegmentsCount();
    for (int i = 0; i < segments; ++i) {
        if (shape.Points()[std::size_t(i)].Has(PPF_Gap)) {
            flattener.Lift();
            continue;
        }
        const CurveSegment s = shape.Segment(i);
        flattener.Add(
            {view.Out(s.from), view.Out(s.control1), view.Out(s.control2), view.Out(s.to)});
    }
    flattener.Lift();
}

const ViewStrips& ThinCurve::Make(const Ref<PolyLine>& shape, const CurveView& view)
{
    if (shape_ == shape && view_ == view && shape)
        return strips_;
    strips_.Clear();
    if (shape)
        MakeThinCurve(*shape, view, strips_);
    shape_ = shape;
    view_ = view;
    return strips_;
}

} // namespace Marlox
