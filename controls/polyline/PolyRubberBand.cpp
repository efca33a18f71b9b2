// The rubber band: a drag from beside the shapes selects the points in the frame it draws. Shift
// adds them, Ctrl turns them over; a press without a drag selects none.

#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/viewer/OverlayCommands.h"

#include <algorithm>
#include <array>

namespace Marlox {

namespace {

class RubberBand final : public PolyGesture {
public:
    RubberBand(PolyLineControl& control, const PolyPointer& pointer)
        : PolyGesture(control), from_(CursorOf(pointer)), to_(from_),
          before_(Editor().Selections()), modifiers_(pointer.modifiers)
    {
        Apply(pointer.view);
    }

    void Move(const PolyPointer& pointer) override
    {
        to_ = CursorOf(pointer);
        Apply(pointer.view);
    }

    void Cancel() override { Editor().SetSelections(before_); }

    void Draw(OverlayPainter& painter, const PolyView&) const override
    {
        const OverlayPainter::Saved saved(painter);
        painter.SetColor(OverlayColor::Highlight);
        painter.SetDashed(true);
        painter.Loop({from_, {to_.x, from_.y}, to_, {from_.x, to_.y}});
    }

private:
    static OverlayPoint CursorOf(const PolyPointer& pointer)
    {
        return pointer.view.ToView(pointer.view.Cursor());
    }

    void Apply(const PolyView& view)
    {
        const double left = std::min(from_.x, to_.x);
        const double right = std::max(from_.x, to_.x);
        const double low = std::min(from_.y, to_.y);
        const double high = std::max(from_.y, to_.y);
        const PolyEditor& editor = Editor();
        PolyEditor::Masks masks = before_;
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            SelMask& mask = masks[std::size_t(polygon)];
            const bool replaces = !(modifiers_ & (KeyShift | KeyControl));
            if (replaces)
                mask.Reset();
            const bool concerned =
                polygon == editor.ActivePolygon() || Control().Settings().editBoth;
            if (!concerned || !editor.IsShown(polygon))
                continue;
            const auto points = editor.Shape(polygon)->Points();
            for (std::size_t i = 0; i < points.size(); ++i) {
                const OverlayPoint at = view.ToView(points[i].Place());
                if (at.x < left || at.x > right || at.y < low || at.y > high)
                    continue;
                mask.DoSet(int(i), modifiers_ & KeyControl ? SelMask::Toggle : SelMask::Select);
            }
        }
        Editor().SetSelections(masks);
    }

    OverlayPoint from_;
    OverlayPoint to_;
    PolyEditor::Masks before_;
    u32 modifiers_;
};

} // namespace

std::unique_ptr<PolyGesture> MakeRubberBand(PolyLineControl& control, const PolyPointer& pointer)
{
    return std::make_unique<RubberBand>(control, pointer);
}

} // namespace Marlox
