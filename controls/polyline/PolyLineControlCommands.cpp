// Menu, toolbar and keys of the polyline overlay.

#include "controls/polyline/PolyActions.h"
#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/controls/Menu.h"
#include "system/viewer/ToolbarEvents.h"

#include <Qt>

namespace Marlox {

void PolyLineControl::GetAvailableEvents(std::vector<MxID>& out) const
{
    PreviewControl::GetAvailableEvents(out);
    for (const u32 event : ToolbarEvents())
        out.push_back(ViewerEvent(event));
}

bool PolyLineControl::DoInfo(unsigned int request, TagList& tags)
{
    if (request != InfoToolbarEvent)
        return PreviewControl::DoInfo(request, tags);
    ToolbarButton button;
    if (!DescribeButton(*this, u32(tags.GetLong(TB_Event)), button))
        return false;
    button.Write(tags);
    return true;
}

bool PolyLineControl::HandleEvent(Object* sender, const MxID& event, TagList& tags)
{
    if (const PolyActionRow* row = FindActionOfEvent(ViewerEventNumber(event)))
        return RunAction(*this, row->action);
    return PreviewControl::HandleEvent(sender, event, tags);
}

/// The toolbar shows the draw mode's button as pressed.
void PolyLineControl::PressModeEvent() const
{
    constexpr PolyAction modes[] = {PolyAction::Done, PolyAction::ClickAppend,
                                    PolyAction::DrawAppend, PolyAction::InsertAndModify,
                                    PolyAction::ModifyOnly};
    if (view_ && view_->services)
        view_->services->PressEvent(FindAction(modes[std::size_t(Mode())])->button.event);
}

void PolyLineControl::AddToMenu(Menu* menu, TagList& tags)
{
    if (!menu)
        return;
    if (tags.Find(TB_Event))
        FillPopDown(*this, u32(tags.GetLong(TB_Event)), *menu);
    else
        FillContextMenu(*this, *menu);
}

bool PolyLineControl::HandleMenu(unsigned int id, u64* data, TagList& tags)
{
    return RunAction(*this, PolyAction(id)) || PreviewControl::HandleMenu(id, data, tags);
}

// Keys --------------------------------------------------------------------------------------------

bool PolyLineControl::ControlCommand(PreviewInfo* view, const MxID& command, u64 data,
                                     TagList* tags)
{
    const u32 modifiers = tags ? u32(tags->GetLong(PV_Modifiers)) : 0;
    if (view && command == CCMD_HitTest)
        return HitTest(*view, tags);
    if (command == CCMD_GetInputAt && data && editor_.Hovered().Any()) {
        if (Input* const input = ShapeInput(editor_.Hovered().polygon)) {
            *reinterpret_cast<Input**>(data) = input;
            return true;
        }
    }
    if (command == CCMD_WantsKey)
        return WantsKey(int(data), modifiers);
    if (command == CCMD_KeyDown)
        return HandleKey(int(data), modifiers);
    return PreviewControl::ControlCommand(view, command, data, tags);
}

namespace {

struct Direction {
    int x;
    int y;
};

/// Of an arrow key; (0, 0): another key.
Direction DirectionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Down:
        return {0, -1};
    case Qt::Key_Up:
        return {0, 1};
    default:
        return {0, 0};
    }
}

} // namespace

bool PolyLineControl::WantsKey(int key, u32 modifiers) const
{
    const Direction arrow = DirectionOf(key);
    if (arrow.x != 0 || arrow.y != 0)
        return editor_.IsAnySelected() && !(modifiers & KeyAlt);
    if (key == Qt::Key_PageDown || key == Qt::Key_PageUp)
        return modifiers == 0 && editor_.IsAnySelected();
    if (key == switchKey)
        return modifiers == 0 && editor_.IsDouble();
    if (key == Qt::Key_Backspace && Mode() == PolyDrawMode::ClickAppend)
        return modifiers == 0 && !clicked_.empty() && CanEdit();
    const PolyAction action = ActionOfKey(*this, key, modifiers);
    return action != PolyAction::None && IsActionEnabled(*this, action);
}

bool PolyLineControl::HandleKey(int key, u32 modifiers)
{
    if (!WantsKey(key, modifiers))
        return false;
    const Direction arrow = DirectionOf(key);
    if (arrow.x != 0 || arrow.y != 0)
        ShiftSelected(*this, arrow.x, arrow.y, modifiers & KeyShift, modifiers & KeyControl);
    else if (key == Qt::Key_PageDown)
        NextStepFactor(*this);
    else if (key == Qt::Key_PageUp)
        ToggleFineStep(*this);
    else if (key == switchKey)
        return view_ && editor_.SwitchCoinciding(PolyView(*view_, Placement()));
    else if (key == Qt::Key_Backspace && Mode() == PolyDrawMode::ClickAppend)
        RemoveLastClicked(*this);
    else
        return RunAction(*this, ActionOfKey(*this, key, modifiers));
    return true;
}

} // namespace Marlox
