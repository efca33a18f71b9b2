// Moving points: those that are selected, one that was just put into the curve, the last clicked.

#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyMoveRule.h"
#include "system/base/Platform.h"

#include <cmath>

namespace Marlox {

namespace {

constexpr double longestClick = 0.5; // seconds; who waited longer has thought better of it

/// Moves the edited points from where they were at the press.
class MovePoints : public PolyGesture {
public:
    MovePoints(PolyLineControl& control, const PolyPointer& pointer, const char* text)
        : MovePoints(control, pointer, text, control.Editor().EditedMasks())
    {
    }
    /// Those of the masks.
    MovePoints(PolyLineControl& control, const PolyPointer& pointer, const char* text,
               const PolyEditor::Masks& masks)
        : PolyGesture(control), text_(text), rule_(pointer), states_(Editor().TakeStates()),
          masks_(Editor().Movable(masks))
    {
    }

    void Move(const PolyPointer& pointer) override
    {
        const ShapePlace by = rule_.Movement(pointer);
        if (!moved_ && by == ShapePlace())
            return;
        moved_ = true;
        if (!masks_[InnerPolygon].IsAnySet() && !masks_[OuterPolygon].IsAnySet())
            return;
        Begin(text_);
        Editor().ChangeMasked(
            masks_, [by](PolyLine& shape, const SelMask& mask) { shape.MovePoints(mask, by); },
            states_);
    }

    void Finish(const PolyPointer&) override
    {
        if (!moved_ && onClick_)
            onClick_();
    }

    /// What a press without a move does, on its release.
    void SetOnClick(std::function<void()> onClick) { onClick_ = std::move(onClick); }

private:
    const char* text_;
    PolyMoveRule rule_;
    PolyEditor::States states_;
    PolyEditor::Masks masks_;
    bool moved_ = false;
    std::function<void()> onClick_;
};

/// What the press does to the selection: an unselected point becomes the selected one; Shift and
/// Ctrl add it. A selected one is dragged with the others.
void SelectPressed(PolyEditor& editor, const PolyPointer& pointer, const PolyHit& hit)
{
    editor.SetActivePolygon(hit.polygon);
    const SelMask& mask = editor.Selection(hit.polygon);
    if (pointer.modifiers & (KeyShift | KeyControl))
        editor.Select(hit.polygon, hit.index, SelMask::Select);
    else if (mask.GetSetItem(hit.index))
        editor.Select(hit.polygon, hit.index, SelMask::Select); // the last one now
    else
        editor.SelectOnly(hit.polygon, hit.index);
}

/// The ends of a segment.
void SelectSegment(PolyEditor& editor, const PolyPointer& pointer, const PolyHit& hit)
{
    editor.SetActivePolygon(hit.polygon);
    const PolyLine& shape = *editor.Shape(hit.polygon);
    const int next = (hit.index + 1) % shape.GetCount();
    const SelMask& mask = editor.Selection(hit.polygon);
    const bool add = pointer.modifiers & (KeyShift | KeyControl);
    if (!add && mask.GetSetItem(hit.index) && mask.GetSetItem(next))
        return;
    if (!add)
        editor.SelectOnly(hit.polygon, hit.index);
    else
        editor.Select(hit.polygon, hit.index, SelMask::Select);
    editor.Select(hit.polygon, next, SelMask::Select);
}

} // namespace

std::unique_ptr<PolyGesture> MakeMovePoints(PolyLineControl& control, const PolyPointer& pointer,
                                            const PolyHit& hit)
{
    PolyEditor& editor = control.Editor();
    const bool onPoint = hit.IsPoint();
    const bool wasSelected = onPoint && editor.Selection(hit.polygon).GetSetItem(hit.index);
    if (onPoint)
        SelectPressed(editor, pointer, hit);
    else
        SelectSegment(editor, pointer, hit);
    const bool several = editor.ActiveSelection().SetCount() > 1;
    const char* const text = control.HoldBack()                                  ? "Drag Points"
                             : control.Settings().multiFrame != MultiFrame::None ? "Move points"
                             : several                                           ? "Move Points"
                                                                                 : "Move Point";
    auto gesture = std::make_unique<MovePoints>(control, pointer, text);
    const bool plain = !(pointer.modifiers & (KeyShift | KeyControl));
    if (wasSelected && !plain) {
        gesture->SetOnClick(
            [&control, hit] { control.Editor().Select(hit.polygon, hit.index, SelMask::Clear); });
    } else if (wasSelected && several) {
        gesture->SetOnClick([&control, hit] {
            if (Platform::GetUpTime() - control.PressTime() < longestClick)
                control.Editor().SelectOnly(hit.polygon, hit.index);
        });
    }
    return gesture;
}

std::unique_ptr<PolyGesture> MakeInsertPoint(PolyLineControl& control, const PolyPointer& pointer,
                                             const PolyHit& hit)
{
    PolyEditor& editor = control.Editor();
    if (editor.IsFull())
        return std::make_unique<PolyNoGesture>(control);
    const char* const text = control.HoldBack() ? "Add Points" : "Add Point";
    control.BeginGesture(text);
    const bool both = editor.IsMatched(); // whether the other one shows or not
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (polygon == hit.polygon || both)
            editor.Change(polygon, PolyEditor::Scope::Keys,
                          [&hit](PolyLine& shape) { shape.InsertPoint(hit.index, hit.t); });
    }
    editor.SetActivePolygon(hit.polygon);
    editor.SelectOnly(hit.polygon, hit.index + 1);
    PolyEditor::Masks masks; // the new point, even while the selection is locked
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const PolyLine* shape = editor.Shape(polygon);
        const bool goesAlong = polygon == hit.polygon ||
                               (polygon == OuterPolygon && both && control.Settings().followInner);
        SelMask& mask = masks[std::size_t(polygon)];
        mask.Create(shape ? shape->GetCount() : 0);
        if (goesAlong)
            mask.DoSet(hit.index + 1, SelMask::Select);
    }
    return std::make_unique<MovePoints>(control, pointer, text, masks);
}

} // namespace Marlox
