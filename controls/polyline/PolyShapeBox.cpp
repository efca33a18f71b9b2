// The shape box: a frame a little outside the selected points, or all with fewer than two selected.
// Its corners and sides scale them about the opposite one (Ctrl: about the middle; Shift: alike in
// both directions), the knob above it turns them (Shift: in steps), its inside moves them.

#include "controls/polyline/PointTransform.h"
#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyMoveRule.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace Marlox {

namespace {

constexpr double margin = 10.0;       // from the points to the frame, mark pixels
constexpr double knobDistance = 22.0; // of the knob from the top side, mark pixels
constexpr double turnStep = 15.0;     // degrees, with Shift
constexpr MxColor boxColor{214, 214, 214};
constexpr std::array<OverlayPoint, 4> gripMark{{{-3, -3}, {3, -3}, {3, 3}, {-3, 3}}};
constexpr std::array<OverlayPoint, 8> knobMark{{{3.5, 1.5},
                                                {1.5, 3.5},
                                                {-1.5, 3.5},
                                                {-3.5, 1.5},
                                                {-3.5, -1.5},
                                                {-1.5, -3.5},
                                                {1.5, -3.5},
                                                {3.5, -1.5}}};

/// What of the box is held: a side or corner by its direction, the knob, or the inside.
struct Grip {
    enum Kind { Nothing, Side, Knob, Inside };
    Kind kind = Nothing;
    int x = 0; // -1: left, 1: right
    int y = 0; // -1: bottom, 1: top
};

/// The box in the shape's coordinates.
struct Box {
    ShapePlace low;
    ShapePlace high;

    ShapePlace Middle() const { return {(low.x + high.x) / 2.0, (low.y + high.y) / 2.0}; }
    ShapePlace At(int x, int y) const
    {
        const ShapePlace middle = Middle();
        return {x < 0   ? low.x
                : x > 0 ? high.x
                        : middle.x,
                y < 0   ? low.y
                : y > 0 ? high.y
                        : middle.y};
    }
};

/// The points that the box works on; of the other polygon, those that it takes along.
SelMask MaskOf(const PolyLineControl& control, int polygon)
{
    const PolyEditor& editor = control.Editor();
    const PolySettings& settings = control.Settings();
    const int count = editor.Selection(polygon).Count();
    if (!editor.IsShown(polygon))
        return SelMask(count);
    const SelMask& selected = editor.ActiveSelection();
    const bool all = selected.SetCount() < 2 || selected.IsAllSet(); // one has no extent
    if (polygon == editor.ActivePolygon())
        return all ? SelMask(count, true) : selected;
    const bool follows = polygon == OuterPolygon && settings.followInner && editor.IsMatched();
    if (all && (settings.shapeBoxBoth || follows))
        return SelMask(count, true);
    if (!settings.shapeBoxBoth)
        return editor.EditedMask(polygon);
    SelMask matching;
    SetMatchingPolyLinePointMask(selected, count, matching);
    return matching;
}

std::optional<Box> BoxOf(const PolyLineControl& control)
{
    const PolyEditor& editor = control.Editor();
    const bool edits = control.Mode() == PolyDrawMode::InsertAndModify ||
                       control.Mode() == PolyDrawMode::ModifyOnly;
    if (!control.Settings().shapeBox || !edits)
        return {};
    std::vector<ShapePlace> places;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (polygon != editor.ActivePolygon() && !control.Settings().shapeBoxBoth)
            continue;
        for (const int index : MaskOf(control, polygon).Items())
            places.push_back(editor.Shape(polygon)->GetPoint(index)->Place());
    }
    const ShapeBounds bounds = CalcMinMax(places);
    if (bounds.isEmpty || places.size() < 2)
        return {};
    return Box{bounds.low, bounds.high};
}

/// A change of places and of distances, in the shape's coordinates.
struct Affine {
    double xx = 1.0;
    double xy = 0.0;
    double yx = 0.0;
    double yy = 1.0;
    ShapePlace about;
    ShapePlace by;

    ShapePlace Vector(ShapePlace v) const { return {xx * v.x + xy * v.y, yx * v.x + yy * v.y}; }
    ShapePlace Place(ShapePlace at) const { return about + by + Vector(at - about); }

    void Apply(PolyPoint& point) const
    {
        TransformPoint(
            point, [this](ShapePlace at) { return Place(at); },
            [this](ShapePlace by) { return Vector(by); });
    }
};

