#include "system/viewer/ToolbarEvents.h"

#include "system/viewer/PreviewControl.h"

#include <charconv>
#include <string_view>

namespace Marlox {

namespace {

constexpr std::string_view prefix = "ViewerEvent.";

} // namespace

MxID ViewerEvent(u32 number)
{
    char digits[8];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr;
    return MxID(std::string(prefix).append(digits, end));
}

u32 ViewerEventNumber(const MxID& event)
{
    const std::string_view text = event.View();
    if (!text.starts_with(prefix))
        return 0;
    u32 number = 0;
    const char* last = text.data() + text.size();
    const auto read = std::from_chars(text.data() + prefix.size(), last, number, 16);
    return read.ec == std::errc() && read.ptr == last ? number : 0;
}

void ToolbarButton::Write(TagList& tags) const
{
    tags.Set(TB_Event, event);
    tags.SetCopy(TBS_Text, text.toStdString());
    tags.SetCopy(TBS_Tip, tip.toStdString());
    tags.SetCopy(TBS_Icon, icon.toStdString());
    tags.SetCopy(TBS_Group, group.toStdString());
    tags.SetCopy(TBS_Reason, reason.toStdString());
    tags.Set(TB_Enabled, enabled);
    tags.Set(TB_Checkable, checkable);
    tags.Set(TB_Checked, checked);
    tags.Set(TB_PopDown, popDown);
    tags.Set(TB_Clicks, clicks);
}

ToolbarButton ToolbarButton::Read(const TagList& tags)
{
    const auto text = [&tags](u32 tag) { return QString::fromUtf8(tags.GetString(tag)); };
    ToolbarButton button;
    button.event = u32(tags.GetLong(TB_Event));
    button.text = text(TBS_Text);
    button.tip = text(TBS_Tip);
    button.icon = text(TBS_Icon);
    button.group = text(TBS_Group);
    button.reason = text(TBS_Reason);
    button.enabled = tags.GetBool(TB_Enabled, true);
    button.checkable = tags.GetBool(TB_Checkable);
    button.checked = tags.GetBool(TB_Checked);
    button.popDown = tags.GetBool(TB_PopDown);
    button.clicks = tags.GetBool(TB_Clicks);
    return button;
}

std::vector<ToolbarButton> ToolbarOf(PreviewControl& overlay)
{
    std::vector<MxID> events;
    overlay.GetAvailableEvents(events);
    std::vector<ToolbarButton> buttons;
    for (const MxID& event : events) {
        const u32 number = ViewerEventNumber(event);
        TagList tags{{TB_Event, number}};
        if (number && overlay.DoInfo(PreviewControl::InfoToolbarEvent, tags))
            buttons.push_back(ToolbarButton::Read(tags));
    }
    return buttons;
}

} // namespace Marlox
