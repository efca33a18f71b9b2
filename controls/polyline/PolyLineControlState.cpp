// What the polyline overlay keeps while it is out of sight.

#include "controls/polyline/PolyLineControl.h"

#include <algorithm>

namespace Marlox {

bool PolyLineControl::SaveState(ScriptVal& state) const
{
    state = ScriptVal::MakeTable();
    settings_.Save(state);
    state.Set("DrawMode", int(Mode()));
    state.Set("HasFocused", hasFocused_);
    state.Set("Closed", editor_.IsClosed());
    const ScriptVal selection = SavedSelection();
    for (const char* name : {"ActivePolygon", "Selections"})
        state.Set(name, selection.Get(name));
    return true;
}

ScriptVal PolyLineControl::SavedSelection() const
{
    ScriptVal state = ScriptVal::MakeTable();
    state.Set("ActivePolygon", editor_.ActivePolygon());
    ScriptVal selections = ScriptVal::MakeTable();
    for (const SelMask& mask : editor_.Selections()) {
        ScriptVal items = ScriptVal::MakeTable();
        for (const int index : mask.Items())
            items.Append(index);
        items.Set("Last", mask.Last());
        selections.Append(items);
    }
    state.Set("Selections", selections);
    return state;
}

bool PolyLineControl::RestoreState(const ScriptVal& state)
{
    if (!state.IsTable())
        return false;
    settings_.Restore(state);
    hasFocused_ = state.Get("HasFocused").ToBool(hasFocused_);
    double mode = state.Get("DrawMode").ToNumber(-1.0);
    const bool drew =
        mode == double(PolyDrawMode::ClickAppend) || mode == double(PolyDrawMode::DrawAppend);
    if (drew && editor_.IsClosed() &&
        !state.Get("Closed").ToBool(true)) // undone and redone meanwhile
        mode = double(ModeAfterClose());
    if (mode >= 0.0 && mode <= double(PolyDrawMode::ModifyOnly) && int(mode) != int(Mode()))
        SetAttr(PLC_DrawMode, int64(mode));
    if (const ScriptVal& active = state.Get("ActivePolygon"); active.IsNumber())
        editor_.SetActivePolygon(active.ToNumber() == 1.0 ? OuterPolygon : InnerPolygon);
    PolyEditor::Masks masks = editor_.Selections();
    for (std::size_t i = 0; i < masks.size(); ++i) {
        const ScriptVal& items = state.Get("Selections").At(i + 1);
        if (!items.IsTable())
            continue;
        masks[i].Reset();
        for (const ScriptVal& item : items.Elements())
            masks[i].DoSet(int(std::clamp(item.ToNumber(-1.0), -1.0, 1e9)), SelMask::Select);
        masks[i].SetLast(int(std::clamp(items.Get("Last").ToNumber(-1.0), -1.0, 1e9)));
    }
    editor_.RestoreSelections(masks);
    UpdateDisplay(nullptr, nullptr);
    return true;
}

void PolyLineControl::CleanupState(ScriptVal& state) const
{
    state = ScriptVal();
}

} // namespace Marlox