/// Where the frame shows in a view: around the box with a margin, which no drag counts. While the
/// box is dragged it is changed as its points are.
class Frame {
public:
    Frame(const Box& box, const PolyView& view, const Affine& change = {})
        : view_(view), change_(change), middle_(view.ToView(change.Place(box.Middle()))),
          right_(Towards(box, {1.0, 0.0})), up_(Towards(box, {0.0, 1.0})),
          scale_(view.Info().controlScale)
    {
        const OverlayPoint corner = view.ToView(change.Place(box.high));
        const OverlayPoint half{corner.x - middle_.x, corner.y - middle_.y};
        halfWidth_ = std::abs(half.x * right_.x + half.y * right_.y) + margin * scale_;
        halfHeight_ = std::abs(half.x * up_.x + half.y * up_.y) + margin * scale_;
    }

    OverlayPoint At(int x, int y) const { return Place(x * halfWidth_, y * halfHeight_); }
    OverlayPoint Knob() const { return Place(0.0, halfHeight_ + knobDistance * scale_); }
    Grip GripAt(OverlayPoint at) const
    {
        const double radius = view_.Info().pickRadius;
        const auto isNear = [&](OverlayPoint other) {
            return std::abs(at.x - other.x) < radius && std::abs(at.y - other.y) < radius;
        };
        if (isNear(Knob()))
            return {Grip::Knob};
        for (const int corners : {2, 1}) { // corners before sides
            for (int x = -1; x <= 1; ++x) {
                for (int y = -1; y <= 1; ++y) {
                    if (std::abs(x) + std::abs(y) == corners && isNear(At(x, y)))
                        return {Grip::Side, x, y};
                }
            }
        }
        const OverlayPoint by{at.x - middle_.x, at.y - middle_.y};
        const bool inside = std::abs(by.x * right_.x + by.y * right_.y) < halfWidth_ &&
                            std::abs(by.x * up_.x + by.y * up_.y) < halfHeight_;
        return {inside ? Grip::Inside : Grip::Nothing};
    }

private:
    /// A direction of the shape, of length 1 in the view.
    OverlayPoint Towards(const Box& box, ShapePlace by) const
    {
        const OverlayPoint to = view_.ToView(change_.Place(box.Middle() + by));
        const OverlayPoint way{to.x - middle_.x, to.y - middle_.y};
        const double length = std::hypot(way.x, way.y);
        return length > 0.0 ? OverlayPoint{way.x / length, way.y / length}
                            : OverlayPoint{by.x, by.y};
    }
    OverlayPoint Place(double right, double up) const
    {
        return {middle_.x + right_.x * right + up_.x * up,
                middle_.y + right_.y * right + up_.y * up};
    }

    const PolyView& view_;
    Affine change_;
    OverlayPoint middle_;
    OverlayPoint right_;
    OverlayPoint up_;
    double scale_;
    double halfWidth_ = 0.0; // with the margin
    double halfHeight_ = 0.0;
};

Grip GripAt(const Box& box, const PolyView& view)
{
    return Frame(box, view).GripAt(view.ToView(view.Cursor()));
}

class BoxDrag final : public PolyGesture {
public:
    BoxDrag(PolyLineControl& control, const PolyPointer& pointer, const Box& box, Grip grip)
        : PolyGesture(control), box_(box), grip_(grip), start_(pointer.view.Cursor()),
          rule_(pointer), states_(Editor().TakeStates())
    {
        for (int polygon = 0; polygon < PolygonCount; ++polygon)
            masks_[std::size_t(polygon)] = MaskOf(control, polygon);
        const bool all = masks_[std::size_t(Editor().ActivePolygon())].IsAllSet();
        const bool both = masks_[InnerPolygon].IsAnySet() && masks_[OuterPolygon].IsAnySet();
        text_ = grip_.kind == Grip::Inside ? "Dragging Shaping Box"
                : both                     ? "Shape points"
                : all                      ? "Shape PolyLine"
                                           : "Shape Points";
        masks_ = Editor().Movable(std::move(masks_));
        control.HoldBack();
    }

    void Move(const PolyPointer& pointer) override
    {
        if (!moved_ && pointer.view.Cursor() == start_)
            return;
        moved_ = true;
        if (!masks_[InnerPolygon].IsAnySet() && !masks_[OuterPolygon].IsAnySet())
            return;
        Begin(text_);
        change_ = ChangeFor(pointer);
        Editor().ChangeMasked(
            masks_,
            [this](PolyLine& shape, const SelMask& mask) {
                for (const int index : mask.Items()) {
                    if (PolyPoint* const point = shape.GetPoint(index))
                        change_.Apply(*point);
                }
            },
            states_);
    }

