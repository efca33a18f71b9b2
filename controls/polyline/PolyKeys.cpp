// The keys of the actions. A letter counts with Shift, as the menu tells it, and alone; a row with
// neither is for the letter alone.

#include "controls/polyline/PolyActions.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/viewer/OverlayCommands.h"

#include <algorithm>

#include <Qt>

namespace Marlox {

namespace {

using A = PolyAction;

struct KeyRow {
    int key;
    u32 modifiers;
    A action;
};

constexpr u32 Plain = 0;

constexpr KeyRow keys[] = {
    {Qt::Key_A, KeyShift, A::SelectAll},
    {Qt::Key_B, KeyShift, A::ShapeBox},
    {Qt::Key_C, KeyShift, A::ClickAppend},
    {Qt::Key_D, KeyShift, A::DrawAppend},
    {Qt::Key_E, KeyShift, A::EditPoint},
    {Qt::Key_F, KeyShift, A::FollowPublished},
    {Qt::Key_H, KeyShift, A::ShowHandles},
    {Qt::Key_I, KeyShift, A::InsertAndModify},
    {Qt::Key_K, KeyShift, A::ShowKeyPoints},
    {Qt::Key_L, KeyShift, A::Linear},
    {Qt::Key_M, KeyShift, A::ModifyOnly},
    {Qt::Key_N, KeyShift, A::Done},
    {Qt::Key_O, KeyShift, A::Closed},
    {Qt::Key_R, KeyShift, A::StopRendering},
    {Qt::Key_S, KeyShift, A::Smooth},
    {Qt::Key_T, KeyShift, A::TagPoints},
    {Qt::Key_X, KeyShift, A::CutPoints},
    {Qt::Key_Z, KeyShift, A::FlipPoints},
    {Qt::Key_K, Plain, A::ShowKeyList},
    {Qt::Key_C, KeyControl, A::CopyPathPoints},
    {Qt::Key_X, KeyControl, A::CutPathPoints},
    {Qt::Key_V, KeyControl, A::PastePathPoints},
    {Qt::Key_R, KeyControl, A::RotoEnable},
    {Qt::Key_O, KeyControl | KeyAlt, A::OnionSkin},
    {Qt::Key_D, KeyControl | KeyShift, A::ExportDxf},
    {Qt::Key_Delete, Plain, A::DeletePoints},
    {Qt::Key_Backspace, Plain, A::DeletePoints},
};

/// Letters that do something else in a view when they come alone.
constexpr int viewKeys[] = {Qt::Key_F};

A KeyAction(int key, u32 modifiers)
{
    for (const KeyRow& row : keys) {
        if (row.key == key && row.modifiers == modifiers)
            return row.action;
    }
    return A::None;
}

} // namespace

PolyAction ActionOfKey(const PolyLineControl& control, int key, u32 modifiers)
{
    if (key == Qt::Key_P && (modifiers == KeyShift || modifiers == Plain)) {
        // Publishes what is selected; without a selection it shows or hides the curve.
        if (control.Mode() == PolyDrawMode::Done)
            return A::None;
        if (!control.Editor().IsAnySelected())
            return A::ShowPolygon;
        return IsActionEnabled(control, A::UnpublishPoints) ? A::UnpublishPoints : A::PublishPoints;
    }
    if (key == Qt::Key_C && modifiers == KeyControl && !control.Editor().IsAnySelected())
        return A::Copy;
    const bool isMode = key == Qt::Key_C || key == Qt::Key_D || key == Qt::Key_I ||
                        key == Qt::Key_M || key == Qt::Key_N;
    if (isMode && (modifiers == KeyShift || modifiers == Plain) &&
        (!control.CanEdit() || control.Editor().IsFull()))
        return A::None;
    const A found = KeyAction(key, modifiers);
    const bool isViews =
        std::find(std::begin(viewKeys), std::end(viewKeys), key) != std::end(viewKeys);
    if (found == A::None && modifiers == Plain && !isViews)
        return KeyAction(key, KeyShift);
    return found;
}

} // namespace Marlox
