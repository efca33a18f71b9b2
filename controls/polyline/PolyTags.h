#pragma once

#include "system/base/Types.h"

/// Attributes of the polyline overlay, group 005. The numbers have gaps, which stay.
namespace Marlox {

inline constexpr u32 PLC_DrawMode = 0x10058000; // of PolyDrawMode
// What freehand drawing records with each point.
inline constexpr u32 PLC_RecordTime = 0x10058001;
inline constexpr u32 PLC_RecordPressure = 0x10058002;
inline constexpr u32 PLC_RecordHeight = 0x10058003;
inline constexpr u32 PLC_RecordAngleXY = 0x10058004;
inline constexpr u32 PLC_RecordAngleZ = 0x10058005;
inline constexpr u32 PLC_RecordRotation = 0x10058006;
inline constexpr u32 PLC_CanPublishPoints = 0x10058007;
inline constexpr u32 PLC_CurrentTimeOnly = 0x10058008;
inline constexpr u32 PLC_ShowKeyPoints = 0x10058009;
inline constexpr u32 PLC_ShowHandles = 0x1005800a;   // of all points, not only of selected ones
inline constexpr u32 PLC_StopRendering = 0x1005800b; // drags write when they are over
inline constexpr u32 PLC_Animated = 0x1005800c;      // edits make keys
inline constexpr u32 PLC_HandleColor = 0x1005800d;   // 0xRRGGBB
inline constexpr u32 PLC_FollowExternMatchPoint = 0x1005800e;
inline constexpr u32 PLC_ShowPolyLine = 0x1005800f;
inline constexpr u32 PLC_DrawStyle = 0x10058010; // of PolyDrawStyle
inline constexpr u32 PLC_ShowTaggedPointIDs = 0x10058015;

// Inputs of the tool by their place in it, whole numbers from 0, where they are not told below: the
// centre's x and y, and so on.
inline constexpr u32 PLCD_SetX = 0x20058000;
inline constexpr u32 PLCD_SetY = 0x20058001;
inline constexpr u32 PLCD_SetAngle = 0x20058002;
inline constexpr u32 PLCD_SetSize = 0x20058003;
inline constexpr u32 PLCD_SetAngleX = 0x20058004;
inline constexpr u32 PLCD_SetAngleY = 0x20058005;
inline constexpr u32 PLCD_SetTrackerSize = 0x20058006;
inline constexpr u32 PLCD_SetTrackerSearchSize = 0x20058007;

// Inputs of the tool that rule the overlay, by their ids or, with the same low bits, as Input*.
inline constexpr u32 PLCID_Center = 0x80058000;
inline constexpr u32 PLCID_Angle = 0x80058001;
inline constexpr u32 PLCID_Size = 0x80058002;
inline constexpr u32 PLCID_Displacement = 0x80058003;
inline constexpr u32 PLCID_CurrentTimePoint = 0x80058004;
inline constexpr u32 PLCID_AngleX = 0x80058005;
inline constexpr u32 PLCID_AngleY = 0x80058006;
inline constexpr u32 PLCID_AngleZ = 0x80058007;
inline constexpr u32 PLCID_InPolyLine2 = 0x80058008; // the outer polygon's
inline constexpr u32 PLCID_CenterX = 0x80058009;
inline constexpr u32 PLCID_CenterY = 0x8005800a;
inline constexpr u32 PLCID_CenterZ = 0x8005800b;
inline constexpr u32 PLCID_TrackerSize = 0x8005800d;
inline constexpr u32 PLCID_TrackerSearchSize = 0x8005800e;
inline constexpr u32 PLCP_Center = 0x60058000;
inline constexpr u32 PLCP_Angle = 0x60058001;
inline constexpr u32 PLCP_Size = 0x60058002;
inline constexpr u32 PLCP_Displacement = 0x60058003;
inline constexpr u32 PLCP_CurrentTimePoint = 0x60058004;
inline constexpr u32 PLCP_AngleX = 0x60058005;
inline constexpr u32 PLCP_AngleY = 0x60058006;
inline constexpr u32 PLCP_AngleZ = 0x60058007;
inline constexpr u32 PLCP_InPolyLine2 = 0x60058008;
inline constexpr u32 PLCP_CenterX = 0x60058009;
inline constexpr u32 PLCP_CenterY = 0x6005800a;
inline constexpr u32 PLCP_CenterZ = 0x6005800b;
inline constexpr u32 PLCP_TrackerSize = 0x6005800d;
inline constexpr u32 PLCP_TrackerSearchSize = 0x6005800e;

/// The low half of the draw-mode byte; the high one holds the export option.
enum class PolyDrawMode : u8 {
    Done = 0,
    ClickAppend = 1,
    DrawAppend = 2, // freehand
    InsertAndModify = 3,
    ModifyOnly = 4,
};

enum class PolyDrawStyle : u8 { Solid = 0, Dash = 1, Null = 2 };

} // namespace Marlox