    /// The frame goes with the points.
    Frame FrameIn(const PolyView& view) const { return {box_, view, change_}; }

private:
    Affine ChangeFor(const PolyPointer& pointer)
    {
        switch (grip_.kind) {
        case Grip::Inside: {
            Affine moved;
            moved.by = rule_.Movement(pointer);
            return moved;
        }
        case Grip::Knob:
            return Turned(pointer);
        default:
            return Scaled(pointer);
        }
    }

    Affine Turned(const PolyPointer& pointer) const
    {
        const double tall = pointer.view.HeightsPerWidth();
        const ShapePlace middle = box_.Middle();
        const auto direction = [&](ShapePlace at) {
            return std::atan2((at.y - middle.y) * tall, at.x - middle.x);
        };
        double angle = direction(pointer.view.Cursor()) - direction(start_);
        if (pointer.modifiers & KeyShift) {
            const double step = turnStep * std::numbers::pi / 180.0;
            angle = std::round(angle / step) * step;
        }
        const double cosine = std::cos(angle);
        const double sine = std::sin(angle);
        return {cosine, -sine * tall, sine / tall, cosine, middle, {}};
    }

    Affine Scaled(const PolyPointer& pointer) const
    {
        const bool fromMiddle = pointer.modifiers & KeyControl;
        const ShapePlace about = fromMiddle ? box_.Middle() : box_.At(-grip_.x, -grip_.y);
        const ShapePlace grip = box_.At(grip_.x, grip_.y);
        const ShapePlace now = grip + (pointer.view.Cursor() - start_);
        const auto factor = [](double from, double to, double fixed) {
            return from != fixed ? (to - fixed) / (from - fixed) : 1.0;
        };
        Affine scaled;
        scaled.about = about;
        scaled.xx = grip_.x != 0 ? factor(grip.x, now.x, about.x) : 1.0;
        scaled.yy = grip_.y != 0 ? factor(grip.y, now.y, about.y) : 1.0;
        if (pointer.modifiers & KeyShift) {
            const double alike = grip_.x == 0   ? scaled.yy
                                 : grip_.y == 0 ? scaled.xx
                                                : std::max(scaled.xx, scaled.yy);
            scaled.xx = scaled.yy = alike;
        }
        return scaled;
    }

    Box box_;
    Grip grip_;
    ShapePlace start_;
    PolyMoveRule rule_;
    PolyEditor::States states_;
    PolyEditor::Masks masks_;
    Affine change_;
    const char* text_ = nullptr;
    bool moved_ = false;
};

std::optional<Frame> FrameOf(const PolyLineControl& control, const PolyView& view)
{
    if (const auto* drag = dynamic_cast<const BoxDrag*>(control.Gesture()))
        return drag->FrameIn(view);
    const std::optional<Box> box = BoxOf(control);
    return box ? std::optional(Frame(*box, view)) : std::nullopt;
}

} // namespace

std::unique_ptr<PolyGesture> MakeShapeBoxDrag(PolyLineControl& control, const PolyPointer& pointer)
{
    const std::optional<Box> box = BoxOf(control);
    const Grip grip = box ? GripAt(*box, pointer.view) : Grip();
    if (grip.kind == Grip::Nothing)
        return nullptr;
    return std::make_unique<BoxDrag>(control, pointer, *box, grip);
}

bool IsOnShapeBox(const PolyLineControl& control, const PolyView& view)
{
    const std::optional<Box> box = BoxOf(control);
    return box && GripAt(*box, view).kind != Grip::Nothing;
}

void DrawShapeBoxFrame(const PolyLineControl& control, OverlayPainter& painter,
                       const PolyView& view)
{
    const std::optional<Frame> frame = FrameOf(control, view);
    if (!frame)
        return;
    painter.SetColor(boxColor);
    painter.Loop({frame->At(-1, -1), frame->At(1, -1), frame->At(1, 1), frame->At(-1, 1)});
    painter.Line(frame->At(0, 1), frame->Knob());
}

void DrawShapeBoxKnobs(const PolyLineControl& control, OverlayPainter& painter,
                       const PolyView& view)
{
    const std::optional<Frame> frame = FrameOf(control, view);
    if (!frame)
        return;
    std::vector<OverlayPoint> grips;
    for (int x = -1; x <= 1; ++x) {
        for (int y = -1; y <= 1; ++y) {
            if (x != 0 || y != 0)
                grips.push_back(frame->At(x, y));
        }
    }
    const double scale = view.Info().controlScale;
    const OverlayPoint knobs[] = {frame->Knob()};
    painter.SetColor(boxColor);
    painter.Marks(OverlayPainter::Shape::Fill, gripMark, grips, scale);
    painter.Marks(OverlayPainter::Shape::Fill, knobMark, knobs, scale);
}

} // namespace Marlox
