// Handles: dragged, pulled out of a point, and the tension that stands for them in other kinds.

#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyMoveRule.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double tensionWay = 100.0; // view pixels from 0 to 1

/// Moves one end of a handle. The other one of a smooth point is turned into line with it, of a
/// broken one it stays. Alt breaks them; Shift, too late to hold an axis, keeps both as long as
/// each other.
class MoveHandle final : public PolyGesture {
public:
    MoveHandle(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit)
        : PolyGesture(control), hit_(hit), start_(pointer.view.Cursor()),
          states_(Editor().TakeStates())
    {
        Editor().SetActivePolygon(hit.polygon);
    }

    void Move(const PolyPointer& pointer) override
    {
        const ShapePlace by = pointer.view.Cursor() - start_;
        if (!moved_ && by == ShapePlace())
            return;
        moved_ = true;
        Begin("Move Point");
        const bool in = hit_.kind == PolyHit::InHandle;
        const bool breaks = pointer.modifiers & KeyAlt;
        const bool equals = pointer.modifiers & KeyShift;
        const double tall = pointer.view.HeightsPerWidth();
        const int index = hit_.index;
        Editor().Change(
            hit_.polygon, PolyEditor::Scope::Frames,
            [=](PolyLine& shape) {
                PolyPoint* point = shape.GetPoint(index);
                if (!point || point->Has(PPF_Locked))
                    return;
                (in ? point->inX : point->outX) += by.x;
                (in ? point->inY : point->outY) += by.y;
                if (breaks)
                    point->Set(PPF_Broken, true);
                if (equals) {
                    point->Set(PPF_Broken, false);
                    (in ? point->outX : point->inX) = -(in ? point->inX : point->outX);
                    (in ? point->outY : point->inY) = -(in ? point->inY : point->outY);
                } else if (!point->Has(PPF_Broken)) {
                    SmoothFast(*point, in, tall);
                }
            },
            states_[std::size_t(hit_.polygon)]);
    }

private:
    PolyHit hit_;
    ShapePlace start_;
    PolyEditor::States states_;
    bool moved_ = false;
};

/// Pulls both handles out of a point, alike, whatever they were.
class PullHandles final : public PolyGesture {
public:
    PullHandles(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit)
        : PolyGesture(control), hit_(hit), start_(pointer.view.Cursor())
    {
        Editor().SetActivePolygon(hit.polygon);
        if (!Editor().Selection(hit.polygon).GetSetItem(hit.index))
            Editor().SelectOnly(hit.polygon, hit.index);
        states_ = Editor().TakeStates();
    }

    void Move(const PolyPointer& pointer) override
    {
        const ShapePlace by = pointer.view.Cursor() - start_;
        if (!moved_ && by == ShapePlace())
            return;
        moved_ = true;
        Begin("Move Point");
        const int index = hit_.index;
        Editor().Change(
            hit_.polygon, PolyEditor::Scope::Frames,
            [=](PolyLine& shape) {
                PolyPoint* point = shape.GetPoint(index);
                if (!point || point->Has(PPF_Locked))
                    return;
                point->Set(PPF_Linear | PPF_Broken, false);
                point->outX = by.x;
                point->outY = by.y;
                point->inX = -by.x;
                point->inY = -by.y;
            },
            states_[std::size_t(hit_.polygon)]);
    }

private:
    PolyHit hit_;
    ShapePlace start_;
    PolyEditor::States states_;
    bool moved_ = false;
};

/// Changes the tension of the edited points: to the right is more.
class Tension final : public PolyGesture {
public:
    Tension(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit)
        : PolyGesture(control), from_(pointer.view.ToView(pointer.view.Cursor()).x)
    {
        Editor().SetActivePolygon(hit.polygon);
        if (!Editor().Selection(hit.polygon).GetSetItem(hit.index))
            Editor().SelectOnly(hit.polygon, hit.index);
        states_ = Editor().TakeStates();
    }

    void Move(const PolyPointer& pointer) override
    {
        const double way = pointer.view.ToView(pointer.view.Cursor()).x - from_;
        if (!moved_ && way == 0.0)
            return;
        moved_ = true;
        const double fine = pointer.modifiers & KeyControl ? 10.0 : 1.0;
        const double by = way / (tensionWay * pointer.view.Info().pixelRatio * fine);
        Begin("Tensioning");
        Editor().ChangeSelected(
            [by](PolyLine& shape, const SelMask& mask) {
                for (const int index : mask.Items()) {
                    PolyPoint* point = shape.GetPoint(index); // undo may have changed how many
                    if (!point || point->Has(PPF_Locked))
                        continue;
                    const double start = point->Has(PPF_Linear) ? 1.0 : point->tension;
                    point->Set(PPF_Linear, false);
                    point->tension = std::clamp(start + by, 0.0, 1.0);
                }
            },
            states_);
    }

private:
    double from_;
    PolyEditor::States states_;
    bool moved_ = false;
};

} // namespace

std::unique_ptr<PolyGesture> MakeMoveHandle(PolyLineControl& control, const PolyPointer& pointer,
                                            const PolyHit& hit)
{
    return std::make_unique<MoveHandle>(control, pointer, hit);
}

std::unique_ptr<PolyGesture> MakePullHandles(PolyLineControl& control, const PolyPointer& pointer,
                                             const PolyHit& hit)
{
    return std::make_unique<PullHandles>(control, pointer, hit);
}

std::unique_ptr<PolyGesture> MakeTension(PolyLineControl& control, const PolyPointer& pointer,
                                         const PolyHit& hit)
{
    return std::make_unique<Tension>(control, pointer, hit);
}

} // namespace Marlox
