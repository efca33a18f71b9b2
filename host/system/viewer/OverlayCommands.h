#pragma once

#include "system/base/MxID.h"
#include "system/base/Types.h"

namespace Marlox {

// Commands of PreviewControl::ControlCommand. `data` is 0 unless told.

/// What is under the view's logical cursor? True: this overlay. It keeps what it learns for
/// drawing (hovered edges and arms). With PreviewInfo::hit set, an overlay further up has the
/// pointer, and with PC_PointerGone in the tags there is none: the answer is no.
MARLOXSYSTEM_EXPORT extern const MxID CCMD_HitTest;
/// Which input is under the cursor? `data` is the address of an Input* that receives it. False:
/// the overlay can't tell; it is the first one then.
MARLOXSYSTEM_EXPORT extern const MxID CCMD_GetInputAt;
/// A key went down or repeats; `data` is its Qt::Key, PV_Modifiers in the tags. True: used.
MARLOXSYSTEM_EXPORT extern const MxID CCMD_KeyDown;
/// Would this key (as with CCMD_KeyDown) be used? Then it comes to the overlay although it is
/// a shortcut elsewhere. Nothing is done yet.
MARLOXSYSTEM_EXPORT extern const MxID CCMD_WantsKey;
/// All keys are up, or the view lost the keyboard: what they did is one undo entry.
MARLOXSYSTEM_EXPORT extern const MxID CCMD_KeyUpAll;

// Tags that a view passes with commands, presses, moves and releases.
inline constexpr u32 PV_MouseState = 0x10010002; // of MouseState
inline constexpr u32 PV_Modifiers = 0x10010003;  // of KeyModifier
inline constexpr u32 PC_PointerGone = 0x10010004;
inline constexpr u32 PV_DoubleClick = 0x10010005; // the press is the second of a double click

// What moved the pointer, with presses, moves and releases. A mouse has a time alone, and presses
// with 1.
inline constexpr u32 PVD_Pressure = 0x20010010;  // 0 to 1
inline constexpr u32 PVD_PenHeight = 0x20010011; // above the tablet, in the device's units
/// Where the pen leans to, degrees from the right, anticlockwise: 0 to 360.
inline constexpr u32 PVD_AngleXY = 0x20010012;
inline constexpr u32 PVD_AngleZ = 0x20010013;    // above the tablet's surface, degrees; 90: upright
inline constexpr u32 PVD_Rotation = 0x20010014;  // about its own axis, degrees, 0 to 360
inline constexpr u32 PVD_EventTime = 0x20010015; // seconds; only differences tell something

enum MouseState : u32 {
    MouseLeft = 1,
    MouseRight = 2,
    /// Alt was held at the press: an overlay that has a second handle is taken by it.
    MouseAlternate = 4,
};

enum KeyModifier : u32 {
    KeyShift = 1,
    KeyControl = 2,
    KeyAlt = 4,
};

// Attributes of every overlay, group 004.
/// Follows the drags of other overlays (DragType::Driven) instead of only noticing them.
inline constexpr u32 PC_Follow = 0x10048001;
/// Draws nothing while it is dragged itself, so that the picture under it can be judged.
inline constexpr u32 PC_HideWhileDragging = 0x10048002;
/// Command of DoTagList, sent by an overlay to itself: it has followed a drag to its end.
inline constexpr u32 PC_FollowEnded = 0x10048003;
// From the cursor to the mark when a drag began, view pixels; read and written.
inline constexpr u32 PCD_DragOffsetX = 0x20048001;
inline constexpr u32 PCD_DragOffsetY = 0x20048002;
// The base offset, image coordinates: crosshairs and angles are drawn and grabbed at their position
// plus it.
inline constexpr u32 PCD_BaseOffsetX = 0x20048003;
inline constexpr u32 PCD_BaseOffsetY = 0x20048004;

/// On a parameter's own tag list while it is handed over: it comes from a drag that is going on.
inline constexpr u32 PA_Dragged = 0x10000451;

} // namespace Marlox
