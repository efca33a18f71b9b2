#pragma once

#include "system/base/MxID.h"
#include "system/base/Types.h"

#include <vector>

#include <QString>

namespace Marlox {

class PreviewControl;
class TagList;

// The toolbar of an overlay. Each of its buttons is an event with a number. The overlay lists them
// in GetAvailableEvents, in the order of the toolbar, and describes each when DoInfo asks with
// PreviewControl::InfoToolbarEvent; events it does not describe have no button. A click arrives as
// HandleEvent with the event, TB_Event in the tags. The contents of a pop-down come from AddToMenu
// with TB_Event in the tags (without it, AddToMenu builds the context menu); HandleMenu runs an
// entry, with the same tags. Whenever the overlay asks to be drawn again it is asked for its
// buttons, too, once a drag is over; PreviewInfo::services tells at once.

/// The event of a number, for example "ViewerEvent.2000e".
MARLOXSYSTEM_EXPORT MxID ViewerEvent(u32 number);
/// Back; 0: it is none of these.
MARLOXSYSTEM_EXPORT u32 ViewerEventNumber(const MxID& event);

// Tags of InfoToolbarEvent, group 004.
inline constexpr u32 TB_Event = 0x10048100;   // its number; given, the others are the answer
inline constexpr u32 TBS_Text = 0x30048101;   // label; a button without an icon shows it
inline constexpr u32 TBS_Tip = 0x30048102;    // tooltip
inline constexpr u32 TBS_Icon = 0x30048103;   // bitmap without its state ".1" or ".2"; empty: none
inline constexpr u32 TB_Enabled = 0x10048104; // unless told
inline constexpr u32 TB_Checkable = 0x10048105;
inline constexpr u32 TB_Checked = 0x10048106; // shown pressed, with the icon's second state
inline constexpr u32 TB_PopDown = 0x10048107; // opens a menu
inline constexpr u32 TB_Clicks = 0x10048108;  // a pop-down that also is clicked beside its arrow
inline constexpr u32 TBS_Group = 0x30048109;  // name of its ToolGroup; lines stand between groups
inline constexpr u32 TBS_Reason = 0x3004810a; // why it is not enabled

/// One button as its overlay describes it.
struct MARLOXSYSTEM_EXPORT ToolbarButton {
    u32 event = 0;
    QString text;
    QString tip;
    QString icon;
    QString group;
    QString reason;
    bool enabled = true;
    bool checkable = false;
    bool checked = false;
    bool popDown = false;
    bool clicks = false;

    /// As the answer of DoInfo; texts are copied.
    void Write(TagList& tags) const;
    static ToolbarButton Read(const TagList& tags);

    friend bool operator==(const ToolbarButton&, const ToolbarButton&) = default;
};

/// Asks an overlay for its buttons, in their order.
MARLOXSYSTEM_EXPORT std::vector<ToolbarButton> ToolbarOf(PreviewControl& overlay);

} // namespace Marlox
