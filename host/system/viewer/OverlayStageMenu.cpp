// The toolbar of a view's overlays, and their menus.

#include "system/controls/Menu.h"
#include "system/viewer/OverlayStage.h"
#include "system/viewer/ToolbarEvents.h"

#include <algorithm>
#include <utility>

namespace Marlox {

PreviewControl* OverlayStage::ToolbarOwner() const
{
    if (!IsShown())
        return nullptr;
    if (focus_ && !ToolbarOf(*focus_).empty())
        return focus_;
    for (const Entry& entry : entries_) {
        const bool its = tool_ && &entry.main->Owner() == tool_.Get();
        if (its && !ToolbarOf(*entry.overlay).empty())
            return entry.overlay.Get();
    }
    return nullptr;
}

bool OverlayStage::ClickButton(u32 event)
{
    EndDrag();
    KeyUpAll();
    const auto owner = Ref<PreviewControl>::Share(ToolbarOwner());
    if (!owner)
        return false;
    const std::vector<ToolbarButton> buttons = ToolbarOf(*owner);
    if (std::none_of(buttons.begin(), buttons.end(), [event](const ToolbarButton& button) {
            return button.event == event && button.enabled && (!button.popDown || button.clicks);
        }))
        return false;
    SetFocus(owner.Get());
    TagList tags{{TB_Event, event}};
    owner->HandleEvent(nullptr, ViewerEvent(event), tags);
    TestHover(); // it may draw from now on
    emit ToolbarChanged();
    return true;
}

bool OverlayStage::FillMenu(Menu& menu, u32 event)
{
    EndDrag();
    KeyUpAll();
    TestHover();
    menuEvent_ = event;
    for (PreviewControl* overlay : {event ? nullptr : view_.currentControl, ToolbarOwner()}) {
        menuOwner_ = Ref<PreviewControl>::Share(overlay);
        TagList tags{{PV_Modifiers, modifiers_}};
        if (event)
            tags.Add(TB_Event, event);
        if (overlay)
            overlay->AddToMenu(&menu, tags);
        if (!menu.Entries().empty())
            return true;
    }
    menuOwner_ = nullptr;
    return false;
}

bool OverlayStage::RunMenu(unsigned int id)
{
    const Ref<PreviewControl> owner = std::exchange(menuOwner_, nullptr);
    if (!owner)
        return false;
    SetFocus(owner.Get());
    TagList tags{{PV_Modifiers, modifiers_}};
    if (menuEvent_)
        tags.Add(TB_Event, menuEvent_);
    const bool run = static_cast<Object&>(*owner).HandleMenu(id, nullptr, tags);
    TestHover();
    emit ToolbarChanged();
    return run;
}

} // namespace Marlox
