#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyKeysChange.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/ShapePublish.h"
#include "system/viewer/OverlayState.h"

#include <algorithm>

namespace Marlox {

namespace {

using Scope = PolyEditor::Scope;

/// Whether all selected points have the flag.
bool AllHave(const PolyEditor& editor, u32 flag)
{
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        for (const int index : editor.CommandMask(polygon).Items()) {
            if (!editor.Shape(polygon)->GetPoint(index)->Has(flag))
                return false;
        }
    }
    return true;
}

void ToggleFlag(PolyLineControl& control, const char* text, u32 flag)
{
    const bool on = !AllHave(control.Editor(), flag);
    ChangePoints(control, Scope::Keys, text, [=](PolyLine& shape, const SelMask& mask) {
        for (const int index : mask.Items()) {
            if (PolyPoint* point = shape.GetPoint(index))
                point->Set(flag, on);
        }
    });
}

} // namespace

void TogglePolygonClosed(PolyLineControl& control)
{
    PolyEditor& editor = control.Editor();
    const PolyLine* shape = editor.Active();
    if (!shape || !control.CanEdit() || (!shape->IsClosed() && shape->GetCount() < 2))
        return;
    const bool closes = !shape->IsClosed();
    const auto alive = Ref<PolyLineControl>::Share(&control);
    {
        const PolyNest nest(control, closes ? "Close polygon" : "Open polygon");
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            if (polygon != editor.ActivePolygon() && !editor.HasPoints(polygon))
                continue;
            editor.Change(polygon, Scope::Keys, [closes](PolyLine& each) {
                if (closes)
                    each.Close();
                else
                    each.Open();
            });
        }
        if (closes)
            control.ChangeModeUndoably(PolyLineControl::ModeAfterClose(), "Close polygon");
    }
}

void SelectAllPoints(PolyLineControl& control)
{
    control.Editor().SelectAll();
}

void SelectMatchingPoint(PolyLineControl& control)
{
    PolyEditor& editor = control.Editor();
    const int other = OtherPolygon(editor.ActivePolygon());
    const int index = editor.ActiveSelection().Last();
    const ScriptVal before = control.SavedSelection();
    editor.SetActivePolygon(other);
    editor.SelectOnly(other, index);
    PushOverlayState(control,
                     QStringLiteral("Select matching point from the %1 polyline")
                         .arg(QLatin1String(NameOfPolygon(other))),
                     before, control.SavedSelection());
}

void DeleteSelectedPoints(PolyLineControl& control, const char* text)
{
    PolyEditor& editor = control.Editor();
    if (!editor.IsAnySelected() || !control.CanEdit())
        return;
    const PolyNest nest(control, text);
    // Matching points go together: what is left of both must still match.
    PolyEditor::Masks masks = editor.Selections();
    if (editor.IsMatched()) {
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            for (const int index : editor.Selection(OtherPolygon(polygon)).Items())
                masks[std::size_t(polygon)].DoSet(index, SelMask::Select);
        }
        for (int polygon = 0; polygon < PolygonCount; ++polygon) { // and are locked together
            const auto points = editor.Shape(polygon)->Points();
            for (std::size_t i = 0; i < points.size(); ++i) {
                if (points[i].Has(PPF_Locked))
                    masks[std::size_t(OtherPolygon(polygon))].DoSet(int(i), SelMask::Clear);
            }
        }
    }
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const SelMask& mask = masks[std::size_t(polygon)];
        if (!mask.IsAnySet() || !control.IsShapeFree(polygon))
            continue;
        editor.Change(polygon, Scope::Keys, [&mask](PolyLine& shape) { shape.RemovePoints(mask); });
    }
    if (Operator* tool = control.GetOperator(nullptr))
        RemoveUnusedPublishedInputs(*tool);
}

void SmoothSelected(PolyLineControl& control)
{
    ChangePoints(control, Scope::Keys, "Smooth Polyline",
                 [](PolyLine& shape, const SelMask& mask) { shape.Smooth({}, mask.Bytes()); });
}

void LinearSelected(PolyLineControl& control)
{
    ChangePoints(control, Scope::Keys, "Linear Polyline",
                 [](PolyLine& shape, const SelMask& mask) { shape.Linear({}, mask.Bytes()); });
}

void FlipPoints(PolyLineControl& control)
{
    PolyEditor& editor = control.Editor();
    if (!control.CanEdit())
        return;
    const PolyNest nest(control, "Flip Points");
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (editor.HasPoints(polygon))
            editor.Change(polygon, Scope::Keys, [](PolyLine& shape) { shape.Reverse(); });
    }
}

void TagSelected(PolyLineControl& control)
{
    ToggleFlag(control, "Tag Points", PPF_Tagged);
}

void ToggleLocked(PolyLineControl& control)
{
    const bool on = !AllHave(control.Editor(), PPF_Locked);
    ToggleFlag(control, on ? "Locking Points" : "Unlocking Points", PPF_Locked);
}

void ToggleLockedPairs(PolyLineControl& control)
{
    PolyEditor& editor = control.Editor();
    if (!editor.IsMatched() || !control.CanEdit())
        return;
    const bool on = !AllHave(editor, PPF_Locked);
    SelMask both = editor.CommandMask(InnerPolygon);
    for (const int index : editor.CommandMask(OuterPolygon).Items())
        both.DoSet(index, SelMask::Select);
    const PolyNest nest(control, on ? "Locking Point Pairs" : "Unlocking Point Pairs");
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        editor.Change(polygon, Scope::Keys, [&both, on](PolyLine& shape) {
            for (const int index : both.Items()) {
                if (PolyPoint* point = shape.GetPoint(index))
                    point->Set(PPF_Locked, on);
            }
        });
    }
}

void RemoveLastClicked(PolyLineControl& control)
{
    std::vector<PolyPoint>& clicked = control.ClickedPoints();
    PolyEditor& editor = control.Editor();
    while (!clicked.empty()) {
        const u32 id = clicked.back().id;
        clicked.pop_back();
        const int index = editor.Active() ? editor.Active()->GetIndex(id) : -1;
        if (index < 0)
            continue; // undone, or deleted since
        editor.SelectOnly(editor.ActivePolygon(), index);
        DeleteSelectedPoints(control);
        return;
    }
}

void ShiftSelected(PolyLineControl& control, int x, int y, bool coarse, bool fine)
{
    const PreviewInfo* view = control.View();
    PolyEditor& editor = control.Editor();
    if (!view || !editor.IsAnySelected() || !control.CanEdit())
        return;
    const PolyView shapes(*view, control.Placement());
    const ShapePlace pixels = shapes.PixelSize();
    const double factor = control.Settings().stepFactor * (coarse ? 10.0 : 1.0);
    const bool divides = fine || control.Settings().fineStep;
    const double step = divides ? 1.0 / (factor > 1.0 ? factor : 10.0) : factor;
    const ShapePlace by = shapes.Placement().InVector({x * step / pixels.x, y * step / pixels.y});
    control.BeginGesture("Shift points"); // open until the keys are up
    editor.ChangeMasked(editor.Movable(editor.EditedMasks()),
                        [by](PolyLine& shape, const SelMask& mask) { shape.MovePoints(mask, by); });
}

void NextStepFactor(PolyLineControl& control)
{
    int& factor = control.ChangeSettings().stepFactor;
    factor = factor >= 100 ? 1 : factor * 10;
}

void ToggleFineStep(PolyLineControl& control)
{
    bool& fine = control.ChangeSettings().fineStep;
    fine = !fine;
}

} // namespace Marlox
