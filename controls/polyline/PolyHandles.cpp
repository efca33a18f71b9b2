// Handles: dragged, pulled out of a point, and the tension that stands for them in other kinds.

#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyMoveRule.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double tensionWay = 100.0; // view pixels from 0 to 1

/// A drag of one point, or of what belongs to it: from the shapes at the press, by how far the
/// pointer is from there. Nothing is written before it has moved.
class PointDrag : public PolyGesture {
public:
    PointDrag(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit,
              bool selects)
        : PolyGesture(control), hit_(hit), start_(pointer.view.Cursor())
    {
        Editor().SetActivePolygon(hit.polygon);
        if (selects && !Editor().Selection(hit.polygon).GetSetItem(hit.index))
            Editor().SelectOnly(hit.polygon, hit.index);
        states_ = Editor().TakeStates();
        control.HoldBack();
    }

    void Move(const PolyPointer& pointer) final
    {
        const ShapePlace by = pointer.view.Cursor() - start_;
        if (!moved_ && by == ShapePlace())
            return;
        moved_ = true;
        Write(pointer, by);
    }

protected:
    virtual void Write(const PolyPointer& pointer, ShapePlace by) = 0;

    const PolyHit& Hit() const { return hit_; }
    const ShapePlace& Start() const { return start_; }
    const PolyEditor::States& States() const { return states_; }
    /// Changes the point, unless it is locked, where edits of the current time go.
    void ChangePoint(const std::function<void(PolyPoint& point)>& change)
    {
        Editor().Change(
            hit_.polygon, PolyEditor::Scope::Frames,
            [&](PolyLine& shape) {
                PolyPoint* point = shape.GetPoint(hit_.index);
                if (point && !point->Has(PPF_Locked))
                    change(*point);
            },
            states_[std::size_t(hit_.polygon)]);
    }

private:
    PolyHit hit_;
    ShapePlace start_;
    PolyEditor::States states_;
    bool moved_ = false;
};

/// Moves one end of a handle. The other one of a smooth point is turned into line with it, of a
/// broken one it stays. Alt breaks them; Shift, too late to hold an axis, keeps both as long as
/// each other.
class MoveHandle final : public PointDrag {
public:
    MoveHandle(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit)
        : PointDrag(control, pointer, hit, false)
    {
    }

private:
    void Write(const PolyPointer& pointer, ShapePlace by) override
    {
        Begin("Move Point");
        const bool in = Hit().kind == PolyHit::InHandle;
        const double tall = pointer.view.HeightsPerWidth();
        ChangePoint([&](PolyPoint& point) {
            (in ? point.inX : point.outX) += by.x;
            (in ? point.inY : point.outY) += by.y;
            if (pointer.modifiers & KeyAlt)
                point.Set(PPF_Broken, true);
            if (pointer.modifiers & KeyShift) {
                point.Set(PPF_Broken, false);
                (in ? point.outX : point.inX) = -(in ? point.inX : point.outX);
                (in ? point.outY : point.inY) = -(in ? point.inY : point.outY);
            } else if (!point.Has(PPF_Broken)) {
                SmoothFast(point, in, tall);
            }
        });
    }
};

/// Pulls both handles out of a point, alike, whatever they were.
class PullHandles final : public PointDrag {
public:
    PullHandles(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit)
        : PointDrag(control, pointer, hit, true)
    {
    }

private:
    void Write(const PolyPointer&, ShapePlace by) override
    {
        Begin("Move Point");
        ChangePoint([by](PolyPoint& point) {
            point.Set(PPF_Linear | PPF_Broken, false);
            point.outX = by.x;
            point.outY = by.y;
            point.inX = -by.x;
            point.inY = -by.y;
        });
    }
};

/// Changes the tension of the edited points: to the right is more.
class Tension final : public PointDrag {
public:
    Tension(PolyLineControl& control, const PolyPointer& pointer, const PolyHit& hit)
        : PointDrag(control, pointer, hit, true)
    {
    }

private:
    void Write(const PolyPointer& pointer, ShapePlace by) override
    {
        const double way = pointer.view.ToView(Start() + by).x - pointer.view.ToView(Start()).x;
        const double fine = pointer.modifiers & KeyControl ? 10.0 : 1.0;
        const double more = way / (tensionWay * pointer.view.Info().pixelRatio * fine);
        Begin("Tensioning");
        Editor().ChangeSelected(
            [more](PolyLine& shape, const SelMask& mask) {
                for (const int index : mask.Items()) {
                    PolyPoint* point = shape.GetPoint(index); // undo may have changed how many
                    if (!point || point->Has(PPF_Locked))
                        continue;
                    const double start = point->Has(PPF_Linear) ? 1.0 : point->tension;
                    point->Set(PPF_Linear, false);
                    point->tension = std::clamp(start + more, 0.0, 1.0);
                }
            },
            States());
    }
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
