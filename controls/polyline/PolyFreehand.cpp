// Draw Append: a freehand stroke, which becomes a few points at the end of the shape on release. A
// stroke that ends where the shape begins closes it.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/ShapeFit.h"

#include <cmath>

namespace Marlox {

namespace {

constexpr double fitError = 1.5;       // view pixels
constexpr double leastStep = 1.0;      // view pixels from sample to sample
constexpr std::size_t leastClosed = 4; // points of a closed stroke
constexpr std::size_t mostSamples = 1'000'000;

class Freehand final : public PolyGesture {
public:
    Freehand(PolyLineControl& control, const PolyPointer& pointer) : PolyGesture(control)
    {
        Add(pointer);
    }

    void Move(const PolyPointer& pointer) override
    {
        const OverlayPoint now = pointer.view.ToView(pointer.view.Cursor());
        const double step = leastStep * pointer.view.Info().pixelRatio;
        if (std::hypot(now.x - last_.x, now.y - last_.y) >= step && stroke_.size() < mostSamples)
            Add(pointer);
    }

    void Finish(const PolyPointer& pointer) override
    {
        Move(pointer);
        PolyEditor& editor = Editor();
        const PolyLine* shape = editor.Active();
        if (!shape)
            return;
        std::vector<PolyPoint> points = Fitted(*shape, pointer.view);
        const auto room = std::size_t(PolyLine::maxPoints - shape->GetCount());
        if (points.size() > room)
            points.resize(room);
        if (points.empty())
            return;
        const bool closes = closes_ && shape->GetCount() + int(points.size()) >= 2;
        const int active = editor.ActivePolygon();
        const bool both = editor.IsMatched();
        const int first = shape->GetCount();
        Begin("Freehand Add Points");
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            if (polygon == active || both)
                editor.Change(polygon, PolyEditor::Scope::Keys, [&](PolyLine& each) {
                    for (const PolyPoint& point : points)
                        each.Append(point);
                });
        }
        SelectFrom(first);
        if (closes)
            TogglePolygonClosed(Control());
    }

    void Draw(OverlayPainter& painter, const PolyView& view) const override
    {
        std::vector<OverlayPoint> places;
        for (const StrokeSample& sample : stroke_)
            places.push_back(view.ToView(sample.at));
        painter.SetColor(OverlayColor::Highlight);
        painter.Strip(places);
    }

private:
    void Add(const PolyPointer& pointer)
    {
        last_ = pointer.view.ToView(pointer.view.Cursor());
        stroke_.push_back({pointer.view.Cursor(), Recorded(pointer.pen)});
    }

    /// The channels that are to be kept.
    PenSample Recorded(const PenSample& pen) const
    {
        const PolySettings& settings = Control().Settings();
        PenSample kept;
        kept.time = settings.recordTime ? pen.time : 0.0f;
        kept.pressure = settings.recordPressure ? pen.pressure : 0.0f;
        kept.height = settings.recordHeight ? pen.height : 0.0f;
        kept.angleXY = settings.recordAngleXY ? pen.angleXY : 0.0f;
        kept.angleZ = settings.recordAngleZ ? pen.angleZ : 0.0f;
        kept.rotation = settings.recordRotation ? pen.rotation : 0.0f;
        return kept;
    }

    std::vector<PolyPoint> Fitted(const PolyLine& shape, const PolyView& view)
    {
        FitOptions options;
        options.error = fitError * view.Info().pixelRatio;
        const double size = std::abs(view.Placement().size);
        options.scale = {view.Info().imageWidth * size, view.Info().imageHeight * size};
        const ShapePlace begin = shape.GetCount() > 0 ? shape.First()->Place() : stroke_.front().at;
        const OverlayPoint from = view.ToView(begin);
        const double radius = view.Info().pickRadius;
        closes_ = !shape.IsClosed() && stroke_.size() > 3 && std::abs(last_.x - from.x) < radius &&
                  std::abs(last_.y - from.y) < radius;
        options.closed = closes_ && shape.GetCount() == 0;
        std::vector<PolyPoint> points = FitTo(shape, options);
        return options.closed && points.size() < leastClosed ? Divided(points) : points;
    }

    /// A closed shape that can be animated has more points than a close fit may need: one more in
    /// the middle of each segment, which leaves the form.
    static std::vector<PolyPoint> Divided(const std::vector<PolyPoint>& points)
    {
        PolyLine shape;
        shape.SetPoints(points);
        shape.Close();
        for (int i = shape.GetSegmentsCount() - 1; i >= 0; --i)
            shape.InsertPoint(i, 0.5);
        return {shape.Points().begin(), shape.Points().end()};
    }

    std::vector<PolyPoint> FitTo(const PolyLine& shape, const FitOptions& options) const
    {
        if (shape.GetDataType() == MxID(CLSID_DataType_BSplinePolyline))
            return FitBSpline(stroke_, options);
        if (shape.GetDataType() == MxID(CLSID_DataType_CardinalSplinePolyline))
            return FitCardinal(stroke_, options);
        return FitBezier(stroke_, options);
    }

    void SelectFrom(int first)
    {
        PolyEditor& editor = Editor();
        PolyEditor::Masks masks = editor.Selections();
        SelMask& mask = masks[std::size_t(editor.ActivePolygon())];
        mask.Reset();
        for (int i = first; i < mask.Count(); ++i)
            mask.DoSet(i, SelMask::Select);
        editor.SetSelections(masks);
    }

    std::vector<StrokeSample> stroke_;
    OverlayPoint last_; // view pixels
    bool closes_ = false;
};

} // namespace

std::unique_ptr<PolyGesture> MakeFreehand(PolyLineControl& control, const PolyPointer& pointer)
{
    if (control.Editor().IsFull())
        return std::make_unique<PolyNoGesture>(control);
    return std::make_unique<Freehand>(control, pointer);
}

} // namespace Marlox
